// Stands for the report generator where the report does not matter and its writing does: a picture,
// then a page, each whole or not at all.

#include "platform/otdr/core/atomicfile.h"

#include <cstdio>
#include <string>

namespace {

bool write(const std::string& path, const std::string& text)
{
    const auto written = otdr::writeFileAtomically(path, gsl::as_bytes(gsl::make_span(text)));
    if (!written) {
        std::fprintf(stderr, "plainreport: %s\n", written.error().message.c_str());
    }
    return written.ok();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        return 2; // -i SOR -o HTML
    }
    const std::string page = argv[4];
    const std::string picture = page.substr(0, page.rfind('.')) + ".png";
    return write(picture, "new picture\n") && write(page, "new report\n") ? 0 : 1;
}
