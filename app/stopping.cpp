#include "app/stopping.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QMessageBox>
#include <QTextStream>

namespace stopping {

namespace {

/// Texts of this file.
struct Words
{
    Q_DECLARE_TR_FUNCTIONS(Stopping)
};

} // namespace

bool hasDisplay()
{
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
        if (!qEnvironmentVariableIsEmpty(name)) {
            return true;
        }
    }
    return false;
}

int fail(const QString& problem)
{
    QTextStream(stderr) << "waveform: " << problem << "\n";
    return 1;
}

int failOnScreen(const QString& problem)
{
    const int code = fail(problem);
    const QString platform = QGuiApplication::platformName();
    if (platform != "offscreen" && platform != "minimal") {
        QMessageBox box(QMessageBox::Critical, Words::tr("Waveform"), problem);
        box.setTextFormat(Qt::PlainText); // it holds names of files
        box.addButton(Words::tr("Close"), QMessageBox::RejectRole);
        box.exec();
    }
    return code;
}

} // namespace stopping
