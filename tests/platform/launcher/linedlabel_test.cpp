#include "platform/launcher/linedlabel.h"

#include <QImage>
#include <QLineEdit>

#include <gtest/gtest.h>

#include <memory>

namespace {

/// How many columns, from one on, have a pixel that is not background.
int inkFrom(const QImage& picture, int column)
{
    int ink = 0;
    for (int x = column; x < picture.width(); ++x) {
        bool isBlank = true;
        for (int y = 0; y < picture.height(); ++y) {
            isBlank = isBlank && picture.pixel(x, y) == picture.pixel(0, 0);
        }
        ink += isBlank ? 0 : 1;
    }
    return ink;
}

TEST(LinedLabel, NamesAWidgetByItsWhatsThisText)
{
    auto* edit = new QLineEdit;
    edit->setWhatsThis("Pulse");
    const std::unique_ptr<QWidget> both(LinedLabel::createLabeledWidget(edit));
    EXPECT_EQ(both->parentWidget(), nullptr);
    EXPECT_EQ(edit->parentWidget(), both.get());
    auto* label = both->findChild<LinedLabel*>();
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text(), "Pulse");
    EXPECT_EQ(label->buddy(), edit);
    both->resize(140, 66);
    both->show();
    EXPECT_LE(label->geometry().bottom(), edit->y());
    EXPECT_EQ(edit->width(), 140);
}

TEST(LinedLabel, HasALineBehindItsText)
{
    LinedLabel label("Time");
    label.resize(200, 20);
    const int textEnd = label.fontMetrics().horizontalAdvance("Time");
    const QImage picture = label.grab().toImage();
    EXPECT_GT(inkFrom(picture, textEnd), 200 - textEnd - 20);
}

TEST(LinedLabel, HasNoLineWithoutRoom)
{
    LinedLabel label("Wavelength of the measurement");
    label.resize(label.sizeHint());
    const int textEnd = label.fontMetrics().horizontalAdvance(label.text());
    EXPECT_EQ(inkFrom(label.grab().toImage(), textEnd), 0);
}

TEST(LinedLabel, ShowsMarkupAsItIs)
{
    const LinedLabel label("<b>x</b>");
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
}

} // namespace
