#include "tests/support/reach.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QtTest>

namespace testing_support {

namespace {

/// Whether a widget is one that the toolkit made inside another.
bool isInner(const QWidget& widget)
{
    return widget.inherits("QTableCornerButton") || widget.inherits("QLineEditIconButton")
        || widget.inherits("QTabBar") || widget.objectName().startsWith("qt_");
}

bool isUsable(const QWidget& widget, const QWidget& window)
{
    return widget.isVisibleTo(&window) && widget.isEnabled() && widget.window() == &window
        && !isInner(widget);
}

template <typename Kind>
QList<Kind*> usable(const QWidget& window)
{
    QList<Kind*> found;
    const auto all = window.findChildren<Kind*>();
    for (Kind* widget : all) {
        if (isUsable(*widget, window)) {
            found << widget;
        }
    }
    return found;
}

bool isOnKeyboard(const QWidget& widget)
{
    for (const QWidget* one = &widget; one != nullptr; one = one->parentWidget()) {
        if (one->inherits("TouchKeyboard")) {
            return true;
        }
    }
    return false;
}

QList<QWidget*> controls(const QWidget& window)
{
    QList<QWidget*> found;
    for (QWidget* widget : usable<QWidget>(window)) {
        const bool isButton = qobject_cast<QAbstractButton*>(widget) != nullptr;
        const bool isOther = qobject_cast<QComboBox*>(widget) != nullptr
            || qobject_cast<QLineEdit*>(widget) != nullptr
            || (qobject_cast<QAbstractItemView*>(widget) != nullptr
                && qobject_cast<QHeaderView*>(widget) == nullptr
                && widget->focusPolicy() != Qt::NoFocus);
        if ((isButton || isOther) && !isOnKeyboard(*widget)) {
            found << widget;
        }
    }
    return found;
}

bool fits(const QPushButton& button)
{
    QStyleOptionButton option;
    option.initFrom(&button);
    option.text = button.text();
    const QRect room =
        button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button);
    const QSize text = button.fontMetrics().size(Qt::TextShowMnemonic, button.text());
    return text.width() <= room.width() && text.height() <= button.height();
}

bool fits(const QLabel& label)
{
    if (label.text().isEmpty() || label.wordWrap()) {
        return label.height() >= label.heightForWidth(label.width());
    }
    return label.width() >= label.sizeHint().width()
        && label.height() >= label.fontMetrics().height();
}

bool fits(const QComboBox& box)
{
    QStyleOptionComboBox option;
    option.initFrom(&box);
    const int room =
        box.style()
            ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box)
            .width();
    for (int i = 0; i < box.count(); ++i) {
        if (box.fontMetrics().horizontalAdvance(box.itemText(i)) > room) {
            return false;
        }
    }
    return true;
}

bool fits(const QHeaderView& header)
{
    if (header.orientation() != Qt::Horizontal || header.model() == nullptr) {
        return true;
    }
    constexpr int kMargins_px = 4;
    for (int section = 0; section < header.count(); ++section) {
        const QString text = header.model()->headerData(section, Qt::Horizontal).toString();
        QFont font = header.font();
        if (header.inherits("FittingHeader")) { // chooses smaller ones
            QMetaObject::invokeMethod(const_cast<QHeaderView*>(&header), "titleFont",
                                      Q_RETURN_ARG(QFont, font), Q_ARG(int, section));
        }
        if (QFontMetrics(font).horizontalAdvance(text)
            > header.sectionSize(section) - kMargins_px) {
            return false;
        }
    }
    return true;
}

template <typename Kind>
void addClipped(QStringList& found, const QWidget& window)
{
    const auto all = window.findChildren<Kind*>();
    for (const Kind* widget : all) {
        const bool isShown = widget->isVisibleTo(&window) && widget->window() == &window;
        if (isShown && !isInner(*widget) && !fits(*widget)) {
            found << nameOf(*widget);
        }
    }
}

} // namespace

QString nameOf(const QWidget& widget)
{
    return QString(R"(%1 "%2" "%3" %4x%5)")
        .arg(widget.metaObject()->className(), widget.objectName(),
             widget.property("text").toString())
        .arg(widget.width())
        .arg(widget.height());
}

QStringList smallTargets(const QWidget& window, int least_px)
{
    QStringList found;
    for (const QWidget* widget : controls(window)) {
        const bool isPressed = qobject_cast<const QAbstractItemView*>(widget) == nullptr;
        if (isPressed && (widget->width() < least_px || widget->height() < least_px)) {
            found << nameOf(*widget);
        }
    }
    return found;
}

QList<QWidget*> tabChain(QWidget& window)
{
    QApplication::setActiveWindow(&window);
    QList<QWidget*> chain;
    constexpr int kMost = 200;
    for (int i = 0; i < kMost; ++i) {
        QWidget* before = window.focusWidget();
        QTest::keyClick(before == nullptr ? &window : before, Qt::Key_Tab);
        QWidget* now = window.focusWidget();
        if (now == nullptr || chain.contains(now)) {
            break;
        }
        chain << now;
    }
    return chain;
}

QStringList unreachable(QWidget& window)
{
    QStringList found;
    const QList<QWidget*> reached = tabChain(window);
    for (QWidget* widget : controls(window)) {
        if (!reached.contains(widget)) {
            found << nameOf(*widget);
        }
    }
    return found;
}

QStringList deafToKeys(QWidget& window)
{
    QStringList found;
    for (QWidget* widget : tabChain(window)) {
        auto* button = qobject_cast<QAbstractButton*>(widget);
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            if (button == nullptr) {
                continue;
            }
            button->setFocus(Qt::TabFocusReason);
            // Pressed, and all that it would do is left undone.
            int presses = 0;
            const bool wasChecked = button->isChecked();
            const auto pressed = QObject::connect(button, &QAbstractButton::pressed, [&] {
                ++presses;
                button->blockSignals(true);
            });
            QTest::keyClick(button, key);
            button->blockSignals(false);
            QObject::disconnect(pressed);
            if (presses != 1) {
                found << nameOf(*button) + " key " + QString::number(key, 16);
            }
            const QSignalBlocker quiet(button);
            button->setChecked(wasChecked);
        }
    }
    return found;
}

QStringList clippedTexts(const QWidget& window)
{
    QStringList found;
    addClipped<QPushButton>(found, window);
    addClipped<QLabel>(found, window);
    addClipped<QComboBox>(found, window);
    addClipped<QHeaderView>(found, window);
    return found;
}

LongerTexts::LongerTexts()
{
    QCoreApplication::installTranslator(this);
}

LongerTexts::~LongerTexts()
{
    QCoreApplication::removeTranslator(this);
}

QString LongerTexts::translate(const char* /*context*/, const char* sourceText,
                               const char* /*disambiguation*/, int /*n*/) const
{
    // The letters of a language that are about as wide as its alphabet on the average.
    static const QString letters = QString::fromUtf8("аеинорстлквдмпуяызбгчй");
    const QString source = QString::fromUtf8(sourceText);
    QString longer;
    int next = source.size();
    for (const QChar character : source) {
        const bool isLetter = character.isLetter();
        longer += isLetter ? letters.at(next++ * 7 % letters.size()) : character;
        if (isLetter && next % 3 == 0) {
            longer += letters.at(next * 5 % letters.size());
        }
    }
    return longer;
}

} // namespace testing_support
