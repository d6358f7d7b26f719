#pragma once

#include "refls/reflstablemodel.h"
#include "tests/support/tracefiles.h"

#include <QAbstractItemModelTester>
#include <QBrush>
#include <QSignalSpy>

#include <gmock/gmock.h>

namespace testing_support {

/// A set of traces, empty to begin with, and the signals that it has sent.
class TraceSet : public testing::Test
{
protected:
    TraceSet()
        : tester(&model, QAbstractItemModelTester::FailureReportingMode::Warning)
        , mainChanged(&model, SIGNAL(mainReflChanged(Reflectogram)))
                      , deleted(&model, SIGNAL(reflDeleted(Reflectogram)))
                                , allDeleted(&model, SIGNAL(allReflsDeleted()))
                                             , resized(&model, SIGNAL(resize()))
                                                       , resets(&model, SIGNAL(modelReset()))
    {
    }

    Reflectogram add(const QString& name)
    {
        Reflectogram refl = files.plain(name);
        model.addRefl(refl);
        return refl;
    }

    void forgetSignals()
    {
        for (QSignalSpy* spy : {&mainChanged, &deleted, &allDeleted, &resized, &resets}) {
            spy->clear();
        }
    }

    Reflectogram newMain() const
    {
        return mainChanged.isEmpty() ? Reflectogram()
                                     : mainChanged.last().first().value<Reflectogram>();
    }

    QString text(int row, int column) const
    {
        return model.data(model.index(row, column), Qt::DisplayRole).toString();
    }

    QColor colour(int row, int column, Qt::ItemDataRole role) const
    {
        return model.data(model.index(row, column), role).value<QBrush>().color();
    }

    TraceFiles files;
    Waveform::ReflsTableModel model;
    QAbstractItemModelTester tester;
    QSignalSpy mainChanged;
    QSignalSpy deleted;
    QSignalSpy allDeleted;
    QSignalSpy resized;
    QSignalSpy resets;
};

} // namespace testing_support
