// A measurement from the first touch to the saved files, and what is left of it after a restart.

#include "platform/otdr/reflectogram.h"
#include "tests/endtoend/useratthescreen.h"

namespace {

using namespace testing_support; // the fixture

constexpr double kFibreEnd_m = 8158.9;

class UserWhoMeasures : public UserAtTheScreen
{
protected:
    /// The simulated card, as fast as can be; the rest is chosen by touch.
    void startWithFibre()
    {
        start({"--time-scale", "0", "--seed", "1", "--fibre",
               QString(WAVEFORM_FIBRES) + "/demo-link.json"});
    }

    void chooseSettings()
    {
        choose("Pulse", "275 ns");
        choose("Distance", "20 km");
        choose("Wavelength", "All");
        choose("Time", "30 s");
    }

    /// The run may be over before it is seen: what it leaves is waited for.
    void measure()
    {
        tapNamed("actionButton");
        waitUntil(
            [this] {
                return plot().curves() == 2 && named("saveButton").isEnabled()
                    && box("Pulse").isEnabled() && named("actionButton").text() == "Start";
            },
            "the run is over");
    }

    void tapMarkersBar(const QString& text)
    {
        tapButton("Measurement");
        tapButton(text);
        waitUntil([&] { return button(text).isChecked(); }, "the mode is chosen");
    }

    /// What is proposed is chosen whole, so that the first key takes its place.
    void saveAs(const QString& name)
    {
        tapNamed("saveButton");
        waitUntil([this] { return !ofClass("QLineEdit").text().isEmpty(); }, "a name is proposed");
        for (const QChar letter : name) {
            tapInDialog(letter);
        }
        waitUntil([&] { return ofClass("QLineEdit").text() == name; }, "the name is typed");
        tapInDialog("Save");
    }
};

TEST_F(UserWhoMeasures, FindsItAllAgainAfterARestart)
{
    ASSERT_NO_FATAL_FAILURE(startWithFibre());
    ASSERT_NO_FATAL_FAILURE(chooseSettings());
    ASSERT_NO_FATAL_FAILURE(measure());

    ASSERT_NO_FATAL_FAILURE(tapButton("Events"));
    waitUntil([this] { return named("events").rows().size() > 5; }, "the events are there");
    ASSERT_NO_FATAL_FAILURE(tapButton("Reflectograms"));
    waitUntil([this] { return named("reflectograms").rows().size() == 2; }, "both traces are");
    const QList<SeenRow> traces = named("reflectograms").rows();
    EXPECT_EQ(traces[0].texts[2], "1310");
    EXPECT_EQ(traces[1].texts[2], "1550");
    EXPECT_NEAR(traces[1].texts[3].toDouble(), kFibreEnd_m, 20.0) << "the end of the fibre";
    EXPECT_EQ(traces[1].texts[4], "275");
    EXPECT_EQ(plot().curves(), 2);

    ASSERT_NO_FATAL_FAILURE(tapMarkersBar("2 pt + LSA"));
    ASSERT_NO_FATAL_FAILURE(saveAs("abc"));
    waitUntil([this] { return stored("abc*").size() == 6; }, "everything is saved");
    EXPECT_EQ(stored("abc*"),
              QStringList({"abc_1310nm.html", "abc_1310nm.png", "abc_1310nm.sor", "abc_1550nm.html",
                           "abc_1550nm.png", "abc_1550nm.sor"}));
    waitUntil([this] { return isSaid("abc_1550nm.html"); }, "the user is told of both traces");
    ASSERT_NO_FATAL_FAILURE(tapOk()); // until then the message grows
    for (const int wavelength : {1310, 1550}) {
        const Reflectogram saved(homePath(QString("otdr/abc_%1nm.sor").arg(wavelength)));
        ASSERT_TRUE(saved.isValid()) << qPrintable(saved.error());
        EXPECT_EQ(saved.wavelength(), wavelength);
        EXPECT_EQ(saved.pulseWidth(), 275.0);
        EXPECT_EQ(saved.parameters().duration, 30);
        EXPECT_NEAR(saved.endOfFiber(), kFibreEnd_m, 20.0);
    }
    ASSERT_NO_FATAL_FAILURE(quit());

    ASSERT_NO_FATAL_FAILURE(start({}));
    waitUntil([this] { return named("events").isThere() && named("reflectograms").isThere(); },
              "the tables that were shown");
    waitUntil([this] { return button("2 pt + LSA").isChecked(); }, "the bar and its mode");
    ASSERT_NO_FATAL_FAILURE(tapButton("Settings"));
    waitUntil([this] { return box("Pulse").isThere(); }, "the settings");
    EXPECT_EQ(box("Pulse").text(), "275 ns");
    EXPECT_EQ(box("Distance").text(), "20 km");
    EXPECT_EQ(box("Wavelength").text(), "All");
    EXPECT_EQ(box("Time").text(), "30 s");
    EXPECT_EQ(plot().axis("distances").second, 20'000.0);
    EXPECT_EQ(plot().curves(), 0) << "traces are not remembered";
    ASSERT_NO_FATAL_FAILURE(quit());
}
} // namespace
