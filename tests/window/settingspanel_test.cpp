#include "platform/launcher/choicepopup.h"
#include "platform/launcher/controlbottompanel.h"
#include "platform/launcher/historycombo.h"
#include "platform/launcher/linedlabel.h"
#include "platform/launcher/zuconfigmodel.h"
#include "tests/platform/launcher/confighome.h"
#include "window/settingchoices.h"
#include "window/settingspanel.h"

#include <QPushButton>
#include <QtTest>

#include <gmock/gmock.h>

#include <memory>

namespace {

using testing_support::ConfigHome;
using Waveform::SettingsPanel;

/// The panel with its boxes, on the configuration of a first start.
class Settings : public testing::Test
{
protected:
    Settings()
        : config(ZuConfigModel::instance(nullptr, "zuotdr"))
    {
    }

    ~Settings() override
    {
        settings.reset();
        panel.reset();
        config->freeLater();
    }

    void build(const QString& cardRevision = QString())
    {
        if (!cardRevision.isNull()) {
            ZuConfig::setForThisRun("zuotdr", "CardInfo", "HardwareRevision", cardRevision);
        }
        panel = std::make_unique<ControlBottomPanel>();
        auto* action = new QPushButton("Start");
        action->setFixedSize(100, 52);
        panel->setActionWidget(action, Qt::AlignBottom | Qt::AlignRight);
        settings = std::make_unique<SettingsPanel>(panel.get());
        settings->initSettings(config);
        panel->setFixedHeight(78);
        panel->resize(800, 78);
        panel->show();
    }

    HistoryCombo* time() const { return settings->settingCombos().at(0); }

    HistoryCombo* pulse() const { return settings->pulseCombo(); }

    HistoryCombo* distance() const { return settings->settingCombos().at(2); }

    HistoryCombo* wavelength() const { return settings->settingCombos().at(3); }

    QVariant stored(const char* key) const { return config->value("MeasParams", key); }

    void offer(const char* key, const QVariant& value)
    {
        config->setting(key, "MeasParams")->tryChange(value);
    }

    /// Taps the box, then the entry with this text.
    static void choose(HistoryCombo* combo, const QString& text)
    {
        QTest::mouseClick(combo, Qt::LeftButton, {}, combo->rect().center());
        const auto* popup = qobject_cast<ChoicePopup*>(QApplication::activePopupWidget());
        ASSERT_NE(popup, nullptr);
        for (QPushButton* button : popup->findChildren<QPushButton*>()) {
            if (button->text() == text) {
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
        ADD_FAILURE() << qPrintable(text) << " is not offered";
    }

    const ConfigHome home;
    ZuConfigModel* config;
    std::unique_ptr<ControlBottomPanel> panel;
    std::unique_ptr<SettingsPanel> settings;
};

TEST_F(Settings, StandFromRightToLeftUnderTheirTitles)
{
    build();
    ASSERT_EQ(settings->settingCombos().size(), 4);
    QStringList titles;
    int before = 10'000;
    for (const HistoryCombo* combo : settings->settingCombos()) {
        titles << combo->whatsThis();
        const int x = combo->mapTo(panel.get(), QPoint()).x();
        EXPECT_LT(x, before);
        before = x;
        EXPECT_EQ(combo->parentWidget()->findChild<LinedLabel*>()->text(), combo->whatsThis());
        EXPECT_FALSE(combo->history);
        EXPECT_EQ(combo->historyCount, 1);
        EXPECT_FALSE(combo->isEditable());
    }
    EXPECT_EQ(titles, QStringList({"Time", "Pulse", "Distance", "Wavelength"}));
    EXPECT_EQ(pulse(), settings->settingCombos().at(1));
}

TEST_F(Settings, FitTheInstrument)
{
    build();
    EXPECT_EQ(panel->width(), 800);
    for (const HistoryCombo* combo : settings->settingCombos()) {
        const QWidget* both = combo->parentWidget();
        EXPECT_GE(both->width(), 140);
        EXPECT_GE(combo->height(), 44);
        EXPECT_TRUE(panel->rect().contains(both->geometry()));
        EXPECT_TRUE(both->rect().contains(combo->geometry()));
        const auto* label = both->findChild<LinedLabel*>();
        EXPECT_GE(label->height(), label->sizeHint().height());
        EXPECT_LE(label->geometry().bottom(), combo->y());
    }
}

TEST_F(Settings, ShowWhatIsMeasuredFromTheFirstStart)
{
    build();
    EXPECT_EQ(time()->currentText(), "15 s");
    EXPECT_EQ(pulse()->currentText(), "100 ns");
    EXPECT_EQ(distance()->currentText(), "10 km");
    EXPECT_EQ(wavelength()->currentText(), "1310 nm");
}

TEST_F(Settings, ShowValuesOfThisRunAndOnesStoredAsText)
{
    ZuConfig("zuotdr", "MeasParams", "distance").store("40000");
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "pulse", "1000");
    build();
    EXPECT_EQ(distance()->currentData(), QVariant(40000));
    EXPECT_EQ(pulse()->currentData(), QVariant(1000));
    EXPECT_EQ(stored("distance"), QVariant(40000));
}

TEST_F(Settings, ChoiceIsOfferedToTheConfiguration)
{
    build();
    choose(distance(), "2.5 km");
    EXPECT_EQ(stored("distance"), QVariant(2500));
    EXPECT_EQ(distance()->currentText(), "2.5 km");
    choose(pulse(), "275 ns");
    EXPECT_EQ(stored("pulse"), QVariant(275));
}

TEST_F(Settings, InfinityStoresADurationOfZero)
{
    build();
    choose(time(), QString(QChar(0x221E)));
    EXPECT_EQ(stored("duration"), QVariant(0));
    choose(time(), "2 min");
    EXPECT_EQ(stored("duration"), QVariant(120));
}

TEST_F(Settings, AllStoresTheText)
{
    build();
    choose(wavelength(), "All");
    EXPECT_EQ(stored("wavelength"), QVariant(QString("all")));
}

TEST_F(Settings, FollowTheConfiguration)
{
    build();
    offer("wavelength", 1550);
    offer("duration", 0);
    EXPECT_EQ(wavelength()->currentText(), "1550 nm");
    EXPECT_EQ(time()->currentIndex(), 10);
    offer("wavelength", "all");
    EXPECT_EQ(wavelength()->currentText(), "All");
}

TEST_F(Settings, RefusedChoiceGoesBack)
{
    build();
    pulse()->addItem("7 ns", 7);
    choose(pulse(), "7 ns");
    EXPECT_EQ(stored("pulse"), QVariant(100));
    EXPECT_EQ(pulse()->currentText(), "100 ns");
}

TEST_F(Settings, StoredValueThatNoEntryHasLeavesTheBox)
{
    ZuConfig("zuotdr", "MeasParams", "distance").store("75000");
    build();
    EXPECT_EQ(distance()->currentText(), "1 km");
    EXPECT_EQ(stored("distance"), QVariant("75000"));
    choose(distance(), "1 km");
    EXPECT_EQ(stored("distance"), QVariant(1000)) << "box and measurement differ";
}

TEST_F(Settings, ValueThatNoEntryHasIsShownForItIsMeasured)
{
    ZuConfig("zuotdr", "MeasParams", "distance").store("75000");
    ZuConfig("zuotdr", "MeasParams", "wavelength").store("1549.5");
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "pulse", 7);
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "duration", 20);
    build();
    EXPECT_EQ(distance()->shownText(), "75 km");
    EXPECT_EQ(wavelength()->shownText(), "1549.5 nm");
    EXPECT_EQ(pulse()->shownText(), "7 ns");
    EXPECT_EQ(time()->shownText(), "20 s");
    choose(pulse(), "5 ns"); // where the box stood all the time
    EXPECT_EQ(pulse()->shownText(), "5 ns");
    EXPECT_EQ(stored("pulse"), QVariant(5));
    offer("distance", 40000);
    EXPECT_EQ(distance()->shownText(), "40 km");
}

TEST_F(Settings, LongestPulseOnACardWithoutItIsShownAsItIs)
{
    ZuConfig::setForThisRun("zuotdr", "MeasParams", "pulse", 20000);
    build("2.0");
    EXPECT_EQ(pulse()->shownText(), Waveform::longestPulseLabel());
    EXPECT_EQ(pulse()->count(), 8);
}

TEST_F(Settings, RunDisablesThemAll)
{
    build();
    settings->setEnabled(false);
    for (const HistoryCombo* combo : settings->settingCombos()) {
        EXPECT_FALSE(combo->isEnabled());
    }
    settings->setEnabled(true);
    for (const HistoryCombo* combo : settings->settingCombos()) {
        EXPECT_TRUE(combo->isEnabled());
    }
}

TEST_F(Settings, StoredValuesAreAskedForInTheirOrder)
{
    QStringList asked;
    for (const char* key : {"wavelength", "distance", "pulse", "duration"}) {
        const ZuSetting* setting = config->setting(key, "MeasParams");
        QObject::connect(setting, qOverload<const QVariant&>(&ZuSetting::changed),
                         [&asked, key] { asked << key; });
    }
    build();
    EXPECT_EQ(asked, QStringList({"duration", "pulse", "distance", "wavelength"}));
}

TEST_F(Settings, ChangeToARevisionOfTheSameKindChangesNothing)
{
    build("3.0");
    choose(pulse(), "1 " + QString(QChar(0xB5)) + "s");
    settings->onChangeCardRevision(4.0);
    EXPECT_EQ(pulse()->count(), 9);
    EXPECT_EQ(pulse()->currentData(), QVariant(1000));
    settings->onChangeCardRevision(2.49);
    settings->onChangeCardRevision(0.0);
    EXPECT_EQ(pulse()->count(), 8);
    EXPECT_EQ(pulse()->currentData(), QVariant(1000));
}

TEST_F(Settings, NewCardHasTheLongestPulseFromTheStart)
{
    build("3.0");
    EXPECT_EQ(pulse()->itemData(8), QVariant(20000));
    EXPECT_EQ(pulse()->count(), 9);
}

TEST_F(Settings, CardBetweenRevisionsGetsTheLongestPulseWithTheNextChange)
{
    build("2.5");
    EXPECT_EQ(pulse()->count(), 8);
    settings->onChangeCardRevision(2.5);
    ASSERT_EQ(pulse()->count(), 9);
    EXPECT_EQ(pulse()->itemText(8), QString("20 ") + QChar(0xB5) + "s");
    EXPECT_EQ(pulse()->itemData(8), QVariant(20000));
}

TEST_F(Settings, TenthRevisionStartsWithoutTheLongestPulse)
{
    build("10");
    EXPECT_EQ(pulse()->count(), 8);
    settings->onChangeCardRevision(10.0);
    EXPECT_EQ(pulse()->count(), 9);
}

TEST_F(Settings, LongestPulseComesAndGoesWithTheCard)
{
    build("3.0");
    settings->onChangeCardRevision(3.0);
    EXPECT_EQ(pulse()->count(), 9);
    settings->onChangeCardRevision(2.0);
    EXPECT_EQ(pulse()->findData(20000), -1);
    settings->onChangeCardRevision(1.0);
    EXPECT_EQ(pulse()->count(), 8);
    EXPECT_EQ(pulse()->currentText(), "100 ns");
    EXPECT_EQ(stored("pulse"), QVariant(100));
}

TEST_F(Settings, PulseThatGoesWhileItIsChosenGivesWayToTheNextShorter)
{
    build("3.0");
    choose(pulse(), QString("20 ") + QChar(0xB5) + "s");
    EXPECT_EQ(stored("pulse"), QVariant(20000));
    settings->onChangeCardRevision(2.0);
    EXPECT_EQ(pulse()->currentData(), QVariant(10000));
    EXPECT_EQ(stored("pulse"), QVariant(10000)) << "box and measurement differ";
}

} // namespace
