// What the chart says of a trace whose distances are not known.

#include "tests/window/screen.h"

#include <QLabel>

namespace {

using namespace testing_support; // the fixture

class TraceWithoutDistances : public Screen
{
protected:
    QLabel* note() const { return window->findChild<QLabel*>("distanceNote"); }

    Reflectogram loadBare()
    {
        SorSketch sketch = SorSketch::plain();
        sketch.leftOut = {"FxdParams"};
        return load("bare.sor", sketch);
    }
};

TEST_F(TraceWithoutDistances, IsSaidToHaveNoneAsLongAsItIsTheMainOne)
{
    EXPECT_FALSE(note()->isVisible());
    const Reflectogram known = load("known.sor");
    EXPECT_FALSE(note()->isVisible());
    const Reflectogram bare = loadBare();
    EXPECT_TRUE(note()->isVisible());
    refls()->setMainRefl(known);
    EXPECT_FALSE(note()->isVisible());
    refls()->setMainRefl(bare);
    EXPECT_TRUE(note()->isVisible());
    refls()->deleteRefl(bare);
    EXPECT_FALSE(note()->isVisible());
}

TEST_F(TraceWithoutDistances, LeavesNoWordsBehind)
{
    loadBare();
    EXPECT_NEAR(view().width(), 3999.0, 0.5) << "a metre is a sample";
    refls()->deleteRefl(0);
    EXPECT_FALSE(note()->isVisible());
    loadBare();
    EXPECT_TRUE(note()->isVisible());
    refls()->deleteAllRefls();
    EXPECT_FALSE(note()->isVisible());
}

TEST_F(TraceWithoutDistances, WordsFitTheirCornerAndLetTouchesThrough)
{
    loadBare();
    QCoreApplication::processEvents();
    EXPECT_GE(note()->height(), note()->heightForWidth(note()->width()));
    EXPECT_TRUE(plot()->canvas()->rect().contains(note()->geometry()));
    EXPECT_NE(plot()->canvas()->childAt(note()->geometry().center()), note());
}

TEST_F(TraceWithoutDistances, WordsCoverTheLinesBehindThem)
{
    loadBare();
    QCoreApplication::processEvents();
    const QRgb paper = note()->palette().color(QPalette::Window).rgb();
    EXPECT_THAT(coloursOfMargin(note()), testing::ElementsAre(paper));
}

} // namespace
