#pragma once

#include "platform/otdr/core/eventdetection.h"
#include "platform/otdr/core/sor.h"

namespace otdr::sor {

/// The settings of the search for events with the thresholds that whoever measured has set: what
/// was not to be listed then is not listed now. The usual thresholds where the file gives none or
/// no possible ones (a loss from 1 mdB to 1 dB; a reflectance from -20 dB down to -65.534 dB, 65535
/// stands for every one). How far the light falls at the end of the fibre is not taken: instruments
/// do not agree on how it is measured.
[[nodiscard]] DetectionSettings storedThresholds(const File& file);

/// The other way: tells the thresholds of a search, as well as the fields can hold them.
void storeThresholds(const DetectionSettings& settings, File& file);

} // namespace otdr::sor
