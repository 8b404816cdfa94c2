// Streams of tiled and classic images.

#include "support.h"

#include "ovwcmn/xcoffscreen.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <cstdlib>
#include <memory>

namespace ovw::fuzz {

namespace {

using Image = std::unique_ptr<XCVOffscreen, void (*)(XCVOffscreen*)>;

Image owned(XCVOffscreen* image) { return Image(image, XCVOffscreen::DeleteOffscreen); }

/// The process's store, for as long as the process lives.
void needStore() {
    static const bool s_isThere = [] {
        xcCreateVirtualMemory(nullptr);
        std::atexit(xcDestroyVirtualMemory);
        return true;
    }();
    static_cast<void>(s_isThere);
}

} // namespace

void imageStream(Input input) {
    needStore();
    mayThrow([&] {
        InputArchive archive(input);
        const Image image = owned(XCVOffscreen::Read(archive.get(), nullptr));
        XCArchiveMem copy(XCArchive::cnSaving, 0);
        XCVOffscreen::Write(copy, image.get(), 1);
        copy.SetMode(XCArchive::cnLoading | XCArchive::cnBigEndian);
        const Image again = owned(XCVOffscreen::Read(copy, nullptr)); // what was accepted can be written and read
        if (again->GetRect() != image->GetRect())
            std::abort();
    });
}

void packedImage(Input input) {
    needStore();
    mayThrow([&] {
        const std::uint32_t order = takeByte(input) & 1 ? XCArchive::cnLittleEndian : XCArchive::cnBigEndian;
        InputArchive archive(input, order);
        const Image image = owned(XCVOffscreen::ReadHeader(archive.get()));
        mayThrow([&] {
            XCVOffscreenLoadLock part;
            part.Lock(image.get(), XCRect(0, 0, 300, 300));
        });
        const XCVOffscreenAutoLock lock(image.get(), 0);
        image->CheckClearBlock(image->GetRect());
    });
}

void classicImage(Input input) {
    mayThrow([&] {
        InputArchive archive(input);
        XCOffscreen image;
        image.Serialize(archive.get(), 0);
    });
}

} // namespace ovw::fuzz
