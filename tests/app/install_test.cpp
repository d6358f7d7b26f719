// What `cmake --install` leaves: all that a package holds, and an application that runs from there.

#include "platform/otdr/reflectogram.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/requiredcontents.h"
#include "tests/support/tracefiles.h"

#include <QDirIterator>
#include <QImage>
#include <QMimeDatabase>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace {

using namespace testing_support; // builders

const QStringList kPrograms = {"waveform", "wfgather", "wfevfind", "otdrinfo", "otdrreport"};

struct Answer
{
    int code = -1;
    QString out;
    QString err;
};

/// Runs a program as a user does who knows nothing of the build tree.
Answer run(const QString& program, const QStringList& arguments, const QString& home = "/nowhere")
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"WAVEFORM_PROGRAMS", "LD_LIBRARY_PATH", "XDG_CONFIG_HOME"}) {
        environment.remove(name);
    }
    environment.insert("HOME", home);
    environment.insert("LC_ALL", "C.UTF-8");
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(90'000)) << qPrintable(program);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
}

class Installed : public testing::Test
{
protected:
    void SetUp() override
    {
        if (WAVEFORM_SHARED_BUILD) {
            GTEST_SKIP() << "this build is of shared libraries, which nobody installs";
        }
        const Answer answer = run(WAVEFORM_CMAKE, {"--install", WAVEFORM_BUILD, "--prefix", top()});
        ASSERT_EQ(answer.code, 0) << qPrintable(answer.err);
    }

    [[nodiscard]] QString top() const { return dir.filePath("a prefix"); }

    [[nodiscard]] QString path(const QString& name) const { return top() + "/" + name; }

    [[nodiscard]] QStringList names() const
    {
        QStringList found;
        QDirIterator all(top(), QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (all.hasNext()) {
            found << QDir(top()).relativeFilePath(all.next());
        }
        found.sort();
        return found;
    }

    [[nodiscard]] QString text(const QString& name) const
    {
        return testing_support::requiredContents(path(name));
    }

    /// What bash would offer for the last of the words of a command line.
    [[nodiscard]] QStringList offered(const QStringList& words) const
    {
        const QString script = "cd \"$1\"; . \"$2\"; shift 2; COMP_WORDS=(\"$@\"); "
                               "COMP_CWORD=$(($# - 1)); "
                               "_waveform \"$1\" \"${@: -1}\" \"${@: -2:1}\"; "
                               "printf '%s\\n' \"${COMPREPLY[@]}\"";
        const QString completion = path("share/bash-completion/completions/" + words[0]);
        QStringList arguments = {"-c", script, "bash", dir.path(), completion};
        arguments << path("bin/" + words[0]) << words.mid(1);
        const Answer answer = run("bash", arguments);
        EXPECT_EQ(answer.err, "");
        return answer.out.split('\n', Qt::SkipEmptyParts);
    }

    const QTemporaryDir dir;
};

TEST_F(Installed, IsEveryFileOfThePackageAndNoOther)
{
    QStringList expected = {
        "lib/waveform/libwaveform-launcher.so",
        "lib/waveform/waveform.so",
        "share/applications/waveform.desktop",
        "share/doc/waveform-otdr/changelog.Debian.gz",
        "share/doc/waveform-otdr/changelog.gz",
        "share/doc/waveform-otdr/copyright",
        "share/doc/waveform-otdr/examples/fibres/README.md",
        "share/doc/waveform-otdr/examples/fibres/access.json",
        "share/doc/waveform-otdr/examples/fibres/demo-link.json",
        "share/doc/waveform-otdr/examples/fibres/launch-fibre.json",
        "share/doc/waveform-otdr/examples/fibres/long-haul.json",
        "share/doc/waveform-otdr/examples/fibres/metro.json",
        "share/doc/waveform-otdr/examples/report/report.html",
        "share/doc/waveform-otdr/report-templates.md",
        "share/icons/hicolor/scalable/apps/waveform.svg",
        "share/icons/hicolor/scalable/mimetypes/application-x-otdr-sor.svg",
        "share/metainfo/org.waveform_otdr.waveform.metainfo.xml",
        "share/mime/packages/waveform-otdr.xml",
    };
    for (const QString& program : kPrograms) {
        expected << "bin/" + program << "share/man/man1/" + program + ".1.gz"
                 << "share/bash-completion/completions/" + program;
    }
    expected.sort();
    EXPECT_EQ(names().join("\n"), expected.join("\n"));
}

TEST_F(Installed, LibrariesAreLookedForBesideTheirUserOrInTheSystem)
{
    const QRegularExpression search(R"(\((?:RPATH|RUNPATH)\).*\[(.*)\])");
    QStringList paths;
    for (const QString& name : names().filter(QRegularExpression("^(bin|lib)/"))) {
        const Answer answer = run("readelf", {"-d", path(name)});
        ASSERT_EQ(answer.code, 0) << qPrintable(answer.err);
        const QString found = search.match(answer.out).captured(1);
        if (!found.isEmpty()) {
            paths << name + " " + found;
        }
    }
    EXPECT_EQ(paths.join("\n"),
              "bin/waveform $ORIGIN/../lib/waveform\nlib/waveform/waveform.so $ORIGIN");
}

TEST_F(Installed, DemoMeasuresWithTheProgramsBesideIt)
{
    const AcquisitionDir directory;
    const QString demo = dir.filePath("demo");
    const Answer answer =
        run(path("bin/waveform"), {"--demo", demo, "--time-scale", "0"}, dir.path());
    ASSERT_EQ(answer.code, 0) << qPrintable(answer.err);
    EXPECT_EQ(answer.err, "");
    EXPECT_TRUE(Reflectogram(demo + "/demo.sor").isValid());
    EXPECT_TRUE(QFile::exists(demo + "/demo.html"));

    // Without its own it does not take those of the build.
    const QStringList show = {"--screenshot", dir.filePath("picture.png"), demo + "/demo.sor"};
    EXPECT_EQ(run(path("bin/waveform"), show, dir.path()).code, 0);
    ASSERT_TRUE(QFile::remove(path("bin/wfgather")));
    EXPECT_EQ(run(path("bin/waveform"), {"--demo", demo}, dir.path()).code, 1);
    ASSERT_TRUE(QFile::remove(path("lib/waveform/waveform.so")));
    EXPECT_EQ(run(path("bin/waveform"), show, dir.path()).code, 1);
}

TEST_F(Installed, ManualPagesTellEveryOptionOfTheHelp)
{
    const QRegularExpression option("^  (-[^<]*?)(?: <|  )", QRegularExpression::MultilineOption);
    for (const QString& program : kPrograms) {
        const QString help = run(path("bin/" + program), {"--help"}).out;
        const Answer page = run("gzip", {"-dc", path("share/man/man1/" + program + ".1.gz")});
        ASSERT_EQ(page.code, 0);
        // What it is: the first words of the help's second line.
        const QString brief = help.section('\n', 1, 1).section(' ', 1, 2).replace("-", "\\-");
        const QRegularExpression name("\\.SH NAME\n" + program + R"( \\- \S+ )"
                                      + QRegularExpression::escape(brief.section(':', 0, 0)));
        EXPECT_TRUE(name.match(page.out).hasMatch()) << qPrintable(page.out);
        EXPECT_FALSE(page.out.contains("@"));
        int told = 0;
        for (auto each = option.globalMatch(help); each.hasNext(); ++told) {
            const QString name = each.next().captured(1).replace("-", "\\-");
            EXPECT_TRUE(page.out.contains("\n.TP\n.B " + name)) << qPrintable(program + name);
        }
        EXPECT_EQ(page.out.count("\n.TP\n.B \\-"), told);
        EXPECT_GE(told, 4);
    }
}

TEST_F(Installed, ManualPagesAreGoodRoff)
{
    if (QStandardPaths::findExecutable("man").isEmpty()) {
        GTEST_SKIP() << "man is not installed";
    }
    for (const QString& program : kPrograms) {
        const QString page = path("share/man/man1/" + program + ".1.gz");
        const Answer answer = run("man", {"--warnings", "-E", "UTF-8", "-l", page}, dir.path());
        EXPECT_EQ(answer.code, 0);
        EXPECT_EQ(answer.err, "");
        EXPECT_TRUE(answer.out.contains("DESCRIPTION")) << qPrintable(answer.out);
    }
}

TEST_F(Installed, CompletionOffersOptionsAndTheirValues)
{
    EXPECT_EQ(offered({"waveform", "--si"}), QStringList({"--size"}));
    EXPECT_TRUE(offered({"waveform", "-"}).contains("--time-scale"));
    EXPECT_EQ(offered({"wfgather", "-"}).filter("-c"), QStringList({"-c"}));
    EXPECT_EQ(offered({"waveform", "--wavelength", "13"}), QStringList({"1310"}));
    EXPECT_EQ(offered({"waveform", "--show", "events,m"}), QStringList({"events,measurement"}));
    EXPECT_EQ(offered({"waveform", "--seed", ""}), QStringList());
}

TEST_F(Installed, CompletionOffersTraceFilesAndDirectories)
{
    for (const char* name : {"one.sor", "TWO.SOR", "note.txt", "with blank.sor"}) {
        QFile file(dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    EXPECT_THAT(offered({"otdrinfo", ""}),
                testing::UnorderedElementsAre("one.sor", "TWO.SOR", "with blank.sor", "a prefix"));
    EXPECT_EQ(offered({"waveform", "--demo", ""}), QStringList({"a prefix"}));
    EXPECT_EQ(offered({"otdrinfo", "--write", "n"}), QStringList({"note.txt"}));
    EXPECT_EQ(offered({"wfevfind", "-i", "o"}), QStringList({"one.sor"}));
}

TEST_F(Installed, TraceFilesAreKnownByNameAndByContent)
{
    qputenv("XDG_DATA_DIRS", QFile::encodeName(path("share")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.filePath("none")));
    const TraceFiles files;
    QFile trace(files.write("a.sor", SorSketch::plain()));
    ASSERT_TRUE(trace.open(QIODevice::ReadOnly));
    const QMimeDatabase types;
    EXPECT_EQ(types.mimeTypeForFile("OLD.SOR", QMimeDatabase::MatchExtension).name(),
              "application/x-otdr-sor");
    EXPECT_EQ(types.mimeTypeForData(trace.readAll()).name(), "application/x-otdr-sor");
    EXPECT_NE(types.mimeTypeForData("Maple").name(), "application/x-otdr-sor");
}

TEST_F(Installed, SpeaksItsLanguagesWhereverItStands)
{
    const AcquisitionDir directory;
    const TraceFiles files;
    const QString trace = files.write("a.sor", SorSketch::plain());
    QMap<QString, QImage> pictures;
    for (const char* code : {"en", "ru"}) {
        const QString picture = dir.filePath("picture.png");
        const Answer answer = run(path("bin/waveform"),
                                  {"--language", code, "--screenshot", picture, trace}, dir.path());
        EXPECT_EQ(answer.code, 0) << qPrintable(answer.err);
        pictures[code] = QImage(picture);
    }
    EXPECT_FALSE(pictures["en"].isNull());
    EXPECT_NE(pictures["ru"], pictures["en"]);
    EXPECT_EQ(offered({"waveform", "--language", ""}), QStringList({"en", "ru"}));
}

TEST_F(Installed, DesktopEntryNamesWhatIsThere)
{
    const QString entry = text("share/applications/waveform.desktop");
    EXPECT_TRUE(entry.contains("\nExec=waveform %F\n"));
    EXPECT_TRUE(entry.contains("\nIcon=waveform\n"));
    EXPECT_TRUE(entry.contains("\nMimeType=application/x-otdr-sor;\n"));
    EXPECT_TRUE(text("share/metainfo/org.waveform_otdr.waveform.metainfo.xml")
                    .contains("<launchable type=\"desktop-id\">waveform.desktop</launchable>"));
}

TEST_F(Installed, DesktopFilesAreValid)
{
    const QString share = path("share/");
    const std::vector<QStringList> checks = {
        {"desktop-file-validate", share + "applications/waveform.desktop"},
        {"appstreamcli", "validate", "--no-net",
         share + "metainfo/org.waveform_otdr.waveform.metainfo.xml"}};
    int made = 0;
    for (const QStringList& check : checks) {
        if (QStandardPaths::findExecutable(check[0]).isEmpty()) {
            continue;
        }
        const Answer answer = run(check[0], check.mid(1), dir.path());
        EXPECT_EQ(answer.code, 0) << qPrintable(answer.out + answer.err);
        ++made;
    }
    if (made == 0) {
        GTEST_SKIP() << "neither desktop-file-validate nor appstreamcli is installed";
    }
}

} // namespace
