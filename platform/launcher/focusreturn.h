#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>

/// Sees to it that keys do not press what nobody chose: a control that is disabled or hidden while
/// it has the focus hands it to no other one, and has it again when it can.
///
/// Qt hands it to the next control, which the next Space then presses. Tab leads on from where the
/// focus was; once the user has moved it, it stays there. Lives as long as the application has
/// windows.
class FocusReturn : public QObject
{
    Q_OBJECT

public:
    explicit FocusReturn(QObject* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(QWidget& widget, QEvent& event);
    void leave(QWidget& widget, Qt::FocusReason reason);
    [[nodiscard]] bool hadFocus(const QWidget& widget) const;
    void take(QWidget& widget, Qt::FocusReason reason);
    void lose(QWidget& widget);
    void giveBack(QWidget& widget);
    bool leadOn(QWidget& widget, int key);

    QPointer<QWidget> leaving; ///< whose focus went in the turn that goes on
    QPointer<QWidget> resting; ///< would have the focus if its window were active
    QPointer<QWidget> lost; ///< cannot have the focus that it had
    QPointer<QWidget> next; ///< what Qt had chosen instead
};
