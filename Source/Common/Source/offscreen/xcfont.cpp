#include "ovwcmn/xcfont.h"

#include "Platform/font.h"
#include "Platform/text.h"

#include <atomic>
#include <cstring>
#include <new>
#include <string>

namespace platform = ovw::platform;

namespace {

/// Characters that the code page cannot tell become blanks one by one.
std::u16string wideText(const char* text) {
    std::u16string wide(std::strlen(text), u'\0');
    const platform::Converted converted =
        platform::toUtf16(platform::codePage(), text, wide.size(), wide.data(), wide.size());
    if (converted.result == platform::Conversion::done) {
        wide.resize(converted.length);
        return wide;
    }
    for (std::size_t i = 0; i < wide.size(); ++i)
        wide[i] = static_cast<unsigned char>(text[i]) < 0x80 ? static_cast<char16_t>(text[i]) : u' ';
    return wide;
}

int drawBySystemFonts(const char* text, const XCFont& font, void (*take)(void*, const VXTEXTBITMAP&), void* context) {
    platform::Coverage coverage;
    try {
        const platform::FontRequest request{static_cast<const char*>(font.GetName()), font.GetHeight(),
                                            (font.GetStyle() & XCFont::cnBold) != 0,
                                            (font.GetStyle() & XCFont::cnItalic) != 0};
        if (!platform::drawTextLine(wideText(text), request, coverage))
            return 0;
    } catch (const std::bad_alloc&) {
        return 0;
    }
    take(context, {coverage.width, coverage.height, coverage.width, coverage.pixels.data()});
    return 1;
}

std::atomic<VXTEXTPROC> s_textProc = drawBySystemFonts;

} // namespace

void xcSetTextProc(VXTEXTPROC proc) { s_textProc = proc ? proc : drawBySystemFonts; }

VXTEXTPROC xcGetTextProc() { return s_textProc; }
