#include "platform/launcher/appearance.h"
#include "platform/launcher/nightswitch.h"
#include "platform/launcher/palettefactory.h"
#include "platform/launcher/zuconfig.h"
#include "platform/launcher/zuconfigmodel.h"
#include "tests/platform/launcher/confighome.h"
#include "tests/platform/launcher/look.h"
#include "tests/support/contrast.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QtTest>

#include <gtest/gtest.h>

namespace {

using namespace testing_support;

/// The application as its user finds it, on a configuration of its own.
class Look : public testing::Test
{
protected:
    static QPalette palette(PaletteFactory::Light light)
    {
        return PaletteFactory::getPalette("Application", light);
    }

    static bool isNight()
    {
        return QApplication::palette() == palette(PaletteFactory::Light::Night);
    }

    static void store(const QVariant& value)
    {
        ZuConfig("zu-launcher", "Display", "night").store(value);
    }

    static QString stored() { return ZuConfig("zu-launcher", "Display", "night").toString(); }

    const ConfigHome home;
    const LookKept before {};
};

TEST_F(Look, IsThatOfTheDayAtTheFirstStart)
{
    const Appearance appearance;
    EXPECT_EQ(QApplication::palette(), palette(PaletteFactory::Light::Day));
    EXPECT_EQ(QToolTip::palette(), palette(PaletteFactory::Light::Day));
    EXPECT_EQ(stored(), "false");
}

TEST_F(Look, IsAtTheStartAsItWasLeft)
{
    store(true);
    const Appearance appearance;
    EXPECT_TRUE(isNight());
    EXPECT_EQ(QToolTip::palette(), palette(PaletteFactory::Light::Night));
    const NightSwitch night;
    EXPECT_TRUE(night.isChecked());
}

TEST_F(Look, StandsAStoredValueThatIsNone)
{
    for (const char* odd : {"", "maybe", "7", "0.5"}) {
        store(odd);
        const Appearance appearance;
        EXPECT_FALSE(isNight()) << odd;
        const NightSwitch night;
        EXPECT_FALSE(night.isChecked()) << odd;
    }
}

TEST_F(Look, ChangesAtOnceAndForGoodWhenTheSwitchIsTouched)
{
    const Appearance appearance;
    QWidget page;
    NightSwitch night(&page);
    page.show();
    QTest::mouseClick(&night, Qt::LeftButton);
    EXPECT_TRUE(isNight());
    EXPECT_EQ(page.palette().color(QPalette::Window),
              palette(PaletteFactory::Light::Night).color(QPalette::Window));
    EXPECT_EQ(stored(), "true");
    QTest::mouseClick(&night, Qt::LeftButton);
    EXPECT_FALSE(isNight());
    EXPECT_EQ(stored(), "false");
}

TEST_F(Look, ChangesByKeys)
{
    const Appearance appearance;
    NightSwitch night;
    bool expected = false;
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        QTest::keyClick(&night, key);
        expected = !expected;
        EXPECT_EQ(isNight(), expected) << key;
    }
}

TEST_F(Look, FollowsTheSettingWhoeverChangesIt)
{
    const Appearance appearance;
    const NightSwitch night;
    ZuConfigModel* config = ZuConfigModel::instance(nullptr, "zu-launcher");
    config->setting("night", "Display")->tryChange(QVariant(true));
    EXPECT_TRUE(isNight());
    EXPECT_TRUE(night.isChecked());
    config->setting("night", "Display")->tryChange(QVariant("sometimes"));
    EXPECT_TRUE(isNight()) << "refused";
    config->freeLater();
}

TEST_F(Look, LastsForThisRunOnlyWhereItIsSetForThisRun)
{
    ZuConfig::setForThisRun("zu-launcher", "Display", "night", true);
    const Appearance appearance;
    EXPECT_TRUE(isNight());
    ZuConfig::clearThisRun();
    EXPECT_EQ(stored(), "false");
}

TEST_F(Look, SwitchIsLargeEnoughAndHasAName)
{
    const NightSwitch night;
    EXPECT_GE(night.sizeHint().width(), 44);
    EXPECT_GE(night.sizeHint().height(), 44);
    EXPECT_FALSE(night.accessibleName().isEmpty());
    EXPECT_FALSE(night.toolTip().isEmpty());
}

TEST_F(Look, SwitchShowsItsMoonInBothLights)
{
    const Appearance appearance;
    NightSwitch night;
    night.resize(52, 44);
    for (int i = 0; i < 2; ++i) {
        const QImage picture = night.grab().toImage();
        const QColor paper = picture.pixelColor(8, 22);
        int inked = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 12; x < 40; ++x) {
                inked += contrast(picture.pixelColor(x, y), paper) >= 4.5 ? 1 : 0;
            }
        }
        EXPECT_GT(inked, 60) << "checked " << night.isChecked();
        night.click();
    }
}

TEST_F(Look, FontIsOneThatComesWithThePackageAndKeepsItsSize)
{
    QFont sized;
    sized.setPointSize(13);
    const QFont font = Appearance::textFont(sized);
    EXPECT_EQ(font.pointSize(), 13);
    EXPECT_EQ(QFontInfo(font).family(), "Liberation Sans");
    EXPECT_TRUE(font.families().contains("DejaVu Sans"));
    const Appearance appearance;
    EXPECT_EQ(QApplication::font().families(), font.families());
}

TEST_F(Look, DigitsOfItsFontsAreAllOfOneWidth)
{
    int tested = 0;
    const QStringList families = Appearance::textFont({}).families();
    for (const QString& family : families) {
        for (const bool isBold : {false, true}) {
            QFont font(family);
            font.setBold(isBold);
            const QFontMetricsF metrics(font);
            for (const char digit : std::string("123456789")) {
                EXPECT_EQ(metrics.horizontalAdvance(QChar(digit)), metrics.horizontalAdvance('0'))
                    << qPrintable(family) << " " << digit;
                ++tested;
            }
        }
    }
    EXPECT_GE(tested, 18);
}

TEST_F(Look, OtherLettersComeFromAnotherFont)
{
    const QFontMetrics metrics(Appearance::textFont({}));
    for (const uint letter : {0x221Eu, 0x03BBu, 0x00B5u, 0x0416u, 0x2026u}) {
        EXPECT_TRUE(metrics.inFontUcs4(letter)) << letter;
    }
}

} // namespace
