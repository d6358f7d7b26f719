#include "app/demo.h"
#include "app/environment.h"
#include "app/frame.h"
#include "app/host.h"
#include "app/noticeprinter.h"
#include "app/options.h"
#include "app/picture.h"
#include "app/shownpanels.h"
#include "platform/launcher/palettefactory.h"
#include "platform/launcher/pluginwindow.h"
#include "platform/launcher/zuconfig.h"

#include <QApplication>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>

#include <memory>

namespace {

bool unattended(const Options& options)
{
    return !options.demoDir.isEmpty() || !options.screenshot.isEmpty();
}

/// Nobody looks at a demo or a screenshot: they need no display, and get the size that they ask
/// for.
void chooseScreen(const Options& options)
{
    if (unattended(options) && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

int fail(const QString& problem)
{
    QTextStream(stderr) << "waveform: " << problem << "\n";
    return 1;
}

void showFrame(Host& host, const Options& options)
{
    host.frame()->resize(options.size);
    host.frame()->show();
}

/// What a run with nobody at the screen has to say: warnings, but not what helps to follow the
/// program, not that the offscreen platform has no use for what every window asks of it, and not
/// the one connection that is not to take.
void printWarnings(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    const bool known = text.startsWith("This plugin does not support")
        || text.startsWith("QObject::connect: No such slot Waveform::Window::rescalePlot(");
    if (type != QtDebugMsg && !known) {
        QTextStream(stderr) << qFormatLogMessage(type, context, text) << "\n";
    }
}

int takeScreenshot(Host& host, const Options& options)
{
    showFrame(host, options);
    const NoticePrinter notices(host.keeper());
    const QStringList problems = host.open(options.files);
    showPanels(*host.window(), options.panels);
    if (!problems.isEmpty()) {
        return fail(problems.join("\nwaveform: "));
    }
    return savePicture(*host.frame(), options.screenshot)
        ? 0
        : fail(QString("cannot write %1").arg(options.screenshot));
}

int showWindow(Host& host, const Options& options)
{
    showFrame(host, options);
    const QStringList problems = host.open(options.files);
    showPanels(*host.window(), options.panels);
    if (!problems.isEmpty()) {
        fail(problems.join("\nwaveform: "));
        host.frame()->tell(problems.join("\n"));
    }
    return QApplication::exec();
}

int runDemo(Host& host, const Options& options)
{
    showFrame(host, options);
    showPanels(*host.window(), options.panels);
    Demo demo(host, QFileInfo(options.demoDir).absoluteFilePath());
    demo.start();
    return QApplication::exec();
}

int run(const Options& options)
{
    Environment environment;
    const QString refused = environment.enter();
    if (!refused.isEmpty()) {
        return fail(refused);
    }
    for (const Options::Override& value : options.overrides) {
        ZuConfig::setForThisRun("zuotdr", value.section, value.key, value.value);
    }
    Host host;
    const QString problem = host.load();
    if (!problem.isEmpty()) {
        return fail(problem);
    }
    if (!options.demoDir.isEmpty()) {
        return runDemo(host, options);
    }
    return options.screenshot.isEmpty() ? showWindow(host, options) : takeScreenshot(host, options);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setApplicationName("waveform");
    QCoreApplication::setApplicationVersion(WAVEFORM_VERSION);
    const auto parsed = [&] {
        const QCoreApplication console(argc, argv); // a text is all that some command lines want
        return parseOptions(QCoreApplication::arguments());
    }();
    if (const auto* text = std::get_if<OptionsText>(&parsed)) {
        QTextStream(text->exitCode == 0 ? stdout : stderr) << text->text;
        return text->exitCode;
    }
    const Options options = std::get<Options>(parsed);
    chooseScreen(options);
    // Neither reads what the user has configured nor leaves anything in the user's directories.
    std::unique_ptr<QTemporaryDir> home;
    if (unattended(options)) {
        qInstallMessageHandler(printWarnings);
        home = std::make_unique<QTemporaryDir>();
        qputenv("HOME", QFile::encodeName(home->path()));
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(home->path()));
        qunsetenv("XDG_CONFIG_HOME");
    }
    QApplication application(argc, argv);
    QApplication::setPalette(PaletteFactory::getPalette("Application"));
    return run(options);
}
