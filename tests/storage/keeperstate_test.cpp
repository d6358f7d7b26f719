// What the keeper does while others measure, and what it keeps of a measurement.

#include "tests/storage/keeping.h"
#include "tests/support/warnings.h"

namespace {

using namespace testing_support; // fixture, builder and units

TEST_F(Keeping, SavingIsOffWithoutATraceAndDuringARun)
{
    EXPECT_FALSE(keeper.isSaveEnabled());
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    EXPECT_TRUE(keeper.isSaveEnabled());
    const QSignalSpy titles(&keeper, SIGNAL(setTitle(QString)));
    EXPECT_FALSE(keeper.isMeasuring());
    model.started(QString());
    EXPECT_TRUE(keeper.isMeasuring());
    EXPECT_TRUE(keeper.measStartDate().isValid());
    EXPECT_FALSE(keeper.isSaveEnabled());
    EXPECT_FALSE(keeper.isLoadEnabled());
    ASSERT_EQ(titles.size(), 1);
    EXPECT_EQ(titles.first().first().toString(), "Waveform");
    model.stopped(QString());
    EXPECT_FALSE(keeper.isMeasuring());
    EXPECT_TRUE(keeper.measStopDate().isValid());
    EXPECT_TRUE(keeper.isSaveEnabled());
    EXPECT_TRUE(keeper.isLoadEnabled());
    refls.deleteAllRefls();
    refls.addReflFromFile(files.path("a.sor"));
    refls.deleteRefl(0);
    EXPECT_FALSE(keeper.isSaveEnabled());
}

TEST_F(Keeping, SavingIsOffWhenAllTracesAreDeleted)
{
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    refls.addReflFromFile(files.write("b.sor", SorSketch::plain()));
    ASSERT_TRUE(keeper.isSaveEnabled());
    refls.deleteAllRefls();
    EXPECT_FALSE(keeper.isSaveEnabled());
}

TEST_F(Keeping, SavingIsOffWhileEventsAreSought)
{
    refls.addReflFromFile(files.write("a.sor", SorSketch::plain()));
    keeper.setEventsFindingStatus(true);
    EXPECT_FALSE(keeper.isSaveEnabled());
    keeper.stopped(QString());
    EXPECT_FALSE(keeper.isSaveEnabled());
    refls.addReflFromFile(files.write("b.sor", SorSketch::plain()));
    EXPECT_FALSE(keeper.isSaveEnabled());
    keeper.setEventsFindingStatus(false);
    EXPECT_TRUE(keeper.isSaveEnabled());
}

TEST_F(Keeping, ConfigurationOfTheMeasurementIsKeptAndReadBack)
{
    config->setting("pulse", "MeasParams")->tryChange(30);
    config->setting("distance", "MeasParams")->tryChange(20000);
    keeper.started();
    keeper.stopped();
    EXPECT_EQ(keeper.configFileName(), "/tmp/user/wf.cfg");
    const QVariantMap map = Keeper::unserialize(keeper.configFileName());
    EXPECT_EQ(map.value("measStopDate").toString(), keeper.measStopDate().toString(Qt::ISODate));
    const WfMeasParams params = Keeper::wfMeasParams(map);
    EXPECT_EQ(params.pulse, 30);
    EXPECT_EQ(params.distance, 20000.0);
    EXPECT_EQ(params.wavelength, 1310);
    EXPECT_GT(params.ior, 1.4);
    EXPECT_EQ(params.duration, 15);
}

TEST_F(Keeping, ConfigurationThatWasWrittenIsNotComplainedOf)
{
    EXPECT_TRUE(keeper.saveConfig(files.path("wf.cfg")));
    keeper.started();
    keeper.stopped();
    EXPECT_FALSE(logged("config was not saved"));
}

TEST_F(Keeping, ConfigurationThatCannotBeWrittenIsLogged)
{
    EXPECT_FALSE(keeper.saveConfig(files.path("no/such/directory/wf.cfg")));
    EXPECT_FALSE(keeper.saveConfig("/dev/full"));
    EXPECT_TRUE(Keeper::unserialize(files.path("missing")).isEmpty());
    EXPECT_FALSE(logged("config was not saved"));

    Keeper withoutModel(&card, &refls); // which would name the file
    const QSignalSpy told(&withoutModel, SIGNAL(showNotification(QString)));
    withoutModel.stopped();
    EXPECT_TRUE(logged("config was not saved"));
    EXPECT_TRUE(told.isEmpty()) << "the user has no use for it";
}

TEST_F(Keeping, TraceThatComesDuringARunMayBeSaved)
{
    keeper.started();
    EXPECT_FALSE(keeper.isSaveEnabled());
    addMeasured();
    EXPECT_TRUE(keeper.isSaveEnabled());
    EXPECT_FALSE(keeper.isLoadEnabled());
}

TEST_F(Keeping, StopIsNotedBeforeTheConfigurationIsKept)
{
    keeper.started(QString("otdr"));
    EXPECT_FALSE(keeper.measStopDate().isValid());
    keeper.stopped(QString("otdr"));
    EXPECT_GE(keeper.measStopDate(), keeper.measStartDate());
    EXPECT_EQ(Keeper::unserialize(keeper.configFileName()).value("measStopDate").toString(),
              keeper.measStopDate().toString(Qt::ISODate));
}

TEST_F(Keeping, RunningValuesChangeNothing)
{
    QVariantMap values {{"pulse", 30}};
    const QVariantMap before = values;
    keeper.updated(values, "otdr");
    EXPECT_EQ(values, before);
    EXPECT_FALSE(keeper.isMeasuring());
}

TEST(KeeperParams, AreThoseOfTheMapAndFitTheirFields)
{
    const WfMeasParams params = Waveform::Keeper::wfMeasParams({{"ior", 1.4682},
                                                                {"helix", 1.5},
                                                                {"distance", 20'000.5},
                                                                {"wavelength", 65'536 + 1550},
                                                                {"pulse", 65'536 + 100},
                                                                {"rbs", -81.5},
                                                                {"duration", 180}});
    EXPECT_EQ(params.ior, 1.4682);
    EXPECT_EQ(params.helix, 1.5);
    EXPECT_EQ(params.distance, 20'000.5);
    EXPECT_EQ(params.wavelength, 1550);
    EXPECT_EQ(params.pulse, 100);
    EXPECT_EQ(params.rbs, -81.5);
    EXPECT_EQ(params.duration, 180);
}

} // namespace
