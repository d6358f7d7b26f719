#include "programs/otdrreport/commandline.h"
#include "tests/support/tracefiles.h"

#include <QFile>

#include <gmock/gmock.h>

#include <vector>

namespace {

using otdrreport::parseCommandLine;
using otdrreport::Request;
using otdrreport::Task;
using testing_support::Bytes;
using testing_support::TraceFiles;

Request parse(const std::vector<const char*>& words)
{
    std::vector<const char*> all {"otdrreport"};
    all.insert(all.end(), words.begin(), words.end());
    return parseCommandLine(static_cast<int>(all.size()), all.data());
}

TEST(ReportCommandLine, TakesTraceReportAndTemplate)
{
    const Request plain = parse({"-i", "a.sor", "-o", "b.html"});
    EXPECT_EQ(plain.task, Task::Write) << qPrintable(plain.message);
    EXPECT_EQ(plain.trace, "a.sor");
    EXPECT_EQ(plain.html, "b.html");
    EXPECT_EQ(plain.templateFile, "");
    EXPECT_EQ(parse({"-i", "a.sor", "-o", "b.html", "-t", "c.html"}).templateFile, "c.html");
}

TEST(ReportCommandLine, PictureStandsBesideTheReportUnderItsName)
{
    EXPECT_EQ(parse({"-i", "a.sor", "-o", "/x/y/north.html"}).picture(), "/x/y/north.png");
    EXPECT_EQ(parse({"-i", "a.sor", "-o", "north.2.html"}).picture(), "./north.2.png");
}

TEST(ReportCommandLine, HelpAndVersionNeedNothingElse)
{
    const Request help = parse({"--help"});
    EXPECT_EQ(help.task, Task::ShowHelp);
    EXPECT_TRUE(help.message.contains("-i SOR -o HTML [-t TEMPLATE]"));
    EXPECT_EQ(parse({"--version"}).task, Task::ShowVersion);
}

TEST(ReportCommandLine, WhatIsMissingOrTooMuchIsWrong)
{
    const std::vector<std::vector<const char*>> wrong {
        {},
        {"-i", "a.sor"},
        {"-o", "b.html"},
        {"-i", "", "-o", "b.html"},
        {"-i", "a.sor", "-o", "b.html", "more"},
        {"-i", "a.sor", "-i", "b.sor", "-o", "b.html"},
        {"-i", "a.sor", "-o"},
        {"-i", "a.sor", "-o", "b.html", "--nonsense"},
    };
    for (const auto& words : wrong) {
        const Request request = parse(words);
        EXPECT_EQ(request.task, Task::Wrong);
        EXPECT_FALSE(request.message.isEmpty());
    }
}

TEST(ReportCommandLine, ReportNeverReplacesWhatItIsMadeFrom)
{
    EXPECT_EQ(parse({"-i", "a.sor", "-o", "a.sor"}).task, Task::Wrong);
    EXPECT_EQ(parse({"-i", "a.sor", "-o", "./x/../a.sor"}).task, Task::Wrong);
    EXPECT_EQ(parse({"-i", "a.png", "-o", "a.html"}).task, Task::Wrong);
    EXPECT_EQ(parse({"-i", "a.sor", "-o", "a.png"}).task, Task::Wrong);
    EXPECT_EQ(parse({"-i", "a.sor", "-o", "t.html", "-t", "t.html"}).task, Task::Wrong);
}

TEST(ReportCommandLine, LinkToTheTraceCountsAsTheTrace)
{
    const TraceFiles files;
    const QByteArray trace = QFile::encodeName(files.write("a.sor", Bytes(1)));
    const QByteArray link = QFile::encodeName(files.path("link.html"));
    ASSERT_TRUE(QFile::link(files.path("a.sor"), files.path("link.html")));
    EXPECT_EQ(parse({"-i", trace.constData(), "-o", link.constData()}).task, Task::Wrong);
}

} // namespace
