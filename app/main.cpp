#include "app/demo.h"
#include "app/environment.h"
#include "app/filename.h"
#include "app/frame.h"
#include "app/framememory.h"
#include "app/handover.h"
#include "app/host.h"
#include "app/language.h"
#include "app/missingprograms.h"
#include "app/noticeprinter.h"
#include "app/openrequests.h"
#include "app/options.h"
#include "app/picture.h"
#include "app/secondinstance.h"
#include "app/shownpanels.h"
#include "app/stopping.h"
#include "platform/launcher/appearance.h"
#include "platform/launcher/focusreturn.h"
#include "platform/launcher/keysreturn.h"
#include "platform/launcher/pluginwindow.h"
#include "platform/launcher/zuconfig.h"

#include <QApplication>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>

#include <memory>
#include <optional>

namespace {

using stopping::fail;

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
    // Nothing here draws with OpenGL. To load its driver would take a third of the start and more
    // than half of the memory.
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION")) {
        qputenv("QT_XCB_GL_INTEGRATION", "none");
    }
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

int showWindow(Host& host, const Options& options, OpenRequests& requests)
{
    FrameMemory memory(host.frame());
    memory.show(options.size);
    QObject::connect(&requests, &OpenRequests::requested, host.frame(),
                     [&host](const QStringList& files) {
                         host.frame()->comeToFront();
                         host.tell(host.open(files));
                     });
    const QStringList problems = host.open(options.files);
    showPanels(*host.window(), options.panels);
    if (!problems.isEmpty()) {
        fail(problems.join("\nwaveform: "));
        host.tell(problems);
    }
    const QString missing = missingPrograms();
    if (!missing.isEmpty()) {
        host.frame()->tell(missing);
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
    for (const Options::Override& value : options.overrides) {
        ZuConfig::setForThisRun("zuotdr", value.section, value.key, value.value);
    }
    OpenRequests requests;
    if (!unattended(options)) {
        // Before the plugin is loaded, which takes its time: who comes meanwhile has to wait only.
        const QString deaf = requests.listen(handover::address(Environment::temporaryDir()));
        if (!deaf.isEmpty()) {
            fail("a second start will find no ear: " + deaf);
        }
    }
    Host host;
    const QString problem = host.load();
    if (!problem.isEmpty()) {
        return unattended(options) ? fail(problem) : stopping::failOnScreen(problem);
    }
    if (!options.demoDir.isEmpty()) {
        return runDemo(host, options);
    }
    return options.screenshot.isEmpty() ? showWindow(host, options, requests)
                                        : takeScreenshot(host, options);
}

/// What is settled before there is a window.
struct Beginning
{
    Options options;
    QString refused; ///< why there will be none
    std::optional<int> exitCode; ///< where all is said and done
};

Beginning begin(int argc, char** argv, Environment& environment)
{
    const QCoreApplication console(argc, argv); // a text is all that some command lines want
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << filename::fromRaw(argv[i]);
    }
    const auto parsed = parseOptions(arguments);
    if (const auto* text = std::get_if<OptionsText>(&parsed)) {
        QTextStream(text->exitCode == 0 ? stdout : stderr) << text->text;
        return {{}, {}, text->exitCode};
    }
    const Options& options = *std::get_if<Options>(&parsed);
    const Language language(options.language); // of why there will be no window
    Beginning result {options, environment.enter(), {}};
    if (environment.otherRuns() && !unattended(result.options)) {
        result.refused = secondinstance::handOver(result.options);
        if (result.refused.isEmpty()) {
            result.exitCode = 0;
        }
    } else if (result.refused.isEmpty() && !unattended(result.options) && !stopping::hasDisplay()) {
        result.refused =
            "there is no display to show the window on; --demo and --screenshot need none";
    }
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setApplicationName("waveform");
    QCoreApplication::setApplicationVersion(WAVEFORM_VERSION);
    Environment environment;
    const Beginning beginning = begin(argc, argv, environment);
    if (beginning.exitCode) {
        return *beginning.exitCode;
    }
    const Options& options = beginning.options;
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
    if (!beginning.refused.isEmpty() && (unattended(options) || !stopping::hasDisplay())) {
        return fail(beginning.refused);
    }
    QApplication application(argc, argv);
    const Language language(options.language); // before the plugin makes its window
    const Appearance appearance;
    const KeysReturn keys;
    const FocusReturn focus;
    return beginning.refused.isEmpty() ? run(options) : stopping::failOnScreen(beginning.refused);
}
