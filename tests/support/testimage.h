#ifndef OVW_TESTS_SUPPORT_TESTIMAGE_H
#define OVW_TESTS_SUPPORT_TESTIMAGE_H

#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <cstdint>
#include <cstring>
#include <memory>

/// @file
/// A block store and tiled images for tests, with access to stored pixels that goes round the library's accessors.

namespace ovw::test {

/// A block store that swaps in the system's temporary folder.
class TestStore {
public:
    explicit TestStore(std::uint32_t budget = 256u << 20) { m_memory.Create(budget, nullptr, 0); }
    ~TestStore() { m_memory.Destroy(); }

    XCVirtualMemory* get() { return &m_memory; }

private:
    XCVirtualMemory m_memory;
};

/// The stored number of a pixel of a block: 1, 2, 8 bits its value, 16 bits the number in machine order, 24 and 32
/// bits 0xAABBGGRR.
inline std::uint32_t storedPixel(const std::uint8_t* base, int rowBytes, int depth, int x, int y) {
    const std::uint8_t* row = base + y * rowBytes;
    switch (depth) {
    case 1: return row[x >> 3] >> (7 - (x & 7)) & 1;
    case 2: return row[x >> 2] >> (6 - 2 * (x & 3)) & 3;
    case 8: return row[x];
    case 16: {
        std::uint16_t number;
        std::memcpy(&number, row + 2 * x, 2);
        return number;
    }
    default: {
        const std::uint8_t* p = row + x * (depth / 8);
        std::uint32_t alpha = depth == 32 ? p[3] : 0;
        return p[2] | std::uint32_t(p[1]) << 8 | std::uint32_t(p[0]) << 16 | alpha << 24;
    }
    }
}

inline void storePixel(std::uint8_t* base, int rowBytes, int depth, int x, int y, std::uint32_t value) {
    std::uint8_t* row = base + y * rowBytes;
    auto setBits = [&](std::uint8_t& byte, int shift, int mask) {
        byte = std::uint8_t((byte & ~(mask << shift)) | int(value) << shift);
    };
    switch (depth) {
    case 1: setBits(row[x >> 3], 7 - (x & 7), 1); break;
    case 2: setBits(row[x >> 2], 6 - 2 * (x & 3), 3); break;
    case 8: row[x] = std::uint8_t(value); break;
    case 16: {
        auto number = std::uint16_t(value);
        std::memcpy(row + 2 * x, &number, 2);
        break;
    }
    default: {
        std::uint8_t* p = row + x * (depth / 8);
        p[0] = std::uint8_t(value >> 16);
        p[1] = std::uint8_t(value >> 8);
        p[2] = std::uint8_t(value);
        if (depth == 32)
            p[3] = std::uint8_t(value >> 24);
    }
    }
}

/// A tiled image of a depth, without blocks at first.
class TestImage {
public:
    static constexpr int cnBlockSize = 256;

    TestImage(TestStore& store, int depth, int width, int height)
        : m_depth(depth), m_image(XCVOffscreen::CreateOffscreen(depth), XCVOffscreen::DeleteOffscreen) {
        m_image->Create(store.get(), width, height, 1.0);
    }

    XCVOffscreen* get() const { return m_image.get(); }
    XCVOffscreen* operator->() const { return m_image.get(); }
    int depth() const { return m_depth; }

    /// The stored number of a pixel (see storedPixel), 0 where there is no block.
    std::uint32_t value(int x, int y) const {
        std::uint32_t result = 0;
        visitRow(x, x + 1, y, 0, [&](std::uint8_t* base, int column, int row, int) {
            result = base ? storedPixel(base, m_image->GetBlockRowBytes(), m_depth, column, row) : 0;
        });
        return result;
    }

    void setValue(int x, int y, std::uint32_t value) {
        visitRow(x, x + 1, y, 1, [&](std::uint8_t* base, int column, int row, int) {
            storePixel(base, m_image->GetBlockRowBytes(), m_depth, column, row, value);
        });
    }

    /// Sets pixels x1 to x2 - 1 of a row.
    void fillRow(int x1, int x2, int y, std::uint32_t value) {
        visitRow(x1, x2, y, 1, [&](std::uint8_t* base, int column, int row, int) {
            storePixel(base, m_image->GetBlockRowBytes(), m_depth, column, row, value);
        });
    }

    /// visit(block memory or null, column and row in the block, x) for pixels x1 to x2 - 1 of a row.
    template <class Visit>
    void visitRow(int x1, int x2, int y, int edit, Visit visit) const {
        XCVOffscreenAutoLock lock(m_image.get(), edit);
        for (int x = x1; x < x2; ++x) {
            if (x == x1 || x % cnBlockSize == 0)
                m_image->MoveCursor(x, y);
            visit(m_image->GetBaseAddress(), x % cnBlockSize, y % cnBlockSize, x);
        }
    }

private:
    int m_depth;
    std::unique_ptr<XCVOffscreen, void (*)(XCVOffscreen*)> m_image;
};

} // namespace ovw::test

#endif // OVW_TESTS_SUPPORT_TESTIMAGE_H
