#pragma once

#include <vector>

namespace accuracy {

/// Sums over the links of a row.
struct Figures
{
    int steps = 0;
    int stepsFound = 0;
    int peaks = 0;
    int peaksFound = 0;
    int ends = 0;
    int endsFound = 0;
    int extra = 0;
    int ghosts = 0;
    int ghostsKnown = 0;
    std::vector<double> peakOff; // samples
    std::vector<double> stepOff; // by the bound
    std::vector<double> lossOff_dB;
    std::vector<double> lossOff; // by the bound
    std::vector<double> reflectanceOff_dB;
    std::vector<double> returnLossOff_dB;
    std::vector<double> sectionsReturnLossOff_dB;
    std::vector<double> attenuationOff; // by the bound
    std::vector<double> sumOff_dB;
};

/// The head of the table.
void printHead();

/// A line of the table: the figures of so many links.
void printRow(const char* name, const Figures& figures, int traces);

} // namespace accuracy
