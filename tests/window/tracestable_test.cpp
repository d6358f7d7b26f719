// The table of traces while what is known of them changes.

#include "refls/reflstableview.h"
#include "tests/support/finish.h"
#include "tests/window/screen.h"

namespace {

using namespace testing_support; // the fixture and builders

class TracesTable : public Screen
{
protected:
    TracesTable()
    {
        window->findChild<Waveform::ReflsTableView*>()->show();
        QObject::connect(refls(), &QAbstractItemModel::modelReset, window.get(),
                         [this] { readCells(); });
    }

    /// What a view does when it is told that the table has changed.
    void readCells()
    {
        for (int column : {ReflsTableModel::Distance, ReflsTableModel::Orl}) {
            seen[column] = refls()->index(0, column).data().toString();
        }
    }

    /// A snapshot of a fibre of 2 km that scatters so much.
    void arrive(Decibels backscatter)
    {
        const QString name =
            files.writeSnapshot(QString("lit%1.bin").arg(++snapshots),
                                TraceBuilder().fibre(2_km).attenuation(backscatter));
        emit model->measured(name, WfMeasParams());
        finish();
    }

    QMap<int, QString> seen;
    int snapshots = 0;
};

TEST_F(TracesTable, TellsTheLengthThatIndexAndHelixFactorLeave)
{
    const Reflectogram refl = load("a.sor");
    finish();
    const double before_m = seen[ReflsTableModel::Distance].toDouble();
    ASSERT_GT(before_m, 1000.0);
    configure("helix", 25.0); // a quarter more fibre in each metre of cable
    EXPECT_NEAR(seen[ReflsTableModel::Distance].toDouble(), before_m / 1.25, 0.01);
    QMetaObject::invokeMethod(window.get(), "setIor", Q_ARG(double, refl.IOR() / 1.25));
    EXPECT_NEAR(seen[ReflsTableModel::Distance].toDouble(), before_m, 0.01);
}

TEST_F(TracesTable, TellsTheReturnLossOfEachSnapshot)
{
    emit model->measStarted();
    arrive(0.2_dB);
    const QString before = seen[ReflsTableModel::Orl];
    ASSERT_NE(before, "-");
    arrive(2.0_dB);
    EXPECT_NE(seen[ReflsTableModel::Orl], "-");
    EXPECT_NE(seen[ReflsTableModel::Orl], before);
}

} // namespace
