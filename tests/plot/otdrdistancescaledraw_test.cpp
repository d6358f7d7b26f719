#include "plot/otdrdistancescaledraw.h"
#include "plot/plot.h"
#include "tests/plot/labelink.h"
#include "tests/support/echo.h"

#include <qwt_scale_div.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

#include <QLocale>

#include <gmock/gmock.h>

namespace {

class DistanceAxis : public testing::Test
{
protected:
    DistanceAxis() { plot.enableAxis(QwtPlot::xBottom, true); }

    ~DistanceAxis() override { QLocale::setDefault(QLocale::c()); }

    /// Decimals and metres per unit, such as "1/1000".
    std::string precision(double from_m, double to_m)
    {
        show(from_m, to_m);
        unsigned int decimals = 99;
        unsigned int divisor = 99;
        draw()->calcPrecision(&decimals, &divisor);
        return std::to_string(decimals) + "/" + std::to_string(divisor);
    }

    std::string label(double from_m, double to_m, double value_m)
    {
        show(from_m, to_m);
        return draw()->label(value_m).text().toStdString();
    }

    std::string title(double from_m, double to_m)
    {
        show(from_m, to_m);
        return plot.axisWidget(QwtPlot::xBottom)->title().text().toStdString();
    }

    void show(double from_m, double to_m)
    {
        plot.setAxisScaleDiv(QwtPlot::xBottom, QwtScaleDiv(from_m, to_m));
        plot.updateAxes();
    }

    OtdrDistanceScaleDraw* draw()
    {
        return dynamic_cast<OtdrDistanceScaleDraw*>(plot.axisScaleDraw(QwtPlot::xBottom));
    }

    Waveform::Plot plot;
};

TEST_F(DistanceAxis, SpanOfNothingReadsInMetresWithTwoDecimals)
{
    EXPECT_EQ(precision(5.0, 5.0), "2/1");
    EXPECT_EQ(precision(5.0, 5.9), "2/1");
    EXPECT_EQ(precision(10.0, 5.0), "2/1");
    EXPECT_EQ(precision(5000.0, 5000.0), "2/1");
}

TEST_F(DistanceAxis, SpanBelowTenMetresReadsInTenthsWhereverItLies)
{
    EXPECT_EQ(precision(0.0, 1.0), "1/1");
    EXPECT_EQ(precision(0.0, 9.9), "1/1");
    EXPECT_EQ(precision(40000.0, 40009.0), "1/1");
}

TEST_F(DistanceAxis, ShortSpanNearTheStartReadsInWholeMetres)
{
    EXPECT_EQ(precision(0.0, 10.0), "0/1");
    EXPECT_EQ(precision(0.0, 499.0), "0/1");
    EXPECT_EQ(precision(0.0, 999.0), "0/1");
    EXPECT_EQ(precision(999.0, 1998.0), "0/1");
}

TEST_F(DistanceAxis, ShortSpanFarAwayReadsInKilometresThatKeepTheMetre)
{
    EXPECT_EQ(precision(1000.0, 1010.0), "3/1000");
    EXPECT_EQ(precision(1000.0, 1099.0), "3/1000");
    EXPECT_EQ(precision(1000.0, 1100.0), "2/1000");
    EXPECT_EQ(precision(1000.0, 1499.0), "2/1000");
    EXPECT_EQ(precision(1000.0, 1500.0), "1/1000");
    EXPECT_EQ(precision(1000.0, 1999.0), "1/1000");
}

TEST_F(DistanceAxis, LongSpanReadsInKilometresWhereverItLies)
{
    EXPECT_EQ(precision(0.0, 1000.0), "1/1000");
    EXPECT_EQ(precision(0.0, 4999.0), "1/1000");
    EXPECT_EQ(precision(0.0, 5000.0), "0/1000");
    EXPECT_EQ(precision(2000.0, 80000.0), "0/1000");
    EXPECT_EQ(precision(0.0, 1e12), "0/1000"); // more than an int holds
}

TEST_F(DistanceAxis, LabelIsTheDistanceInTheUnitOfTheTitle)
{
    EXPECT_EQ(label(0.0, 500.0, 250.0), "250");
    EXPECT_EQ(label(0.0, 4000.0, 1500.0), "1.5");
    EXPECT_EQ(label(1000.0, 1050.0, 1025.0), "1.025");
    EXPECT_EQ(label(0.0, 80000.0, 40000.0), "40");
}

TEST_F(DistanceAxis, LabelFollowsTheLocale)
{
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(label(0.0, 4000.0, 1500.0), "1,5");
    EXPECT_EQ(label(12340.0, 12345.0, 12342.5), "12.342,5") << "digits are grouped as well";
}

TEST_F(DistanceAxis, NoLabelTouchesAnotherWhateverIsShown)
{
    for (const int width : {480, 800, 1280}) {
        plot.resize(width, 400);
        for (const double from_m : {0.0, 950.0, 9'990.0, 67'449.3, 124'493.7, 260'000.1}) {
            for (double span_m = 0.5; span_m < 300'000.0; span_m *= 2.3) {
                plot.setAxisScale(QwtPlot::xBottom, from_m, from_m + span_m);
                plot.updateAxes();
                const std::vector<int> words = testing_support::labelWidths(plot);
                const QFont font = plot.axisWidget(QwtPlot::xBottom)->font();
                EXPECT_GE(words.size(), 1U) << from_m << " m + " << span_m << " m on " << width;
                EXPECT_THAT(words, testing::Each(testing::Le(draw()->maxLabelWidth(font))))
                    << from_m << " m + " << span_m << " m on " << width;
            }
        }
    }
}

TEST_F(DistanceAxis, EveryTickHasItsLabelWhereThereIsRoom)
{
    plot.resize(800, 400);
    plot.setAxisScale(QwtPlot::xBottom, 0.0, 80'000.0);
    plot.updateAxes();
    EXPECT_EQ(testing_support::labelWidths(plot).size(),
              static_cast<std::size_t>(draw()->scaleDiv().ticks(QwtScaleDiv::MajorTick).size()));
}

TEST_F(DistanceAxis, TitleSpeaksTheUsersLanguage)
{
    const testing_support::Echo language;
    EXPECT_EQ(title(0.0, 4000.0), "<km>");
    EXPECT_EQ(title(0.0, 400.0), "<m>");
}

TEST_F(DistanceAxis, ScaleBelongsToItsAxis)
{
    EXPECT_EQ(draw()->parent(), plot.axisWidget(QwtPlot::xBottom));
}

TEST_F(DistanceAxis, TitleIsRightFromTheStartAndFollowsEveryChange)
{
    EXPECT_EQ(plot.axisWidget(QwtPlot::xBottom)->title().text(), "m");
    EXPECT_EQ(title(0.0, 4000.0), "km");
    EXPECT_EQ(title(0.0, 400.0), "m");
    EXPECT_EQ(title(999.0, 1998.0), "m");
    EXPECT_EQ(title(1000.0, 1999.0), "km");
    EXPECT_EQ(plot.axisWidget(QwtPlot::xBottom)->title().renderFlags(),
              Qt::AlignRight | Qt::AlignVCenter);
}

} // namespace
