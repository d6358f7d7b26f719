#pragma once

#include "platform/otdr/core/sor.h"

#include <QByteArray>

namespace otdrinfo {

/// Every sample as a line "distance_m,level_db", below a line that says so.
///
/// Distances have 0 at the user's zero; they are left empty where the file does not tell the
/// spacing. Levels are dB above the weakest that the format can hold.
[[nodiscard]] QByteArray csvOf(const otdr::sor::File& file);

} // namespace otdrinfo
