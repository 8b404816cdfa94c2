#include "ovwcmn/xcobfuscation.h"
#include "support/crashingdisk.h"
#include "support/scopes.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using ovw::test::CrashingDisk;
using ovw::test::errorOf;
using ovw::test::TempFolder;

constexpr int cnProject = XCObfuscation::cnProjectTable;

std::vector<int> allTables() {
    std::vector<int> numbers = {cnProject, cnProject + 1};
    for (int i = 1; i <= 14; ++i)
        numbers.push_back(i);
    return numbers;
}

XCObfuscation withTable(int number) {
    XCObfuscation result;
    number >= cnProject ? result.SetObfuscationProjectTableNo(number) : result.SetObfuscationTableNo(number);
    return result;
}

std::string sample(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 91 + 5);
    return bytes;
}

std::string encoded(const XCObfuscation& o, const std::string& data, int withHead, int expected) {
    std::string out(data.size(), '#');
    EXPECT_EQ(o.EncodeObfuscationMemory(data.data(), out.data(), static_cast<int>(data.size()), withHead), expected);
    return out;
}

// By the rule: bit table[i] of the output is bit i of the input.
char movedBits(char byte, const std::uint8_t* table) {
    int out = 0;
    for (int i = 0; i < 8; ++i)
        if (byte & 1 << i)
            out |= 1 << table[i];
    return static_cast<char>(out);
}

TEST(XCObfuscation, MovesTheBitsOfTheFirst5120Bytes) {
    std::set<std::string> seen;
    for (const int number : allTables()) {
        const XCObfuscation o = withTable(number);
        const int moves = number != 7;
        EXPECT_EQ(o.GetObfuscationTableSize(), moves);
        seen.insert({o.GetObfuscationTable(), o.GetObfuscationTable() + 8});
        for (const std::size_t size : {0u, 5u, 8u, 300u, 6000u}) {
            const std::string data = sample(size);
            std::string expected = data;
            for (std::size_t i = 0; moves && i < std::min<std::size_t>(size, 5120); ++i)
                expected[i] = movedBits(data[i], o.GetObfuscationTable());
            std::string out = encoded(o, data, 0, moves);
            EXPECT_EQ(out, expected) << number;
            EXPECT_EQ(o.DecodeObfuscationMemory(out.data(), out.data(), static_cast<int>(size), 0), moves);
            EXPECT_EQ(out, data) << number;
        }
    }
    EXPECT_EQ(seen.size(), 16u);
    for (const int unknown : {0, 15, -1, cnProject, cnProject + 2}) {
        XCObfuscation o = withTable(3);
        o.SetObfuscationTableNo(unknown);
        EXPECT_EQ(o.GetObfuscationTable(), nullptr);
        EXPECT_EQ(o.GetObfuscationTableNo(), 0);
        EXPECT_EQ(encoded(o, "plain", 0, 0), "plain");
    }
}

TEST(XCObfuscation, WritesAHeadThatNamesTheTable) {
    for (const int number : {0, 3, 7, 14}) {
        const XCObfuscation o = withTable(number);
        const std::string data = sample(6000);
        const std::string out = encoded(o, data, 1, number != 0 && number != 7);
        EXPECT_EQ(out.substr(0, 6), data.substr(0, 6));
        EXPECT_EQ(out.substr(6, 2), std::string("\xFF") + static_cast<char>(number));
        EXPECT_EQ(out.substr(5120), data.substr(5120));
        XCObfuscation reader;
        std::string back(out.size(), '#');
        auto* const bytes = reinterpret_cast<std::uint8_t*>(back.data());
        EXPECT_EQ(reader.DecodeObfuscationFaceBinMemory(reinterpret_cast<const std::uint8_t*>(out.data()), bytes,
                                                        static_cast<int>(out.size())),
                  1);
        EXPECT_EQ(back.substr(8), data.substr(8));
        EXPECT_EQ(back.substr(0, 8), out.substr(0, 8));
    }
    EXPECT_EQ(encoded(withTable(3), "short", 1, 0), "short");
}

TEST(XCObfuscation, PassesPlainDataThrough) {
    XCObfuscation o;
    const std::uint8_t plain[9] = {1, 2, 3, 4, 5, 6, 0xFE, 3, 9};
    const std::uint8_t unknown[9] = {1, 2, 3, 4, 5, 6, 0xFF, 99, 9};
    std::uint8_t out[9] = {};
    EXPECT_EQ(o.DecodeObfuscationFaceBinMemory(plain, out, 9), 1);
    EXPECT_TRUE(std::equal(out, out + 9, plain));
    EXPECT_EQ(o.DecodeObfuscationFaceBinMemory(unknown, out, 9), 1);
    EXPECT_TRUE(std::equal(out, out + 9, unknown));
    EXPECT_EQ(o.DecodeObfuscationFaceBinMemory(plain, out, 7), 0);
    EXPECT_EQ(o.DecodeObfuscationFaceBinMemory(nullptr, nullptr, 0), 0);
}

TEST(XCObfuscation, MovesAllBytesOfAProjectButItsTag) {
    const XCObfuscation o = withTable(cnProject + 1);
    const std::string data = sample(20000);
    std::string out(data.size(), '#');
    EXPECT_EQ(o.EncodeProjectObfuscationMemory(data.data(), out.data(), 20000), 1);
    EXPECT_EQ(out.substr(0, 6), data.substr(0, 6));
    EXPECT_EQ(out.back(), movedBits(data.back(), o.GetObfuscationTable()));
    EXPECT_EQ(o.DecodeProjectObfuscationMemory(out.data(), out.data(), 20000), 1);
    EXPECT_EQ(out, data);
    EXPECT_EQ(o.EncodeProjectObfuscationMemory(data.data(), out.data(), 3), 1);
    const auto hidden = static_cast<std::uint8_t>(movedBits('x', o.GetObfuscationTable()));
    EXPECT_EQ(o.DecodeObfuscationDataByte(hidden), 'x');
    EXPECT_EQ(XCObfuscation().DecodeObfuscationDataByte(hidden), hidden);
}

TEST(XCObfuscation, RewritesAFile) {
    const TempFolder folder;
    const XCObfuscation o = withTable(5);
    for (const std::size_t size : {0u, 100u, 5121u, 300000u}) {
        const std::string data = sample(size);
        folder.write("data", data);
        EXPECT_EQ(o.EncodeObfuscationFile(folder.path("data")), 1);
        EXPECT_EQ(folder.read("data"), encoded(o, data, 0, 1));
        EXPECT_EQ(o.DecodeObfuscationFile(folder.path("data")), 1);
        EXPECT_EQ(folder.read("data"), data);
    }
    EXPECT_EQ(o.EncodeObfuscationFile(folder.path("none")), 0);
    EXPECT_EQ(XCObfuscation().EncodeObfuscationFile(folder.path("data")), 0);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"data"});
}

TEST(XCObfuscation, LeavesTheOldFileOrTheNewOneAtAnyFault) {
    const TempFolder folder;
    const XCObfuscation o = withTable(5);
    const std::string data = sample(9000), done = encoded(o, data, 0, 1);
    for (const CrashingDisk::Fault fault : {CrashingDisk::Fault::oneCall, CrashingDisk::Fault::powerCut}) {
        for (int call = 1, failed = 1; failed; ++call) {
            folder.write("data", data);
            int calls = 0;
            {
                CrashingDisk disk(call, fault);
                failed = errorOf([&] { o.EncodeObfuscationFile(folder.path("data")); }) != 0;
                calls = disk.calls();
            }
            const std::string left = folder.read("data");
            EXPECT_TRUE(left == data || left == done) << "call " << call;
            EXPECT_EQ(left == done, !failed);
            ASSERT_LE(call, calls + 1);
        }
    }
}

} // namespace
