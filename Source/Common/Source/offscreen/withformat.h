#ifndef OVW_OFFSCREEN_WITHFORMAT_H
#define OVW_OFFSCREEN_WITHFORMAT_H

#include "offscreen/classicformats.h"

namespace ovw::offscreen {

/// Calls action.template operator()<Format>() with the format of a classic image's depth: the one place where a depth
/// becomes a type. Other depths (0, of an image without pixels) give a value-initialised result.
template <class Action>
auto withFormat(int depth, Action&& action) {
    using Result = decltype(action.template operator()<Argb32>());
    switch (depth) {
    case Ink1::cnBits: return action.template operator()<Ink1>();
    case Density8::cnBits: return action.template operator()<Density8>();
    case Rgb24::cnBits: return action.template operator()<Rgb24>();
    case Argb32::cnBits: return action.template operator()<Argb32>();
    default: return Result();
    }
}

} // namespace ovw::offscreen

#endif // OVW_OFFSCREEN_WITHFORMAT_H
