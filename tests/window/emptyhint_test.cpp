// What the empty chart says to do, and where it says so.

#include "refls/reflstableview.h"
#include "tests/window/screen.h"
#include "twomarkers/twomarkersresultwidget.h"
#include "window/emptyhint.h"
#include "window/measview.h"

namespace {

using namespace testing_support; // the fixture

class Hint : public Screen
{
protected:
    Hint() { window->resize(800, 428); }

    QLabel* hint() const { return window->findChild<QLabel*>("emptyHint"); }

    void touch(QWidget* panel) const
    {
        QTest::mouseClick(toggle(panel), Qt::LeftButton);
        settle();
    }

    QWidget* settings() const { return window->findChild<QWidget*>("bottomPanel"); }

    QWidget* bar() const { return window->findChild<MeasView*>(); }
};

TEST_F(Hint, NamesTheButtonThatIsThere)
{
    EXPECT_TRUE(hint()->text().startsWith("Press Start "));
    touch(settings());
    EXPECT_TRUE(hint()->text().startsWith("Press Settings, then Start"));
    touch(settings());
    EXPECT_TRUE(hint()->text().startsWith("Press Start "));
    touch(bar());
    EXPECT_TRUE(hint()->text().startsWith("Press Settings, then Start"));
    EXPECT_GE(hint()->width(), hint()->sizeHint().width()) << "the longer words are cut";
}

TEST_F(Hint, WordsAreLargerThanOthersAndCoverTheLinesBehindThem)
{
    EXPECT_GT(hint()->font().pointSizeF(), plot()->font().pointSizeF());
    const QRgb paper = hint()->palette().color(QPalette::Window).rgb();
    EXPECT_THAT(coloursOfMargin(hint()), testing::ElementsAre(paper));
}

TEST_F(Hint, StandsBesideTheResults)
{
    touch(bar());
    touch(window->findChild<Waveform::ReflsTableView*>());
    const auto* results = window->findChild<Waveform::TwoMarkersResultWidget*>();
    ASSERT_TRUE(results->isVisible());
    EXPECT_FALSE(hint()->geometry().intersects(results->geometry()));
    EXPECT_TRUE(plot()->canvas()->rect().contains(hint()->geometry()));
    touch(settings());
    EXPECT_LE((hint()->geometry().center() - plot()->canvas()->rect().center()).manhattanLength(),
              2);
}

} // namespace
