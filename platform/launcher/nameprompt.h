#pragma once

#include <QString>

#include <optional>

/// Who answers the questions of a save: a person with dialogs, a host that runs unattended, a test.
class NamePrompt
{
public:
    NamePrompt() = default;
    NamePrompt(const NamePrompt&) = delete;
    NamePrompt& operator=(const NamePrompt&) = delete;
    virtual ~NamePrompt() = default;

    /// The name to save under, as typed; empty optional to give up.
    virtual std::optional<QString> askName(const QString& proposed) = 0;

    /// Whether the file of that name may be replaced.
    virtual bool askOverwrite(const QString& name) = 0;
};
