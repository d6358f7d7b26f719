#include "programs/otdrreport/commandline.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace otdrreport {

namespace {

constexpr const char* kDescription =
    "Writes the report of an OTDR trace file (.sor): one HTML page that stands alone and, beside "
    "it,\n"
    "the picture of the trace under the same name as .png.\n"
    "\n"
    "  otdrreport -i SOR -o HTML [-t TEMPLATE]\n"
    "\n"
    "Events and figures are those of the file; what it does not give is shown as a dash.\n"
    "Exit code: 0 success, 1 a file could not be read or written, 2 wrong command line.";

Request wrong(const QString& message)
{
    Request request;
    request.message = message;
    return request;
}

Request answer(Task task, const QString& message = {})
{
    Request request;
    request.task = task;
    request.message = message;
    return request;
}

/// Whether two names mean one file, links followed where there is one.
bool isSameFile(const QString& a, const QString& b)
{
    const QFileInfo first(a);
    const QFileInfo second(b);
    return !a.isEmpty() && !b.isEmpty()
        && (first.absoluteFilePath() == second.absoluteFilePath()
            || (first.exists() && second.exists()
                && first.canonicalFilePath() == second.canonicalFilePath()));
}

/// What is wrong with the files of a request; empty where nothing is.
QString collision(const Request& request)
{
    if (isSameFile(request.html, request.picture())) {
        return "the report cannot be named .png, as its picture is";
    }
    for (const QString& written : {request.html, request.picture()}) {
        for (const QString& read : {request.trace, request.templateFile}) {
            if (isSameFile(written, read)) {
                return QString("%1 would be replaced by its own report").arg(read);
            }
        }
    }
    return {};
}

} // namespace

QString Request::picture() const
{
    const QFileInfo report(html);
    return QDir(report.path()).filePath(report.completeBaseName() + ".png");
}

Request parseCommandLine(int argc, const char* const* argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QFile::decodeName(argv[i]);
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(kDescription);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption input("i", "The trace file.", "SOR");
    const QCommandLineOption output("o", "The report to write.", "HTML");
    const QCommandLineOption templ("t", "The template, in place of the built-in one.", "TEMPLATE");
    parser.addOptions({input, output, templ});
    if (!parser.parse(arguments)) {
        return wrong(parser.errorText());
    }
    if (parser.isSet(help) || parser.isSet("help-all")) {
        return answer(Task::ShowHelp, parser.helpText());
    }
    if (parser.isSet(version)) {
        return answer(Task::ShowVersion);
    }
    for (const QCommandLineOption& option : {input, output, templ}) {
        if (parser.values(option).size() > 1) {
            return wrong(QString("more than one -%1").arg(option.names().first()));
        }
    }
    if (!parser.positionalArguments().isEmpty()) {
        return wrong("nothing is wanted beside the options");
    }
    Request request;
    request.task = Task::Write;
    request.trace = parser.value(input);
    request.html = parser.value(output);
    request.templateFile = parser.value(templ);
    if (request.trace.isEmpty() || request.html.isEmpty()) {
        return wrong("both -i and -o are wanted");
    }
    const QString problem = collision(request);
    return problem.isEmpty() ? request : wrong(problem);
}

} // namespace otdrreport
