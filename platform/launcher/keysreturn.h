#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>

/// Sees to it that the keys go on when a dialog closes: its window below gets them.
///
/// A window manager does that. Without one, as on an instrument, they would go to the empty screen,
/// and no key would do anything until the next tap. Lives as long as the application has windows.
class KeysReturn : public QObject
{
    Q_OBJECT

public:
    explicit KeysReturn(QObject* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(QWidget& window, QEvent::Type event);
    void giveBack();

    QPointer<QWidget> below; ///< of one that closed just now with the keys
};
