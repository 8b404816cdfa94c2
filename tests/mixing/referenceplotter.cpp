#include "referencemixer.h"

#include <algorithm>
#include <cmath>

namespace ovw::test {

namespace {

constexpr int cnCenter = 388;
constexpr int cnEntries = 777;

/// Weights of the entries of the line: 1 at the centre entry and its neighbours, 384 entries away about exp(-4.5).
std::vector<float> makeLine() {
    std::vector<float> line;
    for (int entry = 0; entry < cnEntries; ++entry) {
        double distance = std::max(std::abs(entry - cnCenter) - 1, 0);
        line.push_back(float(std::exp(-distance * distance / 32768)));
    }
    return line;
}

float lineWeight(std::int64_t entry) {
    static const std::vector<float> s_line = makeLine();
    return entry >= 0 && entry < cnEntries ? s_line[std::size_t(entry)] : 0;
}

const float cnEnd = float(std::exp(-4.5));

} // namespace

void ReferencePlotter::startPlot(double centerX, double centerY, float tableRadius, float radius, float hardness,
                                 bool keepTableRadius, bool allowTable) {
    radius = std::max(radius, 0.1f);
    float softness = 1 - std::min(hardness, 254 / 255.0f);
    float factor = 1 / (softness * 16);
    m_scale = factor * std::min(radius, 16.0f);
    m_strength = radius <= 16 ? std::int64_t(radius * 1024) : 16384;
    m_isTable = allowTable && tableRadius > 10 && radius >= 4;
    float extent = radius;
    m_entries = cnEntries;
    m_step = std::int64_t(6291456 / radius);
    if (m_isTable) {
        extent = hardness > 0.9f ? tableRadius * 4 : keepTableRadius ? tableRadius : tableRadius * 2;
        extent = std::min(extent, 384.0f);
        int r = int(std::ceil(extent));
        m_entries = 2 * r + 1;
        m_step = std::int64_t(extent * 16384 / radius);
        m_table.assign(std::size_t(m_entries) * std::size_t(m_entries), 0);
        auto step = std::int64_t(6291456 / extent);
        for (int row = 0; row < m_entries; ++row)
            for (int column = 0; column < m_entries; ++column) {
                std::int64_t i = (std::abs(row - r) * step) >> 14;
                std::int64_t j = (std::abs(column - r) * step) >> 14;
                float product = lineWeight(cnCenter + i) * lineWeight(cnCenter + j);
                float v = (product - cnEnd) * factor;
                m_table[std::size_t(row * m_entries + column)] = v <= 0 ? 0 : v >= 1 ? 32768 : std::int64_t(v * 32768);
            }
    }
    m_centerX = int(std::floor(centerX));
    m_centerY = int(std::floor(centerY));
    m_fractionX = std::int64_t((centerX - m_centerX) * double(m_step));
    m_fractionY = std::int64_t((centerY - m_centerY) * double(m_step));
}

bool ReferencePlotter::startLine(int y, int x) {
    m_row = m_entries / 2 + ((m_step * (y - m_centerY) - m_fractionY) >> 14);
    m_position = m_step * (x - m_centerX) - m_fractionX + (std::int64_t(m_entries / 2) << 14);
    return m_row >= 0 && m_row < m_entries;
}

std::int64_t ReferencePlotter::value() const { return std::min<std::int64_t>(valueNoClip(), 32768); }

std::int64_t ReferencePlotter::valueNoClip() const {
    std::int64_t i = m_position >> 14;
    if (i < 0 || i >= m_entries)
        return 0;
    if (m_isTable)
        return m_table[std::size_t(m_row * m_entries + i)] * m_strength >> 10;
    float v = (lineWeight(i) * lineWeight(m_row) - cnEnd) * m_scale;
    return v <= 0 ? 0 : std::int64_t(v * 32768);
}

} // namespace ovw::test
