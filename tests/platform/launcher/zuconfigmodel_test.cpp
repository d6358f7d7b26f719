#include "platform/launcher/cardcontroller.h"
#include "platform/launcher/zuconfigmodel.h"
#include "tests/platform/launcher/confighome.h"

#include <QFile>
#include <QPointer>
#include <QSettings>
#include <QSignalSpy>

#include <gtest/gtest.h>

using testing_support::ConfigHome;

namespace {

/// One user of the shared model, for as long as it lives.
class User
{
public:
    explicit User(CardController* card = nullptr)
        : model(ZuConfigModel::instance(card, "zuotdr"))
    {
    }

    ~User()
    {
        model->freeLater();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    User(const User&) = delete;
    User& operator=(const User&) = delete;

    ZuConfigModel* operator->() const { return model; }

    ZuConfigModel* const model;
};

/// Counts all forms of changed().
struct Changes
{
    explicit Changes(ZuSetting* setting)
        : variants(setting, SIGNAL(changed(QVariant)))
                   , ints(setting, SIGNAL(changed(int)))
                          , doubles(setting, SIGNAL(changed(double)))
                                    , texts(setting, SIGNAL(changed(QString)))
    {
    }

    [[nodiscard]] bool cameEach(int times) const
    {
        return variants.count() == times && ints.count() == times && doubles.count() == times
            && texts.count() == times;
    }

    QSignalSpy variants;
    QSignalSpy ints;
    QSignalSpy doubles;
    QSignalSpy texts;
};

QVariant onDisk(const ConfigHome& home, const QString& path)
{
    return QSettings(home.file("zuotdr"), QSettings::IniFormat).value(path);
}

} // namespace

TEST(ZuConfigModel, WritesTheDefaultsAtTheFirstStart)
{
    const ConfigHome home;
    const User user;
    EXPECT_EQ(onDisk(home, "MeasParams/duration").toInt(), 15);
    EXPECT_EQ(onDisk(home, "MeasParams/pulse").toInt(), 100);
    EXPECT_EQ(onDisk(home, "MeasParams/distance").toInt(), 10000);
    EXPECT_EQ(onDisk(home, "MeasParams/wavelength").toInt(), 1310);
    EXPECT_EQ(onDisk(home, "MeasParams/helix").toDouble(), 0.0);
    EXPECT_EQ(onDisk(home, "MeasParams/ior1310").toDouble(), 1.4677);
    EXPECT_EQ(onDisk(home, "AdvancedParams/MeasMode").toInt(), 0);
    EXPECT_EQ(onDisk(home, "AdvancedParams/reflNameScheme").toString(), "trace_wavelength_index");
}

TEST(ZuConfigModel, LeavesWhatIsStoredWhenItAddsDefaults)
{
    const ConfigHome home;
    ZuConfig("zuotdr", "MeasParams", "pulse").store(1000);
    const User user;
    EXPECT_EQ(onDisk(home, "MeasParams/pulse").toInt(), 1000);
    EXPECT_EQ(onDisk(home, "MeasParams/duration").toInt(), 15);
}

TEST(ZuConfigModel, IsSharedUntilTheLastUserLetsItGo)
{
    const ConfigHome home;
    const QPointer<ZuConfigModel> first = ZuConfigModel::instance(nullptr, "zuotdr");
    EXPECT_EQ(ZuConfigModel::instance(nullptr, "zuotdr"), first);
    first->freeLater();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_FALSE(first.isNull());
    first->freeLater();
    ASSERT_FALSE(first.isNull()); // still there for whoever called
    const User next;
    EXPECT_NE(next.model, first);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
}

TEST(ZuConfigModel, IsMadeAnewAfterItWasDeletedOutright)
{
    const ConfigHome home;
    delete ZuConfigModel::instance(nullptr, "zuotdr");
    const User user;
    EXPECT_EQ(user->value("MeasParams", "pulse"), QVariant(100));
}

TEST(ZuConfigModel, KeepsModulesApart)
{
    const ConfigHome home;
    const User otdr;
    ZuConfigModel* other = ZuConfigModel::instance(nullptr, "other");
    EXPECT_NE(other, otdr.model);
    other->setting("pulse", "MeasParams")->tryChange(30);
    EXPECT_EQ(otdr->value("MeasParams", "pulse"), QVariant(100));
    other->freeLater();
}

TEST(ZuConfigModel, KeepsAChangeAcrossInstances)
{
    const ConfigHome home;
    {
        const User user;
        user->setting("pulse", "MeasParams")->tryChange(1000);
        user->setting("wavelength", "MeasParams")->tryChange(QStringLiteral("all"));
        user->setting("helix", "MeasParams")->tryChange(2.5);
    }
    EXPECT_EQ(onDisk(home, "MeasParams/pulse").toString(), "1000");
    const User user;
    EXPECT_EQ(user->value("MeasParams", "pulse"), QVariant(1000));
    EXPECT_EQ(user->value("MeasParams", "wavelength"), QVariant("all"));
    EXPECT_EQ(user->value("MeasParams", "helix"), QVariant(2.5));
}

TEST(ZuConfigModel, AnswersTheFallbackWhereThereIsNoValue)
{
    const ConfigHome home;
    const User user;
    EXPECT_EQ(user->value("MeasParams", "none", "5"), QVariant("5"));
    EXPECT_FALSE(user->value("MeasParams", "none").isValid());
    EXPECT_EQ(user->value("MeasParams", "pulse", 5), QVariant(100));
}

TEST(ZuConfigModel, GivesOneSettingForTheSameNames)
{
    const ConfigHome home;
    const User user;
    ZuSetting* pulse = user->setting("pulse", "MeasParams");
    EXPECT_EQ(user->setting("pulse", "MeasParams"), pulse);
    EXPECT_NE(user->setting("pulse", "CardInfo"), pulse);
    EXPECT_NE(user->setting("duration", "MeasParams"), pulse);
    EXPECT_EQ(pulse->key(), "pulse");
    EXPECT_EQ(pulse->section(), "MeasParams");
}

TEST(ZuSetting, AnnouncesAnAcceptedChangeInAllForms)
{
    const ConfigHome home;
    const User user;
    ZuSetting* pulse = user->setting("pulse", "MeasParams");
    const Changes changes(pulse);
    pulse->tryChange(QVariant(275));
    ASSERT_TRUE(changes.cameEach(1));
    EXPECT_EQ(changes.variants.at(0).at(0).value<QVariant>(), QVariant(275));
    EXPECT_EQ(changes.ints.at(0).at(0).toInt(), 275);
    EXPECT_EQ(changes.doubles.at(0).at(0).toDouble(), 275.0);
    EXPECT_EQ(changes.texts.at(0).at(0).toString(), "275");
    EXPECT_EQ(pulse->value(), QVariant(275));
}

TEST(ZuSetting, RefusesAValueOutsideItsTableAndReturnsTheOldOne)
{
    const ConfigHome home;
    const User user;
    ZuSetting* pulse = user->setting("pulse", "MeasParams");
    const Changes changes(pulse);
    pulse->tryChange(101);
    ASSERT_TRUE(changes.cameEach(1));
    EXPECT_EQ(changes.ints.at(0).at(0).toInt(), 100);
    EXPECT_EQ(pulse->value(), QVariant(100));
    EXPECT_EQ(onDisk(home, "MeasParams/pulse").toInt(), 100);
    pulse->tryChange(101);
    EXPECT_EQ(pulse->value(), QVariant(100));
    pulse->tryChange(QVariant());
    pulse->tryChange(QStringLiteral("all"));
    EXPECT_EQ(onDisk(home, "MeasParams/pulse").toInt(), 100);
}

TEST(ZuSetting, SaysNothingForAnEqualValue)
{
    const ConfigHome home;
    const User user;
    ZuSetting* pulse = user->setting("pulse", "MeasParams");
    ZuSetting* helix = user->setting("helix", "MeasParams");
    const Changes pulses(pulse);
    const Changes helixes(helix);
    pulse->tryChange(100);
    pulse->tryChange(100.0);
    pulse->tryChange(QStringLiteral("100"));
    pulse->tryChange(QVariant("100"));
    helix->tryChange(QStringLiteral("0.0"));
    EXPECT_TRUE(pulses.cameEach(0));
    EXPECT_TRUE(helixes.cameEach(0));
}

TEST(ZuSetting, DoesNotRunInACircleWithAWidgetBoundBothWays)
{
    const ConfigHome home;
    ZuConfig("zuotdr", "MeasParams", "wavelength").store("1549.5");
    const User user;
    ZuSetting* wavelength = user->setting("wavelength", "MeasParams");
    QObject::connect(wavelength, SIGNAL(changed(QVariant)), wavelength, SLOT(tryChange(QVariant)));
    QObject::connect(wavelength, SIGNAL(changed(int)), wavelength, SLOT(tryChange(int)));
    const Changes changes(wavelength);
    user->throwData({"wavelength"});
    wavelength->tryChange(1550);
    EXPECT_EQ(wavelength->value(), QVariant(1550));
    EXPECT_LE(changes.variants.count(), 3);
}

TEST(ZuSetting, DeliversAStoredOddValueAsItIs)
{
    const ConfigHome home;
    ZuConfig("zuotdr", "MeasParams", "wavelength").store("1549.5");
    const User user;
    ZuSetting* wavelength = user->setting("wavelength", "MeasParams");
    const Changes changes(wavelength);
    user->throwData({"wavelength"});
    ASSERT_TRUE(changes.cameEach(1));
    EXPECT_EQ(changes.texts.at(0).at(0).toString(), "1549.5");
    EXPECT_EQ(changes.doubles.at(0).at(0).toDouble(), 1549.5);
    EXPECT_EQ(changes.ints.at(0).at(0).toInt(), 1550);
    EXPECT_EQ(user->value("MeasParams", "wavelength").toDouble(), 1549.5);
}

TEST(ZuSetting, KeepsARevisionAsTheTextItWas)
{
    const ConfigHome home;
    const User user;
    ZuSetting* revision = user->setting("HardwareRevision", "CardInfo");
    revision->tryChange(QStringLiteral("3"));
    const Changes changes(revision);
    revision->tryChange(QStringLiteral("3.0"));
    ASSERT_TRUE(changes.cameEach(1));
    EXPECT_EQ(changes.doubles.at(0).at(0).toDouble(), 3.0);
    EXPECT_EQ(revision->value().toString(), "3.0");
}

TEST(ZuSetting, KeepsItsOldValueWhereNothingWasStoredAndARefusalComes)
{
    const ConfigHome home;
    const User user;
    ZuSetting* seed = user->setting("seed", "Simulation");
    const Changes changes(seed);
    seed->tryChange(-1);
    EXPECT_TRUE(changes.cameEach(0));
    EXPECT_FALSE(seed->value().isValid());
}

TEST(ZuConfigModel, ThrowsEachNamedSettingOnceInOrder)
{
    const ConfigHome home;
    const User user;
    QStringList seen;
    for (const char* key : {"wavelength", "distance", "pulse", "duration", "helix", "none"}) {
        QObject::connect(user->setting(key, "MeasParams"), qOverload<int>(&ZuSetting::changed),
                         user.model,
                         [&seen, key](int value) { seen << QString("%1=%2").arg(key).arg(value); });
    }
    user->throwData({"duration", "pulse", "distance", "wavelength", "none", "unknown"});
    EXPECT_EQ(seen,
              (QStringList {"duration=15", "pulse=100", "distance=10000", "wavelength=1310"}));
}

TEST(ZuConfigModel, ShowsValuesOfThisRunAndStoresNoneOfThem)
{
    const ConfigHome home;
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "pulse", 1000);
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "duration", 2); // outside the table: a run may
    {
        const User user;
        EXPECT_EQ(user->value("MeasParams", "pulse"), QVariant(1000));
        EXPECT_EQ(user->setting("duration", "MeasParams")->value().toInt(), 2);
        user->setting("distance", "MeasParams")->tryChange(20000);
    }
    EXPECT_EQ(onDisk(home, "MeasParams/pulse").toInt(), 100);
    EXPECT_EQ(onDisk(home, "MeasParams/duration").toInt(), 15);
    EXPECT_EQ(onDisk(home, "MeasParams/distance").toInt(), 20000);
    ZuConfig::clearThisRun();
    const User user;
    EXPECT_EQ(user->value("MeasParams", "pulse"), QVariant(100));
}

TEST(ZuConfigModel, EndsAValueOfThisRunWhenTheUserChangesIt)
{
    const ConfigHome home;
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "pulse", 1000);
    const User user;
    ZuSetting* pulse = user->setting("pulse", "MeasParams");
    pulse->tryChange(1000); // what is in force: no change by the user
    EXPECT_EQ(onDisk(home, "MeasParams/pulse").toInt(), 100);
    pulse->tryChange(30);
    EXPECT_EQ(pulse->value(), QVariant(30));
    EXPECT_EQ(onDisk(home, "MeasParams/pulse").toInt(), 30);
}

TEST(ZuConfigModel, TellsTheCardOnlyWhenToldTo)
{
    const ConfigHome home;
    CardController card;
    QVariantMap told;
    QObject::connect(&card, &CardController::configUpdated, &card,
                     [&told](QVariantMap& map) { told = map; });
    const User user(&card);
    user->setUseController(false);
    user->setting("pulse", "MeasParams")->tryChange(275);
    EXPECT_TRUE(told.isEmpty());
    user->setUseController(true);
    user->setting("pulse", "MeasParams")->tryChange(1000);
    EXPECT_EQ(told, (QVariantMap {{"MeasParams/pulse", 1000}}));
}

TEST(ZuConfigModel, KeepsChangesToItselfWithoutTheFile)
{
    const ConfigHome home;
    {
        const User user;
        user->setUseConfigFile(false);
        user->setting("pulse", "MeasParams")->tryChange(275);
        EXPECT_EQ(user->value("MeasParams", "pulse"), QVariant(275));
        EXPECT_EQ(onDisk(home, "MeasParams/pulse").toInt(), 100);
        user->setUseConfigFile(true);
        user->setting("pulse", "MeasParams")->tryChange(1000);
        EXPECT_EQ(user->value("MeasParams", "pulse"), QVariant(1000));
    }
    EXPECT_EQ(onDisk(home, "MeasParams/pulse").toInt(), 1000);
}
