// A process that writes report after report keeps its size.

#include "programs/otdrreport/generate.h"
#include "tests/support/tracefiles.h"

#include <QFile>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using testing_support::realTraces;
using testing_support::SorSketch;
using testing_support::TraceFiles;

/// What the process has in memory, MB.
double resident_MB()
{
    QFile file("/proc/self/statm");
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray pages = file.readAll().split(' ').value(1);
    return pages.toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

/// A real trace where there is one.
QString traceIn(const TraceFiles& files)
{
    const QStringList real = realTraces();
    return real.isEmpty() ? files.write("a.sor", SorSketch::plain()) : real.first();
}

TEST(ManyReports, NeedNoMoreMemoryThanAFew)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer keeps what was freed";
#endif
    const TraceFiles files;
    otdrreport::Request request;
    request.task = otdrreport::Task::Write;
    request.trace = traceIn(files);
    request.html = files.path("out.html");
    const auto write = [&request](int times) {
        for (int i = 0; i < times; ++i) {
            ASSERT_EQ(otdrreport::generate(request), "");
        }
    };
    constexpr int kFirst = 20; // fonts, the template and the allocator's own come to rest
    constexpr int kReports = 200;
    constexpr double kMost_MB = 5.0;
    write(kFirst);
    const double before_MB = resident_MB();
    write(kReports);
    const double growth_MB = resident_MB() - before_MB;
    RecordProperty("growth_kB", static_cast<int>(growth_MB * 1000.0));
    EXPECT_LT(growth_MB, kMost_MB);
}

} // namespace
