#pragma once

#include <QString>

/// Why a trace could not be read, in the user's language.
///
/// \param message of the numeric library, as Reflectogram::error() has it: English, often with the
/// name of the file in front, which stays. A message that is not known is left as it is.
[[nodiscard]] QString errorWords(const QString& message);
