#pragma once

#include "acquisition/model.h"
#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/zuconfigmodel.h"
#include "refls/reflstablemodel.h"
#include "storage/keeper.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/support/acquisitiondir.h"
#include "tests/support/fakeprogram.h"
#include "tests/support/tracefiles.h"

#include <QFile>
#include <QSignalSpy>

#include <gmock/gmock.h>

namespace testing_support {

using Waveform::Keeper;
using Waveform::Model;
using Waveform::ReflsTableModel;

/// A keeper with a home directory, a set of traces and a report generator of its own.
class Keeping : public testing::Test
{
protected:
    Keeping()
        : homeBefore(qgetenv("HOME"))
        , config(ZuConfigModel::instance(&card, "zuotdr"))
        , keeper(&card, &refls)
        , model(&card)
        , notified(&keeper, SIGNAL(showNotification(QString)))
                   , saved(&keeper, SIGNAL(saved(QString)))
                           , waits(&keeper, SIGNAL(setWaitWindowVisible(bool)))
    {
        qputenv("HOME", QFile::encodeName(files.path("home")));
        makeReport(R"(echo report > "$4"; echo picture > "${4%.html}.png")");
        keeper.setConfig(config);
        keeper.setMeasModel(&model);
        QObject::connect(&keeper,
                         SIGNAL(loadRefl(QString)), &refls, SLOT(addReflFromFile(QString)));
    }

    ~Keeping() override
    {
        qputenv("HOME", homeBefore);
        config->freeLater();
    }

    /// The report generator of this test, in the place of the real one.
    void makeReport(const QString& script) const { programs.make("otdrreport", script); }

    QString stored(const QString& name) const { return files.path("home/otdr/" + name); }

    Reflectogram addMeasured()
    {
        Reflectogram refl = files.measured(TraceBuilder().fibre(2_km));
        refls.addRefl(refl);
        return refl;
    }

    const AcquisitionDir directory;
    const ConfigHome configHome;
    const FakePrograms programs;
    QByteArray homeBefore;
    TraceFiles files;
    CardController card;
    ZuConfigModel* config;
    ReflsTableModel refls;
    Keeper keeper;
    Model model;
    QSignalSpy notified;
    QSignalSpy saved;
    QSignalSpy waits;
};

} // namespace testing_support
