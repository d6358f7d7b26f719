#include "programs/otdrinfo/commandline.h"

#include <QCommandLineParser>
#include <QStringList>

namespace otdrinfo {

namespace {

constexpr const char* kDescription =
    "Shows what OTDR trace files (.sor, versions 1 and 2) say, and writes them again.\n"
    "\n"
    "  otdrinfo FILE...             a readable summary and event table of each file\n"
    "  otdrinfo --json FILE...      one JSON object a line for each file\n"
    "  otdrinfo --csv FILE          distance_m,level_db of every sample\n"
    "  otdrinfo --write OUT FILE    writes FILE again as a version 2 file\n"
    "\n"
    "Values are as the file has them; one that it does not give is null in JSON and \"-\" in the "
    "summary.\n"
    "kind: s span start, r reflective, n non-reflective, p level rises, e end of the fibre or of "
    "the trace.\n"
    "refl. dB: * marks that of a receiver that was saturated; more was reflected, or as much.\n"
    "checksum_ok: true where the checksum matches; false where it does not; null where it cannot "
    "be judged:\n"
    "missing, stored as 0 (not computed), or of a maker whose recipe is not public.\n"
    "\n"
    "Exit code: 0 success, 1 a file could not be read or written, 2 wrong command line.";

/// Latin-1 takes the bytes of a name one to one, whatever they are encoded in.
std::string bytesOf(const QString& argument)
{
    return argument.toLatin1().toStdString();
}

Request wrong(const std::string& message)
{
    return {Form::Wrong, {}, {}, message};
}

Request requestFor(Form form, const QStringList& names, const QString& output)
{
    if (names.isEmpty()) {
        return wrong("no file named");
    }
    if ((form == Form::Csv || form == Form::Write) && names.size() != 1) {
        return wrong("--csv and --write take one file");
    }
    Request request;
    request.form = form;
    request.output = bytesOf(output);
    for (const QString& name : names) {
        request.files.push_back(bytesOf(name));
    }
    return request;
}

} // namespace

Request parseCommandLine(int argc, const char* const* argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLatin1(argv[i]);
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(kDescription);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption json("json", "One JSON object a line.");
    const QCommandLineOption csv("csv", "Every sample.");
    const QCommandLineOption write("write", "Write the file again as version 2.", "OUT");
    parser.addOptions({json, csv, write});
    parser.addPositionalArgument("FILE", "Trace files.", "FILE...");
    if (!parser.parse(arguments)) {
        return wrong(parser.errorText().toStdString());
    }
    if (parser.isSet(help) || parser.isSet("help-all")) {
        return {Form::ShowHelp, {}, {}, parser.helpText().toStdString()};
    }
    if (parser.isSet(version)) {
        return {Form::ShowVersion, {}, {}, {}};
    }
    const int forms =
        int(parser.isSet(json)) + int(parser.isSet(csv)) + parser.values(write).size();
    if (forms > 1) {
        return wrong("only one of --json, --csv and --write at a time");
    }
    Form form = Form::Summary;
    if (parser.isSet(json)) {
        form = Form::Json;
    } else if (parser.isSet(csv)) {
        form = Form::Csv;
    } else if (parser.isSet(write)) {
        form = Form::Write;
    }
    return requestFor(form, parser.positionalArguments(), parser.value(write));
}

} // namespace otdrinfo
