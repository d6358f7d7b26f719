#include "platform/otdr/core/storedthresholds.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using otdr::DetectionSettings;
using otdr::sor::File;

File withThresholds(int loss, int reflectance)
{
    File file;
    file.fxd.lossThreshold = static_cast<std::uint16_t>(loss);
    file.fxd.reflectanceThreshold = static_cast<std::uint16_t>(reflectance);
    return file;
}

TEST(StoredThresholds, AreTakenFromTheFile)
{
    const DetectionSettings settings = storedThresholds(withThresholds(50, 60'000));
    EXPECT_DOUBLE_EQ(settings.loss_dB, 0.05);
    EXPECT_DOUBLE_EQ(settings.reflectance_dB, -60.0);
}

TEST(StoredThresholds, AreTheUsualOnesWhereTheFileGivesNone)
{
    const DetectionSettings usual;
    const DetectionSettings settings = storedThresholds(withThresholds(0, 0));
    EXPECT_EQ(settings.loss_dB, usual.loss_dB);
    EXPECT_EQ(settings.reflectance_dB, usual.reflectance_dB);
}

TEST(StoredThresholds, ImpossibleOnesAreNotBelieved)
{
    const DetectionSettings usual;
    EXPECT_EQ(storedThresholds(withThresholds(1001, 19'999)).loss_dB, usual.loss_dB);
    EXPECT_EQ(storedThresholds(withThresholds(1001, 19'999)).reflectance_dB, usual.reflectance_dB);
    EXPECT_DOUBLE_EQ(storedThresholds(withThresholds(1000, 20'000)).loss_dB, 1.0);
    EXPECT_DOUBLE_EQ(storedThresholds(withThresholds(1000, 20'000)).reflectance_dB, -20.0);
}

TEST(StoredThresholds, EveryReflectanceMeansTheUsualOne)
{
    EXPECT_EQ(storedThresholds(withThresholds(20, 65'535)).reflectance_dB,
              DetectionSettings().reflectance_dB);
}

TEST(StoredThresholds, ThresholdOfTheEndIsNotTaken)
{
    File file = withThresholds(50, 60'000);
    file.fxd.endThreshold = 20'000;
    EXPECT_EQ(storedThresholds(file).end_dB, DetectionSettings().end_dB);
}

TEST(StoredThresholds, StoredOnesAreReadAgain)
{
    DetectionSettings settings;
    settings.loss_dB = 0.02;
    settings.reflectance_dB = -62.0;
    File file;
    storeThresholds(settings, file);
    EXPECT_EQ(file.fxd.endThreshold, 3000);
    EXPECT_DOUBLE_EQ(storedThresholds(file).loss_dB, 0.02);
    EXPECT_DOUBLE_EQ(storedThresholds(file).reflectance_dB, -62.0);
}

/// -70 dB is below what the field can hold.
TEST(StoredThresholds, UsualOnesAreReadAgain)
{
    const DetectionSettings usual;
    File file;
    storeThresholds(usual, file);
    EXPECT_EQ(file.fxd.reflectanceThreshold, 65'535);
    EXPECT_DOUBLE_EQ(storedThresholds(file).loss_dB, usual.loss_dB);
    EXPECT_DOUBLE_EQ(storedThresholds(file).reflectance_dB, usual.reflectance_dB);
}

} // namespace
