#include "plot/levelscaledraw.h"
#include "plot/plot.h"
#include "tests/support/inlocale.h"

#include <qwt_scale_div.h>
#include <qwt_text.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using Labels = std::vector<std::string>;
using testing::ElementsAre;
using testing_support::InLocale;

/// What stands at the ticks of the chart's level axis.
class LevelAxis : public testing::Test
{
protected:
    LevelAxis() { plot.enableAxis(QwtPlot::yLeft, true); }

    Labels labels(double from_dB, double to_dB, double step_dB = 0.0)
    {
        plot.setAxisScale(QwtPlot::yLeft, from_dB, to_dB, step_dB);
        plot.updateAxes();
        const QwtScaleDraw& draw = *plot.axisScaleDraw(QwtPlot::yLeft);
        Labels read;
        for (const double tick : draw.scaleDiv().ticks(QwtScaleDiv::MajorTick)) {
            read.push_back(draw.label(tick).text().toStdString());
        }
        return read;
    }

    const InLocale inC {QLocale::c()};
    Waveform::Plot plot;
};

TEST_F(LevelAxis, WholeDecibelsHaveNoDecimals)
{
    EXPECT_THAT(labels(0.0, 50.0), ElementsAre("0", "10", "20", "30", "40", "50"));
}

TEST_F(LevelAxis, LabelsHaveAsManyDecimalsAsEachOther)
{
    EXPECT_THAT(labels(26.0, 28.0, 0.5), ElementsAre("26.0", "26.5", "27.0", "27.5", "28.0"));
    EXPECT_THAT(labels(26.9, 27.1, 0.05), ElementsAre("26.90", "26.95", "27.00", "27.05", "27.10"));
}

TEST_F(LevelAxis, HundredthsAreToldWhereALittleIsSeen)
{
    EXPECT_THAT(labels(27.101, 27.151), ElementsAre("27.11", "27.12", "27.13", "27.14", "27.15"));
}

TEST_F(LevelAxis, LabelsAreTheLevelsWhereAStepIsNoPowerOfTen)
{
    EXPECT_THAT(labels(0.0, 10.0, 2.5), ElementsAre("0.0", "2.5", "5.0", "7.5", "10.0"));
}

TEST_F(LevelAxis, NothingReadsAsNothingBelowZeroToo)
{
    EXPECT_THAT(labels(-0.02, 0.02, 0.01), ElementsAre("-0.02", "-0.01", "0.00", "0.01", "0.02"));
    EXPECT_EQ(plot.axisScaleDraw(QwtPlot::yLeft)->label(-1e-9).text(), "0.00");
}

TEST_F(LevelAxis, TicksOffRoundLevelsAreToldApart)
{
    const double third = 1.0 / 3.0;
    plot.setAxisScaleDiv(QwtPlot::yLeft, QwtScaleDiv(0.0, 1.0, {}, {}, {0.0, third, 2.0 * third}));
    plot.updateAxes();
    const QwtScaleDraw& draw = *plot.axisScaleDraw(QwtPlot::yLeft);
    EXPECT_EQ(draw.label(third).text(), "0.3333");
    plot.setAxisScaleDiv(QwtPlot::yLeft, QwtScaleDiv(0.0, 1.0, {}, {}, {third}));
    plot.updateAxes();
    EXPECT_EQ(plot.axisScaleDraw(QwtPlot::yLeft)->label(third).text(), "0.333") << "of the span";
}

TEST_F(LevelAxis, LabelsHaveTheUsersDecimalMark)
{
    const InLocale inGermany(QLocale(QLocale::German));
    EXPECT_THAT(labels(26.0, 27.0, 0.5), ElementsAre("26,0", "26,5", "27,0"));
}

} // namespace
