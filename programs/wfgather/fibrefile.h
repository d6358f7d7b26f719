#pragma once

#include "platform/otdr/core/result.h"
#include "programs/wfgather/fibre.h"

#include <QByteArray>
#include <QString>

#include <string>

namespace gather {

/// A fibre file may not be larger than this.
constexpr qint64 kLargestFibreFile = 16 << 20;

/// Reads the fibre described by a JSON object.
///
/// Needed: "sections", each with "length_m" and "attenuation_db_per_km". The rest may be missing:
/// "name", "ior", "backscatter_db" of a section (both as of ordinary single-mode fibre), "events"
/// ("at_m" needed, "loss_db" 0, "reflectance_db" none, "kind"), "end_reflectance_db" (none: an end
/// that does not reflect) and "dynamic_range_db" (38). A quantity is a number or an object of
/// numbers by wavelength, "1310"; null is as good as missing. Keys that are not known are passed
/// over. Events are put in order. One error (TooLarge or Damaged) names the place and what is wrong
/// with it; `source` names the file in it.
[[nodiscard]] otdr::Result<Fibre> parseFibre(const QByteArray& json, const QString& source);

/// The same from a file; errors also CannotOpen and CannotRead.
[[nodiscard]] otdr::Result<Fibre> readFibreFile(const std::string& path);

/// The fibre that is measured where the settings name none.
[[nodiscard]] otdr::Result<Fibre> demoFibre();

} // namespace gather
