// Writes what the detection tells of the made-up links, for detectionfigures_test.cpp to compare
// with:
//
//   make_detection_figures FILE
#include "tests/platform/otdr/core/detectionlinks.h"

#include <cstdio>
#include <fstream>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("make_detection_figures FILE\n", stderr);
        return 2;
    }
    std::ofstream file(argv[1]);
    for (const auto& link : testing_support::detectionLinks()) {
        for (const std::string& line : testing_support::figuresOf(link)) {
            file << line << '\n';
        }
    }
    file.close();
    return file ? 0 : 1;
}
