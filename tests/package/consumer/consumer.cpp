// Creates an image on a store, writes one pixel, reads it back.
#include <ovwcmn/ovwcmn.h>

#include <cstdio>

int main() {
    try {
        XCVirtualMemory store;
        store.Create(16 << 20, nullptr, 0);
        XCVOffscreen32Bit image;
        image.Create(&store, 300, 300, 96.0);
        XCVOffscreenAutoLock lock(&image, 290, 290, 1);
        image.Set32BitColor(0xFF204080);
        const bool same = image.Get32BitColor() == 0xFF204080;
        std::puts(same ? "the pixel came back" : "another pixel came back");
        return same ? 0 : 1;
    } catch (const XCException& error) {
        std::fprintf(stderr, "error %x\n", error.GetErrorCode());
        return 1;
    }
}
