#ifndef OVW_BRUSH_PLOTPATTERN_H
#define OVW_BRUSH_PLOTPATTERN_H

class XCColorAverage;
class XCFastPixelMixer;
class XCPatternDrawMethod;
class XCPlotGauss;
class XCVOffscreen;
struct PLOTPATTERNPARAM;

namespace ovw::brush {

/// How one stamp meets the image of a drawing method: works out its final size, hardness and opacity, and sets up a
/// mixer for it. Method and stamp must outlive it.
class StampSetup {
public:
    StampSetup(const XCPatternDrawMethod& method, const PLOTPATTERNPARAM& stamp);

    /// @param mixer as built; @param noColor only samples the image's colours
    void configure(XCFastPixelMixer& mixer, XCPlotGauss& falloff, XCColorAverage* average, int noColor) const;
    float size() const { return static_cast<float>(m_size); }
    int antialias() const { return m_antialias; }

private:
    void chooseSoftness();
    void strengthenSmallStamp();
    bool isDirect() const;
    double densityFactor() const;
    unsigned accumulationStyle() const;
    void setImages(XCFastPixelMixer& mixer) const;
    void setColor(XCFastPixelMixer& mixer) const;
    void setAlpha(XCFastPixelMixer& mixer) const;
    void setTexture(XCFastPixelMixer& mixer) const;
    void setFalloff(XCFastPixelMixer& mixer, XCPlotGauss& falloff) const;

    const XCPatternDrawMethod& m_method;
    const PLOTPATTERNPARAM& m_stamp;
    double m_alpha;    ///< 0 to 1, on top of the stamp's opacity
    double m_size;     ///< pixels
    double m_hardness; ///< 0 to 255
    int m_antialias;
    bool m_isDeep; ///< the image can take part of a coverage
    bool m_allowsSoft;
    bool m_isSoft = false;
};

} // namespace ovw::brush

#endif // OVW_BRUSH_PLOTPATTERN_H
