#pragma once

#include <QByteArray>
#include <QStringList>

/// The messages in what one read of the acquisition program's output delivers, up to the first zero
/// byte, without their separator ";". Line ends count as blanks.
[[nodiscard]] QStringList gatherMessages(const QByteArray& bytes);
