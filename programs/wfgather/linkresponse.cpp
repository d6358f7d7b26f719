#include "programs/wfgather/linkresponse.h"

#include "platform/otdr/core/constants.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>

namespace gather {

namespace {

/// As many reflectors as make echoes: their number of triples stays in the thousands.
constexpr std::size_t kMostEchoing = 24;

constexpr double kNeperPerDb = 0.230258509299404568; ///< of power: ln(10) / 10

double fraction(double decibels)
{
    return std::pow(10.0, decibels / 10.0);
}

/// A place that reflects, with what the way there and back leaves of the light.
struct Reflector
{
    double at_ns = 0.0;
    double reflectance = 0.0; ///< fraction
    double before = 1.0; ///< power left there and back, up to it
    double after = 1.0; ///< the same with its own loss
};

/// Goes along the fibre and writes down what comes back.
class Walk
{
public:
    Walk(const Fibre& fibre, int wavelength_nm)
        : fibre(fibre)
        , wavelength_nm(wavelength_nm)
        , nsPerMetre(1.0 / otdr::metresPerNs(fibre.ior.at(wavelength_nm)))
    {
        response.launch_perNs = fraction(fibre.sections.front().backscatter_dB.at(wavelength_nm));
        goAlong();
        addEchoes();
    }

    LinkResponse response;

private:
    void goAlong()
    {
        auto event = fibre.events.begin();
        double sectionEnd_m = 0.0;
        for (const Section& section : fibre.sections) {
            sectionEnd_m += section.length_m;
            for (; event != fibre.events.end() && event->at_m < sectionEnd_m; ++event) {
                scatter(section, event->at_m);
                meet(event->reflectance_dB.at(wavelength_nm), event->loss_dB.at(wavelength_nm));
            }
            scatter(section, sectionEnd_m);
        }
        for (; event != fibre.events.end(); ++event) { // those that stand right at the end
            meet(event->reflectance_dB.at(wavelength_nm), event->loss_dB.at(wavelength_nm));
        }
        meet(fibre.endReflectance_dB.at(wavelength_nm), 0.0);
    }

    /// The fibre from here to another place.
    void scatter(const Section& section, double to_m)
    {
        const double length_m = to_m - at_m;
        if (!(length_m > 0.0)) {
            return;
        }
        const double loss_dB = section.attenuation_dBPerKm.at(wavelength_nm) * length_m / 1000.0;
        const double left = fraction(-2.0 * loss_dB);
        const double time_ns = length_m * nsPerMetre;
        Stretch stretch;
        stretch.from_ns = at_m * nsPerMetre;
        stretch.to_ns = to_m * nsPerMetre;
        stretch.power_perNs = remaining * fraction(section.backscatter_dB.at(wavelength_nm));
        stretch.decay_perNs = kNeperPerDb * 2.0 * loss_dB / time_ns;
        response.backscatter.push_back(stretch);
        remaining *= left;
        at_m = to_m;
    }

    /// A reflection (NaN for none), then a loss.
    void meet(double reflectance_dB, double loss_dB)
    {
        const double behind = remaining * fraction(-2.0 * loss_dB);
        if (!std::isnan(reflectance_dB)) {
            const double at_ns = at_m * nsPerMetre;
            const double reflectance = fraction(reflectance_dB);
            reflectors.push_back({at_ns, reflectance, remaining, behind});
            response.reflections.push_back({at_ns, reflectance * remaining, false});
        }
        remaining = behind;
    }

    /// Light that goes to j, back to i, forth to k and home: it comes at t_j + t_k - t_i.
    void addEchoes()
    {
        keepStrongest();
        for (std::size_t i = 0; i < reflectors.size(); ++i) {
            for (std::size_t j = i + 1; j < reflectors.size(); ++j) {
                for (std::size_t k = i + 1; k <= j; ++k) {
                    addEcho(reflectors[i], reflectors[j], reflectors[k], j == k ? 1.0 : 2.0);
                }
            }
        }
    }

    /// ways: 2 where the light may also go to k first and then to j.
    void addEcho(const Reflector& i, const Reflector& j, const Reflector& k, double ways)
    {
        const double reflected = i.reflectance * j.reflectance * k.reflectance;
        const double power = i.after > 0.0 ? ways * reflected * j.before * (k.before / i.after)
                                           : 0.0; // nothing is left there
        response.reflections.push_back({j.at_ns + k.at_ns - i.at_ns, power, true});
    }

    void keepStrongest()
    {
        const auto order = [](auto key) {
            return [key](const Reflector& a, const Reflector& b) { return key(a) < key(b); };
        };
        if (reflectors.size() > kMostEchoing) {
            std::stable_sort(reflectors.begin(), reflectors.end(),
                             order([](const Reflector& one) { return -one.reflectance; }));
            reflectors.resize(kMostEchoing);
            std::stable_sort(reflectors.begin(), reflectors.end(),
                             order([](const Reflector& one) { return one.at_ns; }));
        }
    }

    const Fibre& fibre;
    int wavelength_nm;
    double nsPerMetre;
    double at_m = 0.0;
    double remaining = 1.0; ///< of the light there and back
    std::vector<Reflector> reflectors;
};

} // namespace

LinkResponse responseOf(const Fibre& fibre, int wavelength_nm)
{
    return Walk(fibre, wavelength_nm).response;
}

} // namespace gather
