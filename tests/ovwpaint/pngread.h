#ifndef OVWPAINT_TEST_PNGREAD_H
#define OVWPAINT_TEST_PNGREAD_H

/// @file
/// PNG files back to pixels, for the tests of ovwpaint.

#include "colour.h"

#include <png.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace ovwpaint::test {

struct Picture {
    int width = 0;
    int height = 0;
    int bitDepth = 0;
    int colourType = 0;
    std::vector<Colour> pixels;

    Colour at(int x, int y) const { return pixels.at(static_cast<std::size_t>(y) * width + x); }
    /// Pixels that are not the colour.
    std::size_t countOther(Colour colour) const {
        std::size_t count = 0;
        for (const Colour pixel : pixels)
            count += pixel != colour;
        return count;
    }
};

/// Throws std::runtime_error when libpng does not like the file.
inline Picture readPng(const std::string& path) {
    Picture picture;
    FILE* header = std::fopen(path.c_str(), "rb");
    unsigned char bytes[26] = {};
    if (!header || std::fread(bytes, 1, sizeof bytes, header) != sizeof bytes)
        throw std::runtime_error(path + " is no picture");
    std::fclose(header);
    picture.bitDepth = bytes[24];
    picture.colourType = bytes[25];
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        throw std::runtime_error(image.message);
    image.format = PNG_FORMAT_RGBA;
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    picture.pixels.resize(static_cast<std::size_t>(image.width) * image.height);
    if (!png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr))
        throw std::runtime_error(image.message);
    return picture;
}

} // namespace ovwpaint::test

#endif // OVWPAINT_TEST_PNGREAD_H
