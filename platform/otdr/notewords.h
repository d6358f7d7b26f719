#pragma once

#include "platform/otdr/reflectogram.h"

#include <QString>

/// A note on the reading or the saving of a trace in the user's language.
///
/// \param note of the numeric library, as Reflectogram::notes() has it: English. One that is not
/// known is left as it is.
[[nodiscard]] QString noteWords(const QString& note);

/// Tells the user in a line, with the name of the file and the most telling one of the notes, that
/// a part of a trace's file is not there. Empty where no note says so: what a maker merely does
/// otherwise than others is no damage.
[[nodiscard]] QString damageWords(const Reflectogram& refl);
