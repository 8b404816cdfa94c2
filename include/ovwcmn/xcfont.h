#ifndef OVWCMN_XCFONT_H
#define OVWCMN_XCFONT_H

/// @file
/// Fonts of text drawn into classic images, and the hook that turns text into coverage.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcstring.h"

#include <cstdint>

/// A font by its description: a value, which opens nothing. Throws 8 when memory runs out.
class OVWCMN_API XCFont {
public:
    static constexpr int cnBold = 1;   ///< a sum of these is a style
    static constexpr int cnItalic = 2; ///< slanted

    XCFont() = default;
    /// name: a family ("DejaVu Sans") or a font file by its full path; empty for the default font. height: pixels of a
    /// line's em square.
    XCFont(const char* name, int height, int style = 0) : m_name(name), m_height(height), m_style(style) {}

    /// @{ As they were given; an empty name is the default font.
    const XCString& GetName() const { return m_name; }
    int GetHeight() const { return m_height; }
    int GetStyle() const { return m_style; }
    /// @}
    /// @{ As the constructor takes them.
    void SetName(const char* name) { m_name = name; }
    void SetHeight(int height) { m_height = height; }
    void SetStyle(int style) { m_style = style; }
    /// @}

private:
    XCString m_name;
    int m_height = 16;
    int m_style = 0; // cnBold | cnItalic
};

/// The picture of one line of text: how much of each pixel it covers, 0 to 255. Rows lie top-down, `rowBytes` apart;
/// the first column is where the text begins.
struct VXTEXTBITMAP {
    int width;                    ///< pixels
    int height;                   ///< of the line, whatever its letters
    int rowBytes;                 ///< bytes from one row to the next
    const std::uint8_t* coverage; ///< rowBytes x height bytes
};

/// Draws one line of text (no control characters), in the current code page, and hands the bitmap to `take` with
/// `context` before it returns. 1, or 0 without calling `take` when there is no such font. Must not throw, and pass on
/// nothing of what `take` throws.
using VXTEXTPROC = int (*)(const char* text, const XCFont& font,
                           void (*take)(void* context, const VXTEXTBITMAP& bitmap), void* context);

/// Installs the application's own way to draw text, for the whole process; null brings the default back, which draws
/// the system's fonts with FreeType. Set it at start-up, before other threads draw.
OVWCMN_API void xcSetTextProc(VXTEXTPROC proc);
/// The way in effect; never null.
OVWCMN_API VXTEXTPROC xcGetTextProc();

#endif // OVWCMN_XCFONT_H
