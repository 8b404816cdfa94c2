#ifndef OVW_MIXING_SPANPAINTER_H
#define OVW_MIXING_SPANPAINTER_H

#include "mixing/coveragerow.h"
#include "mixing/kernelplan.h"
#include "mixing/kerneltable.h"
#include "ovwcmn/xcfastpixelmixer.h"

#include <cstdint>
#include <span>

namespace ovw::mixing {

/// The road of a span through a mixer's kernels: choose the kernel, run the row through the kernel's stages, composite.
/// Lives for one call; every branch on a setting stands here, once a span.
class SpanPainter {
public:
    explicit SpanPainter(XCFastPixelMixer& mixer);

    /// Pixels x1 to x2, both included, of row y.
    void paintSpan(int x1, int x2, int y);
    /// Pixels from x on with coverages of their own.
    void paintCoverage(int x, int y, std::span<const float> coverage);
    /// A part of the current block.
    void paintPart(const XCRect& part);

private:
    struct Kernels {
        const KernelPlan* plan;
        bool isUniform; // one opacity byte for the whole span
    };

    bool place(int x1, int x2, int y);
    const KernelPlan* choosePlan(const float* coverage) const;
    const KernelPlan* plainPlan() const;
    bool isReady(const KernelPlan& plan) const;

    void run(const KernelPlan& plan, const float* coverage);
    void runUniform();
    void start(CoverageRow& row, const KernelPlan& plan, const float* coverage) const;
    void applyMask(CoverageRow& row, const KernelPlan& plan);
    void applyGauss(CoverageRow& row, bool isWide);
    void applyTexture(CoverageRow& row, std::int32_t alpha) const;
    void accumulate(CoverageRow& row, const KernelPlan& plan, bool isWide) const;
    void composite(const CoverageRow& row, const KernelPlan& plan) const;

    bool usesGauss(const KernelPlan& plan) const;
    bool usesTexture(const KernelPlan& plan) const;
    bool texturesAfter() const { return m_mixer.m_style & XCFastPixelMixer::STYLE_TEXTURE_AFTER; }
    Accumulation accumulation() const;
    std::int32_t startFactor(Start start) const;
    std::int32_t opacityByte() const;
    Compositor compositorOf(const CompositorTable& table) const;
    const CompositorTable& tableOf(CompositorSet set, bool overNothing) const;
    CompositeSpan compositeSpan() const;
    std::uint8_t* rowOf(const XCVOffscreen* image, int pixelBytes) const;

    XCFastPixelMixer& m_mixer;
    const KernelTable& m_kernels;
    int m_depth;
    // The span, inside the block.
    int m_x = 0;
    int m_y = 0;
    int m_n = 0;
};

} // namespace ovw::mixing

#endif // OVW_MIXING_SPANPAINTER_H
