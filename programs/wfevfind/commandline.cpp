#include "programs/wfevfind/commandline.h"

#include "platform/otdr/core/constants.h"

#include <QCommandLineParser>
#include <QStringList>

namespace evfind {

namespace {

constexpr const char* kDescription =
    "Finds the events of an OTDR trace: a trace file (.sor, versions 1 and 2) or a snapshot of "
    "the acquisition.\n"
    "\n"
    "  wfevfind -i FILE           a line for each event, KIND = SAMPLE, in order of distance\n"
    "  wfevfind -i FILE --json    one JSON object, with losses, reflectances and distances\n"
    "  wfevfind --json FILE...    one JSON object a line for each file\n"
    "\n"
    "KIND: r reflective, n non-reflective, p level rises, e end of the fibre; in JSON also s, the "
    "start\n"
    "of the span, which the lines leave to their reader.\n"
    "SAMPLE: index in the record, from 0; where the trace begins to change, rounded.\n"
    "Echoes are left out, and so is an end that the record does not reach. Events stored in a file "
    "are\n"
    "not looked at.\n"
    "\n"
    "The object: file, samples, spacing_m, noise_floor_db (level of the RMS noise), fibre_end_m,\n"
    "span_loss_db, orl_db (return loss of the span), events: kind, sample, distance_m, loss_db,\n"
    "reflectance_db, attenuation_before_db_per_km. A value that is not known is null.\n"
    "\n"
    "A snapshot tells neither group index nor backscatter coefficient: distances are those of "
    "index %1,\n"
    "reflectances those of the usual fibre of its wavelength. The samples do not depend on them.\n"
    "\n"
    "Exit code: 0 success, 1 a file could not be read or cannot be searched, 2 wrong command "
    "line.";

/// Latin-1 takes the bytes of a name one to one, whatever they are encoded in.
std::string bytesOf(const QString& argument)
{
    return argument.toLatin1().toStdString();
}

Request answer(Form form, const QString& message = {})
{
    return {form, {}, message.toStdString()};
}

} // namespace

Request parseCommandLine(int argc, const char* const* argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLatin1(argv[i]);
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QString(kDescription).arg(otdr::kDefaultGroupIndex, 0, 'f', 4));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption input("i", "The trace.", "FILE");
    const QCommandLineOption json("json", "JSON instead of lines; takes any number of files.");
    parser.addOptions({input, json});
    parser.addPositionalArgument("FILE", "Traces, with --json.", "[FILE...]");
    if (!parser.parse(arguments)) {
        return answer(Form::Wrong, parser.errorText());
    }
    if (parser.isSet(help) || parser.isSet("help-all")) {
        return answer(Form::ShowHelp, parser.helpText());
    }
    if (parser.isSet(version)) {
        return answer(Form::ShowVersion);
    }
    const bool takesMany = parser.isSet(json);
    const QStringList more = parser.positionalArguments();
    const QStringList names = parser.values(input) + more;
    if (!takesMany && !more.isEmpty()) {
        return answer(Form::Wrong, "unexpected " + more.constFirst());
    }
    if (names.isEmpty() || names.contains(QString()) || parser.values(input).size() > 1) {
        return answer(Form::Wrong, "one file is needed: -i FILE");
    }
    Request request;
    request.form = takesMany ? Form::Json : Form::Lines;
    for (const QString& name : names) {
        request.files.push_back(bytesOf(name));
    }
    return request;
}

} // namespace evfind
