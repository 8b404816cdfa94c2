#include "pngimport.h"

#include "failure.h"
#include "inkread.h"
#include "pngwrite.h"

#include <gtest/gtest.h>

namespace ovwpaint::test {

namespace {

std::vector<Colour> pixelsOf(const std::string& path) {
    PngReader reader(path);
    std::vector<Colour> pixels(static_cast<std::size_t>(reader.width() * reader.height()), 0x12345678);
    reader.read([&](const PngRow& row) {
        int x = row.x;
        for (const Colour pixel : row.pixels) {
            pixels.at(static_cast<std::size_t>(row.y * reader.width() + x)) = pixel;
            x += row.step;
        }
    });
    return pixels;
}

std::string failureOfPng(const std::string& path) {
    try {
        pixelsOf(path);
    } catch (const Failure& failure) {
        return failure.what();
    }
    return "";
}

TEST(PngImport, ConvertsEveryForm) {
    const TemporaryFolder folder;
    const std::string path = folder.path("p.png");
    writeRawPng(path, 9, 1, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE, {{0x80, 0x00}});
    EXPECT_EQ(PngReader(path).depth(), 1);
    EXPECT_EQ(pixelsOf(path)[0], 0xFFFFFFFFu);
    EXPECT_EQ(pixelsOf(path)[8], 0xFF000000u);
    writeRawPng(path, 2, 4, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE, {{0x3F}});
    EXPECT_EQ(PngReader(path).depth(), 8);
    EXPECT_EQ(pixelsOf(path), (std::vector<Colour>{0xFF333333, 0xFFFFFFFF}));
    writeRawPng(path, 2, 1, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE, {{0x40}});
    EXPECT_EQ(PngReader(path).depth(), 32);
    EXPECT_EQ(pixelsOf(path), (std::vector<Colour>{0xFF0000FF, 0x00FF0000}));
    writeRawPng(path, 1, 16, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, {{0x80, 0x80, 0xFF, 0xFF, 0x00, 0x01}});
    EXPECT_EQ(pixelsOf(path)[0], 0xFF00FF80u);
    writeRawPng(path, 1, 8, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_INTERLACE_NONE, {{0x20, 0x40}});
    EXPECT_EQ(pixelsOf(path)[0], 0x40202020u);
}

TEST(PngImport, PutsInterlacedPixelsInTheirPlaces) {
    const TemporaryFolder folder;
    for (const auto& [width, height] : {std::pair(1, 1), std::pair(3, 2), std::pair(5, 9), std::pair(19, 17)}) {
        std::vector<std::vector<png_byte>> rows;
        std::vector<Colour> expected;
        for (int y = 0; y < height; ++y) {
            rows.emplace_back();
            for (int x = 0; x < width; ++x) {
                rows.back().push_back(static_cast<png_byte>(x * 13 + y));
                expected.push_back(packColour(1, 1, 1, 0) * rows.back().back() | 0xFF000000);
            }
        }
        const std::string path = folder.path("p.png");
        writeRawPng(path, width, 8, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_ADAM7, rows);
        EXPECT_EQ(pixelsOf(path), expected) << width << ' ' << height;
    }
}

TEST(PngImport, RefusesWhatIsNoWholePicture) {
    const TemporaryFolder folder;
    EXPECT_EQ(failureOfPng(folder.path("none.png")), folder.path("none.png") + ": No such file or directory");
    EXPECT_NE(failureOfPng(folder.path("")), "");
    const std::string good = writePng(folder.path("p.png"), 40, 40, [](int x, int y) {
        return packColour(static_cast<std::uint32_t>(x * 37 % 256), static_cast<std::uint32_t>(y * 91 % 256), 0);
    });
    const std::string bytes = [&] {
        std::ifstream file(good, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }();
    EXPECT_EQ(failureOfPng(good), "");
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const std::string cut = folder.write("cut.png", bytes.substr(0, length));
        ASSERT_EQ(failureOfPng(cut).substr(0, cut.size() + 2), cut + ": ") << length;
    }
    for (std::size_t place = 8; place < bytes.size(); place += 3) {
        std::string damaged = bytes;
        damaged[place] = static_cast<char>(damaged[place] ^ 0x5A);
        failureOfPng(folder.write("damaged.png", damaged)); // reads or fails, nothing else
    }
}

/// The header of a picture, with its checksum, and nothing of its pixels.
std::string headerOnly(png_uint_32 width, png_uint_32 height) {
    std::string header = "IHDR";
    for (const png_uint_32 side : {width, height}) {
        for (int shift = 24; shift >= 0; shift -= 8)
            header += static_cast<char>(side >> shift & 0xFF);
    }
    header += std::string("\x08\x06\x00\x00\x00", 5);
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char c : header) {
        crc ^= static_cast<std::uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
    }
    std::string text("\x89PNG\r\n\x1A\n\0\0\0\x0D", 12);
    text += header;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(~crc >> shift & 0xFF);
    return text + std::string("\0\0\0\x04IDATxxxx\0\0\0\0", 16);
}

TEST(PngImport, BelievesNoHeaderAlone) {
    const TemporaryFolder folder;
    const std::pair<std::pair<png_uint_32, png_uint_32>, const char*> cases[] = {
        {{16000, 16000}, "too short for its 16000 x 16000 pixels"},
        {{90000, 90000}, "90000 x 90000 pixels are too many"},
        {{4000000000u, 2}, ""},
        {{0, 5}, ""},
        {{200000, 1}, ""},
    };
    for (const auto& [size, message] : cases) {
        const std::string path = folder.write("p.png", headerOnly(size.first, size.second));
        const std::string failure = failureOfPng(path);
        EXPECT_EQ(failure.substr(0, path.size() + 2), path + ": ");
        EXPECT_NE(failure.find(message), std::string::npos) << failure;
    }
}

} // namespace

} // namespace ovwpaint::test
