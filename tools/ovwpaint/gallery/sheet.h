#ifndef OVWPAINT_GALLERY_SHEET_H
#define OVWPAINT_GALLERY_SHEET_H

/// @file
/// Pages of small pictures with captions.

#include "brush.h"
#include "canvas.h"
#include "materials.h"

#include "ovwcmn/xcstroke.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ovwpaint::gallery {

/// A pen's way: the sample at t from 0 to 1, in pixels.
using Path = std::function<XCStrokePoint(double t)>;
/// The colour of every pixel of a ground.
using Ground = std::function<Colour(int x, int y)>;

/// A small picture under way.
class Cell {
public:
    Cell(int width, int height, Colour background = packColour(255, 255, 255), int depth = 32);

    Cell& fill(const Ground& ground);
    /// Paints along the path, over `pieces` curves.
    Cell& stroke(const Brush& brush, const Path& path, int pieces = 24, const PictureWish& wish = {});
    /// One stamp, with its middle at a pixel's corner.
    Cell& tap(const Brush& brush, double x, double y);
    Canvas& canvas() { return *m_canvas; }

private:
    std::unique_ptr<Canvas> m_canvas;
};

/// Cells in columns, each with a caption below; transparency shows as a checkerboard.
class Sheet {
public:
    explicit Sheet(int columns) : m_columns(columns) {}

    /// Throws Interrupted when the user asked to stop.
    void add(Cell cell, std::string caption);
    /// The page; the cells of a row are as high as the highest, all columns as wide as the widest.
    std::unique_ptr<Canvas> compose();

private:
    struct Entry {
        Cell cell;
        std::string caption;
    };

    int rowHeight(std::size_t first) const;

    int m_columns;
    std::vector<Entry> m_entries;
};

// Pen ways through a cell of a size; the pressure is full unless said otherwise.
Path waveIn(int width, int height);
Path rampIn(int width, int height);  ///< a wave whose pressure grows from 0 to 1
Path swellIn(int width, int height); ///< a wave whose pressure swells and fades
Path zigzagIn(int width, int height);
Path loopIn(int width, int height);
Path spiralIn(int width, int height);
Path lineFrom(double x0, double y0, double x1, double y1);

} // namespace ovwpaint::gallery

#endif // OVWPAINT_GALLERY_SHEET_H
