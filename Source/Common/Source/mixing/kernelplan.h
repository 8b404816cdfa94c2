#ifndef OVW_MIXING_KERNELPLAN_H
#define OVW_MIXING_KERNELPLAN_H

namespace ovw::mixing {

/// The row kernels of the mixer.
enum class Kernel { Fastest, FastestBits, Direct, Cache, Water, Blur, Clone };

/// What a pixel's coverage begins with.
enum class Start {
    Byte,  ///< One opacity byte from colour alpha and mix alpha.
    Visit, ///< Full: pixels are set or not.
    Paint, ///< Mix alpha times colour alpha.
    Cache, ///< Cache alpha times colour alpha, capped there; pixels whose cache is full already are skipped.
    Water, ///< Cache alpha, whatever the colour's alpha.
    Image  ///< Mix alpha, whatever the colour's alpha.
};

/// How an 8-bit mask scales; a 1-bit mask and a mask of 0 always skip.
enum class MaskRule {
    None,
    Gate,        ///< Not at all.
    Scale,       ///< The coverage.
    ScaleAndCap, ///< The coverage and the most it may become.
    ScaleBlur    ///< The coverage, with the rounding of blurs.
};

/// Which compositors end the kernel.
enum class CompositorSet { Fastest, Direct, Cache, Water, Blur, Clone };

/// One kernel: which stages it has, in their order. Stages also need their setting (a mask, a texture, a style bit).
struct KernelPlan {
    Start start;
    MaskRule mask;
    bool gauss;   ///< Multiplies the plotter's falloff into the coverage.
    bool texture; ///< Lets a texture modulate the coverage or the opacity.
    bool cache;   ///< Accumulates the coverage in the stroke cache; the opacity then comes from the cache.
    bool sampled; ///< Keeps the row's live flags, for sampling.
    CompositorSet compositors;
};

const KernelPlan& planOf(Kernel kernel);

} // namespace ovw::mixing

#endif // OVW_MIXING_KERNELPLAN_H
