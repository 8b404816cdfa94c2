#include "ovwcmn/xcencryption.h"
#include "ovwcmn/xcfile.h"
#include "ovwcmn/xcprogress.h"
#include "ovwcmn/xcstring.h"
#include "persistence/feal.h"
#include "support/scopes.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace ovw::persistence;
using ovw::test::errorOf;
using ovw::test::TempFolder;

constexpr std::size_t cnChunk = 51200;

std::string hex(const std::uint8_t* bytes, std::size_t size) {
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", bytes[i]);
        text += digits;
    }
    return text;
}

template <std::size_t Rounds>
std::string enciphered(bool withRightHalf) {
    std::array<std::uint8_t, cnFealKey> key = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
    if (withRightHalf)
        std::copy_n(key.begin(), 8, key.begin() + 8);
    const FealSchedule<Rounds> schedule = fealEncipheringSchedule<Rounds>(key);
    FealBlock block = {};
    fealBlocks(schedule, block.data(), block.size());
    FealBlock back = block;
    fealBlocks(fealDecipheringSchedule(schedule), back.data(), back.size());
    EXPECT_EQ(back, FealBlock{});
    return hex(block.data(), block.size());
}

// A. Menezes, P. van Oorschot, S. Vanstone, "Handbook of Applied Cryptography", example 7.99 (but the last value: the
// designers' own): a block of zeros, and the key 0123456789ABCDEF once, or twice for 128 bits.
TEST(Feal, GivesThePublishedValues) {
    EXPECT_EQ(enciphered<8>(false), "CEEF2C86F2490752");
    EXPECT_EQ(enciphered<16>(false), "3ADE0D2AD84D0B6F");
    EXPECT_EQ(enciphered<32>(false), "69B0FAE6DDED6B0B");
    EXPECT_EQ(enciphered<8>(true), "92BEB65D0E9382FB");
    EXPECT_EQ(enciphered<32>(true), "9C9B54973DF685F8");
    enciphered<128>(true);
}

std::string sample(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 37 + i / 251);
    return bytes;
}

TEST(Feal, GivesManyBlocksWhatItGivesEach) {
    const FealSchedule<128> schedule = fealEncipheringSchedule<128>({1, 2, 3, 4, 5, 6, 7, 8, 9});
    std::string together = sample(8 * 37), single = together;
    fealBlocks(schedule, reinterpret_cast<std::uint8_t*>(together.data()), together.size());
    for (std::size_t i = 0; i < single.size(); i += cnFealBlock)
        fealBlocks(schedule, reinterpret_cast<std::uint8_t*>(&single[i]), cnFealBlock);
    EXPECT_EQ(together, single);
}

TEST(XCEncryption, DeciphersWhatItEnciphered) {
    const TempFolder folder;
    XCEncryption cipher;
    for (const std::size_t size : {0u, 1u, 8u, 13u, 51199u, 51200u, 51201u, 102400u}) {
        const std::string data = sample(size);
        folder.write("plain", data);
        EXPECT_EQ(cipher.Encrypt("12ab", folder.path("plain"), folder.path("secret")), 1);
        const std::string secret = folder.read("secret");
        ASSERT_EQ(secret.size(), (size + 7) / 8 * 8);
        EXPECT_EQ(cipher.Decrypt("12AB", folder.path("secret"), folder.path("back")), 1);
        EXPECT_EQ(folder.read("back"), data + std::string(secret.size() - size, '\0'));
        if (size > 0) {
            EXPECT_NE(secret.substr(0, size), data);
        }
    }
    EXPECT_EQ(folder.names().size(), 3u) << "temporary files are left";
}

TEST(XCEncryption, TakesUpTo32DigitsOfAKeyText) {
    const TempFolder folder;
    folder.write("plain", "12345678");
    const auto secret = [&](const std::string& key) {
        XCEncryption().Encrypt(key.c_str(), folder.path("plain"), folder.path("secret"));
        return folder.read("secret");
    };
    EXPECT_EQ(secret("1"), secret("10"));
    EXPECT_EQ(secret("1"), secret("100"));
    EXPECT_NE(secret("1"), secret("01"));
    EXPECT_EQ(secret(""), secret("0"));
    EXPECT_EQ(secret("xyz"), secret("89a")); // the low four bits
    EXPECT_EQ(secret(std::string(32, '5')), secret(std::string(63, '5')));
    EXPECT_EQ(errorOf([&] { secret(std::string(64, '5')); }), 0x20010008);
    XCString keys[2];
    for (XCString& key : keys) {
        XCEncryption::MakeEncKey(key);
        ASSERT_EQ(key.GetLength(), 8);
        EXPECT_EQ(std::strspn(key, "0123456789abcdef"), 8u);
        EXPECT_TRUE(key[0] <= '7' && key[4] <= '7');
    }
    EXPECT_NE(keys[0], keys[1]);
}

TEST(XCEncryption, LeavesTheChunksBehindTheLimitPlainButPadded) {
    const TempFolder folder;
    const std::string data = sample(cnChunk + 13);
    folder.write("plain", data);
    XCEncryption cipher;
    cipher.Encrypt("77", folder.path("plain"), folder.path("secret"), 1);
    const std::string secret = folder.read("secret");
    EXPECT_EQ(secret.substr(cnChunk), data.substr(cnChunk) + std::string(3, '\0'));
    EXPECT_NE(secret.substr(cnChunk - 8, 8), data.substr(cnChunk - 8, 8));
    cipher.Decrypt("77", folder.path("secret"), folder.path("secret"), 1); // onto itself
    EXPECT_EQ(folder.read("secret"), data + std::string(3, '\0'));
}

/// The pieces of the cipher that derived classes get.
struct Pieces : XCEncryption {
    using XCEncryption::Ecb;
    using XCEncryption::Feal;
    using XCEncryption::HexCode;
    using XCEncryption::KeySet;
    using XCEncryption::MakeKey;
};

TEST(XCEncryption, IsMadeOfPiecesThatGiveTheSame) {
    const TempFolder folder;
    const std::string data = sample(16);
    folder.write("plain", data);
    Pieces cipher;
    cipher.Encrypt("0badcafe", folder.path("plain"), folder.path("secret"));
    const std::string secret = folder.read("secret");

    cipher.KeySet("0badcafe");
    cipher.MakeKey(1);
    unsigned char block[8];
    std::memcpy(block, data.data(), sizeof block);
    cipher.Feal(block, block);
    EXPECT_EQ(std::memcmp(block, secret.data(), sizeof block), 0);
    cipher.MakeKey(0);
    cipher.Feal(block, block);
    EXPECT_EQ(std::memcmp(block, data.data(), sizeof block), 0);

    XCFile in, out; // from and to where the files stand
    in.Open(folder.path("secret"), GENERIC_READ, 0, OPEN_EXISTING, 0);
    out.Create(folder.path("back"), 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS, 0);
    in.Seek(8, FILE_BEGIN);
    out.Write("head", 4);
    EXPECT_EQ(cipher.Ecb(in, out, 0), 1);
    in.Close(), out.Close();
    EXPECT_EQ(folder.read("back"), "head" + data.substr(8));
    EXPECT_EQ(Pieces::HexCode('b') * 16 + Pieces::HexCode('B'), 0xBB);

    char buffer[12] = "###########";
    EXPECT_EQ(cipher.Decrypt("0badcafe", buffer, 11, folder.path("secret")), 1);
    EXPECT_EQ(std::string(buffer, 11), data.substr(0, 11));
}

TEST(XCEncryption, KeepsTheKeyInTheHead) {
    const TempFolder folder;
    folder.write("plain", "some more than a block");
    XCEncryption cipher;
    cipher.EncryptWithKey("c0ffee", folder.path("plain"), folder.path("secret"));
    cipher.Encrypt("c0ffee", folder.path("plain"), folder.path("bare"));
    EXPECT_EQ(folder.read("secret"), std::string("\6\0\0\0c0ffee", 10) + folder.read("bare"));
    cipher.DecryptWithKey(folder.path("secret"), folder.path("back"));
    EXPECT_EQ(folder.read("back"), std::string("some more than a block\0\0", 24));

    char buffer[16];
    for (const int size : {0, 1, 7, 8, 13}) {
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(cipher.DecryptWithKey(buffer, size, folder.path("secret")), 1);
        const auto count = static_cast<std::size_t>(size);
        EXPECT_EQ(std::string(buffer, sizeof buffer),
                  std::string("some more than a").substr(0, count) + std::string(16 - count, '#'));
    }
}

TEST(XCEncryption, RefusesHeadsThatCannotBe) {
    const TempFolder folder;
    folder.write("back", "old");
    const struct {
        std::string head;
        int code;
    } cases[] = {
        {"", 0x20010008},
        {std::string("\6\0\0", 3), 0x20010008},
        {std::string("\6\0\0\0abc", 7), 0x20010008},
        {std::string("\100\0\0\0", 4) + std::string(80, 'a'), 0x2001000B},
        {std::string("\377\377\377\377", 4), 0x2001000B},
    };
    for (const auto& c : cases) {
        folder.write("secret", c.head);
        EXPECT_EQ(errorOf([&] { XCEncryption().DecryptWithKey(folder.path("secret"), folder.path("back")); }), c.code);
        EXPECT_EQ(folder.read("back"), "old");
    }
    EXPECT_EQ(errorOf([&] { XCEncryption().Encrypt("1", folder.path("none"), folder.path("back")); }), 2);
    EXPECT_EQ(folder.names().size(), 2u);
}

class Watched : public XCEncryption, IXCProgress, IXCAbort {
public:
    explicit Watched(int chunks) : m_left(chunks) {
        m_progress = this;
        m_abort = this;
    }
    std::string log;

private:
    void Begin(std::uint32_t total) override { log += "total " + std::to_string(total) + ";"; }
    void Step(std::uint32_t count) override { log += " " + std::to_string(count); }
    void End() override { log += "; end"; }
    int IsAbort() override { return m_left-- == 0; }

    int m_left;
};

TEST(XCEncryption, TellsItsProgressAndStopsWhenAsked) {
    const TempFolder folder;
    folder.write("plain", sample(cnChunk + 3));
    Watched whole(-1);
    EXPECT_EQ(whole.Encrypt("1", folder.path("plain"), folder.path("out")), 1);
    EXPECT_EQ(whole.log, "total 51203; 51200 3; end");
    folder.write("round", sample(cnChunk)); // no chunk behind the last one that anybody could stop
    Watched round(1);
    EXPECT_EQ(round.Encrypt("1", folder.path("round"), folder.path("out")), 1);
    EXPECT_EQ(round.log, "total 51200; 51200; end");
    Watched stopped(1);
    EXPECT_EQ(stopped.Encrypt("1", folder.path("plain"), folder.path("out")), 0);
    EXPECT_EQ(stopped.log, "total 51203; 51200; end");
    EXPECT_EQ(folder.read("out").size(), cnChunk);
    EXPECT_EQ(Watched(1).Encrypt("1", folder.path("plain"), folder.path("plain")), 0);
    EXPECT_EQ(folder.read("plain"), sample(cnChunk + 3));
}

TEST(XCEncryption, KeepsTheKeysOfTwoThreadsApart) {
    const TempFolder folder;
    const std::string data = sample(4000);
    folder.write("plain", data);
    const auto work = [&](const char* key, const std::string& name) {
        XCEncryption cipher;
        for (int i = 0; i < 20; ++i) {
            cipher.Encrypt(key, folder.path("plain"), folder.path(name.c_str()));
            cipher.Decrypt(key, folder.path(name.c_str()), folder.path(name.c_str()));
            EXPECT_EQ(folder.read(name), data);
        }
    };
    std::thread other(work, "1111", "one");
    work("2222", "two");
    other.join();
}

} // namespace
