#ifndef OVWBENCH_DABCOPY_H
#define OVWBENCH_DABCOPY_H

/// @file
/// The limit of round dabs: copying the rows of pixels that they cover.

#include "canvas.h"

#include <cstdint>
#include <vector>

namespace ovwbench {

struct Dab {
    double x;
    double y;
    double radius;
};

/// Copies the rows of a disc from one plain picture to another.
class DabCopy {
public:
    explicit DabCopy(int side);

    void copy(const std::vector<Dab>& dabs);

private:
    void copy(const Dab& dab);

    int m_side;
    PlainMemory m_memory;
};

/// Pixels that the dabs cover.
double pixelsOf(const std::vector<Dab>& dabs);

} // namespace ovwbench

#endif // OVWBENCH_DABCOPY_H
