#ifndef OVW_MIXING_KERNELPLAN_H
#define OVW_MIXING_KERNELPLAN_H

namespace ovw::mixing {

/// The row kernels of the mixer.
enum class Kernel {
    Fastest,
    FastestBits,
    Direct,
    Cache,
    Water,
    Blur,
    Clone,
    DirectCopy,
    GrayCopy,
    GrayCopyBits,
    WaterCopy,
    ColorCopy24,
    ColorCopy32
};

/// What a pixel's coverage begins with.
enum class Start {
    Byte,      ///< One opacity byte from colour alpha and mix alpha.
    CacheByte, ///< One opacity byte from colour alpha and cache alpha.
    Visit,     ///< Full: pixels are set or not.
    Paint,     ///< Mix alpha times colour alpha.
    Cache,     ///< Cache alpha times colour alpha, the cap being the colour alpha.
    Water,     ///< Cache alpha, whatever the colour's alpha.
    Image      ///< Mix alpha, whatever the colour's alpha.
};

/// What a source image gives to the coverage. Bytes are scaled in after the mask, the others before it.
enum class SourceRule {
    None,
    Darkness, ///< 32-bit pixels cover by darkness times alpha.
    Bytes,    ///< The stamp of 8-bit opacity: 32-bit pixels cover by alpha and bring colours, as 2-bit ones do.
    Colors    ///< 32-bit and 2-bit pixels bring colours and cover in full.
};

/// How an 8-bit mask scales; a 1-bit mask and a mask of 0 always skip.
enum class MaskRule {
    None,
    Gate,        ///< Not at all.
    GateBit,     ///< Not at all; what the mask's 1-bit reading calls 0 skips.
    Scale,       ///< The coverage.
    ScaleAndCap, ///< The coverage and the most it may become.
    ScaleBlur    ///< The coverage, with the rounding of blurs.
};

/// What the coverage does in the stroke caches; the opacity then comes from the cache.
enum class CacheRule {
    None,
    Coverage, ///< Accumulates, unless the pixel's cache is full.
    Water,    ///< Samples the pixels below, accumulates, and draws the colour cache toward the mixer's colour.
    Color     ///< Accumulates together with the source's colours.
};

/// Which compositors end the kernel.
enum class CompositorSet { Fastest, Direct, Cache, Water, Blur, Clone, Stamp, ColorCache };

/// One kernel: which stages it has, in their order. Stages also need their setting (a mask, a texture, a style bit).
struct KernelPlan {
    Start start;
    SourceRule source;
    bool twoByTwo; ///< Source images may be sampled 2 x 2.
    MaskRule mask;
    bool gauss;   ///< Multiplies the plotter's falloff into the coverage.
    bool texture; ///< Lets a texture modulate the coverage or the opacity.
    CacheRule cache;
    CompositorSet compositors;
};

const KernelPlan& planOf(Kernel kernel);

} // namespace ovw::mixing

#endif // OVW_MIXING_KERNELPLAN_H
