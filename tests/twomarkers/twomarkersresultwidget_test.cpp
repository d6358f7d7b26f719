#include "tests/support/echo.h"
#include "twomarkers/twomarkersresultwidget.h"

#include <QGridLayout>
#include <QLabel>
#include <QStringList>

#include <gmock/gmock.h>

#include <limits>

namespace {

using Waveform::TwoMarkersResult;
using Waveform::TwoMarkersResultWidget;

class ResultTable : public testing::Test
{
protected:
    [[nodiscard]] QGridLayout* grid() const { return qobject_cast<QGridLayout*>(widget.layout()); }

    [[nodiscard]] QLabel* label(int row, int column) const
    {
        return qobject_cast<QLabel*>(grid()->itemAtPosition(row, column)->widget());
    }

    [[nodiscard]] QStringList column(int column) const
    {
        QStringList texts;
        for (int row = 0; row < grid()->rowCount(); ++row) {
            texts << label(row, column)->text();
        }
        return texts;
    }

    TwoMarkersResultWidget widget;
    const double nan = std::numeric_limits<double>::quiet_NaN();
};

TEST_F(ResultTable, HasARowForEachValue)
{
    EXPECT_EQ(column(0),
              QStringList(
                  {"A: ", "B: ", "Length: ", "Loss: ", "Attenuation: ", "Reflection: ", "ORL: "}));
    EXPECT_EQ(column(1), QStringList({"", "", "", "", "", "", ""}));
    EXPECT_EQ(grid()->verticalSpacing(), 0);
    EXPECT_EQ(grid()->alignment(), Qt::AlignRight | Qt::AlignTop);
}

TEST_F(ResultTable, LabelsAreToTheRightAndPlainText)
{
    widget.setResult(TwoMarkersResult());
    for (int row = 0; row < 7; ++row) {
        for (int column = 0; column < 2; ++column) {
            EXPECT_TRUE(label(row, column)->alignment() & Qt::AlignRight) << row << column;
            EXPECT_EQ(label(row, column)->textFormat(), Qt::PlainText) << row << column;
        }
    }
}

TEST_F(ResultTable, ShowsAResultAndLeavesTheReturnLossAlone)
{
    widget.setORL(33.333);
    widget.setResult(TwoMarkersResult(100.0, 1100.0, 40.0, 40.5, -45.678, 99.0));
    EXPECT_EQ(column(1),
              QStringList({"100.0 m", "1100.0 m", "1000.0 m", "-0.50 dB", "-0.500 dB/km",
                           "-45.68 dB", "33.33 dB"}));
}

TEST_F(ResultTable, ReflectionOfAFallingTraceIsADash)
{
    widget.setResult(TwoMarkersResult(100.0, 1100.0, 40.0, 39.65, 0.0, 0.0));
    EXPECT_EQ(label(5, 1)->text(), "-");
}

TEST_F(ResultTable, ReflectionThatIsNoNumberOrInfiniteIsADash)
{
    const double inf = std::numeric_limits<double>::infinity();
    for (const double reflection : {nan, inf, -inf}) {
        widget.setResult(TwoMarkersResult(100.0, 1100.0, 40.0, 40.5, -20.0, 0.0));
        EXPECT_EQ(label(5, 1)->text(), "-20.00 dB");
        widget.setResult(TwoMarkersResult(100.0, 1100.0, 40.0, 40.5, reflection, 0.0));
        EXPECT_EQ(label(5, 1)->text(), "-");
    }
}

TEST_F(ResultTable, ReturnLossThatIsNoNumberIsADash)
{
    widget.setORL(31.5);
    EXPECT_EQ(label(6, 1)->text(), "31.50 dB");
    widget.setORL(nan);
    EXPECT_EQ(label(6, 1)->text(), "-");
}

TEST_F(ResultTable, EndlessReturnLossIsShownAsOne)
{
    widget.setORL(std::numeric_limits<double>::infinity());
    EXPECT_EQ(label(6, 1)->text(), "inf dB");
}

TEST_F(ResultTable, CaptionsSpeakTheUsersLanguageButTheMarkersNamesDoNot)
{
    const testing_support::Echo echo;
    TwoMarkersResultWidget translated;
    const auto* rows = qobject_cast<QGridLayout*>(translated.layout());
    const auto text = [&](int row, int column) {
        return qobject_cast<QLabel*>(rows->itemAtPosition(row, column)->widget())->text();
    };
    QStringList captions;
    for (int row = 0; row < 7; ++row) {
        captions << text(row, 0);
    }
    EXPECT_EQ(captions,
              QStringList({"A: ", "B: ", "<Length: >", "<Loss: >", "<Attenuation: >",
                           "<Reflection: >", "<ORL: >"}));
    translated.setORL(31.5);
    EXPECT_EQ(text(6, 1), "31.50< dB>");
}

TEST_F(ResultTable, PlaceOfAIsAlignedAnewWithEachResult)
{
    label(0, 1)->setAlignment(Qt::AlignLeft);
    widget.setResult(TwoMarkersResult());
    EXPECT_TRUE(label(0, 1)->alignment() & Qt::AlignRight);
}

TEST_F(ResultTable, KeepsItsSizeWhileValuesChange)
{
    widget.setResult(TwoMarkersResult(100.0, 200.0, 40.0, 39.65, 0.0, 0.0));
    const QSize before = widget.sizeHint();
    widget.setResult(TwoMarkersResult(30100.0, 51200.0, 40.0, 11.65, 0.0, 0.0));
    EXPECT_EQ(widget.sizeHint(), before);
}

TEST_F(ResultTable, PaperLiesUnderTheLabelsAndNowhereElse)
{
    widget.setResult(TwoMarkersResult(100.0, 200.0, 40.0, 39.65, 0.0, 0.0));
    widget.resize(widget.sizeHint() + QSize(100, 50)); // as its place in a column may be
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    const QRect labels = widget.childrenRect();
    EXPECT_GT(qAlpha(image.pixel(labels.topLeft() + QPoint(-2, 2))), 200);
    EXPECT_LT(qAlpha(image.pixel(labels.topLeft() + QPoint(-2, 2))),
              255); // the trace shines through
    EXPECT_EQ(qAlpha(image.pixel(2, 2)), 0);
    EXPECT_EQ(qAlpha(image.pixel(image.width() - 2, image.height() - 2)), 0);
}

} // namespace
