#pragma once

#include "platform/launcher/nameprompt.h"

/// Asks the person at the screen.
class DialogNamePrompt : public NamePrompt
{
public:
    std::optional<QString> askName(const QString& proposed) override;
    bool askOverwrite(const QString& name) override;
};
