#include "blurtip.h"

#include "colour.h"

#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <algorithm>
#include <cmath>

namespace ovwpaint {

namespace {

constexpr int cnDepth = 32;
/// Two passes of a box of half the radius make a tent, which shows no edges.
constexpr int cnPasses = 2;

/// What a stamp can reach, within the image; empty for what is no place or size.
XCRect reachOf(const XCVOffscreen& image, const XCPattern& shape, XCPointD position, float size) {
    // A soft stamp reaches 1.75 times its radius, a turned square 1.42 times.
    constexpr double cnReach = 1.75;
    const double reach = size * 0.5 * cnReach * std::max({1.0f, shape.sizeRate, shape.sizeRate2}) + 2.0;
    XCRect area;
    if (!std::isfinite(position.x) || !std::isfinite(position.y) || !std::isfinite(reach) || reach <= 0.0)
        return area;
    const XCRectD bounds(position.x - reach, position.y - reach, position.x + reach, position.y + reach);
    area.IntersectRect(XCRect(bounds.IntegerExtent()), image.GetRect());
    return area;
}

/// The mean of up to 2 * radius + 1 values around each, those that exist, `count` values that lie `step` apart.
void smoothLine(float* values, std::size_t count, std::size_t step, int radius, std::vector<float>& copy) {
    copy.resize(count);
    for (std::size_t i = 0; i < count; ++i)
        copy[i] = values[i * step];
    const auto reach = static_cast<std::size_t>(radius);
    double sum = 0.0;
    std::size_t first = 0, end = 0;
    for (std::size_t i = 0; i < count; ++i) {
        for (; end < std::min(count, i + reach + 1); ++end)
            sum += copy[end];
        for (; first + reach < i; ++first)
            sum -= copy[first];
        values[i * step] = static_cast<float>(sum / static_cast<double>(end - first));
    }
}

} // namespace

BlurTip::BlurTip(std::unique_ptr<XCPattern> shape, int radius) : m_shape(std::move(shape)), m_radius(radius) {
    kind = m_shape->kind;
}

BlurTip::~BlurTip() = default;

int BlurTip::IsTrueCircle() const { return m_shape->IsTrueCircle(); }

int BlurTip::Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
                  float pressure, int antialias) {
    if (image->GetDepth() != cnDepth)
        return 0;
    const XCRect area = reachOf(*image, *this, position, size);
    if (area.IsRectEmpty())
        return 0;
    XCRect source(area.left - m_radius, area.top - m_radius, area.right + m_radius, area.bottom + m_radius);
    source.IntersectRect(source, image->GetRect());
    read(*image, source);
    soften(source.right - source.left, source.bottom - source.top);
    store(source, area);
    const int rowBytes = (area.right - area.left) * static_cast<int>(sizeof(Colour));
    mixer->SetBlurImage(m_blurred.data(), rowBytes, {-area.left, -area.top});
    m_shape->SetParameter(sizeRate, sizeRate2, rotation);
    const int drawn = m_shape->Draw(changed, image, mixer, position, size, pressure, antialias);
    mixer->SetBlurImage(nullptr, 0, {0, 0});
    return drawn;
}

void BlurTip::read(XCVOffscreen& image, const XCRect& area) {
    const auto width = static_cast<std::size_t>(area.right - area.left);
    const auto height = static_cast<std::size_t>(area.bottom - area.top);
    for (std::vector<float>& plane : m_planes)
        plane.resize(width * height);
    const XCVOffscreenAutoLock lock(&image, area.left, area.top, 0);
    std::size_t place = 0;
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x, ++place) {
            image.MoveCursor(x, y);
            const Colour colour = image.Get32BitColor();
            const auto alpha = static_cast<float>(alphaOf(colour));
            m_planes[0][place] = alpha;
            m_planes[1][place] = alpha * static_cast<float>(redOf(colour));
            m_planes[2][place] = alpha * static_cast<float>(greenOf(colour));
            m_planes[3][place] = alpha * static_cast<float>(blueOf(colour));
        }
    }
}

void BlurTip::soften(int width, int height) {
    const auto columns = static_cast<std::size_t>(width), rows = static_cast<std::size_t>(height);
    const int boxes[cnPasses] = {m_radius / 2, m_radius - m_radius / 2};
    for (std::vector<float>& plane : m_planes) {
        for (const int radius : boxes) {
            for (std::size_t y = 0; y < rows; ++y)
                smoothLine(&plane[y * columns], columns, 1, radius, m_line);
            for (std::size_t x = 0; x < columns; ++x)
                smoothLine(&plane[x], rows, columns, radius, m_line);
        }
    }
}

/// Pixels as the mixer reads them: blue, green, red, alpha.
void BlurTip::store(const XCRect& source, const XCRect& area) {
    const auto columns = static_cast<std::size_t>(source.right - source.left);
    m_blurred.clear();
    for (int y = area.top; y < area.bottom; ++y) {
        std::size_t place =
            static_cast<std::size_t>(y - source.top) * columns + static_cast<std::size_t>(area.left - source.left);
        for (int x = area.left; x < area.right; ++x, ++place) {
            const float alpha = m_planes[0][place];
            const float scale = alpha > 0.0f ? 1.0f / alpha : 0.0f;
            for (const int plane : {3, 2, 1})
                m_blurred.push_back(static_cast<std::uint8_t>(m_planes[plane][place] * scale + 0.5f));
            m_blurred.push_back(static_cast<std::uint8_t>(alpha + 0.5f));
        }
    }
}

} // namespace ovwpaint
