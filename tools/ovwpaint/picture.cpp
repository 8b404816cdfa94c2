#include "picture.h"

#include "imageedits.h"
#include "progress.h"

#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreenlock.h"

namespace ovwpaint {

namespace {

constexpr Colour cnWhite = packColour(255, 255, 255);
constexpr std::uint32_t cnMiddle = 128;

// Set the pixel under the cursor; the inverse of how pictures are written.
using PixelStore = void (*)(XCVOffscreen& image, Colour colour);

void storeInk(XCVOffscreen& image, Colour colour) { image.Set1BitColor(greyOf(colour) < cnMiddle ? 1 : 0); }

void storeIndex(XCVOffscreen& image, Colour colour) {
    constexpr std::uint8_t cnTransparent = 0, cnIndexWhite = 2, cnIndexBlack = 3;
    const std::uint8_t index = greyOf(colour) < cnMiddle ? cnIndexBlack : cnIndexWhite;
    image.Set2BitColor(alphaOf(colour) < cnMiddle ? cnTransparent : index);
}

void storeDensity(XCVOffscreen& image, Colour colour) {
    image.Set8BitColor(static_cast<std::uint8_t>(255 - greyOf(colour)));
}

void storeRgb(XCVOffscreen& image, Colour colour) { image.Set24BitColor(colour); }
void storeRgba(XCVOffscreen& image, Colour colour) { image.Set32BitColor(colour); }

PixelStore storeFor(int depth) {
    switch (depth) {
    case 1: return storeInk;
    case 2: return storeIndex;
    case 8: return storeDensity;
    case 24: return storeRgb;
    default: return storeRgba;
    }
}

Colour overWhite(Colour colour) { return over(colour, cnWhite); }

} // namespace

std::unique_ptr<XCVOffscreen> makeImage(int width, int height, int depth) {
    std::unique_ptr<XCVOffscreen> image(XCVOffscreen::CreateOffscreen(depth));
    image->Create(xcGetVirtualMemory(), width, height, cnResolution);
    return image;
}

void storeRow(XCVOffscreen& image, const PngRow& row, const std::function<Colour(Colour)>& change) {
    const PixelStore store = storeFor(image.GetDepth());
    const XCVOffscreenAutoLock lock(&image, 1);
    int x = row.x;
    for (const Colour pixel : row.pixels) {
        if (image.MoveCursor(x, row.y))
            store(image, change(pixel));
        x += row.step;
    }
}

std::unique_ptr<XCVOffscreen> readImage(PngReader& picture, int depth, Progress* progress) {
    std::unique_ptr<XCVOffscreen> image = makeImage(picture.width(), picture.height(), depth);
    const auto unchanged = [](Colour colour) { return colour; };
    const std::function<Colour(Colour)> change = hasTransparency(depth) ? unchanged : overWhite;
    picture.read([&](const PngRow& row) {
        storeRow(*image, row, change);
        if (progress)
            progress->show("reading", static_cast<std::uint64_t>(row.y) + 1,
                           static_cast<std::uint64_t>(picture.height()));
    });
    return image;
}

std::unique_ptr<XCVOffscreen> readImage(const std::string& path, int depth) {
    PngReader picture(path);
    return readImage(picture, depth, nullptr);
}

std::unique_ptr<XCVOffscreen> readSelection(const std::string& path) {
    constexpr int cnSelectionDepth = 8;
    constexpr Colour cnBlack = packColour(0, 0, 0);
    PngReader picture(path);
    std::unique_ptr<XCVOffscreen> image = makeImage(picture.width(), picture.height(), cnSelectionDepth);
    // Images of 8 bits hold the darkness; selected is what is bright.
    const auto select = [](Colour colour) { return over(colour, cnBlack) ^ cnWhite; };
    picture.read([&](const PngRow& row) { storeRow(*image, row, select); });
    return image;
}

GreyPicture readGrey(const std::string& path) {
    PngReader reader(path);
    GreyPicture picture{reader.width(), reader.height(), {}};
    const auto width = static_cast<std::size_t>(picture.width);
    picture.pixels.resize(width * static_cast<std::size_t>(picture.height));
    reader.read([&](const PngRow& row) {
        std::size_t place = static_cast<std::size_t>(row.y) * width + static_cast<std::size_t>(row.x);
        for (const Colour pixel : row.pixels) {
            picture.pixels[place] = static_cast<std::uint8_t>(greyOf(overWhite(pixel)));
            place += static_cast<std::size_t>(row.step);
        }
    });
    return picture;
}

} // namespace ovwpaint
