#include "programs/otdrinfo/text.h"

namespace otdrinfo {

QString fromFile(const std::string& text)
{
    return QString::fromLatin1(text.data(), static_cast<int>(text.size())).trimmed();
}

QString forTerminal(const std::string& text)
{
    QString shown = QString::fromLatin1(text.data(), static_cast<int>(text.size()));
    for (QChar& character : shown) {
        if (!character.isPrint()) {
            character = ' ';
        }
    }
    return shown.simplified();
}

} // namespace otdrinfo
