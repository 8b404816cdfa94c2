// Classic images: drawn, smoothed, copied, kept in an archive, and turned into tiled and simple images.
// Leaves classic_images.ovwi behind: `ovwpaint convert classic_images.ovwi -o picture.png` shows it.
#include <ovwcmn/ovwcmn.h>

#include <cmath>
#include <cstdio>
#include <memory>

namespace {

constexpr int cnWidth = 120, cnHeight = 90;

void draw(XCOffscreen& image) {
    // [draw]
    image.Create(cnWidth, cnHeight, 32, 0xFFFFFFFF, 1); // 1, 8, 24 or 32 bits a pixel; filled with white
    image.Lock();                                       // pixels are reached between Lock and Unlock
    image.SetForeColor(0xFF302018);                     // 0xAABBGGRR
    image.TrueArcFill(12, 10, 83, 79);
    image.SetForeColor(0xFFF0F4F8);
    image.TrueArcFill(16, 14, 79, 75);
    image.SetForeColor(0xFF302018);
    for (int x = 16; x < 78; x += 2) // a pen's wave, in short lines
        image.Line(x, static_cast<int>(45 + 9 * std::sin(x / 7.0)), x + 2,
                   static_cast<int>(45 + 9 * std::sin((x + 2) / 7.0)), 2);
    tagPOINT sail[] = {{90, 12}, {112, 50}, {88, 60}};
    image.FillPolygon(sail, 3);
    image.SetForeColor(0xFF60C8F0);
    tagRECT filled;
    image.SeedScanFill({48, 66}, &filled); // the half below the wave
    image.Unlock();
    // [/draw]
}

void smooth(XCOffscreen& image) {
    // [smooth]
    image.DoSmoothing(nullptr, nullptr, nullptr, nullptr, nullptr); // the whole image, with work images of its own
    // [/smooth]
}

void compose(XCOffscreen& sheet, XCOffscreen& before, XCOffscreen& after) {
    // [copy]
    constexpr int cnScale = 3, cnNearest = 0;
    sheet.Create(2 * cnScale * cnWidth + 10, cnScale * cnHeight + 10 + cnHeight, 32, 0xFFE0E8E8, 1);
    sheet.Lock(); // what is only read need not be locked
    const int width = cnScale * cnWidth, height = cnScale * cnHeight;
    sheet.ChangeResolution(0, 0, width, height, &before, 0, 0, cnWidth, cnHeight, cnNearest);
    sheet.ChangeResolution(width + 10, 0, width, height, &after, 0, 0, cnWidth, cnHeight, cnNearest);

    const int top = height + 10;
    sheet.Copy(0, top, cnWidth, cnHeight, &after, 0, 0);
    sheet.CopyMaskColor(cnWidth + 10, top, cnWidth, cnHeight, &after, 0, 0, 0xFFFFFF); // all but white
    sheet.RotationImage(after, 0, 0, cnWidth, cnHeight, 90, 2 * cnWidth + 20, top);    // clockwise, cut at the edge
    const tagVXRGBCOLOR16 amber[] = {{0xFFFF, 0xF0F0, 0xC8C8, 0x6060}};                // alpha, red, green, blue
    const std::unique_ptr<XCOffscreen> mask(after.ExtractionColor(amber, 1));          // 1 bit: ink where it is
    sheet.CopyMask(3 * cnWidth + 30, top, cnWidth, cnHeight, &before, 0, 0, mask.get(), 0, 0);
    sheet.ChangeResolution(4 * cnWidth + 50, top + 20, cnWidth / 2, cnHeight / 2, &after, 0, 0, cnWidth, cnHeight, 2);

    XCFont font("", 18); // the system's default font
    sheet.SetForeColor(0xFF302018);
    sheet.DrawString("before", {8, 4, width, 40}, font, 0);
    sheet.DrawString("after", {width + 18, 4, 2 * width, 40}, font, 0);
    sheet.Unlock();
    // [/copy]
}

int differences(XCOffscreen& a, XCOffscreen& b) {
    int count = 0;
    a.Lock(), b.Lock();
    for (int y = 0; y < cnHeight; ++y) {
        XCOffscreenCursor left(&a, 0, y), right(&b, 0, y);
        for (int x = 0; x < cnWidth; ++x, left.NextCursorX(), right.NextCursorX())
            count += left.Get32BitPixel() != right.Get32BitPixel();
    }
    a.Unlock(), b.Unlock();
    return count;
}

/// @return whether an archive gives the image back
bool isKept(XCOffscreen& image) {
    // [keep]
    XCArchiveMem archive(XCArchive::cnSaving | XCArchive::cnBigEndian, 0);
    image.Serialize(archive, 0);
    archive.SetMode(XCArchive::cnLoading | XCArchive::cnBigEndian); // from the start
    XCOffscreen copy;
    copy.Serialize(archive, 0);
    // [/keep]
    image.Lock(), copy.Lock();
    const bool isEqual = copy.Get32BitPixel(20, 45) == image.Get32BitPixel(20, 45);
    image.Unlock(), copy.Unlock();
    return isEqual;
}

void save(XCVOffscreen& image) {
    XCArchiveFile archive(XCArchive::cnSaving | XCArchive::cnBigEndian, XCArchiveFile::cnCacheSize);
    archive.FileCreate(xcPathFromPosix("classic_images.ovwi"), 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL);
    XCVOffscreen::Write(archive, &image, 1);
    archive.DoFlush();
    archive.FileClose();
}

/// @return whether all kinds of images agree
bool isConverted(XCOffscreen& sheet) {
    // [convert]
    const std::unique_ptr<XCVOffscreen> tiled(sheet.CopyToOffscreen()); // white blocks without alpha take no memory
    XCSimpleImage simple;                                               // bytes blue, green, red, alpha, row after row
    sheet.CopyToSimpleImage(simple);
    XCOffscreen again;
    again.CopyFromOffscreen(tiled.get());
    again.CopyFromSimpleImage(&simple);
    // [/convert]
    save(*tiled);
    again.Lock(), sheet.Lock();
    const XCAutoLockSimpleImage lock(&simple);
    const std::uint32_t colour = sheet.Get32BitPixel(100, 100);
    const bool isEqual = again.Get32BitPixel(100, 100) == colour && simple.GetPixel(100, 100)[2] == (colour & 0xFF);
    again.Unlock(), sheet.Unlock();
    return isEqual;
}

int work() {
    xcGetVirtualMemory()->Create(64 << 20, nullptr, 1); // for tiled images
    int failures = 0;
    {
        XCOffscreen before, sheet;
        draw(before);
        XCOffscreen after(before);
        smooth(after);
        compose(sheet, before, after);
        const int changed = differences(before, after);
        std::printf("pixels that smoothing changed: %d\n", changed);
        failures += changed == 0;
        failures += !isKept(after);
        failures += !isConverted(sheet);
    }
    xcGetVirtualMemory()->Destroy();
    return failures;
}

} // namespace

int main() {
    try {
        return work();
    } catch (const XCException& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
