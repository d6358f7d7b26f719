#include "platform/launcher/touchbutton.h"

#include <QKeyEvent>
#include <QStyleOptionButton>
#include <QStylePainter>

namespace {

constexpr int kTouchHeight = 44;
constexpr int kPadding = 12;
constexpr int kDarker = 125;

QSize touchable(const QSize& size)
{
    return QSize(size.width() + 2 * kPadding, size.height()).expandedTo({0, kTouchHeight});
}

} // namespace

TouchButton::TouchButton(const QString& text, QWidget* parent)
    : QPushButton(text, parent)
{
}

QSize TouchButton::sizeHint() const
{
    return touchable(QPushButton::sizeHint());
}

QSize TouchButton::minimumSizeHint() const
{
    // Without the room around its text, where a row of them is short of it.
    return QPushButton::sizeHint().expandedTo({0, kTouchHeight});
}

QPalette TouchButton::shownPalette() const
{
    QPalette colors = palette();
    if (isChecked()) {
        for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
            const QColor ground = colors.color(group, QPalette::Highlight);
            const QColor text = colors.color(group, QPalette::HighlightedText);
            // The style draws a pressed button lighter than its colour.
            const bool wantsDark = text.lightness() > ground.lightness();
            colors.setColor(group, QPalette::Button, wantsDark ? ground.darker(kDarker) : ground);
            colors.setBrush(group, QPalette::ButtonText,
                            colors.brush(group, QPalette::HighlightedText));
        }
    }
    return colors;
}

void TouchButton::keyPressEvent(QKeyEvent* event)
{
    // Not by "auto default": Qt would mark the first of several buttons, wherever the focus is.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
        return;
    }
    QPushButton::keyPressEvent(event);
}

void TouchButton::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOptionButton option;
    initStyleOption(&option);
    option.palette = shownPalette(); // of this moment: the palette of the page may change
    QStylePainter(this).drawControl(QStyle::CE_PushButton, option);
}
