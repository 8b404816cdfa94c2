#ifndef OVW_VIMAGE_EDGELIST_H
#define OVW_VIMAGE_EDGELIST_H

#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcarray.h"

#include <array>
#include <cstdint>
#include <span>

namespace ovw::vimage {

struct Crossing {
    double x;
    int winding; ///< 1 or -1: whether the edge runs down or up
};

/// The crossings of one sample line, sorted by x. Lives on the stack: no more than 255 fit.
class CrossingList {
public:
    void clear() { m_count = 0; }
    /// @return false when the list is full
    bool add(const Crossing& crossing) {
        if (m_count == cnMaxCrossings)
            return false;
        m_crossings[m_count++] = crossing;
        return true;
    }
    void sort();
    int size() const { return m_count; }
    const Crossing& operator[](int index) const { return m_crossings[index]; }

private:
    static constexpr int cnMaxCrossings = 255;

    std::array<Crossing, cnMaxCrossings> m_crossings;
    int m_count = 0;
};

/// The sides of a closed polygon without the horizontal ones, and which of them meet the sample line: lines are asked
/// for from top to bottom, and only the edges near a line are looked at. Usual brush tips need no memory from the heap.
class EdgeList {
public:
    explicit EdgeList(std::span<const tagPOINTD> vertices);
    EdgeList(const EdgeList&) = delete;
    EdgeList& operator=(const EdgeList&) = delete;

    /// Begins again at the top.
    void rewind();
    /// The crossings with the line at height y, sorted; both ends of an edge count.
    /// @return false when there are more than a list holds
    bool crossingsAt(double y, CrossingList& crossings);

private:
    struct Edge {
        double top;
        double bottom;
        double topX;
        double bottomX;
        int winding;
    };
    static constexpr int cnInlineEdges = 64;

    void addEdge(const tagPOINTD& from, const tagPOINTD& to);
    static double crossingX(const Edge& edge, double y);

    std::array<Edge, cnInlineEdges> m_inlineEdges;
    std::array<std::int32_t, cnInlineEdges> m_inlineActive;
    XCTArray<Edge> m_heapEdges;
    XCTArray<std::int32_t> m_heapActive;
    Edge* m_edges;          ///< sorted by top
    std::int32_t* m_active; ///< indices of edges that began at or above the last line and may reach below it
    int m_edgeCount = 0;
    int m_activeCount = 0;
    int m_next = 0; ///< the first edge that did not begin yet
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_EDGELIST_H
