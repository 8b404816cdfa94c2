#include "ovwcmn/xcvoffscreen.h"

#include "ovwcmn/xcarchivemem.h"
#include "ovwcmn/xcprogress.h"
#include "support/scopes.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace ovw::test;
using Bytes = std::vector<std::uint8_t>;
using Image = std::unique_ptr<XCVOffscreen, void (*)(XCVOffscreen*)>;

constexpr std::uint32_t cnBig = XCArchive::cnBigEndian;
constexpr std::uint32_t cnLittle = XCArchive::cnLittleEndian;
constexpr int cnDepths[] = {1, 2, 8, 16, 24, 32};

Image owned(XCVOffscreen* image) { return Image(image, XCVOffscreen::DeleteOffscreen); }

Bytes written(XCVOffscreen* image, int compress, std::uint32_t order = cnBig) {
    XCArchiveMem archive(XCArchive::cnSaving | order, 0);
    XCVOffscreen::Write(archive, image, compress);
    archive.DoFlush();
    const std::uint32_t size = archive.GetLength();
    const auto* const bytes = static_cast<const std::uint8_t*>(archive.Lock());
    return Bytes(bytes, bytes + size);
}

/// An archive that reads the bytes.
class Source {
public:
    explicit Source(const Bytes& bytes, std::uint32_t order = cnBig) {
        const auto size = static_cast<std::uint32_t>(bytes.size());
        XCHandle block;
        block.Alloc(std::max(size, 1u));
        std::ranges::copy(bytes, static_cast<std::uint8_t*>(block.Lock()));
        block.Unlock();
        m_archive.Attach(block.Detach(), size);
        m_archive.SetEndianMode(static_cast<int>(order));
    }
    operator XCArchive&() { return m_archive; }

private:
    XCArchiveMem m_archive;
};

void put32(Bytes& bytes, std::size_t at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
        bytes.at(at + static_cast<std::size_t>(i)) = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

// Places of a stream: the image section's length, the header section's, the header.
constexpr std::size_t cnVersionAt = 8, cnWidthAt = 10, cnHeightAt = 14, cnDepthAt = 18, cnCountAt = 30, cnOrderAt = 34,
                      cnExtentAt = 39, cnRecordsAt = 60;

class VOffscreenStream : public testing::Test {
protected:
    VOffscreenStream() { xcCreateVirtualMemory(nullptr); }
    ~VOffscreenStream() override { xcDestroyVirtualMemory(); }

    static Image create(int depth, int width, int height) {
        Image image = owned(XCVOffscreen::CreateOffscreen(depth));
        image->Create(xcGetVirtualMemory(), width, height, 144.5);
        return image;
    }

    /// Blocks (0, 0) and (2, 1) of three by two, in a pattern that tells every byte from the others.
    static Image painted(int depth) {
        Image image = create(depth, 700, 400);
        for (const auto& [x, y] : {std::pair(3, 250), std::pair(512, 256)}) {
            XCVOffscreenAutoLock lock(image.get(), x, y, 1);
            for (int i = 0; i < image->GetBlockRowBytes() * 256; ++i)
                image->GetBaseAddress()[i] = static_cast<std::uint8_t>(i * 7 + i / 251 + x);
        }
        return image;
    }

    static void expectSame(XCVOffscreen* a, XCVOffscreen* b) {
        ASSERT_EQ(a->GetDepth(), b->GetDepth());
        ASSERT_EQ(a->GetRect(), b->GetRect());
        EXPECT_EQ(a->GetResolution(), b->GetResolution());
        XCVOffscreenAutoLock lockA(a, 0), lockB(b, 0);
        for (int y = 0; y < a->GetHeight(); y += 256)
            for (int x = 0; x < a->GetWidth(); x += 256) {
                a->MoveCursor(x, y), b->MoveCursor(x, y);
                const std::uint8_t *inA = a->GetBaseAddress(), *inB = b->GetBaseAddress();
                ASSERT_EQ(inA != nullptr, inB != nullptr) << x << ' ' << y;
                if (inA) {
                    EXPECT_EQ(std::memcmp(inA, inB, static_cast<std::size_t>(a->GetBlockRowBytes()) * 256), 0);
                }
            }
    }

    static bool isEdited(const XCVOffscreen* image) {
        int count = 0;
        for (int i = image->GetBlockCount(nullptr, nullptr) - 1; i >= 0; --i)
            count += image->CheckBlockEdited(i);
        return count > 0 || image->GetEditLockChecker();
    }

    static int readCode(const Bytes& bytes) {
        return errorOf([&] { owned(XCVOffscreen::Read(Source(bytes), nullptr)); });
    }
    static int readHeaderCode(const Bytes& bytes) {
        return errorOf([&] { owned(XCVOffscreen::ReadHeader(Source(bytes))); });
    }
};

TEST_F(VOffscreenStream, AnEmptyImageIsItsHeader) {
    const Image image = create(24, 300, 200);
    const Bytes expected = {0, 0, 0, 0x1F, 0,    0,    0,    0x1B, 1, 0, 0, 0, 1, 0x2C, 0, 0, 0, 200,
                            0, 0, 0, 24,   0x40, 0x62, 0x10, 0,    0, 0, 0, 0, 0, 0,    0, 0, 4};
    EXPECT_EQ(written(image.get(), 0), expected);
    const Image back = owned(XCVOffscreen::Read(Source(expected), nullptr));
    EXPECT_EQ(back->IsBlockExist(), 0);
    expectSame(image.get(), back.get());
    EXPECT_EQ(owned(XCVOffscreen::ReadHeader(Source(expected)))->IsLoadImage(), 1);
}

TEST_F(VOffscreenStream, StoresTheExtentsBlocksOnly) {
    const Image image = create(8, 300, 300);
    {
        XCVOffscreenAutoLock lock(image.get(), 290, 299, 1);
        image->Set8BitColor(9);
    }
    const Bytes bytes = written(image.get(), 0);
    Bytes head = {0, 0, 0, 17, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 1, 0, 5, 1, 0, 1, 0, 0};
    EXPECT_EQ(Bytes(bytes.begin() + 35, bytes.begin() + 35 + std::ssize(head)), head);
    EXPECT_EQ(bytes.size(), 35 + head.size() + 65536);
    EXPECT_EQ(bytes[35 + head.size() + 43 * 256 + 34], 9);
}

TEST_F(VOffscreenStream, KeepsEveryByteOfEveryDepth) {
    for (const int depth : cnDepths)
        for (const int compress : {0, 1})
            for (const std::uint32_t order : {cnBig, cnLittle}) {
                SCOPED_TRACE(std::to_string(depth) + " bits, compress " + std::to_string(compress));
                const Image image = painted(depth);
                const Bytes bytes = written(image.get(), compress, order);
                const Image loaded = owned(XCVOffscreen::Read(Source(bytes, order), nullptr));
                EXPECT_FALSE(isEdited(loaded.get()));
                EXPECT_EQ(loaded->IsEnableClear(), 1);
                expectSame(image.get(), loaded.get());

                const Image lazy = owned(XCVOffscreen::ReadHeader(Source(bytes, order)));
                EXPECT_EQ(lazy->IsLoadImage(), 0);
                EXPECT_EQ(lazy->IsBlockExist(), 0);
                EXPECT_EQ(lazy->GetUsedMemory(0, 1), 6u * static_cast<unsigned>(lazy->GetBlockRowBytes()) * 256);
                EXPECT_EQ(written(lazy.get(), 0, order), bytes) << "as it stands";
                EXPECT_EQ(lazy->IsBlockExist(), 0);
                const Image other = owned(XCVOffscreen::Read(
                    Source(written(lazy.get(), compress, cnBig ^ cnLittle ^ order), cnBig ^ cnLittle ^ order),
                    nullptr));
                expectSame(image.get(), other.get());
                expectSame(image.get(), lazy.get());
                EXPECT_FALSE(isEdited(lazy.get()));
            }
}

TEST_F(VOffscreenStream, TurnsReversedChannelsRound) {
    for (const auto& [depth, order, pixelBytes] : {std::tuple(32, 1, 4), std::tuple(24, 2, 3)}) {
        const Image image = painted(depth);
        Bytes bytes = written(image.get(), 0);
        bytes[cnOrderAt] = static_cast<std::uint8_t>(order);
        for (const int lazy : {0, 1}) {
            Image back =
                owned(lazy ? XCVOffscreen::ReadHeader(Source(bytes)) : XCVOffscreen::Read(Source(bytes), nullptr));
            XCVOffscreenAutoLock lockA(image.get(), 300, 399, 0), lockB(back.get(), 300, 399, 0);
            image->MoveCursor(600, 300), back->MoveCursor(600, 300);
            for (int i = 0; i < pixelBytes; ++i)
                EXPECT_EQ(image->GetCurrentAddress()[i], back->GetCurrentAddress()[pixelBytes - 1 - i]) << depth;
        }
    }
}

TEST_F(VOffscreenStream, TellsAStreamsImageAndGoesOnBehindIt) {
    Bytes bytes = written(painted(1).get(), 1);
    const Bytes second = written(create(16, 5, 6).get(), 0);
    bytes.insert(bytes.end(), second.begin(), second.end());
    Source source(bytes);
    int width = 0, height = 0, depth = 0;
    double resolution = 0;
    EXPECT_EQ(XCVOffscreen::ReadHeader(&width, &height, &depth, &resolution, source), 1);
    EXPECT_EQ(std::tuple(width, height, depth, resolution), std::tuple(700, 400, 1, 144.5));
    EXPECT_EQ(XCVOffscreen::ReadHeader(&width, nullptr, &depth, nullptr, source), 1);
    EXPECT_EQ(std::tuple(width, depth), std::tuple(5, 16));
}

TEST_F(VOffscreenStream, ReadsIntoAnImageThatFits) {
    const Image image = painted(8);
    const Bytes bytes = written(image.get(), 1);
    const Image target = create(8, 700, 400), other = create(8, 700, 399);
    { XCVOffscreenAutoLock lock(target.get(), 300, 30, 1); }
    { XCVOffscreenAutoLock lock(other.get(), 300, 30, 1); }
    EXPECT_EQ(other->ReadHeaderSelf(Source(bytes)), 0);
    EXPECT_EQ(other->IsLoadImage() && other->GetBlockExist(1), 1);
    EXPECT_EQ(target->ReadHeaderSelf(Source(bytes)), 1);
    EXPECT_EQ(target->IsLoadImage(), 0);
    expectSame(image.get(), target.get());
    EXPECT_EQ(target->ReadHeaderSelf(Source(written(create(8, 700, 400).get(), 0))), 1);
    EXPECT_EQ(target->IsLoadImage(), 1);
    EXPECT_EQ(target->IsBlockExist(), 0);
}

TEST_F(VOffscreenStream, PacksInMemoryAndForgetsStaleCopies) {
    const Image image = painted(32), same = painted(32);
    XCVOffscreen::Write(image.get(), 1);
    EXPECT_EQ(image->IsLoadImage() || image->IsBlockExist(), 0);
    EXPECT_EQ(image->CanFastWrite(), 1);
    { XCVOffscreenAutoLock lock(image.get(), 0); } // expands and keeps the packed form
    EXPECT_EQ(image->IsLoadImage(), 1);
    EXPECT_EQ(image->CheckBlockEdited(0), 0);
    XCVOffscreen::Write(image.get(), 1);
    expectSame(same.get(), image.get());

    for (XCVOffscreen* const changed : {image.get(), same.get()}) {
        XCVOffscreenAutoLock lock(changed, 600, 300, 1);
        changed->Set32BitColor(0x80123456);
        XCVOffscreen::Write(changed, 1); // not while locked
        EXPECT_EQ(changed->IsLoadImage(), 1);
    }
    XCVOffscreen::Write(image.get(), 0);
    expectSame(same.get(), image.get());

    XCVOffscreen::Write(image.get(), 1);
    { XCVOffscreenAutoLock lock(image.get(), 0); }
    image->DestroyBlock(0, 0), same->DestroyBlock(0, 0);
    XCVOffscreen::Write(image.get(), 1);
    image->AllocateRect(XCRect(0, 0, 800, 400), nullptr), same->AllocateRect(XCRect(0, 0, 800, 400), nullptr);
    expectSame(same.get(), image.get());

    XCVOffscreen::Write(image.get(), 1);
    image->ClrRect(tagRECT{0, 0, 300, 300}), same->ClrRect(tagRECT{0, 0, 300, 300});
    expectSame(same.get(), image.get());

    XCVOffscreen::Write(image.get(), 1);
    image->LoadImageA(0, 0);
    EXPECT_EQ(image->IsLoadImage(), 1);
    EXPECT_EQ(image->IsBlockExist(), 0);
}

TEST_F(VOffscreenStream, ALoadLockExpandsTheBlocksOfARectangle) {
    const Image image = painted(16);
    XCVOffscreen::Write(image.get(), 1);
    XCVOffscreenLoadLock lock;
    XCVOffscreen* const part = lock.Lock(image.get(), XCRect(513, 300, 520, 310));
    EXPECT_NE(part, image.get());
    EXPECT_EQ(part->GetBlockExist(5) && !part->GetBlockExist(0), 1);
    EXPECT_EQ(image->IsLoadImage() || image->IsBlockExist(), 0);
    EXPECT_EQ(lock.Lock(image.get(), XCRect(900, 0, 950, 10)), image.get());
}

TEST_F(VOffscreenStream, RefusesWhatContradictsItself) {
    struct Damage {
        const char* what;
        std::size_t at;
        std::uint32_t value;
    };
    constexpr int cnFormat = 0x2001000B;
    const Bytes whole = written(painted(8).get(), 1);
    for (const Damage& damage : {Damage{"negative width", cnWidthAt, 0xFFFFFFFF},
                                 {"huge grid", cnWidthAt, 0x7FFFFFFF},
                                 {"negative height", cnHeightAt, 0x80000000},
                                 {"no such depth", cnDepthAt, 4},
                                 {"another depth", cnDepthAt, 32},
                                 {"count beyond the extent", cnCountAt, 7},
                                 {"count below the extent", cnCountAt, 5},
                                 {"negative count", cnCountAt, 0xFFFFFFFF},
                                 {"empty extent", cnExtentAt + 8, 0},
                                 {"extent outside", cnExtentAt, 5000},
                                 {"present is 2", cnRecordsAt, 0x02000100},
                                 {"another block size", cnRecordsAt + 1, 65535},
                                 {"a bomb", cnRecordsAt + 5, 20}}) {
        Bytes bytes = whole;
        put32(bytes, damage.at, damage.value);
        EXPECT_EQ(readHeaderCode(bytes), cnFormat) << damage.what;
        const int code = readCode(bytes);
        EXPECT_TRUE(code == cnFormat || code == 8) << damage.what << ' ' << code;
    }
    Bytes bytes = whole;
    bytes[cnVersionAt] = 2;
    EXPECT_EQ(readCode(bytes), 0x2001000C);
    EXPECT_EQ(errorOf([&] { XCVOffscreen::ReadHeader(nullptr, nullptr, nullptr, nullptr, Source(bytes)); }),
              0x2001000C);
    bytes[cnVersionAt] = 1, bytes[cnVersionAt + 1] = 0xFF;
    EXPECT_EQ(readCode(bytes), 0);
}

TEST_F(VOffscreenStream, AnExpansionThatFailsLeavesTheImagePacked) {
    Bytes bytes = written(painted(8).get(), 1);
    bytes[bytes.size() - 2] ^= 0x55; // in the checksum of the last block
    const Image image = owned(XCVOffscreen::ReadHeader(Source(bytes)));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(errorOf([&] { image->Lock(0, 0, 0); }), 8);
        EXPECT_EQ(image->IsLoadImage() || image->IsBlockExist() || image->GetLockCount() || image->GetEditMode(), 0);
    }
    EXPECT_EQ(readCode(bytes), 8);
}

TEST_F(VOffscreenStream, AStreamCutAnywhereIsRefused) {
    Image image = create(1, 260, 20);
    {
        XCVOffscreenAutoLock lock(image.get(), 259, 0, 1);
        image->Set1BitColor(1);
    }
    const Bytes whole = written(image.get(), 1);
    ASSERT_LT(whole.size(), 200u);
    for (std::size_t size = 0; size < whole.size(); ++size)
        for (const bool honestLength : {false, true}) {
            Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            if (honestLength && size >= 4)
                put32(cut, 0, static_cast<std::uint32_t>(size - 4));
            for (const int code : {readCode(cut), readHeaderCode(cut)})
                EXPECT_TRUE(code == 0x20010008 || code == 0x2001000B) << size << ' ' << std::hex << code;
        }
}

TEST_F(VOffscreenStream, StopsWhenAsked) {
    struct StopAtThird : IXCAbort {
        int calls = 0;
        int IsAbort() override { return ++calls == 3; }
    } stop;
    const Bytes bytes = written(painted(2).get(), 0);
    EXPECT_EQ(errorOf([&] { owned(XCVOffscreen::Read(Source(bytes), &stop)); }), 0x20010004);
    EXPECT_EQ(xcGetVirtualMemory()->GetUsedBlockCount(), 0u);
}

} // namespace
