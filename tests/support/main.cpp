#include "tests/support/warningguard.h"

#include <QApplication>
#include <QStandardPaths>

#include <gmock/gmock.h>

// The offscreen platform plugin keeps a few hundred bytes for ever; without this, test discovery
// under AddressSanitizer fails on them. The programs that tests start have it from cmake/lsan.supp.
extern "C" const char* __lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier)
{
    return "leak:libqoffscreen\nleak:libfontconfig\n";
}

extern "C" const char* __lsan_default_options() // NOLINT(bugprone-reserved-identifier)
{
    return "print_suppressions=0";
}

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("QT_SCALE_FACTOR");
    // Whoever runs the tests, wherever: they read English words and numbers with a point.
    qputenv("LC_ALL", "C.UTF-8");
    qunsetenv("LANGUAGE");
    testing::InitGoogleMock(&argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    testing_support::WarningGuard::install();
    testing::UnitTest::GetInstance()->listeners().Append(new testing_support::WarningGuard);
    return RUN_ALL_TESTS();
}
