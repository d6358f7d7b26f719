// What the detection tells of made-up links, to the last digit that is worth one. Whether it is
// near the truth is for other tests to say; this one says that nothing has changed that nobody
// wanted to change. A wanted change is looked at and written down with the program
// make_detection_figures.
#include "tests/platform/otdr/core/detectionlinks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace testing_support {

/// How a link is called where a test of it fails.
void PrintTo(const DetectionLink& link, std::ostream* out)
{
    *out << link.name;
}

} // namespace testing_support

namespace {

using testing_support::DetectionLink;
using testing_support::detectionLinks;
using testing_support::figuresOf;

/// Compilers may round the last bits otherwise; a different figure is further off.
bool isSame(const std::string& found, const std::string& expected)
{
    if (found == expected) {
        return true;
    }
    char* end = nullptr;
    const double a = std::strtod(found.c_str(), &end);
    const bool isNumber = !found.empty() && *end == '\0';
    const double b = std::strtod(expected.c_str(), &end);
    return isNumber && !expected.empty() && *end == '\0'
        && std::abs(a - b) <= 1e-5 * std::max(1.0, std::abs(b));
}

bool isSameLine(const std::string& found, const std::string& expected)
{
    std::istringstream foundWords(found);
    std::istringstream expectedWords(expected);
    std::string a;
    std::string b;
    while (expectedWords >> b) {
        if (!(foundWords >> a) || !isSame(a, b)) {
            return false;
        }
    }
    return !(foundWords >> a);
}

std::vector<std::string> writtenDown(const std::string& link)
{
    std::ifstream file(WAVEFORM_TEST_DATA "/detection/figures.txt");
    EXPECT_TRUE(file.is_open());
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind(link + ": ", 0) == 0) {
            lines.push_back(line);
        }
    }
    return lines;
}

class DetectionFigures : public testing::TestWithParam<DetectionLink>
{
};

TEST_P(DetectionFigures, AreThoseWrittenDown)
{
    const std::vector<std::string> found = figuresOf(GetParam());
    const std::vector<std::string> expected = writtenDown(GetParam().name);
    EXPECT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < std::min(found.size(), expected.size()); ++i) {
        EXPECT_TRUE(isSameLine(found[i], expected[i]))
            << "found    " << found[i] << "\nexpected " << expected[i]
            << "\n(make_detection_figures writes down a change that is wanted)";
    }
}

INSTANTIATE_TEST_SUITE_P(Links, DetectionFigures, testing::ValuesIn(detectionLinks()),
                         [](const auto& link) {
                             std::string name;
                             for (const char letter : link.param.name) {
                                 name += std::isalpha(letter) != 0 ? std::string(1, letter) : "";
                             }
                             return name;
                         });

} // namespace
