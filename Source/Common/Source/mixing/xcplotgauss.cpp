#include "ovwcmn/xcplotgauss.h"

#include "foundation/nomemory.h"
#include "mixing/gaussline.h"
#include "ovwcmn/xcexception.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <new>

namespace ovw::mixing {
namespace {

constexpr int cnFlatCenter = 387; // the first of three entries of 1.0

struct LineTable {
    std::array<float, cnLineEntries> weight;

    LineTable() {
        for (int k = 0; k <= cnLineEntries / 2; ++k) {
            double distance = std::max(cnFlatCenter - k, 0);
            weight[k] = static_cast<float>(std::exp(-distance * distance / 32768.0));
            weight[cnLineEntries - 1 - k] = weight[k];
        }
    }
};

} // namespace

const float* gaussLine() {
    static const LineTable s_line;
    return s_line.weight.data();
}

float gaussEnd() {
    static const float s_end = static_cast<float>(std::exp(-4.5));
    return s_end;
}

} // namespace ovw::mixing

using namespace ovw::mixing;

namespace {

constexpr float cnMinRadius = 0.1f;
constexpr float cnMinTableRadius = 10.0f; // of the table's basis; smaller ones are drawn by line
constexpr float cnMinTableFalloff = 4.0f;
constexpr float cnMaxExtent = 384.0f;
constexpr float cnFullStrengthRadius = 16.0f; // smaller dots have a lower peak
constexpr float cnWideHardness = 0.9f;
constexpr float cnMaxHardness = 254.0f / 255.0f; // at 1 the falloff's scale would be infinite
constexpr float cnLineSpan = 384.0f * (1 << cnGaussBit);
constexpr std::uint32_t cnFull = 32768;

bool fitsInt(double value) {
    return value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max();
}

/// Has the shared line built when the library is loaded.
struct GaussLineLoader : XCPlotGauss {
    GaussLineLoader() { InitLineTable(); }
};
const GaussLineLoader s_gaussLineLoader;

} // namespace

XCPlotGauss::~XCPlotGauss() = default;

XCPlotGauss::XCPlotGauss(const XCPlotGauss& src) { *this = src; }

XCPlotGauss& XCPlotGauss::operator=(const XCPlotGauss& src) {
    if (this == &src)
        return *this;
    ovw::foundation::orNoMemory([&] { m_table = src.m_table; });
    m_mode = src.m_mode;
    m_tableSize = src.m_tableSize;
    m_tableRadius = src.m_tableRadius;
    m_hardness = src.m_hardness;
    m_extent = src.m_extent;
    m_centerX = src.m_centerX;
    m_centerY = src.m_centerY;
    m_step = src.m_step;
    m_fractionX = src.m_fractionX;
    m_fractionY = src.m_fractionY;
    m_scale = src.m_scale;
    m_strength = src.m_strength;
    m_row = src.m_row ? m_table.data() + (src.m_row - src.m_table.data()) : nullptr;
    m_position = src.m_position;
    m_rowFactor = src.m_rowFactor;
    m_isStarted = src.m_isStarted;
    return *this;
}

void XCPlotGauss::InitLineTable() {
    gaussLine();
    gaussEnd();
}

void XCPlotGauss::StartPlot(const XCPointD& center, float tableRadius, float radius, float hardness,
                            int keepTableRadius, int allowTable) {
    m_isStarted = std::isfinite(radius) && fitsInt(center.x) && fitsInt(center.y);
    if (!m_isStarted)
        return;
    radius = std::max(radius, cnMinRadius);
    hardness = std::isnan(hardness) ? 0.0f : std::clamp(hardness, 0.0f, cnMaxHardness);
    const float scale = 1.0f / ((1.0f - hardness) * 16.0f);
    m_scale = scale * std::min(radius, cnFullStrengthRadius);
    m_strength = static_cast<int>(std::min(radius, cnFullStrengthRadius) * (1 << cnGaussStrengthBit));

    m_mode = allowTable && tableRadius > cnMinTableRadius && radius >= cnMinTableFalloff;
    if (m_mode) {
        float factor = hardness > cnWideHardness ? 4.0f : keepTableRadius ? 1.0f : 2.0f;
        startTable(std::min(tableRadius * factor, cnMaxExtent), hardness, scale);
        m_step = static_cast<int>(m_extent * (1 << cnGaussBit) / radius);
    } else {
        ClearTable();
        m_tableRadius = cnLineCenter;
        m_tableSize = cnLineEntries;
        m_extent = radius;
        m_step = static_cast<int>(cnLineSpan / radius);
    }
    m_centerX = static_cast<int>(std::floor(center.x));
    m_centerY = static_cast<int>(std::floor(center.y));
    m_fractionX = static_cast<int>((center.x - m_centerX) * m_step);
    m_fractionY = static_cast<int>((center.y - m_centerY) * m_step);
}

void XCPlotGauss::startTable(float extent, float hardness, float scale) {
    m_row = nullptr;
    bool resized = m_table.empty() || extent != m_extent;
    if (!resized && hardness == m_hardness)
        return;
    m_hardness = hardness;
    if (resized) {
        m_extent = extent;
        m_tableRadius = static_cast<int>(std::ceil(extent));
        m_tableSize = 2 * m_tableRadius + 1;
        try {
            m_table.assign(static_cast<std::size_t>(m_tableSize) * m_tableSize, 0);
        } catch (const std::bad_alloc&) {
            ClearTable();
            xcThrowError(ovw::foundation::cnCodeNoMemory);
        }
    }
    CreateTable(scale);
}

void XCPlotGauss::CreateTable(float scale) {
    const float* line = gaussLine();
    const int step = static_cast<int>(cnLineSpan / m_extent);
    auto weight = [line, step](int i) {
        int entry = ((cnLineCenter << cnGaussBit) + i * step) >> cnGaussBit;
        return entry < cnLineEntries ? line[entry] : 0.0f;
    };
    for (int i = 0; i <= m_tableRadius; ++i) {
        int* above = m_table.data() + static_cast<std::ptrdiff_t>(m_tableRadius - i) * m_tableSize;
        int* below = m_table.data() + static_cast<std::ptrdiff_t>(m_tableRadius + i) * m_tableSize;
        const float rowWeight = weight(i);
        for (int j = 0; j <= m_tableRadius; ++j) {
            float value = (rowWeight * weight(j) - gaussEnd()) * scale;
            int entry = value <= 0.0f ? 0 : value >= 1.0f ? static_cast<int>(cnFull) : static_cast<int>(value * cnFull);
            above[m_tableRadius - j] = above[m_tableRadius + j] = entry;
            below[m_tableRadius - j] = below[m_tableRadius + j] = entry;
        }
    }
}

void XCPlotGauss::ClearTable() {
    m_table.clear();
    m_table.shrink_to_fit();
    m_row = nullptr;
}

int XCPlotGauss::StartLine(int y, int x) {
    if (!m_isStarted || (m_mode && m_table.empty()))
        return 0;
    const std::int64_t step = m_step;
    std::int64_t row = m_tableRadius + ((step * (std::int64_t{y} - m_centerY) - m_fractionY) >> cnGaussBit);
    if (row < 0 || row >= m_tableSize)
        return 0;
    if (m_mode)
        m_row = m_table.data() + row * m_tableSize;
    else
        m_rowFactor = gaussLine()[row];
    // May be negative, left of the falloff: a span that begins there must meet the falloff where any other does.
    m_position = step * (std::int64_t{x} - m_centerX) - m_fractionX + (std::int64_t{m_tableRadius} << cnGaussBit);
    return 1;
}

std::uint32_t XCPlotGauss::GetGaussValue() const { return std::min(GetGaussValueNoClip(), cnFull); }

std::uint32_t XCPlotGauss::GetGaussValueNoClip() const {
    const std::int64_t index = m_position >> cnGaussBit;
    if (index < 0 || index >= m_tableSize)
        return 0;
    if (m_mode)
        return m_row ? static_cast<std::uint32_t>(m_row[index]) * static_cast<std::uint32_t>(m_strength) >>
                           cnGaussStrengthBit
                     : 0;
    float value = (gaussLine()[index] * m_rowFactor - gaussEnd()) * m_scale;
    return value > 0.0f ? static_cast<std::uint32_t>(value * cnFull) : 0;
}
