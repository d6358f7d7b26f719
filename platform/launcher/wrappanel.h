#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>

class QHBoxLayout;
class QPushButton;

/// A row of buttons that show and hide the parts of a page, each named by the part's window title.
///
/// Follows parts that are shown or hidden by others.
class WrapPanel : public QWidget
{
    Q_OBJECT

public:
    /// \param exclusive whether parts in the same cell of a page's grid take turns: showing one
    /// hides the others
    explicit WrapPanel(bool exclusive, QWidget* parent = nullptr);

    /// Adds the button of a part, which should have its place in the page already.
    /// \param remember whether the next start finds it as the user leaves it; while nothing is
    /// remembered it stays as it is
    void attach(QWidget* part, bool remember);

    /// Shows or hides a part that is attached; nothing of it is remembered.
    void setShown(QWidget* part, bool shown);

    /// A part that is held is never out of reach: it is shown, another may take its place, but the
    /// place cannot be emptied. At most one button press brings it back.
    void setHeld(QWidget* part, bool held);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct Part
    {
        QPointer<QWidget> widget;
        QPushButton* button;
        bool isRemembered;
        bool isHeld;
    };

    [[nodiscard]] Part* find(const QObject* widget);
    QPushButton* newButton(QWidget* part);
    void pressed(QWidget* part, bool shown);
    void hideOthersInCell(QWidget& part);
    void fillCell(QWidget& part);
    void remember() const;

    QList<Part> parts;
    QHBoxLayout* row;
    bool isExclusive;
};
