#include "programs/wfgather/commandline.h"

#include <QCommandLineParser>
#include <QStringList>

namespace gather {

namespace {

constexpr const char* kDescription =
    "Measures a trace of a simulated fibre, or serves a trace file as if it were measured.\n"
    "\n"
    "Every refresh of the trace goes into SNAPSHOT; what happens is told on standard output, one\n"
    "message a line: G gather, C configuration, M measurement, A analysis, with { for its start,\n"
    "* for news (of the analysis: an event) and } for its end. SIGTERM ends the measurement with\n"
    "what has been measured; that is analysed too.\n"
    "\n"
    "SETTINGS is an INI file. Section MeasParams: duration (s, 0 = realtime), pulse (ns),\n"
    "distance (m), wavelength (nm, or all), ior1310, ior1550, helix (percent), rbs (dB at 1 ns).\n"
    "Section Simulation: fibre (path of a fibre file), replay (path of a .sor file), seed,\n"
    "timeScale (seconds of wall time for one of measuring, 0 = as fast as possible).\n"
    "Every key may be missing.\n"
    "\n"
    "Exit code: 0 success, 1 bad input, nowhere to write or nobody reading, 2 wrong command line.";

/// Latin-1 takes the bytes of a name one to one, whatever they are encoded in.
std::string bytesOf(const QString& argument)
{
    return argument.toLatin1().toStdString();
}

CommandLine answer(Form form, const QString& message = {})
{
    return {form, {}, {}, message.toStdString()};
}

} // namespace

CommandLine parseCommandLine(int argc, const char* const* argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLatin1(argv[i]);
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(kDescription);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption snapshot("o", "File for the trace.", "SNAPSHOT");
    const QCommandLineOption settings("c", "What to measure.", "SETTINGS");
    parser.addOptions({snapshot, settings});
    if (!parser.parse(arguments)) {
        return answer(Form::Wrong, parser.errorText());
    }
    if (parser.isSet(help) || parser.isSet("help-all")) {
        return answer(Form::ShowHelp, parser.helpText());
    }
    if (parser.isSet(version)) {
        return answer(Form::ShowVersion);
    }
    if (!parser.positionalArguments().isEmpty()) {
        return answer(Form::Wrong, "unexpected " + parser.positionalArguments().constFirst());
    }
    if (parser.value(snapshot).isEmpty() || parser.value(settings).isEmpty()) {
        return answer(Form::Wrong, "both -o and -c are needed");
    }
    return {Form::Run, bytesOf(parser.value(snapshot)), bytesOf(parser.value(settings)), {}};
}

} // namespace gather
