#ifndef OVW_VIMAGE_EDGELIST_H
#define OVW_VIMAGE_EDGELIST_H

#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcarray.h"

#include <array>
#include <cstdint>
#include <span>

namespace ovw::vimage {

/// The most crossings that a line may have.
inline constexpr int cnMaxCrossings = 255;
/// Where a pixel row is sampled.
inline constexpr double cnRowSample = 0.125;
/// Anti-aliased rows are sampled there and this often, in equal steps.
inline constexpr int cnSubLines = 4;
inline constexpr double cnSubLineStep = 1.0 / cnSubLines;

struct Crossing {
    double x;
    int winding;       ///< 1 or -1: whether the edge runs down or up
    std::int32_t edge; ///< of an EdgeList
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
    std::array<Crossing, cnMaxCrossings> m_crossings;
    int m_count = 0;
};

/// The crossings of a pixel row's sub-lines with the edges that they all meet: x[i] are those of one edge, from the
/// topmost line down, and along every line x ascends with i.
struct RowCrossings {
    int count;
    alignas(64) double x[cnMaxCrossings][cnSubLines];
};

/// The sides of a closed polygon without the horizontal ones, and which of them meet the sample line: lines are asked
/// for from top to bottom, and only the edges near a line are looked at. They are kept in the order of the last line,
/// which the next one hardly changes. Usual brush tips need no memory from the heap.
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
    /// Those with all sub-lines of pixel row y, which is faster.
    /// @return false where an edge begins, ends or passes another one in the row, and for odd numbers: then every line
    ///         has to be asked for
    bool crossingsOfRow(int y, RowCrossings& crossings);

private:
    struct Edge {
        double top;
        double bottom;
        double topX;
        double bottomX;
        double width;
        double height;
        int winding;
    };
    static constexpr int cnInlineEdges = 64;

    void addEdge(const tagPOINTD& from, const tagPOINTD& to);
    void advanceTo(double y);
    void crossLines(double y, RowCrossings& crossings) const;
    void sort(RowCrossings& crossings);
    static double crossingX(const Edge& edge, double y) {
        return y == edge.bottom ? edge.bottomX : edge.topX + edge.width * (y - edge.top) / edge.height;
    }

    std::array<Edge, cnInlineEdges> m_inlineEdges;
    std::array<std::int32_t, cnInlineEdges> m_inlineActive;
    XCTArray<Edge> m_heapEdges;
    XCTArray<std::int32_t> m_heapActive;
    Edge* m_edges;          ///< sorted by top
    std::int32_t* m_active; ///< indices of edges that began at or above the last line and may reach below it
    int m_edgeCount = 0;
    int m_activeCount = 0;
    int m_next = 0;        ///< the first edge that did not begin yet
    double m_firstEnd = 0; ///< the highest bottom of an active edge
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_EDGELIST_H
