#include "gallery/lettering.h"

#include "materials.h"
#include "painter.h"

#include <algorithm>
#include <array>

namespace ovwpaint::gallery {

namespace {

/// Lines of a letter: points of two digits, column 0 to 4 and row 0 to 8 (the letters stand on row 6), joined within a
/// word, a blank lifts the pen.
struct Letter {
    char character;
    int width; ///< columns to the next letter
    const char* lines;
};

constexpr std::array cnLetters = {
    Letter{'a', 5, "32120305162635 3236"},
    Letter{'b', 5, "0006 0312223335261605"},
    Letter{'c', 5, "3322120305162635"},
    Letter{'d', 5, "3036 3322120305162635"},
    Letter{'e', 5, "04343322120305162635"},
    Letter{'f', 4, "30201116 0222"},
    Letter{'g', 5, "3322120305162635 3237281807"},
    Letter{'h', 5, "0006 0312223336"},
    Letter{'i', 3, "1216 1010"},
    Letter{'j', 4, "22271808 2020"},
    Letter{'k', 5, "0006 3204 1336"},
    Letter{'l', 3, "101526"},
    Letter{'m', 6, "0206 03122326 23324346"},
    Letter{'n', 5, "0206 0312223336"},
    Letter{'o', 5, "122233352616050312"},
    Letter{'p', 5, "0208 0312223335261605"},
    Letter{'q', 5, "3238 3322120305162635"},
    Letter{'r', 4, "0206 04132232"},
    Letter{'s', 5, "33221203142435261605"},
    Letter{'t', 4, "10152636 0232"},
    Letter{'u', 5, "0205162635 3236"},
    Letter{'v', 5, "021632"},
    Letter{'w', 6, "0216233642"},
    Letter{'x', 5, "0236 3206"},
    Letter{'y', 5, "0216 3208"},
    Letter{'z', 5, "02320636"},
    Letter{'0', 5, "102031352616050110"},
    Letter{'1', 4, "011016"},
    Letter{'2', 5, "01102031320636"},
    Letter{'3', 5, "003013233435261605"},
    Letter{'4', 5, "26200434"},
    Letter{'5', 5, "3000022233352606"},
    Letter{'6', 5, "3010010516263534231304"},
    Letter{'7', 5, "003016"},
    Letter{'8', 5, "13020110203132231304051626353423"},
    Letter{'9', 5, "0626353120100102132332"},
    Letter{'-', 5, "0434"},
    Letter{'.', 3, "1616"},
    Letter{',', 3, "1607"},
    Letter{' ', 3, ""},
};

constexpr double cnUnit = 1.6; // pixels of a column or row

Brush pen() {
    Brush brush;
    brush.size.size = 2;
    brush.color.drawColor = packColour(70, 70, 76);
    brush.interval.intervalKind = 3;
    brush.interval.intervalAtFull = 20;
    brush.method.cacheKind = 2;
    return brush;
}

XCStrokePoint pointAt(const char* digits, double left, double top) {
    XCStrokePoint point;
    point.x = (left + (digits[0] - '0') * cnUnit) * Painter::cnUnitsPerPixel;
    point.y = (top + (digits[1] - '0') * cnUnit) * Painter::cnUnitsPerPixel;
    return point;
}

void writeLetter(Painter& painter, const Letter& letter, double left, double top) {
    bool isDown = false;
    for (const char* digits = letter.lines; *digits != '\0';) {
        if (*digits == ' ') {
            painter.endStroke();
            isDown = false;
            ++digits;
            continue;
        }
        const XCStrokePoint point = pointAt(digits, left, top);
        if (isDown)
            painter.curve(point, point, point);
        else
            painter.start(point);
        isDown = true;
        digits += 2;
    }
    painter.endStroke();
}

} // namespace

void writeText(Canvas& canvas, int left, int top, std::string_view text) {
    const Brush brush = pen();
    Materials materials(brush, {}, canvas);
    Painter painter(canvas, brush, materials, Joining::Straight);
    double x = left + 1.0;
    for (const char character : text) {
        const auto* letter =
            std::find_if(cnLetters.begin(), cnLetters.end(), [=](const Letter& l) { return l.character == character; });
        if (letter == cnLetters.end())
            continue;
        writeLetter(painter, *letter, x, top + 1.0);
        x += letter->width * cnUnit;
    }
}

} // namespace ovwpaint::gallery
