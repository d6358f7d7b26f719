#include "tests/endtoend/xserver.h"

#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QStringList>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace testing_support {

namespace {

constexpr int kServerPatience_ms = 30'000;

struct Free
{
    void operator()(void* reply) const { std::free(reply); } // as xcb allocates it
};

QStringList moveTo(QPoint place)
{
    return {"mousemove", QString::number(place.x()), QString::number(place.y())};
}

xcb_atom_t atom(xcb_connection_t* connection, const char* name)
{
    const xcb_intern_atom_cookie_t asked =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(
        xcb_intern_atom_reply(connection, asked, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

} // namespace

QString XServer::whatIsMissing()
{
    QStringList missing;
    for (const char* program : {"Xvfb", "xdotool"}) {
        if (QStandardPaths::findExecutable(program).isEmpty()) {
            missing << program;
        }
    }
    return missing.isEmpty() ? QString() : missing.join(" and ") + " not installed";
}

XServer::XServer()
{
    server.setStandardErrorFile(QProcess::nullDevice()); // keyboard tables are no news
    server.start("Xvfb",
                 {"-displayfd", "1", "-screen", "0", "1280x800x24", "-nolisten", "tcp", "-noreset",
                  "+extension", "XTEST"});
    while (!server.canReadLine() && server.waitForReadyRead(kServerPatience_ms)) { }
    const QString number = server.readLine().trimmed();
    if (number.isEmpty()) {
        return;
    }
    name = ":" + number;
    connection = xcb_connect(name.toLatin1().constData(), nullptr);
}

XServer::~XServer()
{
    if (connection != nullptr) {
        xcb_disconnect(connection);
    }
    server.terminate();
    if (!server.waitForFinished(kServerPatience_ms)) {
        server.kill();
        server.waitForFinished();
    }
}

QImage XServer::picture() const
{
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_get_image_cookie_t asked =
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root, 0, 0,
                      screen->width_in_pixels, screen->height_in_pixels, ~0U);
    const std::unique_ptr<xcb_get_image_reply_t, Free> reply(
        xcb_get_image_reply(connection, asked, nullptr));
    if (!reply) {
        return {};
    }
    // 24 bits deep, 32 bits a pixel, in the order of this machine.
    return QImage(xcb_get_image_data(reply.get()), screen->width_in_pixels,
                  screen->height_in_pixels, QImage::Format_RGB32)
        .copy();
}

void XServer::act(const QStringList& actions) const
{
    QProcess xdotool;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", name);
    xdotool.setProcessEnvironment(environment);
    xdotool.start("xdotool", actions);
    EXPECT_TRUE(xdotool.waitForFinished(kServerPatience_ms));
    EXPECT_EQ(xdotool.exitCode(), 0) << xdotool.readAllStandardError().constData();
}

void XServer::press(QPoint place) const
{
    act(moveTo(place) << "mousedown"
                      << "1");
}

void XServer::release() const
{
    act({"mouseup", "1"});
}

void XServer::tap(QPoint place) const
{
    act(moveTo(place) << "click"
                      << "1");
}

void XServer::doubleTap(QPoint place) const
{
    act(moveTo(place) << "click"
                      << "--repeat"
                      << "2"
                      << "--delay"
                      << "20"
                      << "1");
}

void XServer::drag(QPoint from, QPoint to) const
{
    constexpr int kSteps = 12;
    QStringList actions = moveTo(from) << "mousedown"
                                       << "1";
    for (int step = 1; step <= kSteps; ++step) {
        actions << moveTo(from + (to - from) * step / kSteps) << "sleep"
                << "0.02"; // as a finger takes its time; a marker that is touched shortly is chosen
    }
    act(actions << "mouseup"
                << "1");
}

void XServer::key(const QString& key) const
{
    act({"key", key});
}

void XServer::close(quint32 window) const
{
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(connection, "WM_PROTOCOLS");
    message.data.data32[0] = atom(connection, "WM_DELETE_WINDOW");
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(connection, 0, window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message)); // as the call wants any event
    xcb_flush(connection);
}

} // namespace testing_support
