#include "pngexport.h"

#include "failure.h"
#include "interrupt.h"

#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace ovwpaint {

namespace {

/// How the pixels of one depth stand in a PNG: as `bytes` bytes, which `store` makes of the pixel under the cursor.
/// Pixels below 8 bits take a byte each here; libpng packs them.
struct PixelForm {
    int depth;
    int colourType;
    int bitDepth;
    std::size_t bytes;
    void (*store)(const XCVOffscreen& image, std::uint8_t* out);
};

void storeInk(const XCVOffscreen& image, std::uint8_t* out) { out[0] = image.Get1BitColor() ? 0 : 1; }

void storeIndex(const XCVOffscreen& image, std::uint8_t* out) { out[0] = image.Get2BitColor(); }

void storeDensity(const XCVOffscreen& image, std::uint8_t* out) {
    out[0] = static_cast<std::uint8_t>(255 - image.Get8BitColor());
}

void storeGrey(const XCVOffscreen& image, std::uint8_t* out) {
    const Colour colour = image.Get16BitColor();
    out[0] = static_cast<std::uint8_t>(redOf(colour));
    out[1] = static_cast<std::uint8_t>(alphaOf(colour));
}

void storeRgb(const XCVOffscreen& image, std::uint8_t* out) {
    const Colour colour = image.Get24BitColor();
    out[0] = static_cast<std::uint8_t>(redOf(colour));
    out[1] = static_cast<std::uint8_t>(greenOf(colour));
    out[2] = static_cast<std::uint8_t>(blueOf(colour));
}

void storeRgba(const XCVOffscreen& image, std::uint8_t* out) {
    const Colour colour = image.Get32BitColor();
    out[0] = static_cast<std::uint8_t>(redOf(colour));
    out[1] = static_cast<std::uint8_t>(greenOf(colour));
    out[2] = static_cast<std::uint8_t>(blueOf(colour));
    out[3] = static_cast<std::uint8_t>(alphaOf(colour));
}

constexpr std::array cnForms = {
    PixelForm{1, PNG_COLOR_TYPE_GRAY, 1, 1, storeInk},     PixelForm{2, PNG_COLOR_TYPE_PALETTE, 2, 1, storeIndex},
    PixelForm{8, PNG_COLOR_TYPE_GRAY, 8, 1, storeDensity}, PixelForm{16, PNG_COLOR_TYPE_GRAY_ALPHA, 8, 2, storeGrey},
    PixelForm{24, PNG_COLOR_TYPE_RGB, 8, 3, storeRgb},     PixelForm{32, PNG_COLOR_TYPE_RGB_ALPHA, 8, 4, storeRgba},
};

const PixelForm& formOf(int depth) {
    return *std::find_if(cnForms.begin(), cnForms.end(), [depth](const PixelForm& f) { return f.depth == depth; });
}

/// libpng's writer. Its errors leave as Failure, through its own frames, which carry unwinding tables on every system
/// that this program runs on.
class PngWriter {
public:
    explicit PngWriter(OutputFile& file)
        : m_png(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, onError, onWarning)),
          m_info(m_png ? png_create_info_struct(m_png) : nullptr) {
        if (!m_info) {
            png_destroy_write_struct(&m_png, nullptr);
            throw Failure("not enough memory for a PNG writer");
        }
        png_set_write_fn(m_png, &file, onWrite, nullptr);
    }
    ~PngWriter() { png_destroy_write_struct(&m_png, &m_info); }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    void begin(const Canvas& canvas, const PixelForm& form);
    void writeRow(const std::uint8_t* row) { png_write_row(m_png, row); }
    void end() { png_write_end(m_png, m_info); }

private:
    static void onError(png_structp, png_const_charp message) { throw Failure(std::string("PNG: ") + message); }
    static void onWarning(png_structp, png_const_charp) {}
    static void onWrite(png_structp png, png_bytep bytes, png_size_t count) {
        static_cast<OutputFile*>(png_get_io_ptr(png))->write(bytes, count);
    }

    void setPalette();

    png_structp m_png;
    png_infop m_info;
};

void PngWriter::begin(const Canvas& canvas, const PixelForm& form) {
    const auto width = static_cast<png_uint_32>(canvas.width());
    const auto height = static_cast<png_uint_32>(canvas.height());
    png_set_user_limits(m_png, width, height);
    png_set_IHDR(m_png, m_info, width, height, form.bitDepth, form.colourType, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (form.colourType == PNG_COLOR_TYPE_PALETTE)
        setPalette();
    else
        png_set_sRGB(m_png, m_info, PNG_sRGB_INTENT_PERCEPTUAL);
    // Strokes on even ground: most rows are plain, or like the one above.
    if (form.bitDepth == 8)
        png_set_filter(m_png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE | PNG_FILTER_UP);
    png_write_info(m_png, m_info);
    png_set_packing(m_png);
}

/// 0 is transparent, 2 white, 3 black; 1 does not occur.
void PngWriter::setPalette() {
    const std::array<png_color, 4> colours = {{{255, 255, 255}, {255, 255, 255}, {255, 255, 255}, {0, 0, 0}}};
    const std::array<png_byte, 2> alphas = {0, 0};
    png_set_PLTE(m_png, m_info, colours.data(), static_cast<int>(colours.size()));
    png_set_tRNS(m_png, m_info, alphas.data(), static_cast<int>(alphas.size()), nullptr);
}

/// Reads the picture a band of blocks at a time, so that each block is brought into memory once.
class BandReader {
public:
    BandReader(Canvas& canvas, const PixelForm& form)
        : m_canvas(canvas), m_form(form), m_rowBytes(static_cast<std::size_t>(canvas.width()) * form.bytes),
          m_pixels(m_rowBytes * static_cast<std::size_t>(std::min(canvas.height(), XCVOffscreen::cnBlockSize))) {
        readBackground();
    }

    /// Reads the rows of blocks that begins at `top`. @return how many rows that are
    int read(int top) {
        const int rows = std::min(XCVOffscreen::cnBlockSize, m_canvas.height() - top);
        XCBlockGetter blocks(&m_canvas.image(), XCRect(0, top, m_canvas.width(), top + rows), 1);
        for (XCRect block; blocks.GetNextBlock(block);) {
            if (m_canvas.image().GetBlockExist(block.left, block.top))
                readBlock(block);
            else
                fillBlock(block);
        }
        return rows;
    }

    const std::uint8_t* row(int y) const { return m_pixels.data() + m_rowBytes * static_cast<std::size_t>(y); }

private:
    std::uint8_t* place(int x, int y) {
        const auto row = static_cast<std::size_t>(y % XCVOffscreen::cnBlockSize);
        return m_pixels.data() + m_rowBytes * row + static_cast<std::size_t>(x) * m_form.bytes;
    }

    void readBlock(const XCRect& block) {
        XCVOffscreen& image = m_canvas.image();
        const XCVOffscreenAutoLock lock(&image, block.left, block.top, 0);
        for (int y = block.top; y < block.bottom; ++y) {
            image.MoveCursorFastest(block.left, y);
            std::uint8_t* out = place(block.left, y);
            for (int x = block.left; x < block.right; ++x, out += m_form.bytes) {
                m_form.store(image, out);
                image.NextCursorXFastest();
            }
        }
    }

    void fillBlock(const XCRect& block) {
        std::uint8_t* first = place(block.left, block.top);
        const auto width = static_cast<std::size_t>(block.right - block.left);
        for (std::size_t x = 0; x < width; ++x)
            std::memcpy(first + x * m_form.bytes, m_background.data(), m_form.bytes);
        for (int y = block.top + 1; y < block.bottom; ++y)
            std::memcpy(place(block.left, y), first, width * m_form.bytes);
    }

    /// What a pixel looks like where nothing was painted: one of a picture that is all background.
    void readBackground() {
        Canvas empty(1, 1, m_canvas.depth(), m_canvas.background(), false);
        empty.prepare(XCRect(0, 0, 1, 1));
        const XCVOffscreenAutoLock lock(&empty.image(), 0, 0, 0);
        m_form.store(empty.image(), m_background.data());
    }

    Canvas& m_canvas;
    const PixelForm& m_form;
    const std::size_t m_rowBytes;
    std::vector<std::uint8_t> m_pixels;
    std::array<std::uint8_t, 4> m_background{};
};

} // namespace

void writePng(Canvas& canvas, int depth, OutputFile& file, Progress& progress) {
    const PixelForm& form = formOf(depth);
    PngWriter writer(file);
    writer.begin(canvas, form);
    BandReader band(canvas, form);
    for (int top = 0; top < canvas.height();) {
        const int rows = band.read(top);
        for (int y = 0; y < rows; ++y)
            writer.writeRow(band.row(y));
        top += rows;
        throwIfInterrupted();
        progress.show("writing", static_cast<std::uint64_t>(top), static_cast<std::uint64_t>(canvas.height()));
    }
    writer.end();
}

} // namespace ovwpaint
