#include "dabcopy.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace ovwbench {

DabCopy::DabCopy(int side)
    : m_side(side), m_memory(static_cast<std::size_t>(side) * static_cast<std::size_t>(side) * 4) {}

void DabCopy::copy(const std::vector<Dab>& dabs) {
    for (const Dab& dab : dabs)
        copy(dab);
    benchmark::ClobberMemory();
}

void DabCopy::copy(const Dab& dab) {
    const int top = std::max(static_cast<int>(dab.y - dab.radius), 0);
    const int bottom = std::min(static_cast<int>(dab.y + dab.radius) + 1, m_side);
    for (int y = top; y < bottom; y++) {
        const double square = dab.radius * dab.radius - (y + 0.5 - dab.y) * (y + 0.5 - dab.y);
        if (square <= 0.0)
            continue;
        const double half = std::sqrt(square);
        const int left = std::max(static_cast<int>(dab.x - half), 0);
        const int right = std::min(static_cast<int>(dab.x + half) + 1, m_side);
        if (left >= right)
            continue;
        const std::size_t first =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(m_side) + static_cast<std::size_t>(left);
        std::memcpy(m_memory.to() + first * 4, m_memory.from() + first * 4, static_cast<std::size_t>(right - left) * 4);
    }
}

double pixelsOf(const std::vector<Dab>& dabs) {
    double pixels = 0.0;
    for (const Dab& dab : dabs)
        pixels += std::numbers::pi * dab.radius * dab.radius;
    return pixels;
}

} // namespace ovwbench
