// What is saved is what was on the screen, as the file inspector reads it.

#include "platform/otdr/detectedevents.h"
#include "tests/storage/keeping.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <cmath>

namespace {

using namespace testing_support; // fixture, builder and units

/// Places in a trace file are counted in tenths of a nanosecond, round trip.
constexpr double kPlaceStep_m = 0.0103;

/// Losses are in thousandths of a decibel.
constexpr double kHalfLossStep_dB = 0.00051;

class ReadBack : public Keeping
{
protected:
    ReadBack()
    {
        WfMeasParams params;
        params.ior = 1.4682;
        params.distance = 20'000.0;
        params.wavelength = 1550;
        params.pulse = 100;
        params.rbs = -81.7;
        params.duration = 30;
        measured = files.measured(TraceBuilder()
                                      .fibre(10_km)
                                      .connector(2_km, 0.3_dB, 12_dB)
                                      .splice(6_km, 0.15_dB)
                                      .reflection(10_km, 15_dB)
                                      .behind(5000)
                                      .noise(0.01_dB, 7)
                                      .noiseFloor(8_dB),
                                  params);
        const auto state = measured.state();
        measured.setEventList(eventListOf(detectionOf(*state), *state));
    }

    /// Saves the measured trace and has it read by the inspector and by the table.
    void saveAndRead()
    {
        refls.addRefl(measured);
        ASSERT_EQ(keeper.doSave("link"), 0);
        QProcess inspector;
        inspector.start(QStringLiteral(WAVEFORM_BIN "/otdrinfo"), {"--json", stored("link.sor")});
        ASSERT_TRUE(inspector.waitForFinished(20'000));
        ASSERT_EQ(inspector.exitCode(), 0) << inspector.readAllStandardError().constData();
        info = QJsonDocument::fromJson(inspector.readAllStandardOutput()).object();
        refls.addReflFromFile(stored("link.sor"));
        ASSERT_EQ(refls.rowCount(), 2);
    }

    QString cell(int row, int column) const { return refls.index(row, column).data().toString(); }

    double number(const char* key) const { return info[key].toDouble(std::nan("")); }

    Reflectogram measured;
    QJsonObject info;
};

/// The events proper; the sections between them are in the file as what lies before each.
EventList eventsOf(const Reflectogram& refl)
{
    EventList events;
    for (const Event& event : refl.getEventList()) {
        if (event.type != Event::Fiber) {
            events << event;
        }
    }
    return events;
}

void expectValue(const QJsonValue& saved, double shown, double tolerance, const std::string& what)
{
    if (Event::isKnown(shown)) {
        EXPECT_NEAR(saved.toDouble(std::nan("")), shown, tolerance) << what;
    } else {
        EXPECT_EQ(saved.toDouble(0.0), 0.0) << what << " was not measured";
    }
}

TEST_F(ReadBack, FileIsSoundAndSaysHowItWasMeasured)
{
    saveAndRead();
    EXPECT_EQ(info["checksum_ok"], QJsonValue(true));
    EXPECT_EQ(info["format_version"].toInt(), 2);
    EXPECT_EQ(number("wavelength_nm"), 1550.0);
    EXPECT_EQ(number("pulse_ns"), 100.0);
    EXPECT_DOUBLE_EQ(number("ior"), 1.4682);
    EXPECT_DOUBLE_EQ(number("backscatter_db"), -81.7);
    EXPECT_EQ(number("averaging_time_s"), 30.0);
    EXPECT_EQ(number("averages"), 64.0);
    EXPECT_EQ(number("samples"), static_cast<double>(measured.trace()->size()));
}

TEST_F(ReadBack, CellsOfTheTableAreThoseOfTheFile)
{
    measured.fillOrl();
    saveAndRead();
    const auto text = [this](const char* key) { return QString::number(number(key), 'f', 2); };
    EXPECT_EQ(cell(1, ReflsTableModel::Distance), text("fibre_end_m"));
    EXPECT_EQ(cell(1, ReflsTableModel::Orl), text("orl_db"));
    EXPECT_EQ(cell(1, ReflsTableModel::TotalLoss), text("total_loss_db"));
    EXPECT_EQ(cell(1, ReflsTableModel::Wavelength).toInt(), info["wavelength_nm"].toInt());
    EXPECT_EQ(cell(1, ReflsTableModel::Pulse).toInt(), info["pulse_ns"].toInt());
    const QDateTime date = QDateTime::fromString(info["date_utc"].toString(), Qt::ISODate);
    EXPECT_EQ(cell(1, ReflsTableModel::Date), date.toUTC().toString("dd.MM.yyyy hh:mm"));

    for (const int column :
         {ReflsTableModel::Date, ReflsTableModel::Wavelength, ReflsTableModel::Pulse}) {
        EXPECT_EQ(cell(0, column), cell(1, column));
    }
    EXPECT_NEAR(measured.endOfFiber(), number("fibre_end_m"), kPlaceStep_m);
    EXPECT_NEAR(measured.sorData()->keyEvents()->totalLoss, number("total_loss_db"),
                kHalfLossStep_dB);
    EXPECT_NEAR(measured.sorData()->keyEvents()->orl, number("orl_db"), kHalfLossStep_dB);
}

TEST_F(ReadBack, FiguresAreInTheFileThoughNobodyHasLookedAtThem)
{
    saveAndRead();
    EXPECT_EQ(cell(1, ReflsTableModel::TotalLoss),
              QString::number(number("total_loss_db"), 'f', 2));
    Reflectogram again = measured;
    again.fillOrl();
    EXPECT_NEAR(again.sorData()->keyEvents()->totalLoss, number("total_loss_db"), kHalfLossStep_dB);
    EXPECT_NEAR(again.sorData()->keyEvents()->orl, number("orl_db"), kHalfLossStep_dB);
}

TEST_F(ReadBack, EventsOfTheScreenAreThoseOfTheFile)
{
    saveAndRead();
    const EventList shown = eventsOf(measured);
    ASSERT_GE(shown.size(), 4) << "the link has a start, two events and an end";
    const QJsonArray events = info["events"].toArray();
    ASSERT_EQ(events.size(), shown.size());
    for (int i = 0; i < shown.size(); ++i) {
        const QJsonObject event = events[i].toObject();
        const std::string name = "event " + std::to_string(i + 1) + ": ";
        EXPECT_EQ(event["number"].toInt(), i + 1);
        EXPECT_EQ(event["kind"].toString(), QString(QLatin1Char(shown[i].type)));
        expectValue(event["distance_m"], shown[i].coordinate, kPlaceStep_m, name + "distance");
        EXPECT_NEAR(event["distance_m"].toDouble(), measured.smpl2dist(shown[i].position),
                    kPlaceStep_m)
            << name << "sample";
        expectValue(event["loss_db"], shown[i].loss, kHalfLossStep_dB, name + "loss");
        expectValue(event["reflectance_db"], shown[i].reflectance, kHalfLossStep_dB,
                    name + "reflectance");
        expectValue(event["attenuation_before_db_per_km"], shown[i].attenuationBefore,
                    kHalfLossStep_dB, name + "attenuation");
    }
}

TEST_F(ReadBack, SupplierParametersAreThoseOfTheInstrument)
{
    const SupParamsBlock block {"Supplier", "Frame 7", "F-0001", "Module 3", "M-0002", "1.2", ""};
    measured.setSupParams(block);
    saveAndRead();
    EXPECT_EQ(info["supplier"].toString(), "Supplier");
    EXPECT_EQ(info["mainframe"].toString(), "Frame 7");
    EXPECT_EQ(info["module"].toString(), "Module 3");
    const SupParamsBlock read = Reflectogram(stored("link.sor")).sorData()->supParams();
    EXPECT_EQ(read.mainframeSerial, "F-0001");
    EXPECT_EQ(read.moduleSerial, "M-0002");
    EXPECT_EQ(read.softwareRevision, "1.2");
}

} // namespace
