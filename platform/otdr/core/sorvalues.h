#pragma once

#include "platform/otdr/core/sor.h"

#include <optional>
#include <string>

namespace otdr::sor {

// What the fields of a trace file mean, in the units of the field. Makers differ in how they fill
// the same field; the rules for that are here and nowhere else. A value that the file does not give
// is NaN; so are losses, attenuations and reflectances stored as the two lowest integers.

/// Metres for one count of 100 ps of one-way time, with the file's group index and no helix factor.
[[nodiscard]] double metresPerCount(const File& file);

/// Nominal wavelength, whole nm; from the actual one where the file names none; 0 where it has
/// neither.
[[nodiscard]] int nominalWavelength_nm(const File& file);

/// Wavelength of the source, nm: stored in tenths, or whole with some makers, whichever is nearer
/// to the nominal one. The nominal one where the file names none.
[[nodiscard]] double actualWavelength_nm(const File& file);

/// Width of the first pulse, ns.
[[nodiscard]] double pulse_ns(const File& file);

/// Group index of refraction, in whichever unit it lies within 1.30 .. 1.70.
[[nodiscard]] double statedGroupIndex(const File& file);

/// The stated group index; kDefaultGroupIndex where there is none.
[[nodiscard]] double groupIndex(const File& file);

/// Time between samples, ns, round trip.
///
/// Where the file has none, the acquisition range over the number of samples. One maker's model
/// stores ten times the spacing; it is known by its name and by a range ten times shorter than its
/// samples.
[[nodiscard]] double sampleInterval_ns(const File& file);

/// Metres between samples.
[[nodiscard]] double spacing_m(const File& file);

/// Acquisition range as stated, metres. The samples may end elsewhere.
[[nodiscard]] double range_m(const File& file);

/// Averaging time, s: stored in tenths, or whole seconds with some makers.
[[nodiscard]] double averagingTime_s(const File& file);

/// Backscatter coefficient at 1 ns, dB, negative.
[[nodiscard]] double backscatter_dB(const File& file);

/// Level of a raw count, dB: (65535 - raw) x scale factor / 1000 x 0.001. Larger = stronger light.
[[nodiscard]] double level_dB(const File& file, std::uint16_t raw);

/// Loss of the whole span, dB.
[[nodiscard]] double totalLoss_dB(const File& file);

/// Optical return loss of the whole span, dB, positive.
[[nodiscard]] double returnLoss_dB(const File& file);

/// Loss of an event, dB; negative where the level rises.
[[nodiscard]] double loss_dB(const KeyEvent& event);

/// Reflectance, dB, negative. One maker stores it positive; 0 and the lowest integers mean none.
[[nodiscard]] double reflectance_dB(const KeyEvent& event);

/// Attenuation of the fibre before the event, dB/km.
[[nodiscard]] double attenuation_dBPerKm(const KeyEvent& event);

/// The receiver was saturated: the stored reflectance is only a bound.
[[nodiscard]] bool isSaturated(const KeyEvent& event);

/// The event is the end of the fibre, by its code.
[[nodiscard]] bool isFibreEnd(const KeyEvent& event);

/// Distance of the event from the user's zero, metres; negative in the launch fibre.
[[nodiscard]] double position_m(const File& file, const KeyEvent& event);

/// Distance of the event that is coded as the end of the fibre, metres; the nearest of several. A
/// trace that ends before its fibre has none.
[[nodiscard]] double fibreEnd_m(const File& file);

/// One letter an event, in the order of the file: s span start, r reflective, n non-reflective, p
/// positive (the level rises without a reflection), e end.
///
/// By the event's code. End of fibre (E, D) and end of trace (O) are both 'e'. The first event
/// within one pulse width of 0 m is 's'. Where a file codes all its events non-reflective and yet
/// gives some of them a reflectance, its maker does not use the code, and those with a reflectance
/// are 'r'.
[[nodiscard]] std::string eventKinds(const File& file);

/// The six characters of an event's code.
[[nodiscard]] std::string codeText(const KeyEvent& event);

/// Whether the checksum speaks for the file: true where it matches, false where it does not.
///
/// Empty where it cannot tell: missing, not computed, not checked, or made by a maker's recipe that
/// is not public.
[[nodiscard]] std::optional<bool> checksumVerdict(const File& file);

} // namespace otdr::sor
