// A save meets a file system that fails it, or its process, at each of its calls in turn.

#include "platform/launcher/zulauncherconfig.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/support/contents.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/nthcall.h"
#include "tests/support/tracefiles.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>

namespace {

using namespace testing_support; // files, programs, faults

const QStringList kNames {"link.sor", "link.html", "link.png"};

/// What a killed save of long ago left; no process has this number.
constexpr const char* kLeftover = ".waveform-2147483646-0";

struct Outcome
{
    bool isKilled = false;
    int code = -1;
    QString told; ///< to the user
    QString log;
    QStringList calls; ///< of the file system, up to the end
};

class FaultySave : public testing::Test
{
protected:
    FaultySave()
        : trace(files.write("new.sor", SorSketch::plain()))
        , calls({storage, drive})
    {
        QFile::link(WAVEFORM_PLAINREPORT, programs.path("otdrreport"));
        ZuLauncherConfig("flash", "dir").store(files.path("stick"));
        SorSketch other = SorSketch::plain();
        other.gen.cableId = "what was there";
        oldTrace = contents(files.write("old.sor", other));
        prepare();
        const Outcome outcome = save(0, "");
        EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.log);
        for (const QString& name : kNames) {
            wanted[name] = contents(storage + "/" + name);
        }
        EXPECT_NE(wanted["link.sor"], oldTrace);
    }

    /// Old files in both directories, and what a killed save left.
    void prepare() const
    {
        for (const QString& dir : {storage, drive}) {
            QDir(dir).removeRecursively();
            QDir().mkpath(dir);
            for (const QString& name : kNames) {
                write(dir + "/" + name, oldOf(name));
            }
            write(dir + "/" + kLeftover, "half");
        }
    }

    [[nodiscard]] QByteArray oldOf(const QString& name) const
    {
        return name.endsWith(".sor") ? oldTrace : "old " + name.toUtf8();
    }

    static void write(const QString& path, const QByteArray& bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    /// One save whose nth call meets what may happen.
    Outcome save(int nth, const QString& how, const QStringList& more = {}) const
    {
        QProcessEnvironment environment = calls.start(nth, how);
        environment.insert("HOME", files.path("home"));
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(WAVEFORM_SAVEONCE, QStringList {trace, "link"} + more);
        EXPECT_TRUE(process.waitForFinished(60'000)) << "it does not end";
        return {process.exitStatus() == QProcess::CrashExit, process.exitCode(),
                QString::fromLocal8Bit(process.readAllStandardOutput()),
                QString::fromLocal8Bit(process.readAllStandardError()), calls.calls()};
    }

    /// The calls of a save that nothing happens to.
    [[nodiscard]] QStringList callsOfASave() const
    {
        prepare();
        return save(0, "").calls;
    }

    [[nodiscard]] bool isNew(const QString& dir, const QString& name) const
    {
        return contents(dir + "/" + name) == wanted[name];
    }

    void expectOldOrNew() const
    {
        for (const QString& name : kNames) {
            const QByteArray now = contents(storage + "/" + name);
            EXPECT_TRUE(now == oldOf(name) || now == wanted[name]) << qPrintable(name);
            const QString copy = drive + "/" + name;
            EXPECT_TRUE(!QFile::exists(copy) || contents(copy) == oldOf(name) || isNew(drive, name))
                << "half a copy of " << qPrintable(name);
        }
    }

    /// The user was told what is true, and the log why it is not otherwise.
    void expectTruth(const Outcome& outcome, const QString& reason) const
    {
        bool saved = true;
        bool copied = true;
        for (const QString& name : kNames) {
            saved = saved && isNew(storage, name);
            copied = copied && isNew(drive, name);
        }
        if (outcome.code == 0) {
            EXPECT_TRUE(outcome.told.startsWith("Reports was saved to:\n"))
                << qPrintable(outcome.told);
            EXPECT_TRUE(saved) << "the user was told of what is not there";
        } else {
            EXPECT_EQ(outcome.told, "Failed to save reports!\n");
            EXPECT_TRUE(outcome.log.contains("can not save")
                        || outcome.log.contains("Report generator"))
                << qPrintable(outcome.log);
        }
        if (outcome.code == 0 && copies && !copied) {
            EXPECT_TRUE(outcome.log.contains("can not copy")) << qPrintable(outcome.log);
        }
        if (!reason.isEmpty() && (outcome.code != 0 || (copies && !copied))) {
            EXPECT_TRUE(outcome.log.contains(reason)) << qPrintable(outcome.log);
        }
    }

    /// Hidden files that are there beside what long ago was left.
    [[nodiscard]] QStringList halfFiles() const
    {
        QStringList names;
        for (const QString& dir : {storage, drive}) {
            names << QDir(dir).entryList({".waveform-*"}, QDir::Files | QDir::Hidden);
        }
        names.removeAll(kLeftover);
        return names;
    }

    /// The next save makes up for everything.
    void expectRecovery() const
    {
        const Outcome outcome = save(0, "");
        EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.log);
        for (const QString& name : kNames) {
            EXPECT_TRUE(isNew(storage, name)) << qPrintable(name);
        }
        EXPECT_EQ(QDir(storage).entryList(QDir::Files | QDir::Hidden).size(), kNames.size());
        if (copies) {
            EXPECT_EQ(QDir(drive).entryList(QDir::Files | QDir::Hidden).size(), kNames.size());
        }
    }

    const ConfigHome configHome;
    const FakePrograms programs;
    TraceFiles files;
    const QString trace;
    const QString storage = files.path("home/otdr");
    const QString drive = files.path("stick/otdr");
    const NthCall calls;
    QByteArray oldTrace;
    QHash<QString, QByteArray> wanted;
    bool copies = false;
};

struct Fault
{
    const char* name;
    QString how;
    QString reason; ///< in the log
    bool copies; ///< whether it happens to the copies on the flash drive
};

class FaultyCall : public FaultySave, public testing::WithParamInterface<Fault>
{
protected:
    /// Runs what is to be seen of each call that the fault may happen to.
    template <typename Check>
    void atEachCall(Check check)
    {
        const int before = GetParam().copies ? callsOfASave().size() : 0;
        copies = GetParam().copies;
        ZuLauncherConfig("flash", "save").store(copies);
        const QStringList all = callsOfASave();
        ASSERT_GT(all.size(), before + 20)
            << "the calls are not seen: " << qPrintable(all.join(' '));
        const bool writesOnly = GetParam().how == "short" || GetParam().how == "full";
        for (int nth = before + 1; nth <= all.size() && !HasFailure(); ++nth) {
            if (writesOnly && all[nth - 1] != "write") {
                continue;
            }
            SCOPED_TRACE(std::to_string(nth) + ": " + all[nth - 1].toStdString());
            prepare();
            const Outcome outcome = save(nth, GetParam().how);
            ASSERT_GE(outcome.calls.size(), nth) << "the fault never came";
            check(outcome);
        }
    }
};

class FailingCall : public FaultyCall
{
};

TEST_P(FailingCall, LeavesTheOldOrTheNewAndSaysWhy)
{
    atEachCall([this](const Outcome& outcome) {
        EXPECT_FALSE(outcome.isKilled) << "it crashed";
        expectOldOrNew();
        expectTruth(outcome, GetParam().reason);
        EXPECT_TRUE(halfFiles().isEmpty()) << qPrintable(halfFiles().join(' '));
    });
}

INSTANTIATE_TEST_SUITE_P(
    Save, FailingCall,
    testing::Values(Fault {"NoRoom", QString::number(ENOSPC), std::strerror(ENOSPC), false},
                    Fault {"NoRoomFromHereOn", "full", std::strerror(ENOSPC), false},
                    Fault {"BrokenDisk", QString::number(EIO), std::strerror(EIO), false},
                    Fault {"NoRoomOnTheDrive", QString::number(ENOSPC), std::strerror(ENOSPC),
                           true},
                    Fault {"DriveFullFromHereOn", "full", std::strerror(ENOSPC), true},
                    Fault {"BrokenDrive", QString::number(EIO), std::strerror(EIO), true}),
    [](const auto& info) { return info.param.name; });

class ShortWrite : public FaultyCall
{
};

TEST_P(ShortWrite, IsGoneOnWith)
{
    atEachCall([this](const Outcome& outcome) {
        EXPECT_EQ(outcome.code, 0) << qPrintable(outcome.log);
        for (const QString& name : kNames) {
            EXPECT_TRUE(isNew(storage, name)) << qPrintable(name);
            EXPECT_TRUE(!copies || isNew(drive, name)) << qPrintable(name);
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Save, ShortWrite,
                         testing::Values(Fault {"OnTheDisk", "short", "", false},
                                         Fault {"OnTheDrive", "short", "", true}),
                         [](const auto& info) { return info.param.name; });

class KillingCall : public FaultyCall
{
};

TEST_P(KillingCall, LeavesTheOldOrTheNewAndTheNextSaveCleansUp)
{
    int killed = 0;
    atEachCall([this, &killed](const Outcome& outcome) {
        expectOldOrNew();
        if (outcome.isKilled) {
            ++killed;
            EXPECT_EQ(outcome.told, "");
        } else {
            expectTruth(outcome, ""); // the generator was killed, or who copies
        }
        expectRecovery();
    });
    EXPECT_EQ(killed > 0, !GetParam().copies) << "the drive is touched by a process of its own";
}

INSTANTIATE_TEST_SUITE_P(Save, KillingCall,
                         testing::Values(Fault {"OnTheDisk", "kill", "", false},
                                         Fault {"OnTheDrive", "kill", "", true},
                                         Fault {"PowerCut", "power", "", false},
                                         Fault {"PowerCutOnTheDrive", "power", "", true}),
                         [](const auto& info) { return info.param.name; });

TEST_F(FaultySave, DriveThatHangsDoesNotKeepAUserWhoWantsToLeave)
{
    const int before = callsOfASave().size();
    copies = true;
    ZuLauncherConfig("flash", "save").store(true);
    const int write = callsOfASave().indexOf("write", before);
    ASSERT_GE(write, before);
    prepare();
    const Outcome outcome = save(write + 1, "hang", {"leave"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(outcome.told.startsWith("Reports was saved to:\n")) << qPrintable(outcome.told);
    for (const QString& name : kNames) {
        EXPECT_TRUE(isNew(storage, name)) << qPrintable(name);
    }
    expectOldOrNew();
    EXPECT_FALSE(QFile::exists(drive + "/link.sor"));
    EXPECT_TRUE(outcome.log.contains("given up")) << qPrintable(outcome.log);
    expectRecovery();
}

} // namespace
