#include "platform/launcher/controllercommand.h"

#include <utility>

ControllerCommand::ControllerCommand(QString name, bool wantsUpdate)
    : commandName(std::move(name))
    , updateWanted(wantsUpdate)
{
}

QString ControllerCommand::name() const
{
    return commandName;
}

bool ControllerCommand::wantsUpdate() const
{
    return updateWanted;
}

QString ControllerCommand::update() const
{
    return answer;
}

void ControllerCommand::setUpdate(const QString& text)
{
    answer = text;
}
