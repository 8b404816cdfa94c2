#include "mixing/fetchtexture.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace ovw::mixing {
namespace {

/// The remainder that is not negative.
int wrapped(std::int64_t value, int size) {
    const int remainder = static_cast<int>(value % size);
    return remainder < 0 ? remainder + size : remainder;
}

} // namespace

void fetchTexture(std::uint8_t* texels, int n, const Texture& texture, std::int64_t x, std::int64_t y) {
    const std::uint8_t* row = texture.bits + std::ptrdiff_t{wrapped(y, texture.height)} * texture.rowBytes;
    int column = wrapped(x, texture.rowBytes);
    while (n > 0) {
        const int count = std::min(n, texture.rowBytes - column);
        std::memcpy(texels, row + column, count);
        texels += count;
        n -= count;
        column = 0;
    }
}

} // namespace ovw::mixing
