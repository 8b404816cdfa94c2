#ifndef OVWCMN_XCPLOTGAUSS_H
#define OVWCMN_XCPLOTGAUSS_H

/// @file
/// The soft round falloff of airbrush tips.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcgeometry.h"

#include <cstdint>
#include <vector>

namespace ovw::mixing {
class GaussRow;
}

/// Weights in 1.15 (32768 is full) that fall off around a centre along a Gaussian, pixel by pixel of a row.
/// Started once a dab and once a span. Copies own a table of their own. Throws XCException (8, out of memory) from
/// StartPlot and from copying only; one drawing thread uses a plotter at a time.
class OVWCMN_API XCPlotGauss {
public:
    XCPlotGauss() = default;
    /// @{ A copy has a table of its own.
    XCPlotGauss(const XCPlotGauss&);
    XCPlotGauss& operator=(const XCPlotGauss&);
    /// @}
    virtual ~XCPlotGauss();

    /// radius: where the falloff ends, in pixels, at least 0.1. tableRadius: with allowTable and radii that are not
    /// small, the size of a table that is kept from dab to dab while tableRadius and hardness (0 to 1) stay the same;
    /// keepTableRadius makes it no larger than that.
    void StartPlot(const XCPointD& center, float tableRadius, float radius, float hardness, int keepTableRadius,
                   int allowTable);
    /// Goes to pixel (x, y); 0 when row y lies outside the falloff altogether.
    int StartLine(int y, int x);
    /// The weight at the current pixel, 0 to 32768.
    std::uint32_t GetGaussValue() const;
    /// The weight without the upper limit: up to 255 * 32768 for hard tips.
    std::uint32_t GetGaussValueNoClip() const;
    /// Goes on to the next pixel of the row.
    void NextIndex() { m_position += m_step; }
    /// Frees the table.
    void ClearTable();

protected:
    /// Fills the table of radius m_tableRadius for the falloff's scale.
    void CreateTable(float scale);
    /// The line of weights and its end value that all plotters share.
    static void InitLineTable();

private:
    friend class ovw::mixing::GaussRow;

    void startTable(float extent, float hardness, float scale);

    std::vector<int> m_table; // tableSize rows of tableSize weights; empty in line mode
    int m_mode = 0;           // 0 line, 1 table
    int m_tableSize = 0;      // 2 * tableRadius + 1
    int m_tableRadius = 0;
    float m_hardness = 0;
    float m_extent = 0; // the radius that the table was built for; in line mode the falloff's
    int m_centerX = 0;
    int m_centerY = 0;
    int m_step = 0; // table entries a pixel, 1.14
    int m_fractionX = 0;
    int m_fractionY = 0;
    float m_scale = 0;
    int m_strength = 0;          // 1 / 1024
    const int* m_row = nullptr;  // of the table
    std::int64_t m_position = 0; // 1.14 in the row; 64 bits, so that far pixels of a tiny dab do not wrap
    float m_rowFactor = 0;       // line mode
    bool m_isStarted = false;    // false: the centre or radius was not finite
};

#endif // OVWCMN_XCPLOTGAUSS_H
