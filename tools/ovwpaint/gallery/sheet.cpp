#include "gallery/sheet.h"

#include "gallery/lettering.h"
#include "interrupt.h"
#include "painter.h"
#include "picture.h"

#include "ovwcmn/xcvoffscreenlock.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ovwpaint::gallery {

namespace {

constexpr double cnTurn = 2.0 * std::numbers::pi;
constexpr int cnGap = 10;           // pixels between cells
constexpr int cnCaptionHeight = 20; // pixels
constexpr Colour cnPage = packColour(246, 246, 244);

XCStrokePoint scaled(XCStrokePoint point) {
    point.x *= Painter::cnUnitsPerPixel;
    point.y *= Painter::cnUnitsPerPixel;
    return point;
}

/// A place a third of the way from one point to another, moved to where the curve's tangent is at `from`.
XCStrokePoint control(const XCStrokePoint& from, const XCStrokePoint& to, double dx, double dy) {
    constexpr double cnThird = 1.0 / 3.0;
    XCStrokePoint point;
    XCStroke::GetInterlatePoint(&point, cnThird, &from, &to);
    point.x = from.x + dx * cnThird;
    point.y = from.y + dy * cnThird;
    return point;
}

Colour checkerboard(int x, int y) {
    constexpr int cnSquare = 8;
    return (x / cnSquare + y / cnSquare) % 2 == 0 ? packColour(255, 255, 255) : packColour(214, 214, 214);
}

std::vector<Colour> readRow(Canvas& canvas, int y) {
    XCVOffscreen& image = canvas.image();
    // Images of ink alone have no transparency to show.
    const bool isInk = canvas.depth() == 1 || canvas.depth() == 8;
    const XCVOffscreenAutoLock lock(&image, 0, y, 0);
    std::vector<Colour> row;
    for (int x = 0; x < canvas.width(); ++x) {
        image.MoveCursor(x, y);
        row.push_back(over(image.Get32BitColor(), isInk ? packColour(255, 255, 255) : checkerboard(x, y)));
    }
    return row;
}

XCStrokePoint penAt(double x, double y, double pressure = 1.0) {
    XCStrokePoint point;
    point.x = x;
    point.y = y;
    point.pressure = static_cast<float>(pressure);
    return point;
}

} // namespace

Cell::Cell(int width, int height, Colour background, int depth)
    : m_canvas(std::make_unique<Canvas>(width, height, depth, background, true)) {
    m_canvas->prepare(m_canvas->image().GetRect());
}

Cell& Cell::fill(const Ground& ground) {
    std::vector<Colour> row(static_cast<std::size_t>(m_canvas->width()));
    for (int y = 0; y < m_canvas->height(); ++y) {
        for (int x = 0; x < m_canvas->width(); ++x)
            row[static_cast<std::size_t>(x)] = ground(x, y);
        storeRow(m_canvas->image(), {0, y, 1, row}, [](Colour colour) { return colour; });
    }
    m_canvas->settle(m_canvas->image().GetRect());
    return *this;
}

Cell& Cell::stroke(const Brush& brush, const Path& path, int pieces, const PictureWish& wish) {
    Materials materials(brush, wish, *m_canvas);
    Painter painter(*m_canvas, brush, materials, Joining::Smooth);
    std::vector<XCStrokePoint> points;
    for (int i = 0; i <= pieces; ++i)
        points.push_back(scaled(path(static_cast<double>(i) / pieces)));
    painter.start(points[0]);
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const XCStrokePoint& before = points[i == 0 ? 0 : i - 1];
        const XCStrokePoint &a = points[i], &b = points[i + 1];
        const XCStrokePoint& after = points[std::min(i + 2, points.size() - 1)];
        painter.curve(control(a, b, (b.x - before.x) * 0.5, (b.y - before.y) * 0.5),
                      control(b, a, (a.x - after.x) * 0.5, (a.y - after.y) * 0.5), b);
    }
    painter.endStroke();
    return *this;
}

Cell& Cell::tap(const Brush& brush, double x, double y) {
    constexpr double cnNearby = 0.01; // pixels: a way too short for a second stamp
    return stroke(brush, lineFrom(x, y, x + cnNearby, y), 1);
}

void Sheet::add(Cell cell, std::string caption) {
    throwIfInterrupted();
    m_entries.push_back({std::move(cell), std::move(caption)});
}

int Sheet::rowHeight(std::size_t first) const {
    int height = 0;
    for (std::size_t i = first; i < std::min(m_entries.size(), first + static_cast<std::size_t>(m_columns)); ++i)
        height = std::max(height, const_cast<Entry&>(m_entries[i]).cell.canvas().height());
    return height + cnCaptionHeight + cnGap;
}

std::unique_ptr<Canvas> Sheet::compose() {
    const auto columns = static_cast<std::size_t>(m_columns);
    int width = 0, height = cnGap;
    for (Entry& entry : m_entries)
        width = std::max(width, entry.cell.canvas().width() + cnGap);
    for (std::size_t i = 0; i < m_entries.size(); i += columns)
        height += rowHeight(i);
    auto page = std::make_unique<Canvas>(cnGap + width * m_columns, height, 32, cnPage, true);
    page->prepare(page->image().GetRect());
    int top = cnGap;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        Canvas& cell = m_entries[i].cell.canvas();
        const int left = cnGap + static_cast<int>(i % columns) * width;
        for (int y = 0; y < cell.height(); ++y)
            storeRow(page->image(), {left, top + y, 1, readRow(cell, y)}, [](Colour colour) { return colour; });
        page->settle(page->image().GetRect());
        writeText(*page, left, top + cell.height() + 4, m_entries[i].caption);
        if ((i + 1) % columns == 0)
            top += rowHeight(i + 1 - columns);
    }
    return page;
}

Path waveIn(int width, int height) {
    return [=](double t) { return penAt(width * (0.12 + 0.76 * t), height * (0.5 - 0.22 * std::sin(cnTurn * t))); };
}

Path rampIn(int width, int height) {
    return [=](double t) { return penAt(width * (0.08 + 0.84 * t), height * (0.5 - 0.15 * std::sin(cnTurn * t)), t); };
}

Path swellIn(int width, int height) {
    return [=](double t) {
        return penAt(width * (0.06 + 0.88 * t), height * (0.5 - 0.15 * std::sin(cnTurn * t)),
                     0.5 - 0.5 * std::cos(cnTurn * t));
    };
}

Path zigzagIn(int width, int height) {
    return [=](double t) {
        const double fold = std::abs(std::remainder(t * 3.0, 1.0)) * 2.0;
        return penAt(width * (0.15 + 0.7 * t), height * (0.82 - 0.64 * fold));
    };
}

Path loopIn(int width, int height) {
    return [=](double t) {
        const double angle = cnTurn * t * 1.75;
        return penAt(width * (0.27 + 0.46 * t - 0.14 * std::sin(angle)), height * (0.5 + 0.29 * std::cos(angle)));
    };
}

Path spiralIn(int width, int height) {
    return [=](double t) {
        const double radius = std::min(width, height) * (0.04 + 0.38 * t);
        return penAt(width * 0.5 + radius * std::cos(cnTurn * t * 2.5),
                     height * 0.5 + radius * std::sin(cnTurn * t * 2.5));
    };
}

Path lineFrom(double x0, double y0, double x1, double y1) {
    return [=](double t) { return penAt(std::lerp(x0, x1, t), std::lerp(y0, y1, t)); };
}

} // namespace ovwpaint::gallery
