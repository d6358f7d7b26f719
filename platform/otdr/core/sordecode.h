#pragma once

#include "platform/otdr/core/sor.h"

#include <gsl/span>

#include <cstddef>
#include <string>
#include <vector>

namespace otdr::sor {

// From the body of a block to its values. Each function answers how many bytes of the body it has
// used; what follows them belongs to no field that is known. Fields that are missing keep their
// defaults. What was odd is added to notes.

using Body = gsl::span<const std::byte>;
using Notes = std::vector<std::string>;

std::size_t decodeGenParams(Body body, int version, GenParams& gen, Notes& notes);
std::size_t decodeSupParams(Body body, SupParams& sup, Notes& notes);
std::size_t decodeFxdParams(Body body, int version, FxdParams& fxd, Notes& notes);
std::size_t decodeKeyEvents(Body body, int version, KeyEvents& keyEvents, Notes& notes);
std::size_t decodeLandmarks(Body body, std::vector<Landmark>& landmarks, Notes& notes);
std::size_t decodeDataPts(Body body, DataPts& data, Notes& notes);

} // namespace otdr::sor
