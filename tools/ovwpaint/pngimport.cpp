#include "pngimport.h"

#include "failure.h"
#include "interrupt.h"
#include "layout.h"

#include <png.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace ovwpaint {

namespace {

constexpr std::uint64_t cnMaxPixels = std::uint64_t{1} << 28;
constexpr std::size_t cnBytesPerPixel = 4;
/// The best that deflate can do.
constexpr std::uint64_t cnMaxCompression = 1032;

/// Whether every colour is transparent, white or black.
bool hasInkPalette(png_structp png, png_infop info) {
    png_colorp colours = nullptr;
    png_bytep alphas = nullptr;
    int count = 0;
    int alphaCount = 0;
    png_get_PLTE(png, info, &colours, &count);
    png_get_tRNS(png, info, &alphas, &alphaCount, nullptr);
    for (int i = 0; i < count; ++i) {
        const png_byte alpha = i < alphaCount ? alphas[i] : png_byte{255};
        const Colour colour = packColour(colours[i].red, colours[i].green, colours[i].blue, alpha);
        if (alpha != 0 && colour != packColour(255, 255, 255) && colour != packColour(0, 0, 0))
            return false;
    }
    return true;
}

} // namespace

/// libpng's reader. Its errors leave as Failure, through its own frames, which carry unwinding tables on every system
/// that this program runs on.
struct PngReader::Decoder {
    explicit Decoder(PngReader& owner)
        : png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &owner, onError, onWarning)),
          info(png ? png_create_info_struct(png) : nullptr) {
        if (!info) {
            png_destroy_read_struct(&png, nullptr, nullptr);
            throw Failure("not enough memory for a PNG reader");
        }
        png_set_read_fn(png, owner.m_file.get(), onRead);
        png_set_user_limits(png, cnMaxSide, cnMaxSide);
    }
    ~Decoder() { png_destroy_read_struct(&png, &info, nullptr); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    static void onError(png_structp png, png_const_charp message) {
        static_cast<const PngReader*>(png_get_error_ptr(png))->fail(message);
    }
    static void onWarning(png_structp, png_const_charp) {}
    static void onRead(png_structp png, png_bytep bytes, png_size_t count) {
        if (std::fread(bytes, 1, count, static_cast<std::FILE*>(png_get_io_ptr(png))) != count)
            png_error(png, "the file ends too early");
    }

    png_structp png;
    png_infop info;
};

PngReader::PngReader(const std::string& path) : m_path(path) {
    open();
    m_decoder = std::make_unique<Decoder>(*this);
    readHeader();
    checkSize();
}

PngReader::~PngReader() = default;

void PngReader::fail(const std::string& what) const { throw Failure(m_path + ": " + what); }

void PngReader::open() {
    constexpr std::size_t cnSignatureBytes = 8;
    m_file.reset(std::fopen(m_path.c_str(), "rb"));
    if (!m_file)
        fail(std::strerror(errno));
    png_byte signature[cnSignatureBytes];
    errno = 0;
    if (std::fread(signature, 1, cnSignatureBytes, m_file.get()) != cnSignatureBytes ||
        png_sig_cmp(signature, 0, cnSignatureBytes) != 0)
        fail(errno != 0 ? std::strerror(errno) : "not a PNG picture");
}

void PngReader::readHeader() {
    constexpr int cnSignatureBytes = 8;
    png_structp png = m_decoder->png;
    png_infop info = m_decoder->info;
    png_set_sig_bytes(png, cnSignatureBytes);
    png_read_info(png, info);
    m_width = static_cast<int>(png_get_image_width(png, info));
    m_height = static_cast<int>(png_get_image_height(png, info));
    const bool isGrey =
        png_get_color_type(png, info) == PNG_COLOR_TYPE_GRAY && !png_get_valid(png, info, PNG_INFO_tRNS);
    m_depth = !isGrey ? 32 : png_get_bit_depth(png, info) == 1 ? 1 : 8;
    m_storedDepth = isGrey ? m_depth : findStoredDepth();
}

int PngReader::findStoredDepth() const {
    png_structp png = m_decoder->png;
    png_infop info = m_decoder->info;
    const bool isOpaque = !png_get_valid(png, info, PNG_INFO_tRNS);
    switch (png_get_color_type(png, info)) {
    case PNG_COLOR_TYPE_GRAY:
    case PNG_COLOR_TYPE_GRAY_ALPHA: return 16;
    case PNG_COLOR_TYPE_RGB: return isOpaque ? 24 : 32;
    case PNG_COLOR_TYPE_PALETTE: return hasInkPalette(png, info) ? 2 : isOpaque ? 24 : 32;
    default: return 32;
    }
}

/// What is plainly a lie is known before anything is made of that size.
void PngReader::checkSize() const {
    if (static_cast<std::uint64_t>(m_width) * static_cast<std::uint64_t>(m_height) > cnMaxPixels)
        fail(std::to_string(m_width) + " x " + std::to_string(m_height) + " pixels are too many");
    std::error_code notRegular;
    const std::uintmax_t fileBytes = std::filesystem::file_size(m_path, notRegular);
    const std::uint64_t rowBytes = png_get_rowbytes(m_decoder->png, m_decoder->info);
    // The rows of interlaced pictures add up to no less than the plain ones, but for the padding of low depths.
    if (!notRegular && rowBytes * static_cast<std::uint64_t>(m_height) / cnMaxCompression > fileBytes)
        fail("too short for its " + std::to_string(m_width) + " x " + std::to_string(m_height) + " pixels");
}

void PngReader::readRow(std::vector<std::uint8_t>& bytes, std::vector<Colour>& pixels) {
    png_read_row(m_decoder->png, bytes.data(), nullptr);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const std::uint8_t* pixel = bytes.data() + i * cnBytesPerPixel;
        pixels[i] = packColour(pixel[0], pixel[1], pixel[2], pixel[3]);
    }
}

void PngReader::read(const std::function<void(const PngRow&)>& take) {
    constexpr png_uint_32 cnOpaque = 255;
    png_structp png = m_decoder->png;
    png_set_expand(png);
    png_set_scale_16(png);
    png_set_gray_to_rgb(png);
    png_set_add_alpha(png, cnOpaque, PNG_FILLER_AFTER);
    const bool isInterlaced = png_get_interlace_type(png, m_decoder->info) != PNG_INTERLACE_NONE;
    png_start_read_image(png);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(m_width) * cnBytesPerPixel);
    std::vector<Colour> pixels;
    // libpng passes over the parts without pixels by itself.
    for (int pass = 0; pass < (isInterlaced ? PNG_INTERLACE_ADAM7_PASSES : 1); ++pass) {
        const auto width = static_cast<png_uint_32>(m_width);
        const auto height = static_cast<png_uint_32>(m_height);
        const int columns = static_cast<int>(isInterlaced ? PNG_PASS_COLS(width, pass) : width);
        const int rows = static_cast<int>(isInterlaced ? PNG_PASS_ROWS(height, pass) : height);
        pixels.resize(static_cast<std::size_t>(columns));
        for (int row = 0; columns > 0 && row < rows; ++row) {
            readRow(bytes, pixels);
            throwIfInterrupted();
            if (isInterlaced)
                take({static_cast<int>(PNG_PASS_START_COL(pass)), static_cast<int>(PNG_ROW_FROM_PASS_ROW(row, pass)),
                      1 << PNG_PASS_COL_SHIFT(pass), pixels});
            else
                take({0, row, 1, pixels});
        }
    }
    png_read_end(png, nullptr);
}

} // namespace ovwpaint
