#include "plot/levelscaledraw.h"
#include "plot/plot.h"
#include "tests/plot/labelink.h"
#include "tests/support/inlocale.h"

#include <qwt_scale_div.h>
#include <qwt_scale_widget.h>
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

TEST_F(LevelAxis, NoLabelTouchesAnotherOnALowChart)
{
    const QwtScaleWidget& axis = *plot.axisWidget(QwtPlot::yLeft);
    const int digit = QFontMetrics(axis.font()).tightBoundingRect("0123456789.").height();
    for (const int height : {160, 190, 300, 600}) {
        plot.resize(800, height);
        for (const double span_dB : {50.0, 25.0, 12.5, 6.25, 3.125, 1.5625, 0.8, 0.4, 0.05}) {
            labels(25.0 - 0.5 * span_dB, 25.0 + 0.5 * span_dB);
            const std::vector<int> lines = testing_support::labelHeights(plot);
            EXPECT_GE(lines.size(), 2U) << span_dB << " dB on " << height;
            EXPECT_THAT(lines, testing::Each(testing::Le(digit + 1)))
                << span_dB << " dB on " << height;
        }
    }
}

TEST_F(LevelAxis, EveryTickHasItsLabelWhereThereIsRoom)
{
    plot.resize(800, 480);
    const Labels all = labels(0.0, 50.0);
    EXPECT_EQ(testing_support::labelHeights(plot).size(), all.size());
}

TEST_F(LevelAxis, LabelsHaveTheUsersDecimalMark)
{
    const InLocale inGermany {QLocale(QLocale::German)};
    EXPECT_THAT(labels(26.0, 27.0, 0.5), ElementsAre("26,0", "26,5", "27,0"));
}

} // namespace
