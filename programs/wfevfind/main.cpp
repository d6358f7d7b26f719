#include "programs/wfevfind/commandline.h"
#include "programs/wfevfind/findings.h"
#include "programs/wfevfind/json.h"
#include "programs/wfevfind/lines.h"

#include <QCoreApplication>
#include <QTextCodec>

#include <algorithm>
#include <cstdio>
#include <exception>

namespace {

/// ISO 8859-1 as the registry of character sets numbers it.
constexpr int kLatin1 = 4;

int fail(const std::string& message)
{
    std::fprintf(stderr, "wfevfind: %s\n", message.c_str());
    return 1;
}

int print(const QByteArray& text)
{
    const auto size = static_cast<std::size_t>(text.size());
    if (std::fwrite(text.constData(), 1, size, stdout) != size || std::fflush(stdout) != 0) {
        return fail("cannot write to standard output");
    }
    return 0;
}

int find(const std::string& file, evfind::Form form)
{
    try {
        const otdr::Result<evfind::Findings> found = evfind::findEvents(file);
        if (!found) {
            return fail(found.error().message);
        }
        return print(form == evfind::Form::Json ? evfind::jsonOf(*found) + '\n'
                                                : evfind::linesOf(*found));
    } catch (const std::exception& problem) { // memory that a trace does not get
        return fail(file + ": " + problem.what());
    }
}

/// A file that fails is told, and the next one is searched, as long as somebody takes the answers.
int findAll(const evfind::Request& request)
{
    int code = 0;
    for (const std::string& file : request.files) {
        code = std::max(code, find(file, request.form));
        if (std::ferror(stdout) != 0) {
            break;
        }
    }
    return code;
}

int answer(const evfind::Request& request)
{
    switch (request.form) {
    case evfind::Form::ShowHelp:
        return print(QByteArray::fromStdString(request.message));
    case evfind::Form::ShowVersion:
        return print("wfevfind " WAVEFORM_VERSION "\n");
    case evfind::Form::Wrong:
        std::fprintf(stderr, "wfevfind: %s; see --help\n", request.message.c_str());
        return 2;
    default:
        return findAll(request);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    // File names are bytes: in no locale may one of them be lost between here and the disk.
    QTextCodec::setCodecForLocale(QTextCodec::codecForMib(kLatin1));
    return answer(evfind::parseCommandLine(argc, argv));
}
