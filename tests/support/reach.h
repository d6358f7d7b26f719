#pragma once

#include <QStringList>
#include <QTranslator>
#include <QWidget>

namespace testing_support {

/// What a message calls a widget: its class, its object name, its text.
QString nameOf(const QWidget& widget);

/// The buttons and boxes in a window that can be pressed now but are hard to hit: smaller than so
/// many pixels either way. One a line, with its size.
QStringList smallTargets(const QWidget& window, int least_px = 44);

/// The widgets that Tab comes by in a window, from the one that has the focus, until it comes
/// round.
QList<QWidget*> tabChain(QWidget& window);

/// The controls in a window that can be used now and that Tab does not reach.
///
/// The keys of a keyboard on the screen are none: those who have keys need them not.
QStringList unreachable(QWidget& window);

/// The buttons in a window that Space or Enter does not press when Tab has come to them.
///
/// Nothing else learns of the presses: the window is as it was.
QStringList deafToKeys(QWidget& window);

/// The widgets in a window whose text does not fit into them.
QStringList clippedTexts(const QWidget& window);

/// Says everything in cyrillic letters and by a third longer, as translations do.
class LongerTexts : public QTranslator
{
public:
    LongerTexts();
    ~LongerTexts() override;

    [[nodiscard]] QString translate(const char* context, const char* sourceText,
                                    const char* disambiguation, int n) const override;

    [[nodiscard]] bool isEmpty() const override { return false; }
};

} // namespace testing_support
