#include "offscreen/classictest.h"
#include "ovwcmn/xcarchivemem.h"
#include "ovwcmn/xcoffscreen.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace {

using namespace ovw::test;
using Bytes = std::vector<std::uint8_t>;

Bytes saved(XCOffscreen& image, int reverse) {
    XCArchiveMem archive(XCArchive::cnSaving | XCArchive::cnBigEndian, 0);
    image.Serialize(archive, reverse);
    const std::uint32_t length = archive.GetLength();
    const auto* const bytes = static_cast<const std::uint8_t*>(archive.Lock());
    Bytes result(bytes, bytes + length);
    archive.Unlock();
    return result;
}

void load(XCOffscreen& image, const Bytes& bytes, int reverse = 0) {
    const VXHANDLE block = vxAlloc(static_cast<std::uint32_t>(bytes.size()), 0, nullptr);
    std::copy(bytes.begin(), bytes.end(), static_cast<std::uint8_t*>(vxLock(block)));
    vxUnlock(block);
    XCArchiveMem archive;
    archive.Attach(block, static_cast<std::uint32_t>(bytes.size()));
    image.Serialize(archive, reverse);
}

TEST(OffscreenArchive, RecordsByteForByte) {
    ClassicImage bits(10, 2, 1);
    bits.draw({"#........#", ".#"});
    const Bytes head = {0, 0, 0, 20, 0, 0, 0, 10, 0, 0, 0, 2, 0, 0, 0, 1};
    const Bytes rows = {0x80, 0x40, 0, 0, 0x40, 0, 0, 0};
    Bytes expected = head;
    expected.insert(expected.end(), rows.begin(), rows.end());
    EXPECT_EQ(saved(*bits, 0), expected);
    for (std::size_t i = 0; i < rows.size(); ++i)
        expected[head.size() + i] = static_cast<std::uint8_t>(~rows[i]);
    EXPECT_EQ(saved(*bits, 1), expected);
    EXPECT_EQ(bits->Get1BitPixel(0, 0), 1); // turned back

    ClassicImage colours(1, 1, 24);
    colours->Set24BitPixel(0x332211, 0, 0);
    EXPECT_EQ(saved(*colours, 1), (Bytes{0, 0, 0, 16, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 24, 0x11, 0x22, 0x33, 0}));
    ClassicImage alpha(1, 1, 32, 0x44332211);
    EXPECT_EQ(saved(*alpha, 0), (Bytes{0, 0, 0, 16, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 32, 0x44, 0x11, 0x22, 0x33}));
}

TEST(OffscreenArchive, RestoresTheBufferByteForByte) {
    for (const int depth : cnClassicDepths)
        for (const int reverse : {0, 1}) {
            ClassicImage image(21, 9, depth, 0); // filled into the padding
            image.scribble(5);
            const Bytes record = saved(*image, reverse);
            XCOffscreen copy;
            load(copy, record, reverse);
            copy.Lock();
            ASSERT_EQ(copy.GetBufferSize(), image->GetBufferSize());
            EXPECT_EQ(std::memcmp(copy.GetBaseAddress(), image->GetBaseAddress(), copy.GetBufferSize()), 0) << depth;
        }
}

TEST(OffscreenArchive, BadRecordsLeaveNoImage) {
    const Bytes good = {0, 0, 0, 20, 0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 8, 1, 2, 0, 0, 3, 4, 0, 0};
    const auto with = [&good](std::size_t at, Bytes bytes) {
        Bytes record = good;
        std::copy(bytes.begin(), bytes.end(), record.begin() + static_cast<std::ptrdiff_t>(at));
        return record;
    };
    std::vector<Bytes> records = {
        with(0, {0, 0, 0, 19}), // shorter than its pixels
        with(0, {0, 0, 0, 4}),  // not even a head
        with(0, {0xFF, 0xFF, 0xFF, 0xFF}),
        with(4, {0, 0, 0, 0}), // width 0
        with(4, {0xFF, 0xFF, 0xFF, 0xFF}),
        with(4, {0x7F, 0xFF, 0xFF, 0xFF}),
        with(8, {0x7F, 0xFF, 0xFF, 0xFF}),
        with(4, {0, 1, 0, 0, 0, 1, 0, 0}), // the product is 2^32
        with(4, {0x40, 0, 0, 0, 0x40, 0, 0, 0}),
        with(12, {0, 0, 0, 2}), // no such depth
        with(12, {0, 0, 0, 0}),
        with(12, {0xFF, 0xFF, 0xFF, 0xF8}),
    };
    for (std::size_t length = 0; length < good.size(); ++length)
        records.push_back(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length)));
    for (const Bytes& record : records) {
        XCOffscreen image;
        image.Create(3, 3, 8, 0, 1);
        const int error = errorOf([&] { load(image, record); });
        EXPECT_TRUE(error == 0x20010008 || error == 0x2001000B) << record.size() << ": " << error;
        EXPECT_EQ(image.GetBitCount(), 0);
        EXPECT_EQ(image.GetLockCount(), 0);
    }
    XCOffscreen image;
    load(image, good);
    image.Lock();
    EXPECT_EQ(image.Get8BitPixel(1, 1), 4);
}

} // namespace
