#include "app/secondinstance.h"

#include "app/environment.h"
#include "app/filename.h"
#include "app/handover.h"
#include "app/options.h"

#include <QCoreApplication>
#include <QTextStream>

namespace secondinstance {

namespace {

/// Texts of this file.
struct Words
{
    Q_DECLARE_TR_FUNCTIONS(SecondInstance)
};

} // namespace

QString handOver(const Options& options)
{
    constexpr std::chrono::seconds kPatience {5};
    QStringList files;
    for (const QString& file : options.files) {
        files << filename::absolute(file); // the other one started elsewhere
    }
    if (!handover::send(handover::address(Environment::temporaryDir()), files, kPatience)) {
        return Words::tr(
                   "Waveform is running already, but does not answer; close it and start again "
                   "(it holds %1)")
            .arg(Environment::temporaryDir());
    }
    QTextStream(stdout) << (files.isEmpty()
                                ? "Waveform is running already: see its window.\n"
                                : "Given to the window of Waveform that runs already.\n");
    if (!options.overrides.empty()) {
        QTextStream(stderr) << "waveform: the settings for this run are not taken: the window runs "
                               "with its own\n";
    }
    return {};
}

} // namespace secondinstance
