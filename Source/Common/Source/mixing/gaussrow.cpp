#include "mixing/gaussrow.h"

#include "mixing/gaussline.h"
#include "mixing/kerneltable.h"
#include "ovwcmn/xcplotgauss.h"

#include <algorithm>

namespace ovw::mixing {
namespace {

/// How many of n positions, from position on in this step (not negative), lie below bound.
int countBelow(std::int64_t bound, std::int64_t position, int step, int n) {
    if (position >= bound)
        return 0;
    if (position + std::int64_t{step} * (n - 1) < bound)
        return n;
    return step == 0 ? n : static_cast<int>(std::min<std::int64_t>(n, (bound - 1 - position) / step + 1));
}

} // namespace

void GaussRow::fetch(std::int32_t* weights, int n, int room, XCPlotGauss& plotter, std::int32_t limit,
                     const KernelTable& kernels) {
    const std::int64_t first = plotter.m_position;
    plotter.m_position += std::int64_t{plotter.m_step} * n;
    // Only positions inside the row of entries may be looked up; the others weigh nothing.
    const int begin = countBelow(0, first, plotter.m_step, room);
    const int end = countBelow(std::int64_t{plotter.m_tableSize} << cnGaussBit, first, plotter.m_step, room);
    std::fill(weights, weights + begin, 0);
    if (end < n)
        std::fill(weights + end, weights + n, 0);
    const int position = static_cast<int>(first + std::int64_t{plotter.m_step} * begin);
    if (plotter.m_mode && plotter.m_row)
        kernels.gaussOfTable(weights + begin, end - begin, plotter.m_row, position, plotter.m_step, plotter.m_strength,
                             limit);
    else
        kernels.gaussOfLine(weights + begin, end - begin, position, plotter.m_step, plotter.m_rowFactor,
                            plotter.m_scale, limit);
}

} // namespace ovw::mixing
