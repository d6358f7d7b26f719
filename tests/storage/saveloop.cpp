// Saves two traces in turn under one name until it is killed.

#include "storage/savethread.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("usage: saveloop FIRST SECOND BASE\n", stderr);
        return 2;
    }
    const Reflectogram traces[] = {Reflectogram(arguments.at(1)), Reflectogram(arguments.at(2))};
    const QString& base = arguments.at(3);
    for (unsigned turn = 0;; ++turn) {
        Waveform::SaveThread thread;
        thread.refl = traces[turn & 1U];
        thread.sor = base + ".sor";
        thread.html = base + ".html";
        thread.start();
        thread.wait();
        if (thread.result != 0) {
            return 1;
        }
        std::puts("saved");
        std::fflush(stdout);
    }
}
