// Files that come from elsewhere: dropped on the window, of any name, at any time.

#include "app/filename.h"
#include "platform/launcher/abstractkeeper.h"
#include "tests/app/hosting.h"

#include <QAbstractItemView>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QWindow>

#include <cstdio>

namespace {

using namespace testing_support; // the fixture and builders

class Opening : public Hosting
{
protected:
    /// Drags over the middle of the chart and lets go, as the desktop tells it to the window.
    /// \return whether the drop was welcome
    bool drop(const QList<QUrl>& urls) const
    {
        QMimeData data;
        data.setUrls(urls);
        return drop(data);
    }

    bool drop(const QMimeData& data) const
    {
        QWindow* window = host->frame()->windowHandle();
        const QPoint middle(window->width() / 2, window->height() / 2);
        QDragEnterEvent enter(middle, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                              Qt::NoModifier);
        QCoreApplication::sendEvent(window, &enter);
        if (!enter.isAccepted()) {
            return false;
        }
        QDropEvent event(middle, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(window, &event);
        EXPECT_EQ(event.dropAction(), Qt::CopyAction) << "the file manager would delete the file";
        QCoreApplication::processEvents();
        return event.isAccepted();
    }

    int loaded() const
    {
        return host->window()->findChild<QAbstractItemView*>("reflectograms")->model()->rowCount();
    }

    QUrl trace(const QString& name) const
    {
        return QUrl::fromLocalFile(files.write(name, SorSketch::plain()));
    }
};

TEST_F(Opening, DroppedFilesAreOpened)
{
    load();
    EXPECT_TRUE(drop({trace("a.sor"), trace("b c.sor")}));
    EXPECT_EQ(loaded(), 2);
    EXPECT_EQ(told(), "");
}

TEST_F(Opening, DroppedWordsAreNoFiles)
{
    load();
    QMimeData data;
    data.setText("/tmp/a.sor");
    EXPECT_FALSE(drop(data));
}

TEST_F(Opening, OfManyDroppedFilesFourAreOpenedAndOneMessageSaysWhy)
{
    load();
    QList<QUrl> urls;
    for (int i = 0; i < 30; ++i) {
        urls << trace(QString("%1.sor").arg(i));
    }
    EXPECT_TRUE(drop(urls));
    EXPECT_EQ(loaded(), 4);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !told().isEmpty(); }));
    EXPECT_TRUE(told().startsWith("Only 4 reflectograms")) << qPrintable(told());
    EXPECT_EQ(told().count("Only 4"), 1);
    EXPECT_FALSE(told().contains('|')) << "two messages";
}

TEST_F(Opening, WhatIsNoTraceIsNamedInOneMessageAndTheRestOpens)
{
    load();
    EXPECT_TRUE(drop({QUrl::fromLocalFile(files.write("junk.txt", Bytes(100))),
                      QUrl::fromLocalFile(files.path("gone.sor")),
                      QUrl("https://example.org/a.sor"), trace("a.sor")}));
    EXPECT_EQ(loaded(), 1);
    EXPECT_FALSE(told().contains('|'));
    for (const char* name : {"junk.txt", "gone.sor", "https://example.org/a.sor"}) {
        EXPECT_EQ(told().count(name), 1) << name << qPrintable(told());
    }
}

TEST_F(Opening, MessageOfManyBadFilesFitsTheScreen)
{
    load();
    QList<QUrl> urls;
    for (int i = 0; i < 100; ++i) {
        urls << QUrl::fromLocalFile(files.path(QString("gone%1.sor").arg(i)));
    }
    drop(urls);
    EXPECT_EQ(told().count("gone"), 5);
    EXPECT_TRUE(told().endsWith("... and 95 more"));
}

TEST_F(Opening, DuringAMeasurementIsRefusedWithWords)
{
    ZuConfig::setForThisRun("zuotdr", "Simulation", "timeScale", 1);
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "duration", 60);
    load();
    QTest::mouseClick(action(), Qt::LeftButton);
    EXPECT_TRUE(drop({trace("a.sor"), trace("b.sor")}));
    EXPECT_EQ(told(), "Traces can be opened when what is under way now has ended.");
    EXPECT_EQ(host->open({}), QStringList()) << "nothing was asked for";
}

TEST_F(Opening, FileWhoseNameIsNoTextIsOpenedOnce)
{
    load();
    const QByteArray plain = QFile::encodeName(files.write("a.sor", SorSketch::plain()));
    const QByteArray odd = plain.left(plain.lastIndexOf('/')) + "/k\xFF\xFEn.sor";
    ASSERT_EQ(std::rename(plain.constData(), odd.constData()), 0);
    const QUrl url = QUrl::fromEncoded("file://" + odd.toPercentEncoding("/"));
    EXPECT_TRUE(drop({url}));
    EXPECT_EQ(loaded(), 1);
    EXPECT_TRUE(drop({url}));
    EXPECT_EQ(loaded(), 1);
    EXPECT_EQ(told(), "");
    host.reset();
    EXPECT_EQ(QDir(AcquisitionDir::path()).entryList({"names-*"}).size(), 0);
    EXPECT_EQ(std::remove(odd.constData()), 0) << "Qt would not find it to clean up";
}

TEST_F(Opening, MissingFileIsNamedAsItWasGiven)
{
    load();
    const QStringList problems = host->open({filename::fromRaw("/tmp/\xFFgone.sor")});
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems.first().contains("gone.sor"));
    EXPECT_FALSE(problems.first().contains(AcquisitionDir::path())) << qPrintable(problems.first());
}

class EmptyScreen : public Opening
{
protected:
    QWidget* hint() const { return host->window()->findChild<QWidget*>("emptyHint"); }
};

TEST_F(EmptyScreen, SaysWhatToDoUntilThereIsATrace)
{
    load();
    ASSERT_NE(hint(), nullptr);
    EXPECT_TRUE(hint()->isVisible());
    EXPECT_TRUE(hint()->parentWidget()->rect().contains(hint()->geometry()));
    EXPECT_TRUE(drop({trace("a.sor")}));
    EXPECT_FALSE(hint()->isVisible());
}

TEST_F(EmptyScreen, IsGoneWhileAFirstTraceIsMeasured)
{
    load();
    QTest::mouseClick(action(), Qt::LeftButton);
    EXPECT_FALSE(hint()->isVisible());
    QSignalSpy stopped(host->model(), SIGNAL(stopped(MeasModel*)));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !stopped.isEmpty(); }, 30'000));
    EXPECT_FALSE(hint()->isVisible()) << "there is a trace now";
}

TEST_F(EmptyScreen, LetsTouchesThroughToTheChart)
{
    load();
    QWidget* canvas = hint()->parentWidget();
    const QPoint middle = hint()->geometry().center();
    EXPECT_NE(canvas->childAt(middle), hint());
    EXPECT_EQ(host->frame()->childAt(canvas->mapTo(host->frame(), middle)), canvas);
}

TEST_F(EmptyScreen, StaysInTheMiddleOfAChartOfAnySize)
{
    load();
    for (const QSize size : {QSize(1280, 800), QSize(700, 420)}) {
        host->frame()->resize(size);
        QCoreApplication::processEvents();
        const QRect canvas = hint()->parentWidget()->rect();
        EXPECT_LE((hint()->geometry().center() - canvas.center()).manhattanLength(), 2);
    }
}

} // namespace
