#include "storage/savethread.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <QDir>
#include <QSignalSpy>

#include <gmock/gmock.h>

namespace {

using testing_support::logged;
using testing_support::TraceFiles;
using Waveform::SaveThread;

class Save : public testing::Test
{
protected:
    Save() { thread.refl = files.plain(); }

    void run()
    {
        thread.start();
        ASSERT_TRUE(thread.wait(10000));
    }

    TraceFiles files;
    SaveThread thread;
};

TEST_F(Save, WritesTheTraceAndSaysSo)
{
    QList<QVariantList> saved;
    QObject::connect(
        &thread, &SaveThread::saved, &thread,
        [&](const QString& sor, bool success) {
            saved << QVariantList {sor, success};
        },
        Qt::DirectConnection);
    thread.sor = files.path("out.sor");
    run();
    EXPECT_EQ(thread.result, 0);
    EXPECT_EQ(saved, QList<QVariantList>({{files.path("out.sor"), true}}));
    EXPECT_TRUE(Reflectogram(files.path("out.sor")).isValid());
}

TEST_F(Save, InvalidTraceIsNeverSavedAndSaysNothing)
{
    const QSignalSpy saved(&thread, SIGNAL(saved(QString, bool)));
    thread.refl = Reflectogram();
    thread.sor = files.path("out.sor");
    run();
    EXPECT_NE(thread.result, 0);
    EXPECT_EQ(saved.size(), 0);
    EXPECT_FALSE(QFile::exists(thread.sor));
}

TEST_F(Save, FailureIsToldWithItsReasonInTheLog)
{
    bool success = true;
    QObject::connect(
        &thread, &SaveThread::saved, &thread, [&](const QString&, bool ok) { success = ok; },
        Qt::DirectConnection);
    thread.sor = files.path("no/such/directory/out.sor");
    thread.flashDir = files.path("flash");
    run();
    EXPECT_NE(thread.result, 0);
    EXPECT_FALSE(success);
    EXPECT_TRUE(logged("can not save"));
    EXPECT_FALSE(logged("can not copy")) << "there was nothing to copy";
    EXPECT_TRUE(logged(thread.sor));
}

TEST_F(Save, CopiesToTheFlashDriveAndReplacesWhatIsThere)
{
    const QString flash = files.path("flash");
    QDir().mkpath(flash);
    files.write("flash/out.sor", testing_support::Bytes(10));
    thread.sor = files.path("out.sor");
    thread.flashDir = flash;
    run();
    EXPECT_EQ(thread.result, 0);
    EXPECT_TRUE(Reflectogram(flash + "/out.sor").isValid());
}

TEST_F(Save, FailedCopyIsLoggedAndTheTraceStaysSaved)
{
    thread.sor = files.path("out.sor");
    thread.flashDir = files.path("pulled");
    run();
    EXPECT_EQ(thread.result, 0);
    EXPECT_TRUE(QFile::exists(thread.sor));
    EXPECT_TRUE(logged("can not copy"));
}

} // namespace
