#include "programs/wfgather/settings.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace {

using gather::readSettings;
using gather::Settings;
using otdr::ErrorCode;
using testing::ElementsAre;
using testing::HasSubstr;

class SettingsFile : public testing::Test
{
protected:
    std::string path() const { return directory.filePath("settings").toStdString(); }

    otdr::Result<Settings> read(const QByteArray& text)
    {
        QFile file(directory.filePath("settings"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        return readSettings(path());
    }

    /// The error of a file with one line in section MeasParams.
    std::string errorOf(const QByteArray& line, const QByteArray& section = "MeasParams")
    {
        const auto settings = read("[" + section + "]\n" + line + "\n");
        return settings ? "none" : settings.error().message;
    }

    QTemporaryDir directory;
};

} // namespace

TEST_F(SettingsFile, ReadsWhatTheApplicationWrites)
{
    {
        QSettings file(QString::fromStdString(path()), QSettings::NativeFormat);
        file.setValue("MeasParams/duration", 30);
        file.setValue("MeasParams/pulse", "275");
        file.setValue("MeasParams/distance", 20000.0);
        file.setValue("MeasParams/wavelength", 1550);
        file.setValue("MeasParams/ior1310", 1.4676);
        file.setValue("MeasParams/ior1550", "1.4684");
        file.setValue("MeasParams/helix", 0.5);
        file.setValue("MeasParams/rbs", -80.25);
        file.setValue("Simulation/fibre", "/some/where, else/fibre.json");
        file.setValue("Simulation/replay", QString::fromUtf8("/tr\u00e5ce.sor"));
        file.setValue("Simulation/seed", 4294967295U);
        file.setValue("Simulation/timeScale", 0.25);
        file.setValue("AdvancedParams/MeasMode", 1);
    }
    const auto settings = readSettings(path());
    ASSERT_TRUE(settings) << settings.error().message;
    EXPECT_EQ(settings->duration_s, 30);
    EXPECT_EQ(settings->pulse_ns, 275);
    EXPECT_EQ(settings->distance_m, 20000.0);
    EXPECT_THAT(settings->wavelengths_nm, ElementsAre(1550));
    EXPECT_EQ(settings->ior1310, 1.4676);
    EXPECT_EQ(settings->ior1550, 1.4684);
    EXPECT_EQ(settings->helix_percent, 0.5);
    EXPECT_EQ(settings->backscatter_dB, -80.25);
    EXPECT_EQ(settings->fibre, "/some/where, else/fibre.json");
    EXPECT_EQ(settings->replay,
              QFile::encodeName(QString::fromUtf8("/tr\u00e5ce.sor")).toStdString());
    EXPECT_EQ(settings->seed, 4294967295U);
    EXPECT_EQ(settings->timeScale, 0.25);
}

TEST_F(SettingsFile, APathWrittenByHandIsUtf8)
{
    const auto settings = read("[Simulation]\nfibre=/tr\xc3\xa5"
                               "d.json\n");
    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->fibre,
              QFile::encodeName(QString::fromUtf8("/tr\u00e5d.json")).toStdString());
}

TEST_F(SettingsFile, AnEmptyFileIsTheDefaultMeasurement)
{
    const auto settings = read("");
    ASSERT_TRUE(settings) << settings.error().message;
    EXPECT_EQ(settings->duration_s, 15);
    EXPECT_EQ(settings->pulse_ns, 100);
    EXPECT_EQ(settings->distance_m, 10000.0);
    EXPECT_THAT(settings->wavelengths_nm, ElementsAre(1310));
    EXPECT_EQ(settings->ior1310, 1.4677);
    EXPECT_EQ(settings->ior1550, 1.4683);
    EXPECT_EQ(settings->helix_percent, 0.0);
    EXPECT_FALSE(settings->backscatter_dB);
    EXPECT_EQ(settings->fibre, "");
    EXPECT_EQ(settings->replay, "");
    EXPECT_FALSE(settings->seed);
    EXPECT_EQ(settings->timeScale, 1.0);
    EXPECT_FALSE(settings->isRealtime());
}

TEST_F(SettingsFile, AllIsTheShortAndThenTheLongWavelength)
{
    EXPECT_THAT(read("[MeasParams]\nwavelength=all\n")->wavelengths_nm, ElementsAre(1310, 1550));
}

TEST_F(SettingsFile, AWavelengthIsRoundedAndAPulseIsCut)
{
    const auto settings = read("[MeasParams]\nwavelength=1549.5\npulse=275.9\n");
    ASSERT_TRUE(settings);
    EXPECT_THAT(settings->wavelengths_nm, ElementsAre(1550));
    EXPECT_EQ(settings->pulse_ns, 275);
}

TEST_F(SettingsFile, TheIndexIsThatOfTheNearerWavelength)
{
    Settings settings;
    EXPECT_EQ(settings.paramsAt(1310).ior, settings.ior1310);
    EXPECT_EQ(settings.paramsAt(1383).ior, settings.ior1310);
    EXPECT_EQ(settings.paramsAt(1550).ior, settings.ior1550);
    EXPECT_EQ(settings.paramsAt(1625).ior, settings.ior1550);
}

TEST_F(SettingsFile, ParametersOfATraceAreThoseSet)
{
    const auto settings = read("[MeasParams]\nduration=60\npulse=30\ndistance=5000\nhelix=1.5\n"
                               "rbs=-77.5\n");
    ASSERT_TRUE(settings);
    const gather::TraceParams params = settings->paramsAt(1550);
    EXPECT_EQ(params.wavelength_nm, 1550);
    EXPECT_EQ(params.duration_s, 60);
    EXPECT_EQ(params.pulse_ns, 30);
    EXPECT_EQ(params.distance_m, 5000.0);
    EXPECT_EQ(params.helix_percent, 1.5);
    EXPECT_EQ(params.backscatter_dB, -77.5);
}

TEST_F(SettingsFile, DurationZeroIsRealtime)
{
    EXPECT_TRUE(read("[MeasParams]\nduration=0\n")->isRealtime());
    EXPECT_THAT(errorOf("duration=0\nwavelength=all"), HasSubstr("MeasParams/wavelength"));
}

TEST_F(SettingsFile, ABadNumberIsNamedWithItsRange)
{
    for (const char* key :
         {"duration", "pulse", "distance", "wavelength", "ior1310", "ior1550", "helix", "rbs"}) {
        for (const char* value :
             {"", "abc", "1 2", "-1e9", "1e99", "1e999", "nan", "inf", "12 km", "0,5",
              R"(@Variant(\0\0\0\x1\x1))", "@Invalid()", "@ByteArray(xyz)"}) {
            const std::string error = errorOf(QByteArray(key) + "=" + value);
            EXPECT_THAT(error, HasSubstr(std::string("MeasParams/") + key)) << value;
            EXPECT_THAT(error, HasSubstr("settings: ")) << value;
            EXPECT_EQ(error.find('\n'), std::string::npos);
        }
    }
}

TEST_F(SettingsFile, ValuesBesideTheirRangeAreRefused)
{
    for (const char* line :
         {"duration=-1", "duration=36001", "pulse=0", "pulse=65536", "distance=9",
          "distance=500001", "wavelength=0", "wavelength=3000", "wavelength=ALL", "ior1310=1.29",
          "ior1310=1.71", "ior1550=0", "helix=26", "helix=-26", "rbs=0", "rbs=66.3"}) {
        const std::string key = line;
        EXPECT_THAT(errorOf(line), HasSubstr("MeasParams/" + key.substr(0, key.find('='))));
    }
    for (const char* line : {"seed=-1", "seed=4294967296", "seed=1.5", "seed=x", "timeScale=-0.1",
                             "timeScale=nan", "timeScale=1001"}) {
        const std::string key = line;
        EXPECT_THAT(errorOf(line, "Simulation"),
                    HasSubstr("Simulation/" + key.substr(0, key.find('='))));
    }
}

TEST_F(SettingsFile, ALongBadValueIsNotRepeatedInFull)
{
    EXPECT_LT(errorOf("pulse=" + QByteArray(100000, '7')).size(), 300U);
}

TEST_F(SettingsFile, OnlyTheFirstMistakeIsTold)
{
    const std::string error = errorOf("pulse=x\ndistance=y");
    EXPECT_THAT(error, HasSubstr("pulse"));
    EXPECT_THAT(error, testing::Not(HasSubstr("distance")));
}

TEST_F(SettingsFile, WhatIsNotThereOrNoFileIsAnError)
{
    EXPECT_EQ(readSettings(path() + "-none").error().code, ErrorCode::CannotOpen);
    EXPECT_EQ(readSettings(directory.path().toStdString()).error().code, ErrorCode::CannotOpen);
    EXPECT_EQ(readSettings("/dev/zero").error().code, ErrorCode::CannotOpen);
    EXPECT_EQ(readSettings("").error().code, ErrorCode::CannotOpen);
}

TEST_F(SettingsFile, AnEndlessFileIsNotRead)
{
    QFile file(directory.filePath("settings"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(qint64 {1} << 33));
    EXPECT_EQ(readSettings(path()).error().code, ErrorCode::TooLarge);
}

TEST_F(SettingsFile, AnythingElseDoesNoHarm)
{
    QByteArray noise;
    for (int i = 0; i < 5000; ++i) {
        noise.append(static_cast<char>((i * 7919) >> 3));
    }
    for (int length = 0; length < noise.size(); length += 97) {
        const auto settings = read(noise.left(length));
        EXPECT_TRUE(settings || !settings.error().message.empty());
    }
}
