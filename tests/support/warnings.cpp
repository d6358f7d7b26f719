#include "tests/support/warnings.h"

#include "tests/support/warningguard.h"

#include <QMutex>
#include <QMutexLocker>
#include <QStringList>

namespace testing_support {

namespace {

QMutex mutex;
QStringList expected;
QStringList unexpected;
QStringList all;

void collect(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    const QMutexLocker lock(&mutex);
    // The offscreen platform has no use for size hints and stacking; it says so of every window.
    if (text.startsWith("This plugin does not support")) {
        return;
    }
    all << text;
    if (type == QtDebugMsg || type == QtInfoMsg) {
        return;
    }
    for (int i = 0; i < expected.size(); ++i) {
        if (text.contains(expected.at(i))) {
            expected.removeAt(i);
            return;
        }
    }
    unexpected << text;
}

} // namespace

void expectWarning(const QString& part)
{
    const QMutexLocker lock(&mutex);
    expected << part;
}

QString messages()
{
    const QMutexLocker lock(&mutex);
    return all.join('\n');
}

bool logged(const QString& part)
{
    return messages().contains(part);
}

void WarningGuard::install()
{
    qInstallMessageHandler(collect);
}

void WarningGuard::OnTestStart(const testing::TestInfo& /*info*/)
{
    const QMutexLocker lock(&mutex);
    expected.clear();
    unexpected.clear();
    all.clear();
}

void WarningGuard::OnTestEnd(const testing::TestInfo& /*info*/)
{
    const QMutexLocker lock(&mutex);
    for (const QString& text : qAsConst(unexpected)) {
        ADD_FAILURE() << "a warning nobody announced: " << qPrintable(text);
    }
    for (const QString& text : qAsConst(expected)) {
        ADD_FAILURE() << "an announced warning did not come: " << qPrintable(text);
    }
}

} // namespace testing_support
