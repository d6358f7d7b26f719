#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>

/// Sees to it that the keys go to what is on top: to a window that opens, and when it closes to the
/// one below.
///
/// A window manager does that. Without one, as on an instrument, they would stay behind a message,
/// where Enter presses what it covers, or go to the empty screen, and no key would do anything
/// until the next tap. Lives as long as the application has windows.
class KeysReturn : public QObject
{
    Q_OBJECT

public:
    explicit KeysReturn(QObject* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void opened(QWidget& window);
    void closed(QWidget& window);
    void giveBack();

    QPointer<QWidget> below; ///< of one that closed just now with the keys
    QPointer<QWidget> kept; ///< opened while a dialog kept all keys to itself
};
