#pragma once

#include "platform/launcher/wrappanel.h"

#include <QPushButton>

namespace testing_support {

/// The button that a user takes for that of a part: the one with its title. Null where none has it.
inline QPushButton* buttonOf(const WrapPanel& panel, const QWidget* part)
{
    const QString title = part->windowTitle().isEmpty() ? part->objectName() : part->windowTitle();
    const auto buttons = panel.findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        if (button->text() == title) {
            return button;
        }
    }
    return nullptr;
}

} // namespace testing_support
