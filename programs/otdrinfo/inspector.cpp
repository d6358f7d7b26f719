#include "programs/otdrinfo/inspector.h"

#include "platform/otdr/core/atomicfile.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorwriter.h"
#include "programs/otdrinfo/csv.h"
#include "programs/otdrinfo/json.h"
#include "programs/otdrinfo/summary.h"

#include <QByteArray>

#include <cstdio>

namespace otdrinfo {

namespace {

namespace sor = otdr::sor;

bool fail(const std::string& message)
{
    std::fprintf(stderr, "otdrinfo: %s\n", message.c_str());
    return false;
}

bool print(const QByteArray& text)
{
    const auto size = static_cast<std::size_t>(text.size());
    if (std::fwrite(text.constData(), 1, size, stdout) != size || std::fflush(stdout) != 0) {
        return fail("cannot write to standard output");
    }
    return true;
}

bool write(const std::string& path, const sor::File& file)
{
    std::vector<std::string> notes;
    const auto bytes = otdr::encodeSor(file, &notes);
    if (!bytes) {
        return fail(path + ": " + bytes.error().message);
    }
    const auto written = otdr::writeFileAtomically(path, *bytes);
    if (!written) {
        return fail(written.error().message);
    }
    for (const std::string& note : notes) {
        std::fprintf(stderr, "otdrinfo: %s: %s\n", path.c_str(), note.c_str());
    }
    return true;
}

bool inspectFile(const Request& request, const std::string& path)
{
    const auto file = otdr::readSorFile(path);
    if (!file) {
        return fail(file.error().message);
    }
    switch (request.form) {
    case Form::Json:
        return print(jsonOf(path, *file) + '\n');
    case Form::Csv:
        return print(csvOf(*file));
    case Form::Write:
        return write(request.output, *file);
    default:
        return print(summaryOf(path, *file).toUtf8());
    }
}

} // namespace

int inspect(const Request& request)
{
    bool isGood = true;
    for (const std::string& path : request.files) {
        isGood = inspectFile(request, path) && isGood;
    }
    return isGood ? 0 : 1;
}

} // namespace otdrinfo
