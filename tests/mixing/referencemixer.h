#ifndef OVW_TESTS_MIXING_REFERENCEMIXER_H
#define OVW_TESTS_MIXING_REFERENCEMIXER_H

#include <cstdint>
#include <vector>

/// @file
/// A slow and plain model of the span compositor, which the tests hold the library against: one pixel at a time, a
/// branch for each rule, images as arrays of numbers. It shares no code with the library.

namespace ovw::test {

/// How close the library must come to a pixel of the model. Rules in floating point may be one off; a few corners
/// allow two answers.
enum class Match : std::uint8_t { exact, withinOne, any };

/// An image as one number a pixel: 1, 2, 8 bits the value; 16 the coverage of a stroke cache; 24 and 32 0xAABBGGRR.
/// Blocks of 256 x 256 may be missing: their pixels read as 0.
struct PlainImage {
    PlainImage(int depthOfImage, int widthOfImage, int heightOfImage);

    bool exists(int x, int y) const;
    std::uint32_t& at(int x, int y) { return pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)]; }
    std::uint32_t at(int x, int y) const { return pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)]; }
    Match& match(int x, int y) { return matches[std::size_t(y) * std::size_t(width) + std::size_t(x)]; }
    /// The pixel as 0xAABBGGRR; what does not exist is 0.
    std::uint32_t color(int x, int y) const;

    int depth;
    int width;
    int height;
    int resolution = 1;
    std::vector<std::uint32_t> pixels;
    std::vector<Match> matches;
    std::vector<char> blocks; // whether the block exists, a row of blocks after the other
};

struct Rgba {
    int r, g, b, a;
};
Rgba unpack(std::uint32_t color);
std::uint32_t pack(const Rgba& color);

/// The colour sums of a blending brush.
struct ReferenceAverage {
    void count(std::uint32_t color);
    void countDensity(std::uint32_t density);
    /// The average, 0xAABBGGRR.
    std::uint32_t color() const;

    std::uint64_t alpha = 0, red = 0, green = 0, blue = 0, colored = 0, empty = 0;
};

/// The falloff of soft tips.
class ReferencePlotter {
public:
    void startPlot(double centerX, double centerY, float tableRadius, float radius, float hardness,
                   bool keepTableRadius, bool allowTable);
    bool startLine(int y, int x);
    std::int64_t value() const;
    std::int64_t valueNoClip() const;
    void next() { m_position += m_step; }

private:
    bool m_isTable = false;
    int m_entries = 0; // in a row
    std::vector<std::int64_t> m_table;
    int m_centerX = 0, m_centerY = 0;
    std::int64_t m_step = 0, m_fractionX = 0, m_fractionY = 0, m_position = 0;
    std::int64_t m_strength = 0, m_row = 0;
    float m_scale = 0;
};

/// A source image of a stamp with one number a pixel, as PlainImage has them, and how it is sampled.
struct PlainSource {
    int depth = 8;
    int width = 0;
    int height = 0;
    bool clampX = false;
    bool clampY = false;
    std::vector<std::uint32_t> pixels;

    std::uint32_t at(std::int64_t x, std::int64_t y) const;
};

/// Where a source is sampled, in 1.15; with 2 x 2 samples the steps are half steps, and the second line is used.
struct SamplePoints {
    std::int64_t u = 0, v = 0, du = 0, dv = 0;
    std::int64_t uB = 0, vB = 0, duB = 0, dvB = 0;
};

struct PlainTexture {
    int rowBytes = 0;
    int height = 0;
    int offsetX = 0, offsetY = 0;
    int density = 0;
    int mode = 0;
    std::vector<std::uint8_t> texels;
};

/// The model of the mixer. Alphas are 1.15. Null members are absent.
class ReferenceMixer {
public:
    std::uint32_t style = 0;
    int composition = 0;
    PlainImage* destination = nullptr;
    PlainImage* cache = nullptr;
    PlainImage* colorCache = nullptr;
    const PlainImage* composite = nullptr;
    const PlainImage* mask = nullptr;
    int maskX = 0, maskY = 0;
    const PlainImage* clone = nullptr;
    const PlainImage* blur = nullptr;
    int cloneX = 0, cloneY = 0; // of the clone source or the blur image
    Rgba paint{};
    Rgba subPaint{};
    std::int64_t mixAlpha = 32768, cacheAlpha = 32768, baseAlpha = 32768;
    bool keepAlpha = false;
    ReferencePlotter* plotter = nullptr;
    ReferenceAverage* average = nullptr;
    const PlainTexture* texture = nullptr;
    SamplePoints points;

    void setMixAlpha(double alpha);
    void setCacheAlpha(double alpha);
    void scaleAntiAlpha(double factor);

    /// Pixels x1 to x2 of row y, both included.
    void doLineRow(int x1, int x2, int y);
    /// Pixels x1 to x2 - 1 of row y through the source.
    void doLineRowCopy(int x1, int x2, int y, const PlainSource& source);

private:
    enum class Kernel { none, blur, clone, water, cache, fastest, direct };
    enum class CopyKernel { none, direct, directBits, grayCache, water, colorCache, toneCache };

    bool has(std::uint32_t bits) const { return (style & bits) != 0; }
    std::int64_t paintAlpha() const { return (paint.a * 257 + 1) >> 1; }
    int pixelOfBits() const;
    bool passesDither(std::int64_t level, int x, int y) const;
    int maskValue(int x, int y) const;
    bool maskBit(int x, int y) const;
    std::int64_t falloff(std::int64_t a, bool clipped) const;
    std::int64_t textured(std::int64_t a, int x, int y, bool afterCache) const;
    bool accumulate(std::int64_t& a, std::int64_t cap, int x, int y);
    bool isCompositeEmpty(int x, int y) const { return !composite->exists(x, y); }

    Kernel kernel() const;
    CopyKernel copyKernel() const;
    void directPixel(int x, int y);
    void fastestPixel(int x, int y);
    void fastestPixel32(int b, int x, int y, const Rgba& color);
    void fastestPixel8(int b, int x, int y);
    void cachePixel(int x, int y);
    void cachePixel(std::int64_t a, std::int64_t cap, int x, int y);
    void waterPixel(int x, int y);
    void waterPixel(std::int64_t a, std::int64_t cap, int x, int y);
    void waterPaint32(std::int64_t b, int x, int y);
    void waterPaint8(std::int64_t b, int x, int y);
    void waterColor(std::int64_t a, std::int64_t total, int x, int y);
    void blurPixel(int x, int y);
    void clonePixel(int x, int y);
    void clonePixelColor(std::int64_t a, const Rgba& source, int x, int y);

    bool isAntialiased() const;
    std::vector<std::uint32_t> samples(const PlainSource& source) const;
    /// What the source makes of coverage a; 0 when it does not cover the pixel.
    std::int64_t sourceCoverage(const PlainSource& source, std::int64_t a) const;
    /// The mean colour of those samples that cover the pixel, their number as alpha.
    Rgba sourceColor(const PlainSource& source, bool countsSubColor) const;
    void copyPixel(CopyKernel chosen, int x, int y, const PlainSource& source);
    void directCopyPixel(int x, int y, const PlainSource& source);
    void directBitsCopyPixel(int x, int y, const PlainSource& source);
    void grayCacheCopyPixel(int x, int y, const PlainSource& source);
    void waterCopyPixel(int x, int y, const PlainSource& source);
    void colorCacheCopyPixel(int x, int y, const PlainSource& source);
    bool accumulateColor(std::int64_t& a, const Rgba& color, int x, int y);
    void toneCacheCopyPixel(int x, int y, const PlainSource& source);
    bool accumulateTone(std::int64_t& a, int tone, int x, int y);

    void composeCached(std::int64_t a, const Rgba& color, int x, int y);
    void composeCached32(std::int64_t a, const Rgba& color, int x, int y);
    void composeCached8(std::int64_t a, int x, int y);
    void compose32(std::int64_t a, const Rgba& color, const Rgba& reference, int x, int y);
    void normal32(std::int64_t a, const Rgba& color, const Rgba& reference, int x, int y);
    void multiply32(std::int64_t a, const Rgba& color, const Rgba& reference, int x, int y);
    void hardLight32(std::int64_t a, const Rgba& color, const Rgba& reference, int x, int y);
    void store(const Rgba& color, int x, int y);
    void storeKeepingAlpha(const Rgba& color, int x, int y);
};

} // namespace ovw::test

#endif // OVW_TESTS_MIXING_REFERENCEMIXER_H
