#pragma once

#include "programs/wfgather/spectrum.h"

#include <string>
#include <vector>

namespace gather {

/// A length of fibre of one kind.
struct Section
{
    double length_m = 0.0;
    Spectrum attenuation_dBPerKm;
    Spectrum backscatter_dB; ///< coefficient at 1 ns, negative
};

/// Something that happens at one place of the fibre.
struct FibreEvent
{
    double at_m = 0.0; ///< metres of fibre from the port
    Spectrum loss_dB; ///< one way; negative: light seems to be gained
    Spectrum reflectance_dB; ///< empty where nothing is reflected
    std::string kind; ///< in the words of the file: "connector", "splice", "bend"
};

/// A fibre as it lies in the ground, with the reach of the instrument that looks into it.
struct Fibre
{
    std::string name;
    Spectrum ior; ///< group index of refraction
    std::vector<Section> sections; ///< from the port on, at least one
    std::vector<FibreEvent> events; ///< in order of distance
    Spectrum endReflectance_dB; ///< empty where the end does not reflect

    /// From the backscatter at the port down to the RMS noise (SNR = 1), dB of the trace, for the
    /// pulse and time that data sheets quote: 20 us, 3 minutes. See dynamicRange_dB().
    Spectrum dynamicRange_dB;

    [[nodiscard]] double length_m() const;
};

/// What the samples will show at one place, known beforehand.
struct TruthEvent
{
    double at_m = 0.0; ///< metres of fibre from the port
    double time_ns = 0.0; ///< round trip
    double loss_dB = 0.0; ///< what light loses
    double apparentLoss_dB = 0.0; ///< what the trace shows: the change of backscatter included
    double reflectance_dB = 0.0; ///< NaN where nothing is reflected; of a ghost, as it would be
                                 ///< measured on a lossless fibre
    bool ghost = false; ///< an echo between reflections: nothing is there
    bool end = false; ///< end of the fibre
    std::string kind;
};

/// All that happens on the fibre at a wavelength, ghosts included, in order of time.
///
/// Where the backscatter changes between two sections without an event, there is one of kind
/// "joint".
[[nodiscard]] std::vector<TruthEvent> truthOf(const Fibre& fibre, int wavelength_nm);

} // namespace gather
