#pragma once

#include <QPoint>
#include <QScroller>
#include <QTableView>

class ReflTableMenu;

namespace Waveform {

/// The table of loaded traces on the touch screen. A long or a double tap on a row opens a menu
/// for its trace; a drag scrolls where there is more than is seen.
class ReflsTableView : public QTableView
{
    Q_OBJECT

public:
    explicit ReflsTableView(QWidget* parent = nullptr);

    /// Shows a model; what the menu asks for is done by one that is a ReflsTableModel.
    void setModel(QAbstractItemModel* newModel) override;

    using QTableView::clicked;
    using QTableView::resize;

public slots:
    /// Gives the rows the height that they need.
    void resize();
    void setMenuDisabled(bool disabled);

    /// Tells what the menu's choice asks for the row that it was opened for.
    void clicked(int id);

signals:
    void mainReflChanged(int row);
    void deleteRefl(int row);
    void deleteAllRefls();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

    /// A pointer that rests on a row is told what was odd about the row's file.
    bool viewportEvent(QEvent* event) override;

    /// The press lasted.
    virtual void longTap();
    void showMenu(QPoint pos);
    void stopLongTapTimer();

private slots:
    void onScrolling(QScroller::State state);

private:
    void setupHeaders();
    void setupScrolling();
    [[nodiscard]] QString notesAt(QPoint pos) const;

    ReflTableMenu* menu;
    int longTapTimer = -1; ///< -1 while none runs
    QPoint pressPosition;
    int menuRow = -1;
    bool menuEnabled = true;
};

} // namespace Waveform
