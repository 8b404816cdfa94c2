#ifndef OVW_MIXING_GAUSSROW_H
#define OVW_MIXING_GAUSSROW_H

#include <cstdint>

class XCPlotGauss;

namespace ovw::mixing {

struct KernelTable;

/// The weights of a plotter for a whole row.
class GaussRow {
public:
    /// The weights of the plotter's next n pixels, at most limit each; moves the plotter on by n pixels. May write room
    /// weights, so that vectors stay whole.
    static void fetch(std::int32_t* weights, int n, int room, XCPlotGauss& plotter, std::int32_t limit,
                      const KernelTable& kernels);
};

} // namespace ovw::mixing

#endif // OVW_MIXING_GAUSSROW_H
