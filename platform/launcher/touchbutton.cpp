#include "platform/launcher/touchbutton.h"

#include <QKeyEvent>

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
    connect(this, &QPushButton::toggled, this, &TouchButton::showChecked);
}

QSize TouchButton::sizeHint() const
{
    return touchable(QPushButton::sizeHint());
}

QSize TouchButton::minimumSizeHint() const
{
    return touchable(QPushButton::minimumSizeHint());
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

void TouchButton::showChecked(bool isChecked)
{
    QPalette colors; // nothing of its own: those of the parent
    if (isChecked) {
        for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
            // The style draws a pressed button lighter than its colour.
            colors.setColor(group, QPalette::Button,
                            palette().color(group, QPalette::Highlight).darker(kDarker));
            colors.setBrush(group, QPalette::ButtonText,
                            palette().brush(group, QPalette::HighlightedText));
        }
    }
    setPalette(colors);
}
