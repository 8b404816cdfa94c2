#ifndef OVWCMN_XCVOFFSCREENVARIANTS_H
#define OVWCMN_XCVOFFSCREENVARIANTS_H

/// @file
/// The six depths of tiled images; included by xcvoffscreen.h.

#include "ovwcmn/xcvoffscreen.h"

namespace ovw::vimage {

struct OVWCMN_API Bit1;
struct OVWCMN_API Bit2;
struct OVWCMN_API Density8;
struct OVWCMN_API CoverageGrey16;
struct OVWCMN_API Rgb24;
struct OVWCMN_API Rgba32;

/// All operations of an image that depend on its depth, made of one pixel format. Instantiated inside the library only.
template <class Format>
class OVWCMN_API DepthVariant : public XCVOffscreen {
public:
    DepthVariant();
    ~DepthVariant() override;

    /// @cond The manual has the overrides where XCVOffscreenInterface declares them.
protected:
    void Initialize() override;

public:
    void ClearBlock(std::uint8_t* block) override;
    std::uint8_t* NextCursorX() override;
    std::uint8_t* NextCursorXFastest() override;
    std::uint8_t* PrevCursorX() override;
    std::uint8_t* PrevCursorXFastest() override;
    std::uint32_t GetColor() const override;
    std::uint8_t Get1BitColorFast() const override;
    std::uint8_t Get1BitColor() const override;
    std::uint8_t Get2BitColorFast() const override;
    std::uint8_t Get2BitColor() const override;
    std::uint8_t Get8BitColorFast() const override;
    std::uint8_t Get8BitColor() const override;
    std::uint32_t Get16BitColorFast() const override;
    std::uint32_t Get16BitColor() const override;
    std::uint32_t Get24BitColorFast() const override;
    std::uint32_t Get24BitColor() const override;
    std::uint32_t Get24BitColorAddress(const std::uint8_t* address) const override;
    std::uint32_t Get32BitColorFast() const override;
    std::uint32_t Get32BitColor() const override;
    void SetColor(std::uint32_t value) override;
    void Set1BitColor(std::uint8_t value) override;
    void Set2BitColor(std::uint8_t value) override;
    void Set8BitColor(std::uint8_t density) override;
    void Set16BitColor(std::uint32_t colour) override;
    void Set24BitColor(std::uint32_t colour) override;
    void Set32BitColor(std::uint32_t colour) override;
    void CopyCurrentColor(XCVOffscreen* source) override;
    void CopyCurrentColorFast(XCVOffscreen* source) override;
    std::uint32_t MakeNativeColor(std::uint32_t colour) const override;
    std::uint8_t Get8BitImageFast() const override;
    std::uint8_t Get8BitImage() const override;
    std::uint32_t Get24BitImageFast() const override;
    std::uint32_t Get24BitImage() const override;
    std::uint8_t Get8BitMaskFast() const override;
    std::uint8_t Get8BitMask() const override;
    void RectFill(const XCRect& rect, int erase, std::uint32_t colour, int behind) override;
    void RectFill(const XCRect& rect, int erase, std::uint32_t colour) override;
    void FillBlock(int useColour, std::uint32_t colour) override;
    void DrawSimpleLine(int vertical, int position, std::uint32_t colour) override;
    void DrawSimpleSegment(int vertical, int position, int start, int length, std::uint32_t colour) override;
    int CheckLinePixel(int y, int& x1, int& x2) override;
    std::uint8_t* SetCurrentCursorAddress(int x, int y, std::uint8_t* base) const override;
    std::uint8_t* SetCurrentCursorAddress(int x, int y) override;
    void FillLineRowForPolygon(int x1, int x2, std::uint32_t colour, int mode, XCVOffscreen* mask, int maskOffsetX,
                               const std::uint8_t* pattern, int patternLevel) override;
    void FillLineRowForPolygonClipBlack(int x1, int x2, std::uint32_t colour, int mode, XCVOffscreen* mask,
                                        int maskOffsetX, const std::uint8_t* pattern, int patternLevel) override;
    void FillLineRow(int x1, int x2, int y, std::uint32_t colour, const tagRECT* clip) override;
    int SearchLineRowForPolygon(int x1, int x2) override;
    using XCVOffscreen::RectFill;
    /// @endcond

private:
    // One reading or writing of the format at the cursor: Fast (the address is required) and plain.
    template <auto Reading>
    auto read() const;
    template <auto Reading, class Result>
    Result readOr(Result missing) const;
    template <auto Writing, class Argument>
    void write(Argument value);
};

extern template class OVWCMN_API DepthVariant<Bit1>;
extern template class OVWCMN_API DepthVariant<Bit2>;
extern template class OVWCMN_API DepthVariant<Density8>;
extern template class OVWCMN_API DepthVariant<CoverageGrey16>;
extern template class OVWCMN_API DepthVariant<Rgb24>;
extern template class OVWCMN_API DepthVariant<Rgba32>;

} // namespace ovw::vimage

/// One bit a pixel, the most significant first: 1 = ink, in index colour 1.
class OVWCMN_API XCVOffscreen1Bit : public ovw::vimage::DepthVariant<ovw::vimage::Bit1> {
public:
    XCVOffscreen1Bit();
    ~XCVOffscreen1Bit() override;
};

/// Two bits a pixel: 0 transparent, 2 opaque white (index colour 2), 3 opaque black (index colour 3).
class OVWCMN_API XCVOffscreen2Bit : public ovw::vimage::DepthVariant<ovw::vimage::Bit2> {
public:
    XCVOffscreen2Bit();
    ~XCVOffscreen2Bit() override;
};

/// Ink density, 0 to 255, in index colour 1.
class OVWCMN_API XCVOffscreen8Bit : public ovw::vimage::DepthVariant<ovw::vimage::Density8> {
public:
    XCVOffscreen8Bit();
    ~XCVOffscreen8Bit() override;

    void ReversePixel(); ///< Turns every density d of the existing blocks into 255 - d.
};

/// A byte of coverage, then a byte of grey.
class OVWCMN_API XCVOffscreen16Bit : public ovw::vimage::DepthVariant<ovw::vimage::CoverageGrey16> {
public:
    XCVOffscreen16Bit();
    ~XCVOffscreen16Bit() override;
};

/// Blue, green, red; opaque.
class OVWCMN_API XCVOffscreen24Bit : public ovw::vimage::DepthVariant<ovw::vimage::Rgb24> {
public:
    XCVOffscreen24Bit();
    ~XCVOffscreen24Bit() override;
};

/// Blue, green, red, alpha; not premultiplied.
class OVWCMN_API XCVOffscreen32Bit : public ovw::vimage::DepthVariant<ovw::vimage::Rgba32> {
public:
    XCVOffscreen32Bit();
    ~XCVOffscreen32Bit() override;
};

#endif // OVWCMN_XCVOFFSCREENVARIANTS_H
