#pragma once

#include <QFrame>
#include <QPoint>
#include <QSize>

/// The base of the launcher's pop-ups: a framed window that a tap beside it or Escape closes.
///
/// Keys go to its first usable control when it opens, so that Tab, Space and Enter work at once.
class BasePopupWindow : public QFrame
{
    Q_OBJECT

public:
    explicit BasePopupWindow(QWidget* parent = nullptr);

    /// Shows the pop-up at a global position with the given size, moved no further than it takes to
    /// lie wholly on the screen.
    void showWithoutCaller(QPoint position, const QSize& size);

    /// Shows the pop-up right above or below the widget that opened it.
    void showAtCaller(const QWidget& caller, const QSize& size);

    /// The part of the screen under a global position that windows may use.
    [[nodiscard]] static QRect screenAt(QPoint position);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void showAt(QPoint position, const QSize& size);
};
