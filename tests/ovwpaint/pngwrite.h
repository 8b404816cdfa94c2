#ifndef OVWPAINT_TEST_PNGWRITE_H
#define OVWPAINT_TEST_PNGWRITE_H

/// @file
/// Pixels to PNG files, for the tests of ovwpaint.

#include "colour.h"

#include <png.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace ovwpaint::test {

/// A picture of RGBA pixels; the colour of each comes from `colour`.
inline std::string writePng(const std::string& path, int width, int height,
                            const std::function<Colour(int, int)>& colour) {
    std::vector<Colour> pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            pixels.push_back(colour(x, y));
    }
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    if (!png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr))
        throw std::runtime_error(image.message);
    return path;
}

/// A PNG of one form, whose samples are the bytes of `rows` as the format packs them.
inline std::string writeRawPng(const std::string& path, int width, int bitDepth, int colourType, int interlace,
                               std::vector<std::vector<png_byte>> rows) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    FILE* file = std::fopen(path.c_str(), "wb");
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(rows.size()), bitDepth,
                 colourType, interlace, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    const png_color palette[] = {{255, 0, 0}, {0, 0, 255}};
    const png_byte alphas[] = {255, 0};
    if (colourType == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, palette, 2);
        png_set_tRNS(png, info, alphas, 2, nullptr);
    }
    png_write_info(png, info);
    std::vector<png_bytep> places;
    for (std::vector<png_byte>& row : rows)
        places.push_back(row.data());
    png_write_image(png, places.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
    return path;
}

} // namespace ovwpaint::test

#endif // OVWPAINT_TEST_PNGWRITE_H
