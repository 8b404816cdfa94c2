// Classic images: what they draw and copy, before and after smoothing, enlarged so that single pixels show.

#include "gallery/sheets.h"

#include "ovwcmn/xcfont.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcoffscreen.h"
#include "ovwcmn/xcoffscreenlock.h"

#include <array>
#include <cmath>
#include <numbers>

namespace ovwpaint::gallery {

namespace {

constexpr int cnWidth = 96, cnHeight = 60; // pixels of a picture
constexpr int cnScale = 3;                 // of its enlargement
constexpr Colour cnPaper = packColour(255, 255, 255), cnBlack = packColour(0, 0, 0);
constexpr Colour cnNothing = packColour(255, 255, 255, 0);

/// A locked classic image of 32 bits.
class Drawing {
public:
    explicit Drawing(Colour ground = cnPaper, int width = cnWidth, int height = cnHeight) {
        m_image.Create(width, height, 32, ground, 1);
        m_image.Lock();
        m_image.SetForeColor(cnBlack);
    }
    Drawing(const Drawing& other) : m_image(other.m_image) { m_image.Lock(); }

    XCOffscreen* operator->() { return &m_image; }
    XCOffscreen& operator*() { return m_image; }
    Drawing& smooth(tagRECT* area = nullptr) {
        m_image.DoSmoothing(area, nullptr, nullptr, nullptr, nullptr);
        return *this;
    }
    /// The pixels, each as a square.
    Cell enlarged() {
        Drawing large(cnNothing, m_image.GetWidth() * cnScale, m_image.GetHeight() * cnScale);
        large->ChangeResolutionMostLow(0, 0, large->GetWidth(), large->GetHeight(), &m_image, 0, 0, m_image.GetWidth(),
                                       m_image.GetHeight());
        Cell cell(large->GetWidth(), large->GetHeight(), cnNothing);
        cell.fill([&large](int x, int y) { return large->Get32BitPixel(x, y); });
        return cell;
    }

private:
    XCOffscreen m_image;
};

void addBoth(Sheet& sheet, Drawing drawing, const std::string& caption) {
    sheet.add(drawing.enlarged(), caption);
    sheet.add(drawing.smooth().enlarged(), caption + ", smoothed");
}

/// Lines of every slope from a corner, and some wide ones.
Drawing lines() {
    Drawing drawing;
    for (int y = 4; y < cnHeight - 2; y += 6)
        drawing->Line(3, 3, 58, y, 1);
    for (int x = 8; x < 58; x += 10)
        drawing->Line(3, 3, x, 56, 1);
    drawing->Line(64, 4, 92, 22, 2);
    drawing->Line(64, 20, 92, 30, 3);
    drawing->Line(68, 36, 88, 56, 5);
    drawing->RectFrame({62, 2, 95, 59}, 1);
    return drawing;
}

/// A pen's waves and loops, as many short lines.
Drawing curves() {
    Drawing drawing;
    const auto draw = [&drawing](int pieces, int width, const auto& pointAt) {
        tagPOINT from = pointAt(0.0);
        for (int i = 1; i <= pieces; ++i) {
            const tagPOINT to = pointAt(static_cast<double>(i) / pieces);
            drawing->Line(from.x, from.y, to.x, to.y, width);
            from = to;
        }
    };
    const auto at = [](double x, double y) {
        return tagPOINT{static_cast<std::int32_t>(std::lround(x)), static_cast<std::int32_t>(std::lround(y))};
    };
    constexpr double cnTurn = 2.0 * std::numbers::pi;
    draw(48, 1, [&](double t) { return at(4 + 88 * t, 10 + 6 * std::sin(cnTurn * t * 2)); });
    draw(48, 2, [&](double t) { return at(4 + 88 * t, 26 + 5 * std::sin(cnTurn * t * 1.5)); });
    draw(60, 1,
         [&](double t) { return at(20 + 16 * t * std::cos(cnTurn * t * 3), 46 + 12 * t * std::sin(cnTurn * t * 3)); });
    draw(60, 3, [&](double t) { return at(64 + 22 * std::cos(cnTurn * t), 46 + 9 * std::sin(cnTurn * t)); });
    return drawing;
}

Drawing shapes() {
    Drawing drawing;
    drawing->SetForeColor(packColour(34, 44, 84));
    drawing->ArcFill(3, 3, 33, 33);
    drawing->TrueArcFill(38, 4, 66, 18);
    drawing->SetForeColor(packColour(200, 60, 50));
    std::array<tagPOINT, 10> star;
    for (std::size_t i = 0; i < star.size(); ++i) {
        const double radius = i % 2 == 0 ? 18.0 : 7.5, angle = std::numbers::pi * (static_cast<double>(i) / 5.0 - 0.5);
        star[i] = {static_cast<std::int32_t>(std::lround(76 + radius * std::cos(angle))),
                   static_cast<std::int32_t>(std::lround(36 + radius * std::sin(angle)))};
    }
    drawing->FillPolygon(star.data(), static_cast<int>(star.size()));
    drawing->SetForeColor(packColour(60, 130, 70));
    std::array<tagPOINT, 4> quad{{{6, 40}, {30, 36}, {50, 50}, {22, 57}}};
    drawing->FillPolygonConvex(quad.data(), static_cast<int>(quad.size()));
    drawing->SetForeColor(packColour(230, 180, 60));
    drawing->RectFill({40, 22, 56, 34});
    return drawing;
}

/// Outlines whose inside is filled from a seed.
Drawing flooded() {
    Drawing drawing = curves();
    drawing->SetForeColor(packColour(120, 170, 220));
    drawing->SeedScanFill({64, 46}, nullptr);
    drawing->SetForeColor(packColour(245, 225, 150));
    drawing->SeedScanFill({1, 1}, nullptr);
    return drawing;
}

Drawing written() {
    Drawing drawing;
    XCFont font("", 24);
    drawing->SetForeColor(packColour(34, 44, 84));
    drawing->DrawString("Ink 24", {0, 0, cnWidth, 32}, font, DT_CENTER | DT_VCENTER);
    // The same by one bit, as it was before letters had soft edges.
    XCOffscreen bits;
    bits.Create(cnWidth, cnHeight, 1, cnPaper, 1);
    bits.Lock();
    bits.SetForeColor(cnBlack);
    bits.DrawString("Ink 24", {0, 30, cnWidth, cnHeight}, font, DT_CENTER | DT_VCENTER);
    drawing->CopyMask(0, 30, cnWidth, 30, &bits, 0, 30, &bits, 0, 30);
    return drawing;
}

/// Ink on a transparent ground, which fades by its alpha.
Drawing onNothing() {
    Drawing drawing(cnNothing);
    const Drawing drawn = curves();
    Drawing source(drawn);
    drawing->CopyMaskColor(0, 0, cnWidth, cnHeight, &*source, 0, 0, cnPaper);
    return drawing;
}

/// A small picture copied in every way.
Drawing copies() {
    Drawing drawing(packColour(214, 226, 236));
    Drawing stamp(cnPaper, 26, 24);
    stamp->SetForeColor(packColour(200, 60, 50));
    std::array<tagPOINT, 3> wedge{{{3, 21}, {3, 3}, {22, 21}}};
    stamp->FillPolygon(wedge.data(), static_cast<int>(wedge.size()));
    stamp->SetForeColor(cnBlack);
    stamp->TrueArcFill(14, 3, 21, 10);
    drawing->Copy(3, 3, 26, 24, &*stamp, 0, 0);
    drawing->CopyMaskColor(34, 3, 26, 24, &*stamp, 0, 0, cnPaper);
    drawing->SetTransparency(110);
    drawing->CopyEx(65, 3, 26, 24, &*stamp, 0, 0);
    drawing->RotationImage(*stamp, 0, 0, 26, 24, 90, 4, 31);
    Drawing mirrored(stamp);
    mirrored->FlipImage(*stamp, 0, 0, 26, 24, XCOffscreen::cnFlipHorizontal);
    drawing->Copy(34, 32, 26, 24, &*mirrored, 0, 0);
    drawing->ChangeResolution(66, 32, 13, 12, &*stamp, 0, 0, 26, 24, 2);
    drawing->ChangeResolution(81, 32, 13, 24, &*stamp, 0, 0, 26, 24, 0);
    return drawing;
}

} // namespace

Sheet paintClassics(const PhotoMaker&) {
    Sheet sheet(4);
    addBoth(sheet, lines(), "lines");
    addBoth(sheet, curves(), "curves");
    addBoth(sheet, shapes(), "ellipses, polygons");
    addBoth(sheet, flooded(), "flood fills");
    addBoth(sheet, written(), "text, soft and hard");
    addBoth(sheet, onNothing(), "ink on nothing");
    addBoth(sheet, copies(), "copies, turns, sizes");
    return sheet;
}

} // namespace ovwpaint::gallery
