#include "bench/accuracyfigures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace accuracy {

namespace {

double meanOf(const std::vector<double>& values)
{
    double sum = 0.0;
    for (const double value : values) {
        sum += value;
    }
    return values.empty() ? 0.0 : sum / static_cast<double>(values.size());
}

double rmsOf(const std::vector<double>& values)
{
    double sum = 0.0;
    for (const double value : values) {
        sum += value * value;
    }
    return values.empty() ? 0.0 : std::sqrt(sum / static_cast<double>(values.size()));
}

double worstOf(const std::vector<double>& values)
{
    double worst = 0.0;
    for (const double value : values) {
        worst = std::max(worst, std::abs(value));
    }
    return worst;
}

} // namespace

void printHead()
{
    std::printf("                   steps     peaks     ends     extra  echoes  peak    step    "
                "loss mdB       refl. dB      ORL    sections      sum\n"
                "                   found/all                   /trace known   at, smp by CRB  "
                "bias  by LSB  rms    worst  worst  ORL    att.   mdB\n");
}

void printRow(const char* name, const Figures& figures, int traces)
{
    std::printf("%-17s %4d/%-4d %4d/%-4d %3d/%-3d  %5.2f %3d/%-3d  %5.2f  %5.2f  %6.2f %5.2f  "
                "%5.2f  %5.2f  %5.2f  %5.2f  %5.2f  %5.2f\n",
                name, figures.stepsFound, figures.steps, figures.peaksFound, figures.peaks,
                figures.endsFound, figures.ends, static_cast<double>(figures.extra) / traces,
                figures.ghostsKnown, figures.ghosts, rmsOf(figures.peakOff), rmsOf(figures.stepOff),
                1000.0 * meanOf(figures.lossOff_dB), rmsOf(figures.lossOff),
                rmsOf(figures.reflectanceOff_dB), worstOf(figures.reflectanceOff_dB),
                worstOf(figures.returnLossOff_dB), worstOf(figures.sectionsReturnLossOff_dB),
                rmsOf(figures.attenuationOff), 1000.0 * worstOf(figures.sumOff_dB));
}

} // namespace accuracy
