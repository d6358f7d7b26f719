#pragma once

#include "bench/instrument.h"
#include "programs/wfgather/fibre.h"

#include <random>
#include <vector>

namespace accuracy {

/// A link and what looks into it.
struct OddLink
{
    gather::Fibre fibre;
    int wavelength_nm = 1550;
    Instrument instrument;
};

/// Links of one kind that are unlike those of rows().
struct OddRow
{
    const char* name;
    OddLink (*draw)(std::mt19937_64& random);
};

/// Dense and short links, other fibres, other receivers and digitisers, networks.
[[nodiscard]] const std::vector<OddRow>& oddRows();

} // namespace accuracy
