#include "platform/otdr/core/sorreader.h"
#include "tests/platform/otdr/core/sorreading.h"
#include "tests/support/sorsketch.h"

#include <gmock/gmock.h>

namespace {

namespace sor = otdr::sor;
using otdr::readSor;
using testing_support::ChecksumRecipe;
using testing_support::readSketch;
using testing_support::SorSketch;

TEST(SorChecksum, KnowsTheFourChecksumRecipes)
{
    SorSketch sketch = SorSketch::plain();
    for (const int version : {1, 2}) {
        sketch.version = version;
        for (const auto recipe :
             {ChecksumRecipe::FromFfff, ChecksumRecipe::FromZero,
              ChecksumRecipe::FromFfffBeforeBlock, ChecksumRecipe::FromZeroBeforeBlock}) {
            sketch.checksum = recipe;
            EXPECT_EQ(readSketch(sketch).checksum, sor::Checksum::Matches)
                << static_cast<int>(recipe);
        }
    }
}

TEST(SorChecksum, NeverRefusesAFileOverItsChecksum)
{
    SorSketch sketch = SorSketch::plain();
    sketch.checksum = ChecksumRecipe::Zero;
    EXPECT_EQ(readSketch(sketch).checksum, sor::Checksum::NotComputed);
    sketch.checksum = ChecksumRecipe::Private;
    EXPECT_EQ(readSketch(sketch).checksum, sor::Checksum::Unknown);
    sketch.checksum = ChecksumRecipe::NoBlock;
    EXPECT_EQ(readSketch(sketch).checksum, sor::Checksum::Missing);
}

TEST(SorChecksum, SparesTheChecksumOnRequest)
{
    EXPECT_EQ(readSor(SorSketch::plain().share(), {false})->checksum, sor::Checksum::NotChecked);
    SorSketch sketch = SorSketch::plain();
    sketch.checksum = ChecksumRecipe::NoBlock;
    EXPECT_EQ(readSor(sketch.share(), {false})->checksum, sor::Checksum::Missing);
}

} // namespace
