#include "platform/launcher/warningwindow.h"

#include "platform/launcher/popupgeometry.h"

#include <QFontMetrics>
#include <QHideEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace {

constexpr int kTextWidth = 360;
constexpr int kLongTextWidth = 620; ///< where words had to be broken

/// The text with places where a word that is wider than the line, such as a path, may be broken: a
/// label breaks lines between words only, and would cut what does not fit.
QString breakable(const QString& text, const QFontMetrics& font)
{
    const QChar zeroWidthSpace(0x200B);
    QString result;
    QString word; // as far as it has come
    for (const QChar character : text) {
        word = character.isSpace() ? QString() : word + character;
        const bool isWhole = !character.isLowSurrogate() && !character.isMark();
        if (isWhole && font.horizontalAdvance(word) > kTextWidth) {
            result += zeroWidthSpace;
        }
        result += character;
    }
    return result;
}

} // namespace

WarningWindow::WarningWindow(QWidget* parent)
    : QDialog(parent)
    , label(new QLabel(this))
    , ok(new QPushButton(tr("OK"), this))
{
    constexpr int kTouchHeight = 44;
    // Texts hold file names and what children said: never markup.
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(kTextWidth);

    ok->setMinimumSize(2 * kTouchHeight, kTouchHeight);
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);

    auto* column = new QVBoxLayout(this);
    column->addWidget(label);
    column->addWidget(ok, 0, Qt::AlignHCenter);
    setModal(false);
}

QString WarningWindow::text() const
{
    return message;
}

void WarningWindow::show(const QString& text)
{
    show(text, QString());
}

void WarningWindow::show(const QString& text, const QString& title)
{
    const QString shown = isVisible() ? message : QString();
    if (shown.isEmpty()) {
        message = text;
    } else if (!shown.split(QStringLiteral("\n\n")).contains(text)) {
        message = shown + QStringLiteral("\n\n") + text;
    }
    setWindowTitle(title);
    if (isVisible()) {
        growAroundButton();
    } else {
        fitText();
    }
    QDialog::show();
    raise();
}

void WarningWindow::fitText()
{
    const QString broken = breakable(message, label->fontMetrics());
    label->setMinimumWidth(broken == message ? kTextWidth : kLongTextWidth);
    label->setText(broken);
    adjustSize();
}

/// A finger may be on its way to the button, which stays where it is as far as the screen lets it.
void WarningWindow::growAroundButton()
{
    const QPoint stood = ok->mapToGlobal(ok->rect().center());
    fitText();
    const QPoint moved = ok->mapToGlobal(ok->rect().center()) - stood;
    move(popupgeometry::keptInside(screen()->availableGeometry(),
                                   frameGeometry().translated(-moved)));
    setAttribute(Qt::WA_Moved, false); // or the next message would come where this one stood
}

void WarningWindow::hideEvent(QHideEvent* event)
{
    QDialog::hideEvent(event);
    if (!event->spontaneous()) {
        message.clear();
        label->clear();
    }
}
