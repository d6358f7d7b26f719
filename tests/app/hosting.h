#pragma once

#include "app/frame.h"
#include "app/host.h"
#include "platform/launcher/measmodel.h"
#include "platform/launcher/measwindow.h"
#include "platform/launcher/warningwindow.h"
#include "platform/launcher/zuconfig.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/tracefiles.h"
#include "tests/support/warnings.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

#include <gmock/gmock.h>

#include <memory>

namespace testing_support {

/// The host with the real plugin and the real acquisition program, in one process with the test.
class Hosting : public testing::Test
{
protected:
    Hosting()
        : programsBefore(qgetenv("WAVEFORM_PROGRAMS"))
        , homeBefore(qgetenv("HOME"))
    {
        qputenv("WAVEFORM_PROGRAMS", WAVEFORM_BIN);
        qputenv("HOME", QFile::encodeName(files.path("home")));
        ZuConfig::setForThisRun("zuotdr", "Simulation", "timeScale", 0);
        ZuConfig::setForThisRun("zuotdr", "MeasParams", "duration", 3);
    }

    ~Hosting() override
    {
        host.reset();
        qputenv("WAVEFORM_PROGRAMS", programsBefore);
        qputenv("HOME", homeBefore);
    }

    void load()
    {
        expectWarning("No such slot Waveform::Window::rescalePlot("); // is not to take
        host = std::make_unique<Host>();
        ASSERT_EQ(host->load(), "");
        host->frame()->resize(800, 480);
        host->frame()->show();
        QCoreApplication::processEvents();
    }

    QPushButton* button(const QString& name) const
    {
        return host->frame()->findChild<QPushButton*>(name);
    }

    QPushButton* action() const
    {
        return qobject_cast<MeasWindow*>(host->window())->actionButton();
    }

    /// What a message on the screen says; empty where there is none.
    QString told() const
    {
        QStringList texts;
        for (const WarningWindow* warning : host->frame()->findChildren<WarningWindow*>()) {
            texts << (warning->isVisible() ? warning->text() : QString());
        }
        texts.removeAll(QString());
        return texts.join('|');
    }

    bool measure()
    {
        QSignalSpy stopped(host->model(), SIGNAL(stopped(MeasModel*)));
        QTest::mouseClick(action(), Qt::LeftButton);
        return QTest::qWaitFor([&] { return !stopped.isEmpty(); }, 30'000);
    }

    const AcquisitionDir directory;
    const ConfigHome config;
    TraceFiles files;
    QByteArray programsBefore;
    QByteArray homeBefore;
    std::unique_ptr<Host> host;
};

} // namespace testing_support
