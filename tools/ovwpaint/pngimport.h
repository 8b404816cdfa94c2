#ifndef OVWPAINT_PNGIMPORT_H
#define OVWPAINT_PNGIMPORT_H

/// @file
/// PNG pictures as they come from elsewhere.

#include "colour.h"

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace ovwpaint {

/// Pixels of one row, `step` apart from `x` on; rows of interlaced pictures come in several such parts.
struct PngRow {
    int x = 0;
    int y = 0;
    int step = 1;
    std::span<const Colour> pixels;
};

/// A PNG file of any kind, read a row at a time: 16 bits a channel become 8, palettes, grey and transparent colours
/// become RGBA. Takes memory for one row. Throws Failure that names the file for what is no PNG, is cut short or
/// damaged, has more than 2^28 pixels or a side beyond cnMaxSide, or is too short to hold the pixels that it promises.
class PngReader {
public:
    explicit PngReader(const std::string& path);
    ~PngReader();
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    int width() const { return m_width; }
    int height() const { return m_height; }
    /// The depth of a tiled image that holds the picture: 1 for black and white, 8 for grey, else 32.
    int depth() const { return m_depth; }
    /// The depth whose pictures are written in this form (see pngexport.h).
    int storedDepth() const { return m_storedDepth; }
    /// Hands over every pixel once. To be called once.
    void read(const std::function<void(const PngRow&)>& take);

private:
    struct Decoder;
    struct FileCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void open();
    void readHeader();
    int findStoredDepth() const;
    void checkSize() const;
    void readRow(std::vector<std::uint8_t>& bytes, std::vector<Colour>& pixels);
    [[noreturn]] void fail(const std::string& what) const;

    const std::string m_path;
    std::unique_ptr<std::FILE, FileCloser> m_file;
    std::unique_ptr<Decoder> m_decoder;
    int m_width = 0;
    int m_height = 0;
    int m_depth = 0;
    int m_storedDepth = 0;
};

} // namespace ovwpaint

#endif // OVWPAINT_PNGIMPORT_H
