#ifndef OVW_MIXING_GAUSSLINE_H
#define OVW_MIXING_GAUSSLINE_H

namespace ovw::mixing {

constexpr int cnLineEntries = 777;
constexpr int cnLineCenter = 388;
constexpr int cnGaussBit = 14;         // of positions in lines and tables
constexpr int cnGaussStrengthBit = 10; // of the strength of tables

/// The Gaussian of sigma 128 that every plotter samples: cnLineEntries weights around a flat centre of three.
const float* gaussLine();

/// exp(-4.5), what is left of the Gaussian 384 entries from the centre, where every falloff ends.
float gaussEnd();

} // namespace ovw::mixing

#endif // OVW_MIXING_GAUSSLINE_H
