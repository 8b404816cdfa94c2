#include "vimage/edgelist.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace ovw::vimage {

namespace {

/// Whether x does not descend from one edge to the next, along any line.
bool isSorted(const RowCrossings& crossings) {
    bool isAscending = true;
    for (int i = 1; i < crossings.count; i++)
        for (int line = 0; line < cnSubLines; line++)
            isAscending &= crossings.x[i - 1][line] <= crossings.x[i][line];
    return isAscending;
}

} // namespace

void CrossingList::sort() {
    // Insertion sort: lists are short, and nearly sorted from line to line.
    for (int i = 1; i < m_count; i++) {
        if (m_crossings[i - 1].x <= m_crossings[i].x)
            continue;
        const Crossing current = m_crossings[i];
        int place = i;
        for (; place > 0 && m_crossings[place - 1].x > current.x; place--)
            m_crossings[place] = m_crossings[place - 1];
        m_crossings[place] = current;
    }
}

EdgeList::EdgeList(std::span<const tagPOINTD> vertices) {
    const int count = static_cast<int>(vertices.size());
    const bool isLong = count > cnInlineEdges;
    if (isLong) {
        m_heapEdges.SetSize(count);
        m_heapActive.SetSize(count);
    }
    m_edges = isLong ? m_heapEdges.GetData() : m_inlineEdges.data();
    m_active = isLong ? m_heapActive.GetData() : m_inlineActive.data();
    for (int i = 0; i < count; i++)
        addEdge(vertices[i], vertices[i + 1 < count ? i + 1 : 0]);
    std::sort(m_edges, m_edges + m_edgeCount, [](const Edge& a, const Edge& b) { return a.top < b.top; });
    rewind();
}

void EdgeList::addEdge(const tagPOINTD& from, const tagPOINTD& to) {
    // Edges run downward, so that two polygons that share a side cross every line at the same place.
    if (from.y < to.y)
        m_edges[m_edgeCount++] = {from.y, to.y, from.x, to.x, to.x - from.x, to.y - from.y, 1};
    else if (to.y < from.y)
        m_edges[m_edgeCount++] = {to.y, from.y, to.x, from.x, from.x - to.x, from.y - to.y, -1};
}

void EdgeList::rewind() {
    m_activeCount = 0;
    m_next = 0;
    m_firstEnd = std::numeric_limits<double>::max();
}

/// Takes the edges in that begin at or above y, and drops those that end above it.
void EdgeList::advanceTo(double y) {
    for (; m_next < m_edgeCount && m_edges[m_next].top <= y; m_next++) {
        m_active[m_activeCount++] = m_next;
        m_firstEnd = std::min(m_firstEnd, m_edges[m_next].bottom);
    }
    if (y <= m_firstEnd)
        return;
    m_firstEnd = std::numeric_limits<double>::max();
    int kept = 0;
    for (int i = 0; i < m_activeCount; i++) {
        const double bottom = m_edges[m_active[i]].bottom;
        if (bottom < y)
            continue;
        m_active[kept++] = m_active[i];
        m_firstEnd = std::min(m_firstEnd, bottom);
    }
    m_activeCount = kept;
}

bool EdgeList::crossingsAt(double y, CrossingList& crossings) {
    advanceTo(y);
    crossings.clear();
    for (int i = 0; i < m_activeCount; i++) {
        const Edge& edge = m_edges[m_active[i]];
        if (!crossings.add({crossingX(edge, y), edge.winding, m_active[i]}))
            return false;
    }
    crossings.sort();
    for (int i = 0; i < m_activeCount; i++)
        m_active[i] = crossings[i].edge;
    return true;
}

bool EdgeList::crossingsOfRow(int y, RowCrossings& crossings) {
    const double first = y + cnRowSample;
    const double last = first + (cnSubLines - 1) * cnSubLineStep;
    advanceTo(first);
    const bool isQuiet = last < m_firstEnd && (m_next == m_edgeCount || m_edges[m_next].top > last);
    if (!isQuiet || m_activeCount % 2 != 0 || m_activeCount > cnMaxCrossings)
        return false;
    crossings.count = m_activeCount;
    crossLines(first, crossings);
    if (isSorted(crossings))
        return true;
    sort(crossings);
    return isSorted(crossings);
}

void EdgeList::crossLines(double y, RowCrossings& crossings) const {
    double heights[cnSubLines];
    for (int line = 0; line < cnSubLines; line++)
        heights[line] = y + line * cnSubLineStep;
    for (int i = 0; i < crossings.count; i++) {
        const Edge& edge = m_edges[m_active[i]];
        for (int line = 0; line < cnSubLines; line++)
            crossings.x[i][line] = edge.topX + edge.width * (heights[line] - edge.top) / edge.height;
    }
}

/// By the first line, and by the last one where edges begin in one corner.
void EdgeList::sort(RowCrossings& crossings) {
    const auto precedes = [](const double(&a)[cnSubLines], const double(&b)[cnSubLines]) {
        return a[0] != b[0] ? a[0] < b[0] : a[cnSubLines - 1] < b[cnSubLines - 1];
    };
    for (int i = 1; i < crossings.count; i++) {
        for (int place = i; place > 0 && precedes(crossings.x[place], crossings.x[place - 1]); place--) {
            std::swap(crossings.x[place], crossings.x[place - 1]);
            std::swap(m_active[place], m_active[place - 1]);
        }
    }
}

} // namespace ovw::vimage
