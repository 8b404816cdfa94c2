// Tiled images: drawn into, filled, resampled, turned, saved as a stream, and loaded only where somebody looks.
// Leaves tiled_images.ovwi behind: `ovwpaint convert tiled_images.ovwi -o picture.png` shows it.
#include <ovwcmn/ovwcmn.h>

#include <cstdio>
#include <memory>

namespace {

const char* const cnFile = "tiled_images.ovwi";

std::unique_ptr<XCVOffscreen> drawn() {
    // [create]
    std::unique_ptr<XCVOffscreen> image(XCVOffscreen::CreateOffscreen(32)); // 1, 2, 8, 16, 24 or 32 bits a pixel
    image->Create(xcGetVirtualMemory(), 300, 300, 96.0);                    // no pixel takes memory yet
    image->ArcFill(20, 20, 279, 279, 0xFF302018, nullptr);                  // colours are 0xAABBGGRR
    image->ArcFill(32, 32, 267, 267, 0xFFF0F4F8, nullptr);
    image->DrawSegment(60, 240, 240, 60, 9, 0xFF302018, 0, 1);
    image->RectFill({90, 90, 130, 110}, 0, 0xFF4060E0, 0);
    {
        const XCVOffscreenAutoLock lock(image.get(), 150, 40, 1); // single pixels: locked, through the cursor
        for (int x = 120; x < 180; x += 3)
            if (image->MoveCursorX(x))
                image->Set32BitColor(0xFF302018);
    }
    // [/create]
    return image;
}

/// @return the pixels filled
int flood(XCVOffscreen& image) {
    // [flood]
    XCRect changed;
    int count = 0;
    // From (200, 200) on, as far as the image's own colour goes, give or take 8 in each channel.
    image.FloodFill(changed, {200, 200}, 0xFF60C8F0, &image, nullptr, {0, 0}, image.GetRect(), 8, &count, 0);
    // [/flood]
    return count;
}

std::unique_ptr<XCVOffscreen> sheetOf(XCVOffscreen& image) {
    // [resample]
    const std::unique_ptr<XCVOffscreen> half(XCVOffscreen::CreateOffscreen(32));
    half->Create(xcGetVirtualMemory(), 150, 150, 48.0);
    half->ChangeResolution(0, 0, 150, 150, &image, 0, 0, 300, 300, CHANGE_RESOLUTION_HIGH, 0);

    XCPoint shift; // where the turned image begins in its grid of whole blocks
    const std::unique_ptr<XCVOffscreen> turned(image.CreateAndRotateOffscreen(90, 0, 0, shift));

    std::unique_ptr<XCVOffscreen> sheet(XCVOffscreen::CreateOffscreen(32));
    sheet->Create(xcGetVirtualMemory(), 780, 320, 96.0);
    sheet->RectFill(sheet->GetRect(), 0, 0xFFFFFFFF, 0);
    sheet->Copy(0, 10, 300, 300, &image, 0, 0, 0);
    sheet->Copy(310, 85, 150, 150, half.get(), 0, 0, 0);
    sheet->Copy(470, 10, 300, 300, turned.get(), shift.x, shift.y, 0);
    // [/resample]
    return sheet;
}

void save(XCVOffscreen& sheet) {
    // [save]
    XCArchiveFile archive(XCArchive::cnSaving | XCArchive::cnBigEndian, XCArchiveFile::cnCacheSize);
    archive.FileCreate(xcPathFromPosix(cnFile), 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL);
    XCVOffscreen::Write(archive, &sheet, 1); // blocks compressed
    archive.DoFlush();
    archive.FileClose();
    // [/save]
}

std::uint32_t pixelOfFile(int x, int y) {
    // [load]
    XCArchiveFile archive(XCArchive::cnLoading | XCArchive::cnBigEndian, XCArchiveFile::cnCacheSize);
    archive.FileOpen(xcPathFromPosix(cnFile), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
    const std::unique_ptr<XCVOffscreen> image(XCVOffscreen::ReadHeader(archive)); // the pixels stay packed
    XCVOffscreenLoadLock loaded;
    XCVOffscreen* const part = loaded.Lock(image.get(), XCRect(x, y, x + 1, y + 1)); // expands one block
    const XCVOffscreenAutoLock lock(part, x, y, 0);
    return part->Get32BitColor();
    // [/load]
}

int work() {
    xcGetVirtualMemory()->Create(64 << 20, nullptr, 1); // 64 MiB of blocks in memory, the others in a swap file
    int failures = 0;
    {
        const auto image = drawn();
        const int count = flood(*image);
        std::printf("filled: %d pixels\n", count);
        const auto sheet = sheetOf(*image);
        save(*sheet);
        const std::uint32_t pixel = pixelOfFile(200, 210); // the sheet has the image 10 pixels lower
        std::printf("read back: %08X\n", static_cast<unsigned>(pixel));
        failures += count == 0;
        failures += pixel != 0xFF60C8F0;
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
