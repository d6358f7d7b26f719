#include "tests/programs/otdrreport/headlessbrowser.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>
#include <QUrl>

#include <gtest/gtest.h>
#include <unistd.h>

namespace testing_support {

namespace {

constexpr int kAnswer_ms = 30'000;

QString asText(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace

QString HeadlessBrowser::program()
{
    return QStandardPaths::findExecutable("chromium");
}

HeadlessBrowser::HeadlessBrowser(const QSize& window)
{
    QStringList arguments {"--headless",
                           "--remote-debugging-pipe",
                           "--user-data-dir=" + profile.path(),
                           "--hide-scrollbars",
                           "--disable-gpu",
                           "--disable-dev-shm-usage",
                           "--disable-background-networking",
                           "--disable-component-update",
                           "--no-first-run"};
    if (::geteuid() == 0) {
        arguments << "--no-sandbox"; // which it cannot build for the superuser
    }
    // Commands are read from descriptor 3, answers written to 4.
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start("/bin/sh",
                  QStringList {"-c", "exec \"$@\" 3<&0 4>&1 1>&2", "sh", program()} + arguments);
    const QJsonObject target = call("Target.createTarget", {{"url", "about:blank"}});
    session = call("Target.attachToTarget",
                   {{"targetId", target["targetId"]}, {"flatten", true}})["sessionId"]
                  .toString();
    for (const char* domain : {"Page", "Runtime", "Log", "Network"}) {
        call(QString(domain) + ".enable");
    }
    // The size given to the program is that of a window with a frame.
    call("Emulation.setDeviceMetricsOverride",
         {{"width", window.width()},
          {"height", window.height()},
          {"deviceScaleFactor", 1},
          {"mobile", false}});
}

HeadlessBrowser::~HeadlessBrowser()
{
    session.clear();
    call("Browser.close");
    process.closeWriteChannel();
    if (!process.waitForFinished(kAnswer_ms)) {
        process.kill();
        process.waitForFinished();
    }
}

void HeadlessBrowser::open(const QString& file)
{
    isLoaded = false;
    const QJsonObject answer =
        call("Page.navigate", {{"url", QUrl::fromLocalFile(file).toString()}});
    ASSERT_FALSE(answer.contains("errorText")) << asText(answer).toStdString();
    while (!isLoaded && !testing::Test::HasFatalFailure()) {
        note(nextMessage());
    }
}

QJsonValue HeadlessBrowser::evaluate(const QString& expression)
{
    const QJsonObject answer =
        call("Runtime.evaluate",
             {{"expression", expression}, {"returnByValue", true}, {"awaitPromise", true}});
    EXPECT_FALSE(answer.contains("exceptionDetails")) << asText(answer).toStdString();
    return answer["result"].toObject()["value"];
}

QRect HeadlessBrowser::rectOf(const QString& selector)
{
    const QJsonArray edges =
        evaluate(
            QString("(() => { const box = document.querySelector('%1').getBoundingClientRect();"
                    "return [box.left, box.top, box.width, box.height].map(Math.round); })()")
                .arg(selector))
            .toArray();
    return {edges[0].toInt(), edges[1].toInt(), edges[2].toInt(), edges[3].toInt()};
}

QImage HeadlessBrowser::screenshot()
{
    const QByteArray png = QByteArray::fromBase64(
        call("Page.captureScreenshot", {{"format", "png"}})["data"].toString().toLatin1());
    return QImage::fromData(png, "PNG");
}

void HeadlessBrowser::click(const QPoint& place)
{
    for (const char* type : {"mousePressed", "mouseReleased"}) {
        mouse(type, place, {{"button", "left"}, {"clickCount", 1}});
    }
}

void HeadlessBrowser::wheel(const QPoint& place, int delta)
{
    mouse("mouseWheel", place, {{"deltaX", 0}, {"deltaY", delta}});
}

void HeadlessBrowser::mouse(const QString& type, const QPoint& place, QJsonObject more)
{
    more.insert("type", type);
    more.insert("x", place.x());
    more.insert("y", place.y());
    call("Input.dispatchMouseEvent", more);
}

QJsonObject HeadlessBrowser::call(const QString& method, const QJsonObject& parameters)
{
    QJsonObject command {{"id", ++lastCommand}, {"method", method}, {"params", parameters}};
    if (!session.isEmpty()) {
        command.insert("sessionId", session);
    }
    process.write(QJsonDocument(command).toJson(QJsonDocument::Compact) + '\0');
    for (;;) {
        const QJsonObject message = nextMessage();
        if (message.isEmpty()) {
            return {};
        }
        if (message["id"].toInt() == lastCommand) {
            EXPECT_FALSE(message.contains("error")) << asText(message).toStdString();
            return message["result"].toObject();
        }
        note(message);
    }
}

/// The next answer or event; empty, and a failure of the test, where none comes.
QJsonObject HeadlessBrowser::nextMessage()
{
    while (!received.contains('\0')) {
        if (!process.waitForReadyRead(kAnswer_ms)) {
            [this] {
                FAIL() << "the browser is silent: " << process.errorString().toStdString();
            }();
            return {};
        }
        received += process.readAllStandardOutput();
    }
    const int end = received.indexOf('\0');
    QJsonObject message = QJsonDocument::fromJson(received.left(end)).object();
    received.remove(0, end + 1);
    return message;
}

void HeadlessBrowser::note(const QJsonObject& event)
{
    const QString method = event["method"].toString();
    const QJsonObject parameters = event["params"].toObject();
    if (method == "Page.loadEventFired") {
        isLoaded = true;
    } else if (method == "Page.javascriptDialogOpening" || method == "Runtime.consoleAPICalled"
               || method == "Runtime.exceptionThrown" || method == "Log.entryAdded") {
        found << method + ": " + asText(parameters);
    } else if (method == "Network.requestWillBeSent") {
        const QString url = parameters["request"].toObject()["url"].toString();
        if (!url.startsWith("data:") && parameters["type"].toString() != "Document") {
            found << "request: " + url;
        }
    }
}

} // namespace testing_support
