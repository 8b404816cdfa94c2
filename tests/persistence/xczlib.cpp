#include "ovwcmn/xczlib.h"

#include "ovwcmn/xcarchivemem.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace ovw::test;
using Block = std::vector<std::uint8_t>;

constexpr int cnLevels[] = {-1, 0, 1, 6, 9};

/// Runs, gradients and noise in turns, so that every kind of deflate block appears.
Block sample(std::size_t size) {
    Block block(size);
    std::uint32_t random = 1;
    for (std::size_t i = 0; i < size; ++i) {
        random = random * 1664525 + 1013904223;
        const std::size_t part = i / 1500 % 3;
        block[i] = static_cast<std::uint8_t>(part == 0 ? 7 : part == 1 ? i / 3 : random >> 24);
    }
    return block;
}

std::uint32_t size32(const Block& block) { return static_cast<std::uint32_t>(block.size()); }

/// A frame in memory.
Block frameOf(const Block& block, int level = -1, int bigEndian = 1) {
    XCZLib zlib;
    zlib.SetCompressionLevel(level);
    void* out = nullptr;
    std::uint32_t size = 0;
    zlib.Compress(&out, block.data(), size32(block), &size, bigEndian);
    const std::unique_ptr<void, void (*)(void*)> owned(out, vxFreePtr);
    EXPECT_EQ(vxGetPtrSize(out), size);
    const auto* const bytes = static_cast<const std::uint8_t*>(out);
    return {bytes, bytes + size};
}

/// The frame of a stream that zlib itself made, or that a test made up.
Block frameOfStream(const Block& stream) {
    Block frame(stream.size() + 4);
    frame[2] = static_cast<std::uint8_t>(stream.size() >> 8);
    frame[3] = static_cast<std::uint8_t>(stream.size());
    std::copy(stream.begin(), stream.end(), frame.begin() + 4);
    return frame;
}

int expandError(const Block& frame, std::uint32_t dstLen) {
    Block out(dstLen + 1);
    XCZLib zlib;
    return errorOf([&] { zlib.Decompress(frame.data(), out.data(), dstLen, 1); });
}

TEST(XCZLib, EveryFormAndLevelComesBack) {
    for (const std::size_t size : {0, 1, 100, 2047, 2048, 70000, 300000})
        for (const int level : cnLevels) {
            SCOPED_TRACE(std::to_string(size) + " at level " + std::to_string(level));
            const Block block = sample(size);
            const Block frame = frameOf(block, level, 0);
            Block out(size + 1, 0xEE);
            XCZLib zlib;
            zlib.SetCompressionLevel(level);
            EXPECT_EQ(zlib.Decompress(frame.data(), out.data(), size32(block), 0), size);
            EXPECT_EQ(Block(out.begin(), out.end() - 1), block);
            EXPECT_EQ(out.back(), 0xEE);

            // The same stream, from the archive and from zlib's point of view.
            XCArchiveMem archive(9, 0);
            std::uint32_t written = 0;
            zlib.Compress(archive, block.data(), size32(block), &written);
            EXPECT_EQ(written, archive.GetLength());
            EXPECT_EQ(std::memcmp(static_cast<char*>(archive.Lock()) + 4, frame.data() + 4, frame.size() - 4), 0);
            archive.SetMode(10);
            Block again(size);
            EXPECT_EQ(zlib.Decompress(archive, again.data(), size32(block)), size);
            EXPECT_EQ(again, block);
            uLongf restored = size;
            Block byZlib(size + 1);
            EXPECT_EQ(uncompress(byZlib.data(), &restored, frame.data() + 4, frame.size() - 4), Z_OK);
            EXPECT_EQ(restored, size);
        }
}

TEST(XCZLib, CopiesKeepTheLevel) {
    const Block block = sample(70000);
    XCZLib fast, assigned;
    fast.SetCompressionLevel(1);
    assigned = fast;
    XCZLib copy(fast);
    for (XCZLib* const zlib : {&assigned, &copy}) {
        XCArchiveMem archive(9, 0);
        zlib->Compress(archive, block.data(), size32(block));
        EXPECT_EQ(archive.GetLength(), frameOf(block, 1, 0).size());
    }
}

TEST(XCZLib, FramesHaveTheirBytes) {
    const Block empty = frameOf({});
    EXPECT_EQ(empty, (Block{0, 0, 0, 8, 0x78, 0x9C, 3, 0, 0, 0, 0, 1}));
    EXPECT_EQ(frameOf({}, -1, 0)[0], 8);
    VXHANDLE block = nullptr;
    std::uint32_t size = 0;
    XCZLib zlib;
    zlib.CompressToHandle(block, nullptr, 0, &size, 1);
    EXPECT_EQ(size, 12u);
    EXPECT_EQ(std::memcmp(vxLock(block), empty.data(), 12), 0);
    vxFree(block);
    EXPECT_EQ(XCZLib::GetStreamSize(empty.data(), 1), 8u);
    EXPECT_EQ(XCZLib::CanExpandTo(1032 * 8 + 64, 8), 1);
    EXPECT_EQ(XCZLib::CanExpandTo(1032 * 8 + 65, 8), 0);
}

TEST(XCZLib, StreamsOfZlibAreRead) {
    for (const int level : cnLevels) {
        const Block block = sample(50000);
        Block stream(compressBound(block.size()));
        uLongf size = stream.size();
        ASSERT_EQ(compress2(stream.data(), &size, block.data(), block.size(), level), Z_OK);
        stream.resize(size);
        Block out(block.size());
        XCZLib().DecompressWhole(frameOfStream(stream).data(), out.data(), size32(out), 1);
        EXPECT_EQ(out, block);
    }
}

TEST(XCZLib, ShortStreamsLeaveTheRestAlone) {
    for (const std::size_t size : {0, 40, 5000, 200001}) {
        const Block frame = frameOf(sample(size));
        const Block before(300000, 0xCC);
        Block out = before, chunk(300000);
        XCZLib zlib;
        EXPECT_EQ(zlib.Decompress(frame.data(), out.data(), size32(out), 1), size);
        EXPECT_TRUE(std::equal(out.begin() + static_cast<std::ptrdiff_t>(size), out.end(), before.begin()));
        out = before;
        zlib.Decompress(frame.data(), out.data(), size32(out), 1, chunk.data(), size32(chunk));
        EXPECT_TRUE(std::equal(out.begin() + static_cast<std::ptrdiff_t>(size), out.end(), before.begin()));
        EXPECT_EQ(errorOf([&] { zlib.DecompressWhole(frame.data(), out.data(), size32(out), 1); }), 8);
    }
}

TEST(XCZLib, DamagedStreamsThrowEight) {
    const Block block = sample(5000);
    const Block frame = frameOf(block);
    EXPECT_EQ(expandError(frame, 5000), 0);
    EXPECT_EQ(expandError(frame, 4999), 8);
    EXPECT_EQ(expandError(frame, 0), 8);
    EXPECT_EQ(expandError(frameOf({}), 0), 0);
    const Block stream(frame.begin() + 4, frame.end());
    for (std::size_t size = 0; size < stream.size(); size += size < 20 || size + 20 > stream.size() ? 1 : 97)
        EXPECT_EQ(
            expandError(frameOfStream({stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(size)}), 5000), 8)
            << size;
    Block longer = stream;
    longer.insert(longer.end(), 30, 0x55);
    EXPECT_EQ(expandError(frameOfStream(longer), 5000), 0); // bytes behind the stream do not matter
    for (const std::size_t at : {std::size_t{0}, std::size_t{1}, stream.size() / 2, stream.size() - 1}) {
        Block damaged = stream;
        damaged[at] ^= 0xFF;
        EXPECT_EQ(expandError(frameOfStream(damaged), 5000), 8) << at;
    }
    for (const int level : {-2, 10}) {
        XCZLib zlib;
        zlib.SetCompressionLevel(level);
        void* out = nullptr;
        EXPECT_EQ(errorOf([&] { zlib.Compress(&out, block.data(), size32(block), nullptr, 0); }), 8);
        EXPECT_EQ(out, nullptr);
        Block expanded(block.size());
        EXPECT_EQ(zlib.Decompress(frameOf(block).data(), expanded.data(), size32(block), 1), block.size());
    }
}

TEST(XCZLib, FramesBeyondTheArchiveAreRefusedUnallocated) {
    for (const std::uint32_t announced : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, 9u, 0u}) {
        XCArchiveMem archive(9, 0);
        archive << announced << std::uint64_t{0x789C030000000001};
        archive.SetMode(10);
        std::uint8_t* block = nullptr;
        std::uint32_t capacity = 0;
        char out = 0;
        XCZLib zlib;
        EXPECT_EQ(errorOf([&] { zlib.Decompress(archive, &out, 1, block, capacity); }), announced ? 0x20010008 : 8);
        EXPECT_EQ(block, nullptr);
    }
}

TEST(XCZLib, TheCallersBlockGrowsToTheFrame) {
    XCArchiveMem archive(5, 0);
    std::uint8_t* block = nullptr;
    std::uint32_t capacity = 0;
    XCZLib zlib;
    const Block large = sample(60000), small = sample(3000);
    zlib.Compress(archive, large.data(), size32(large), block, capacity);
    EXPECT_EQ(capacity, archive.GetLength());
    zlib.Compress(archive, small.data(), size32(small), block, capacity);
    EXPECT_EQ(vxGetPtrSize(block), capacity);
    archive.SetMode(6);
    vxFreePtr(block);
    block = nullptr;
    capacity = 0;
    Block out(large.size());
    zlib.DecompressWhole(archive, out.data(), size32(large), block, capacity);
    EXPECT_EQ(out, large);
    const std::uint8_t* const kept = block;
    EXPECT_EQ(zlib.Decompress(archive, out.data(), size32(large), block, capacity), small.size());
    EXPECT_EQ(block, kept);
    vxFreePtr(block);
}

} // namespace
