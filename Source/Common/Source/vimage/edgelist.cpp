#include "vimage/edgelist.h"

#include <algorithm>

namespace ovw::vimage {

void CrossingList::sort() {
    // Insertion sort: lists are short, and nearly sorted from line to line.
    for (int i = 1; i < m_count; i++) {
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
}

void EdgeList::addEdge(const tagPOINTD& from, const tagPOINTD& to) {
    // Edges run downward, so that two polygons that share a side cross every line at the same place.
    if (from.y < to.y)
        m_edges[m_edgeCount++] = {from.y, to.y, from.x, to.x, 1};
    else if (to.y < from.y)
        m_edges[m_edgeCount++] = {to.y, from.y, to.x, from.x, -1};
}

double EdgeList::crossingX(const Edge& edge, double y) {
    if (y == edge.bottom)
        return edge.bottomX;
    return edge.topX + (edge.bottomX - edge.topX) * (y - edge.top) / (edge.bottom - edge.top);
}

void EdgeList::rewind() {
    m_activeCount = 0;
    m_next = 0;
}

bool EdgeList::crossingsAt(double y, CrossingList& crossings) {
    for (; m_next < m_edgeCount && m_edges[m_next].top <= y; m_next++)
        m_active[m_activeCount++] = m_next;
    crossings.clear();
    for (int i = 0; i < m_activeCount;) {
        const Edge& edge = m_edges[m_active[i]];
        if (edge.bottom < y) {
            m_active[i] = m_active[--m_activeCount];
            continue;
        }
        if (!crossings.add({crossingX(edge, y), edge.winding}))
            return false;
        i++;
    }
    crossings.sort();
    return true;
}

} // namespace ovw::vimage
