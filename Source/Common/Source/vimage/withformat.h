#ifndef OVW_VIMAGE_WITHFORMAT_H
#define OVW_VIMAGE_WITHFORMAT_H

#include "vimage/pixelformats.h"

#include <utility>

namespace ovw::vimage {

/// Calls action.template operator()<Format>() with the format of a depth: the one place where a depth becomes a type.
/// Without a format of that depth (an image that has none yet), the answer is a value-initialised result.
template <class Action>
auto withFormat(int depth, Action&& action) {
    using Result = decltype(action.template operator()<Rgba32>());
    switch (depth) {
    case Bit1::cnBits: return action.template operator()<Bit1>();
    case Bit2::cnBits: return action.template operator()<Bit2>();
    case Density8::cnBits: return action.template operator()<Density8>();
    case CoverageGrey16::cnBits: return action.template operator()<CoverageGrey16>();
    case Rgb24::cnBits: return action.template operator()<Rgb24>();
    case Rgba32::cnBits: return action.template operator()<Rgba32>();
    default: return Result();
    }
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_WITHFORMAT_H
