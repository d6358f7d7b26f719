#include "bench/matching.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using accuracy::matched;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Matching, TakesNothingFromBeyondTheReach)
{
    EXPECT_THAT(matched({105.0}, {100.0}, 5.0), ElementsAre(0));
    EXPECT_THAT(matched({105.1}, {100.0}, 5.0), ElementsAre(-1));
}

TEST(Matching, LetsOneFoundPlaceTellOneTrueOne)
{
    EXPECT_THAT(matched({101.0}, {100.0, 103.0}, 5.0), ElementsAre(0, -1));
}

TEST(Matching, LetsOneTruePlaceBeToldOnce)
{
    EXPECT_THAT(matched({98.0, 101.0}, {100.0}, 5.0), ElementsAre(1));
}

TEST(Matching, PairsTheNearestFirst)
{
    // In order of place, 103 would tell 100 and leave nothing to 104.
    EXPECT_THAT(matched({103.0}, {100.0, 104.0}, 5.0), ElementsAre(-1, 0));
    EXPECT_THAT(matched({99.0, 103.0}, {100.0, 104.0}, 5.0), ElementsAre(0, 1));
}

TEST(Matching, KnowsOfNothing)
{
    EXPECT_THAT(matched({}, {100.0}, 5.0), ElementsAre(-1));
    EXPECT_THAT(matched({100.0}, {}, 5.0), IsEmpty());
}

} // namespace
