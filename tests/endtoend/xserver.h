#pragma once

#include <QImage>
#include <QPoint>
#include <QProcess>
#include <QString>

struct xcb_connection_t;

namespace testing_support {

/// An X server without hardware and without a window manager, and the finger that touches it.
///
/// What the finger does goes through the server as that of a user does: which window gets it, and
/// in which order, is the server's to decide.
class XServer
{
public:
    /// Why there can be none here; empty where there can.
    [[nodiscard]] static QString whatIsMissing();

    XServer();
    ~XServer();
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    /// What programs find in DISPLAY; empty where the server did not start.
    [[nodiscard]] QString display() const { return name; }

    [[nodiscard]] QImage picture() const;

    void press(QPoint place) const;
    void release() const;
    void tap(QPoint place) const;
    void doubleTap(QPoint place) const;

    /// A finger that goes in small steps from one place to another.
    void drag(QPoint from, QPoint to) const;

    /// \param keys as in "Page_Up"
    void key(const QString& key) const;

    /// What the closing button of a window's frame does.
    void close(quint32 window) const;

private:
    void act(const QStringList& actions) const;

    QProcess server;
    QString name;
    xcb_connection_t* connection = nullptr;
};

} // namespace testing_support
