#ifndef OVW_VIMAGE_INTEGERROOTS_H
#define OVW_VIMAGE_INTEGERROOTS_H

#include <cmath>
#include <cstdint>

namespace ovw::vimage {

/// The largest r with r * r <= n, for n from 0 to 2^62.
inline std::int64_t squareRoot(std::int64_t n) {
    auto root = static_cast<std::int64_t>(std::sqrt(static_cast<double>(n))); // at most one off
    while (root * root > n)
        --root;
    while ((root + 1) * (root + 1) <= n)
        ++root;
    return root;
}

/// The largest r with r * (r - 1) <= n, for n up to 2^62; 0 for a negative n. The error term of a midpoint walk changes
/// by 2r per step of r, so that this product decides where the walk steps down.
inline std::int64_t pronicRoot(std::int64_t n) {
    if (n < 0)
        return 0;
    const std::int64_t root = squareRoot(n);
    return (root + 1) * root <= n ? root + 1 : root;
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_INTEGERROOTS_H
