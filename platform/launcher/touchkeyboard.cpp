#include "platform/launcher/touchkeyboard.h"

#include "platform/launcher/touchbutton.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QStackedLayout>

namespace {

using touchkeys::Alphabet;
using touchkeys::Deed;
using touchkeys::Key;
using touchkeys::Shift;

void sendKey(QLineEdit& edit, int key, Qt::KeyboardModifiers modifiers, const QString& text)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, modifiers, text);
        QCoreApplication::sendEvent(&edit, &event);
    }
}

bool repeats(Deed deed)
{
    return deed == Deed::Backspace || deed == Deed::Left || deed == Deed::Right;
}

} // namespace

TouchKeyboard::TouchKeyboard(QLineEdit* edit, QWidget* parent)
    : QWidget(parent)
    , edit(edit)
    , alphabets(new QStackedLayout(this))
{
    const bool hasCyrillic = QLocale().script() == QLocale::CyrillicScript;
    alphabets->addWidget(newKeys(Alphabet::Latin, hasCyrillic));
    if (hasCyrillic) {
        alphabets->addWidget(newKeys(Alphabet::Cyrillic, true));
    }
    showShift();
}

QWidget* TouchKeyboard::newKeys(Alphabet alphabet, bool hasOther)
{
    constexpr int kGap = 4;
    auto* keys = new QWidget(this);
    auto* grid = new QGridLayout(keys);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(kGap);
    for (int column = 0; column < touchkeys::columnsOf(alphabet); ++column) {
        grid->setColumnStretch(column, 1);
    }
    const auto rows = touchkeys::rows(alphabet, hasOther);
    for (int row = 0; row < rows.size(); ++row) {
        for (const Key& key : rows.at(row)) {
            QPushButton* button = newButton(key, keys);
            grid->addWidget(button, row, key.column, 1, key.columns);
            buttons << Button {key, button};
        }
    }
    return keys;
}

QPushButton* TouchKeyboard::newButton(const Key& key, QWidget* parent)
{
    constexpr int kWidth = 60;
    constexpr int kHeight = 46;
    constexpr int kFont_percent = 125;
    auto* button = new TouchButton(QString(), parent);
    button->setFocusPolicy(Qt::NoFocus);
    button->setAutoDefault(false);
    button->setAutoRepeat(repeats(key.deed));
    button->setCheckable(key.deed == Deed::Shift);
    button->setMinimumSize(kWidth, kHeight);
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    if (key.deed == Deed::Type) {
        QFont font = button->font();
        font.setPointSizeF(font.pointSizeF() * kFont_percent / 100);
        button->setFont(font);
    }
    connect(button, &QPushButton::clicked, this, [this, key] { press(key); });
    return button;
}

void TouchKeyboard::press(const Key& key)
{
    if (QLineEdit* line = target()) {
        type(key, *line);
    }
    if (key.deed == Deed::OtherAlphabet) {
        alphabets->setCurrentIndex((alphabets->currentIndex() + 1) % alphabets->count());
    }
    shift = touchkeys::after(shift, key);
    showShift();
}

void TouchKeyboard::type(const Key& key, QLineEdit& line)
{
    const QChar character = characterOf(key);
    switch (key.deed) {
    case Deed::Type:
        sendKey(line, character.toUpper().unicode(),
                character.isUpper() ? Qt::ShiftModifier : Qt::NoModifier, character);
        break;
    case Deed::Backspace:
        sendKey(line, Qt::Key_Backspace, Qt::NoModifier, QString());
        break;
    case Deed::Clear:
        sendKey(line, Qt::Key_A, Qt::ControlModifier, QString());
        sendKey(line, Qt::Key_Backspace, Qt::NoModifier, QString());
        break;
    case Deed::Left:
        sendKey(line, Qt::Key_Left, Qt::NoModifier, QString());
        break;
    case Deed::Right:
        sendKey(line, Qt::Key_Right, Qt::NoModifier, QString());
        break;
    case Deed::Shift:
    case Deed::OtherAlphabet:
        break;
    }
}

void TouchKeyboard::showShift()
{
    for (const Button& one : qAsConst(buttons)) {
        switch (one.key.deed) {
        case Deed::Type:
            one.button->setText(one.key.character == QLatin1Char(' ') ? tr("Space")
                                                                      : characterOf(one.key));
            break;
        case Deed::Shift:
            one.button->setText(shift == Shift::Locked ? tr("CAPS") : tr("Shift"));
            one.button->setChecked(shift != Shift::Off);
            break;
        case Deed::OtherAlphabet:
            one.button->setText(alphabets->currentIndex() == int(Alphabet::Latin)
                                    ? QStringLiteral("АБВ")
                                    : QStringLiteral("ABC"));
            break;
        case Deed::Backspace:
            one.button->setText(tr("Delete"));
            break;
        case Deed::Clear:
            one.button->setText(tr("Clear"));
            break;
        case Deed::Left:
            one.button->setText(QChar(0x25C0));
            one.button->setAccessibleName(tr("Left"));
            break;
        case Deed::Right:
            one.button->setText(QChar(0x25B6));
            one.button->setAccessibleName(tr("Right"));
            break;
        }
    }
}

QLineEdit* TouchKeyboard::target() const
{
    auto* focused = qobject_cast<QLineEdit*>(window()->focusWidget());
    if (focused == nullptr && edit != nullptr) {
        edit->setFocus();
        return edit;
    }
    return focused;
}

QChar TouchKeyboard::characterOf(const Key& key) const
{
    return shift == Shift::Off ? key.character : key.character.toUpper();
}
