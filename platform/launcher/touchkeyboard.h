#pragma once

#include "platform/launcher/touchkeys.h"

#include <QPointer>
#include <QVector>
#include <QWidget>

class QLineEdit;
class QPushButton;
class QStackedLayout;

/// Keys on the screen for the name of a file.
///
/// They type into the line edit of their window that has the focus, by the key events that a
/// hardware keyboard sends; where none has it, into the one given, which gets it. They never take
/// the focus themselves. Where the language is written in Cyrillic, a key changes between its
/// letters and the Latin ones.
class TouchKeyboard : public QWidget
{
    Q_OBJECT

public:
    /// The edit is not owned.
    explicit TouchKeyboard(QLineEdit* edit, QWidget* parent = nullptr);

private:
    struct Button
    {
        touchkeys::Key key;
        QPushButton* button;
    };

    [[nodiscard]] QWidget* newKeys(touchkeys::Alphabet alphabet, bool hasOther);
    QPushButton* newButton(const touchkeys::Key& key, QWidget* parent);
    void press(const touchkeys::Key& key);
    void type(const touchkeys::Key& key, QLineEdit& line);
    void showShift();
    [[nodiscard]] QLineEdit* target() const;
    [[nodiscard]] QChar characterOf(const touchkeys::Key& key) const;

    QPointer<QLineEdit> edit;
    QStackedLayout* alphabets; ///< in the order of touchkeys::Alphabet
    QVector<Button> buttons;
    touchkeys::Shift shift = touchkeys::Shift::Off;
};
