#pragma once

#include "platform/launcher/nameprompt.h"

#include <QString>

#include <optional>
#include <utility>

namespace testing_support {

/// Gives a name and says yes.
class Answer : public NamePrompt
{
public:
    explicit Answer(QString name)
        : name(std::move(name))
    {
    }

    std::optional<QString> askName(const QString& /*proposed*/) override { return name; }

    bool askOverwrite(const QString& /*name*/) override { return true; }

private:
    QString name;
};

} // namespace testing_support
