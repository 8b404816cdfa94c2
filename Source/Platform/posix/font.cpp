#include "Platform/font.h"

#include "Platform/path.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_SYNTHESIS_H

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace ovw::platform {

namespace {

namespace fs = std::filesystem;

constexpr int cnMaxHeight = 10000;
constexpr int cnMaxWidth = 1 << 20; // of a line; what lies behind is not drawn
constexpr int cnPositionUnit = 64;  // FreeType counts in 26.6 fixed point
constexpr const char* cnFontEndings[] = {".ttf", ".otf", ".ttc", ".pfb"};
// Families that most systems have one of, the widest character sets first.
constexpr const char* cnUsualFamilies[] = {"DejaVuSans", "NotoSans", "LiberationSans", "FreeSans", "NotoSansCJK"};

std::vector<fs::path> fontFolders() {
    std::vector<fs::path> folders;
    if (const char* const home = std::getenv("HOME"); home && *home) {
        folders.push_back(fs::path(home) / ".local/share/fonts");
        folders.push_back(fs::path(home) / ".fonts");
    }
    folders.insert(folders.end(), {"/usr/local/share/fonts", "/usr/share/fonts"});
    return folders;
}

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) {
        return 'A' <= c && c <= 'Z' ? static_cast<char>(c + 32) : static_cast<char>(c);
    });
    return text;
}

/// A file's name as families are compared: without its ending, in lower case, without blanks.
std::string plainName(std::string name) {
    name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
    return lowerCase(std::move(name));
}

bool isFontFile(const fs::path& path) {
    const std::string ending = lowerCase(path.extension().string());
    return std::find(std::begin(cnFontEndings), std::end(cnFontEndings), ending) != std::end(cnFontEndings);
}

/// The font files of a folder and the folders in it, sorted by path so that a name finds the same file every time.
/// Folders that cannot be read have none.
std::vector<fs::path> fontFiles(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    const auto options = fs::directory_options::skip_permission_denied;
    for (fs::recursive_directory_iterator at(folder, options, error), end; !error && at != end; at.increment(error))
        if (isFontFile(at->path()))
            files.push_back(at->path());
    std::sort(files.begin(), files.end());
    return files;
}

/// The endings that files of a style have, the fitting ones first.
std::vector<std::string> styleEndings(const FontRequest& font) {
    std::vector<std::string> endings;
    if (font.isBold && font.isItalic)
        endings = {"-bolditalic", "-boldoblique"};
    if (font.isBold)
        endings.push_back("-bold");
    if (font.isItalic)
        endings.insert(endings.end(), {"-italic", "-oblique"});
    endings.insert(endings.end(), {"", "-regular", "-book", "-medium"});
    return endings;
}

std::optional<fs::path> findFamily(const std::vector<fs::path>& files, const std::string& family,
                                   const FontRequest& font) {
    for (const std::string& ending : styleEndings(font))
        for (const fs::path& file : files)
            if (plainName(file.stem().string()) == plainName(family) + ending)
                return file;
    return std::nullopt;
}

std::optional<fs::path> findFont(const FontRequest& font) {
    if (!font.name.empty()) {
        const fs::path file = toPosixPath(font.name);
        std::error_code error;
        if (isFontFile(file) && fs::is_regular_file(file, error))
            return file;
    }
    std::vector<fs::path> files;
    for (const fs::path& folder : fontFolders()) {
        const std::vector<fs::path> found = fontFiles(folder);
        files.insert(files.end(), found.begin(), found.end());
    }
    if (!font.name.empty())
        return findFamily(files, std::string(font.name), font);
    for (const char* const family : cnUsualFamilies)
        if (auto file = findFamily(files, family, font))
            return file;
    return files.empty() ? std::nullopt : std::optional(files.front());
}

/// FreeType and the font opened last, of one thread.
class FontCache {
public:
    FontCache() { FT_Init_FreeType(&m_library); }
    FontCache(const FontCache&) = delete;
    FontCache& operator=(const FontCache&) = delete;
    ~FontCache() {
        if (m_library)
            FT_Done_FreeType(m_library); // closes the font too
    }

    /// Null when there is no such font. It stays valid until another is asked for.
    FT_Face open(const FontRequest& font) {
        const std::string key = std::string(font.name) + (font.isBold ? "\1b" : "") + (font.isItalic ? "\1i" : "");
        if (m_face && key == m_key)
            return m_face;
        close();
        const auto file = m_library ? findFont(font) : std::nullopt;
        if (!file || FT_New_Face(m_library, file->c_str(), 0, &m_face) != 0)
            return m_face = nullptr;
        m_key = key;
        return m_face;
    }

private:
    void close() {
        if (m_face)
            FT_Done_Face(m_face);
        m_face = nullptr;
    }

    FT_Library m_library = nullptr;
    FT_Face m_face = nullptr;
    std::string m_key;
};

/// The next character of UTF-16 text; a surrogate without its partner stands for itself.
char32_t nextCharacter(std::u16string_view& text) {
    const char16_t first = text.front();
    text.remove_prefix(1);
    if ((first & 0xFC00) != 0xD800 || text.empty() || (text.front() & 0xFC00) != 0xDC00)
        return first;
    const char16_t second = text.front();
    text.remove_prefix(1);
    return 0x10000 + (static_cast<char32_t>(first & 0x3FF) << 10) + (second & 0x3FF);
}

/// Draws glyph after glyph; columns come into being as they are needed.
class LineDrawer {
public:
    LineDrawer(FT_Face face, const FontRequest& font)
        : m_face(face), m_imitateBold(font.isBold && !(face->style_flags & FT_STYLE_FLAG_BOLD)),
          m_imitateItalic(font.isItalic && !(face->style_flags & FT_STYLE_FLAG_ITALIC)),
          m_ascent(roundUp(face->size->metrics.ascender)),
          m_height(m_ascent + roundUp(-face->size->metrics.descender)) {}

    void draw(std::u16string_view text) {
        FT_UInt previous = 0;
        while (!text.empty() && m_pen / cnPositionUnit < cnMaxWidth) {
            const FT_UInt glyph = FT_Get_Char_Index(m_face, nextCharacter(text));
            m_pen += kerning(previous, glyph);
            previous = glyph;
            if (FT_Load_Glyph(m_face, glyph, FT_LOAD_DEFAULT) != 0)
                continue;
            imitateStyle();
            if (FT_Render_Glyph(m_face->glyph, FT_RENDER_MODE_NORMAL) == 0)
                place(m_face->glyph->bitmap);
            m_pen += m_face->glyph->advance.x;
        }
        widen(roundUp(m_pen));
    }
    void handOver(Coverage& coverage) const {
        coverage.width = m_width;
        coverage.height = m_height;
        coverage.pixels.assign(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height), 0);
        for (int y = 0; y < m_height; ++y)
            for (int x = 0; x < m_width; ++x)
                coverage.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
                                static_cast<std::size_t>(x)] = *pixel(x, y);
    }

private:
    static int roundUp(FT_Pos v) { return static_cast<int>((v + cnPositionUnit - 1) / cnPositionUnit); }

    FT_Pos kerning(FT_UInt left, FT_UInt right) const {
        FT_Vector delta = {0, 0};
        if (left && right && FT_HAS_KERNING(m_face))
            FT_Get_Kerning(m_face, left, right, FT_KERNING_DEFAULT, &delta);
        return delta.x;
    }
    void imitateStyle() const {
        if (m_imitateBold)
            FT_GlyphSlot_Embolden(m_face->glyph);
        if (m_imitateItalic)
            FT_GlyphSlot_Oblique(m_face->glyph);
    }
    /// Letters that overlap unite; what reaches out of the line, or before its beginning, is cut.
    void place(const FT_Bitmap& bitmap) {
        if (bitmap.pixel_mode != FT_PIXEL_MODE_GRAY)
            return;
        const int left = static_cast<int>(m_pen / cnPositionUnit) + m_face->glyph->bitmap_left;
        const int top = m_ascent - m_face->glyph->bitmap_top;
        widen(left + static_cast<int>(bitmap.width));
        for (int y = std::max(0, -top); y < std::min(static_cast<int>(bitmap.rows), m_height - top); ++y) {
            const unsigned char* const row = bitmap.buffer + static_cast<std::ptrdiff_t>(y) * bitmap.pitch;
            for (int x = std::max(0, -left); x < static_cast<int>(bitmap.width); ++x)
                *pixel(left + x, top + y) = std::max(*pixel(left + x, top + y), row[x]);
        }
    }
    void widen(int width) {
        if (width <= m_width)
            return;
        m_width = width;
        m_columns.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(m_height));
    }
    const std::uint8_t* pixel(int x, int y) const { return m_columns.data() + index(x, y); }
    std::uint8_t* pixel(int x, int y) { return m_columns.data() + index(x, y); }
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(x) * static_cast<std::size_t>(m_height) + static_cast<std::size_t>(y);
    }

    FT_Face m_face;
    bool m_imitateBold;
    bool m_imitateItalic;
    int m_ascent;
    int m_height;
    int m_width = 0;
    FT_Pos m_pen = 0;
    std::vector<std::uint8_t> m_columns; // column by column, so that the line can grow
};

} // namespace

bool drawTextLine(std::u16string_view text, const FontRequest& font, Coverage& coverage) {
    thread_local FontCache cache;
    const FT_Face face = cache.open(font);
    const int height = std::clamp(font.height, 1, cnMaxHeight);
    if (!face || FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(height)) != 0)
        return false;
    LineDrawer drawer(face, font);
    drawer.draw(text);
    drawer.handOver(coverage);
    return true;
}

} // namespace ovw::platform
