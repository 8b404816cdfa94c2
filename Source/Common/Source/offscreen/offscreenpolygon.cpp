#include "foundation/nomemory.h"
#include "offscreen/pixelview.h"
#include "ovwcmn/xcoffscreen.h"
#include "vimage/edgelist.h"
#include "vimage/numbers.h"
#include "vimage/polygonscan.h"

#include <algorithm>
#include <vector>

using namespace ovw::offscreen;
using namespace ovw::vimage;
using ovw::foundation::orNoMemory;

void XCOffscreen::FillLineRowForPolygon(int x0, int x1, int y) { FillLineRow(x0, x1, y); }

int XCOffscreen::FillPolygon(tagPOINT* points, int count) {
    return orNoMemory([&] { return fillPolygon(points, count, false); });
}

int XCOffscreen::FillPolygonConvex(tagPOINT* points, int count) {
    return orNoMemory([&] { return fillPolygon(points, count, true); });
}

int XCOffscreen::fillPolygon(const tagPOINT* points, int count, bool convex) {
    if (!m_info.bits || !points || count <= 0)
        return 0;
    std::vector<tagPOINTD> vertices;
    vertices.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        vertices.push_back({static_cast<double>(points[i].x), static_cast<double>(points[i].y)});
    const tagRECT bounds = boundsOfVertices(vertices);
    EdgeList edges(vertices);
    CrossingList crossings;
    const int bottom = std::min(bounds.bottom, m_info.height - 1);
    for (int y = std::max(bounds.top, 0); y <= bottom; ++y) {
        if (!edges.crossingsAt(y + cnRowSample, crossings))
            return 0;
        const auto fill = [this, y](double x0, double x1) {
            FillLineRowForPolygon(truncateWithin(x0, 0, m_info.width), truncateWithin(x1, -1, m_info.width - 1), y);
        };
        if (!convex)
            forEvenOddSpans(crossings, fill);
        else if (crossings.size() > 1)
            fill(crossings[0].x, crossings[crossings.size() - 1].x);
    }
    return 1;
}
