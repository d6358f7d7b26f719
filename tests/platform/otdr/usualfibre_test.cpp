#include "platform/otdr/usualfibre.h"
#include "tests/support/tracefiles.h"

#include <gtest/gtest.h>

namespace {

using testing_support::SorSketch;
using testing_support::TraceFiles;

TEST(UsualFibre, IsThatOfTheNearestWavelengthInTheTable)
{
    for (const OTDR::UsualFibre& fibre : OTDR::kUsualFibre) {
        EXPECT_EQ(&OTDR::usualFibre(fibre.wavelength_nm), &fibre) << fibre.wavelength_nm;
    }
    EXPECT_EQ(OTDR::usualFibre(0).wavelength_nm, 1310) << "nobody knows it";
    EXPECT_EQ(OTDR::usualFibre(850).wavelength_nm, 1310);
    EXPECT_EQ(OTDR::usualFibre(1383).wavelength_nm, 1310);
    EXPECT_EQ(OTDR::usualFibre(1577).wavelength_nm, 1550);
    EXPECT_EQ(OTDR::usualFibre(1650).wavelength_nm, 1625);
}

TEST(UsualFibre, ScattersForAFileThatDoesNotTellHow)
{
    const TraceFiles files;
    for (const OTDR::UsualFibre& fibre : OTDR::kUsualFibre) {
        SorSketch sketch = SorSketch::plain();
        sketch.gen.wavelength_nm = static_cast<std::uint16_t>(fibre.wavelength_nm);
        sketch.fxd.actualWavelength = 0;
        sketch.fxd.backscatter = 0;
        EXPECT_EQ(Reflectogram(files.write("untold.sor", sketch)).parameters().rbs,
                  fibre.backscatter_dB)
            << fibre.wavelength_nm;
    }
}

} // namespace
