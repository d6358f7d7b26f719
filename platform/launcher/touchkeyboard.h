#pragma once

#include "platform/launcher/touchkeys.h"

#include <QPointer>
#include <QVector>
#include <QWidget>

class QLineEdit;
class QPushButton;

/// Keys on the screen for the name of a file.
///
/// They type into the line edit of their window that has the focus, by the key events that a
/// hardware keyboard sends; where none has it, into the one given, which gets it. They never take
/// the focus themselves.
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

    QPushButton* newButton(const touchkeys::Key& key);
    void press(const touchkeys::Key& key);
    void showShift();
    [[nodiscard]] QLineEdit* target() const;
    [[nodiscard]] QChar characterOf(const touchkeys::Key& key) const;

    QPointer<QLineEdit> edit;
    QVector<Button> buttons;
    touchkeys::Shift shift = touchkeys::Shift::Off;
};
