#pragma once

#include <QByteArray>
#include <QImage>
#include <QJsonObject>
#include <QJsonValue>
#include <QProcess>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace testing_support {

/// A page in a browser without a screen, led over the browser's debugging pipe.
class HeadlessBrowser
{
public:
    /// The browser's program; empty where none is installed.
    [[nodiscard]] static QString program();

    explicit HeadlessBrowser(const QSize& window);
    ~HeadlessBrowser();
    HeadlessBrowser(const HeadlessBrowser&) = delete;
    HeadlessBrowser& operator=(const HeadlessBrowser&) = delete;

    /// Loads a page to its end.
    void open(const QString& file);

    /// The value of an expression in the page; that of a promise is waited for.
    QJsonValue evaluate(const QString& expression);

    /// Where the first element of this selector lies on the page.
    QRect rectOf(const QString& selector);

    /// The page from its top, as large as the window.
    QImage screenshot();

    void click(const QPoint& place);
    void wheel(const QPoint& place, int delta);

    /// Whatever the page should not have given rise to: lines on the console, errors, what its
    /// policy refused, dialogs, requests of anything but the page itself.
    [[nodiscard]] QStringList problems() const { return found; }

private:
    /// Does a command and waits for its answer.
    QJsonObject call(const QString& method, const QJsonObject& parameters = {});
    void mouse(const QString& type, const QPoint& place, QJsonObject more);
    QJsonObject nextMessage();
    void note(const QJsonObject& event);

    QTemporaryDir profile;
    QProcess process;
    QByteArray received;
    QString session;
    QStringList found;
    int lastCommand = 0;
    bool isLoaded = false;
};

} // namespace testing_support
