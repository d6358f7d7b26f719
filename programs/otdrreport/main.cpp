#include "programs/otdrreport/commandline.h"
#include "programs/otdrreport/generate.h"

#include <QApplication>
#include <QLocale>

#include <cstdio>

namespace {

/// Nobody looks at the program while it draws: it wants no display, and the picture is the same on
/// every desktop.
void leaveTheDesktop()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    for (const char* variable :
         {"QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE", "QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS",
          "QT_AUTO_SCREEN_SCALE_FACTOR", "QT_ENABLE_HIGHDPI_SCALING", "QT_FONT_DPI"}) {
        qunsetenv(variable);
    }
    QLocale::setDefault(QLocale::c());
}

/// Standard error is for the one line of a failure, not for what Qt thinks of the machine.
void keepQuiet(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/)
{
}

int fail(const QString& problem)
{
    std::fprintf(stderr, "otdrreport: %s\n", qPrintable(problem.simplified()));
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    const auto request = [&] {
        const QCoreApplication console(argc, argv); // all that a text wants
        return otdrreport::parseCommandLine(argc, argv);
    }();
    switch (request.task) {
    case otdrreport::Task::ShowHelp:
        std::fputs(qPrintable(request.message), stdout);
        return 0;
    case otdrreport::Task::ShowVersion:
        std::puts("otdrreport " WAVEFORM_VERSION);
        return 0;
    case otdrreport::Task::Wrong:
        std::fprintf(stderr, "otdrreport: %s; see --help\n", qPrintable(request.message));
        return 2;
    case otdrreport::Task::Write:
        break;
    }
    leaveTheDesktop();
    qInstallMessageHandler(keepQuiet);
    const QApplication application(argc, argv);
    const QString problem = otdrreport::generate(request);
    return problem.isEmpty() ? 0 : fail(problem);
}
