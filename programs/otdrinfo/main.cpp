#include "programs/otdrinfo/commandline.h"
#include "programs/otdrinfo/inspector.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const otdrinfo::Request request = otdrinfo::parseCommandLine(argc, argv);
    switch (request.form) {
    case otdrinfo::Form::ShowHelp:
        std::fputs(request.message.c_str(), stdout);
        return 0;
    case otdrinfo::Form::ShowVersion:
        std::puts("otdrinfo " WAVEFORM_VERSION);
        return 0;
    case otdrinfo::Form::Wrong:
        std::fprintf(stderr, "otdrinfo: %s; see --help\n", request.message.c_str());
        return 2;
    default:
        return otdrinfo::inspect(request);
    }
}
