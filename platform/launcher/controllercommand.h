#pragma once

#include <QString>

/// One command to the measurement card, such as "check fiber", and the card's answer to it.
class ControllerCommand
{
public:
    /// \param wantsUpdate whether the card shall answer with a text (an "update"), read with
    /// update()
    ControllerCommand(QString name, bool wantsUpdate);

    [[nodiscard]] QString name() const;
    [[nodiscard]] bool wantsUpdate() const;

    /// What the card answered; empty before the command was done, and where none was wanted.
    [[nodiscard]] QString update() const;
    void setUpdate(const QString& text);

private:
    QString commandName;
    QString answer;
    bool updateWanted;
};
