#include "ovwcmn/xcarchive.h"

#include "ovwcmn/xcarchivefile.h"
#include "ovwcmn/xcarchivemem.h"
#include "ovwcmn/xcstring.h"
#include "ovwcmn/xctime.h"
#include "support/scopes.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace ovw::test;
using Bytes = std::string; // literal bytes; embedded zeros need the size

Bytes bytes(std::initializer_list<int> values) {
    Bytes result;
    for (const int value : values)
        result.push_back(static_cast<char>(value));
    return result;
}

Bytes contents(XCArchiveMem& archive) {
    Bytes result(archive.GetLength(), '\0');
    if (!result.empty())
        std::memcpy(result.data(), archive.Lock(), result.size());
    return result;
}

void attach(XCArchiveMem& archive, const Bytes& stream, int order = 8) {
    const VXHANDLE block = vxAlloc(static_cast<std::uint32_t>(stream.size()), 0, nullptr);
    std::memcpy(vxLock(block), stream.data(), stream.size());
    archive.Attach(block, static_cast<std::uint32_t>(stream.size()));
    archive.SetEndianMode(order);
}

using Step = std::function<void(XCArchive&)>;

/// What `save` writes in memory; and that a cached file, with a cache that is filled time and again, gets the same.
Bytes saved(std::uint32_t flags, const Step& save) {
    XCArchiveMem memory(flags, 0);
    save(memory);
    const TempFolder folder;
    XCArchiveFile file(flags, 5);
    file.FileCreate(folder.path("a"), 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS, 0);
    save(file);
    file.DoFlush();
    file.FileClose();
    EXPECT_EQ(folder.read("a"), contents(memory));
    return contents(memory);
}

/// Loads the stream from memory, from a cached file and from an uncached one.
void load(std::uint32_t flags, const Bytes& stream, const Step& check) {
    XCArchiveMem memory;
    attach(memory, stream, flags & 4 ? 4 : 8);
    check(memory);
    const TempFolder folder;
    folder.write("a", stream);
    for (const std::uint32_t cacheSize : {0u, 5u, 512000u}) {
        XCArchiveFile file(flags, cacheSize);
        file.FileOpen(folder.path("a"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
        check(file);
    }
}

struct ValueCase {
    const char* name;
    Step save;
    Step load; // expects the value that was saved
    Bytes bigEndian;
    Bytes littleEndian;
};

template <class T>
Step reads(T expected) {
    return [expected](XCArchive& archive) {
        T value = expected;
        archive >> value;
        EXPECT_EQ(value, expected);
    };
}

template <class T>
ValueCase valueCase(const char* name, T value, const Bytes& bigEndian) {
    return {name, [value](XCArchive& archive) { archive << value; }, reads(value), bigEndian,
            Bytes(bigEndian.rbegin(), bigEndian.rend())};
}

Bytes hex(const char* digits) {
    Bytes result;
    for (; digits[0]; digits += digits[2] == ' ' ? 3 : 2)
        result.push_back(static_cast<char>(std::stoi(std::string(digits, 2), nullptr, 16)));
    return result;
}

TEST(XCArchive, ValuesHaveTheirBytesInBothOrders) {
    const _GUID guid = {0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};
    const tagVXRGBCOLOR16 rgb = {0xA1A2, 0x1112, 0x2122, 0x3132};
    const tagVXHSVCOLOR16 hsv = {0xA1A2, 0x1112, 0x2122, 0x3132};
    XCTime time;
    time = 0x4A5B6C7D;
    const ValueCase cases[] = {
        valueCase("byte", std::uint8_t{0xFE}, hex("FE")),
        valueCase("word", std::uint16_t{0xFE01}, hex("FE01")),
        valueCase("signed word", std::int16_t{-2}, hex("FFFE")),
        valueCase("int", std::int32_t{0x01020304}, hex("01020304")),
        valueCase("unsigned", std::uint32_t{0xFE020304}, hex("FE020304")),
        valueCase("long int", std::int64_t{-2}, hex("FFFFFFFFFFFFFFFE")),
        valueCase("unsigned long int", std::uint64_t{0x0102030405060708}, hex("0102030405060708")),
        valueCase("float", 1.0F, hex("3F800000")),
        valueCase("double", -2.5, hex("C004000000000000")),
        {"guid", [&](XCArchive& a) { a << guid; },
         [&](XCArchive& a) {
             _GUID read = {};
             a >> read;
             EXPECT_EQ(std::memcmp(&read, &guid, sizeof guid), 0);
         },
         hex("01020304 0506 0708 090A0B0C0D0E0F10"), hex("04030201 0605 0807 090A0B0C0D0E0F10")},
        {"rgb", [&](XCArchive& a) { a << rgb; },
         [&](XCArchive& a) {
             tagVXRGBCOLOR16 read = {};
             a >> read;
             EXPECT_EQ(std::memcmp(&read, &rgb, sizeof rgb), 0);
         },
         hex("1112 2122 3132 A1A2"), hex("1211 2221 3231 A2A1")},
        {"hsv", [&](XCArchive& a) { a << hsv; },
         [&](XCArchive& a) {
             tagVXHSVCOLOR16 read = {};
             a >> read;
             EXPECT_EQ(std::memcmp(&read, &hsv, sizeof hsv), 0);
         },
         hex("1112 2122 3132 A1A2"), hex("1211 2221 3231 A2A1")},
        {"time", [&](XCArchive& a) { a << time; },
         [&](XCArchive& a) {
             XCTime read;
             a >> read;
             EXPECT_EQ(static_cast<std::int32_t>(read), 0x4A5B6C7D);
         },
         hex("4A5B6C7D"), hex("7D6C5B4A")},
        {"text", [](XCArchive& a) { a << "a\r\nb" << static_cast<const char*>(nullptr) << XCString("z"); },
         [](XCArchive& a) {
             XCString first, second("old"), third;
             a >> first >> second >> third;
             EXPECT_STREQ(first, "a\r\nb");
             EXPECT_STREQ(second, "");
             EXPECT_STREQ(third, "z");
         },
         hex("0003 61 0D 62 0000 0001 7A"), hex("0300 61 0D 62 0000 0100 7A")},
        {"wide text", [](XCArchive& a) { a << XCWideString(u"\x3042\r\n") << XCWideString(); },
         [](XCArchive& a) {
             XCWideString first, second(u"old");
             a >> first >> second;
             EXPECT_TRUE(first == u"\x3042\r\n");
             EXPECT_EQ(second.IsEmpty(), 1);
         },
         hex("0004 3042 000D 0000"), hex("0400 4230 0D00 0000")},
    };
    for (const ValueCase& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(saved(9, each.save), each.bigEndian);
        EXPECT_EQ(saved(5, each.save), each.littleEndian);
        load(10, each.bigEndian, each.load);
        load(6, each.littleEndian, each.load);
    }
}

TEST(XCArchive, LineBreaksOfTexts) {
    const CodePageScope shiftJis(932);
    // 0x83 0x0D is no character of the code page, but a lead byte takes any byte along: that is no line break.
    const struct {
        Bytes memory, stored, loaded;
    } cases[] = {
        {"\r\n", "\r", "\r\n"},
        {"\n", "\n", "\n"},
        {"\r", "\r", "\r\n"},
        {"\r\r\n\n", "\r\r\n", "\r\n\r\n\n"},
        {"\x83\r\n", "\x83\r\n", "\x83\r\n"},
        {"\x83\\\r\n", "\x83\\\r", "\x83\\\r\n"},
        {"\x83", "\x83", "\x83"},
    };
    for (const auto& each : cases) {
        const Bytes stream = saved(9, [&](XCArchive& archive) { archive << each.memory.c_str(); });
        EXPECT_EQ(stream, bytes({0, static_cast<int>(each.stored.size())}) + each.stored);
        load(10, stream, [&](XCArchive& archive) {
            XCString text;
            archive >> text;
            EXPECT_EQ(text.GetStr(), each.loaded);
        });
    }
    load(10, hex("0004 41004243"), [](XCArchive& archive) { // a stored NUL ends the text, not what is consumed
        XCString text;
        archive >> text;
        EXPECT_STREQ(text, "A");
        EXPECT_EQ(archive.GetPosition(), 6u);
    });
}

TEST(XCArchive, TextsBeyondTheCountAreRefusedBeforeAnythingIsWritten) {
    const Bytes breaks = [] {
        Bytes text(65534, 'x');
        return text + "\r\n";
    }();
    XCArchiveMem archive(9, 0);
    archive << breaks.c_str(); // 65535 bytes as stored
    EXPECT_EQ(archive.GetLength(), 65537u);
    EXPECT_EQ(errorOf([&] { archive << (breaks + "x").c_str(); }), 0x20010008);
    EXPECT_EQ(errorOf([&] { archive << XCWideString(std::u16string(32768, u'x').c_str()); }), 0x20010008);
    EXPECT_EQ(archive.GetLength(), 65537u);
    archive << XCWideString(std::u16string(32767, u'x').c_str());
    archive.SetMode(10);
    XCString text;
    XCWideString wide;
    archive >> text >> wide;
    EXPECT_EQ(text.GetStr(), breaks);
    EXPECT_EQ(wide.GetLength(), 32767);
}

TEST(XCArchive, TextsWithLengthsOfSeveralWidths) {
    const Bytes longText(300, 'k');
    const struct {
        Bytes stream, text;
    } cases[] = {
        {hex("00"), ""},
        {hex("02 410D"), "A\r"},
        {hex("FF 012C") + longText, longText},
        {hex("FF FFFE"), ""},
        {hex("FF FFFF 0000012C") + longText, longText},
        {hex("FF FFFF 00000000"), ""},
    };
    for (const auto& each : cases)
        load(10, each.stream, [&](XCArchive& archive) {
            XCString text("old");
            archive.ReadMKString(text);
            EXPECT_EQ(text.GetStr(), each.text);
            EXPECT_EQ(archive.GetPosition(), each.stream.size());
        });
}

TEST(XCArchive, SectionsNestAndTellTheirSizes) {
    const auto save = [](XCArchive& archive) {
        archive << std::uint8_t{0xAA};
        archive.BeginSection();
        archive << std::uint16_t{0x0102};
        archive.BeginSection();
        archive << "1234567";
        archive.EndSection();
        archive.BeginSection();
        archive.EndSection();
        archive.EndSection();
        archive.EndSection(); // none is open
        archive << std::uint8_t{0xBB};
        EXPECT_EQ(archive.GetPosition(), 25u);
    };
    const Bytes expected = hex("AA 00000013 0102 00000009 0007 31323334353637 00000000 BB");
    EXPECT_EQ(saved(9, save), expected);
    load(10, expected, [](XCArchive& archive) {
        archive.Seek(1, 0);
        archive.BeginSection();
        EXPECT_EQ(archive.GetSectionSize(), 19u);
        std::uint16_t word;
        archive >> word;
        archive.BeginSection();
        archive >> word;
        EXPECT_EQ(archive.GetRemainingSectionSize(), 7u);
        EXPECT_EQ(archive.GetRemainingSize(), 7u);
        archive.EndSection();
        EXPECT_EQ(archive.GetRemainingSectionSize(), 4u);
        archive.SeekSection();
        archive.EndSection();
        std::uint8_t byte;
        archive >> byte;
        EXPECT_EQ(byte, 0xBB);
        archive.Seek(1, 0);
        archive.SeekSection();
        EXPECT_EQ(archive.GetPosition(), 24u);
        EXPECT_EQ(archive.GetRemainingSize(), 1u);
    });
}

TEST(XCArchive, SectionsCopiedAndAsBlocks) {
    const Bytes stream = hex("00000003 616263 00000000 00000002 6465");
    EXPECT_EQ(saved(9,
                    [&](XCArchive& archive) {
                        XCArchiveMem source;
                        attach(source, stream);
                        archive.CopySection(source);
                        archive.CopySection(source);
                        XCHandle block;
                        source.ReadSectionData(block);
                        EXPECT_EQ(block.GetMemSize(), 2u);
                        archive.WriteSectionData(block);
                    }),
              stream);
    load(10, stream, [](XCArchive& archive) {
        XCHandle block;
        archive.ReadSectionData(block);
        EXPECT_EQ(block.GetMemSize(), 3u);
        archive.ReadSectionData(block);
        EXPECT_EQ(block.IsValid(), 0);
    });
    const TempFolder folder;
    folder.write("f", std::string("\0\0\0\x40", 4).append(64, 'x'));
    XCArchiveFile archive(10, 16);
    archive.FileOpen(folder.path("f"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
    std::filesystem::resize_file(folder.posix("f"), 40); // by somebody else
    XCHandle block;
    block.Alloc(7);
    EXPECT_EQ(errorOf([&] { archive.ReadSectionData(block); }), 0x20010008);
    EXPECT_EQ(block.GetMemSize(), 7u);
}

TEST(XCArchive, SeekingKeepsToTheStream) {
    load(10, "0123456789", [](XCArchive& archive) {
        char byte = 0;
        for (const auto& [offset, origin, position, expected] :
             std::initializer_list<std::tuple<int, std::uint32_t, std::uint32_t, char>>{
                 {3, 0, 3, '3'}, {2, 1, 6, '6'}, {-4, 1, 3, '3'}, {1, 1, 5, '5'}, {7, 9, 0, '0'}, {9, 0, 9, '9'}}) {
            EXPECT_EQ(archive.Seek(offset, origin), position);
            archive.Read(&byte, 1);
            EXPECT_EQ(byte, expected);
        }
        EXPECT_EQ(archive.Seek(2000000000, 0), 10u);
        EXPECT_EQ(errorOf([&] { archive.Seek(-11, 1); }), 0x20010008);
        EXPECT_EQ(errorOf([&] { archive.Seek(-1, 0); }), 0x20010008);
    });
    EXPECT_EQ(saved(9,
                    [](XCArchive& archive) {
                        archive.Write("0123456789", 10);
                        EXPECT_EQ(archive.Seek(-7, 1), 3u);
                        archive.Write("ab", 2);
                        EXPECT_EQ(archive.Seek(2, 1), 7u);
                        archive.Write("cdefg", 5);
                    }),
              "012ab56cdefg");
}

/// A cached stream in memory that notes how many bytes were read from it, and how many of them into `watched`.
class NotingArchive : public XCArchive {
public:
    NotingArchive(const Bytes& stream, const Bytes& watched) : m_stream(stream), m_watched(watched) {
        Init(cnLoading, 512000);
        restart(static_cast<std::uint32_t>(stream.size()));
    }
    std::size_t taken = 0, takenDirectly = 0;

protected:
    std::uint32_t WriteSelf(const void*, std::uint32_t) override { return 0; }
    std::uint32_t ReadSelf(void* to, std::uint32_t size) override {
        const char* const target = static_cast<char*>(to);
        taken += size;
        takenDirectly += target >= m_watched.data() && target < m_watched.data() + m_watched.size() ? size : 0;
        std::memcpy(to, m_stream.data() + m_next, size);
        m_next += size;
        return size;
    }
    std::uint32_t SeekSelf(int offset, std::uint32_t) override { return m_next = static_cast<std::uint32_t>(offset); }

private:
    const Bytes& m_stream;
    const Bytes& m_watched;
    std::uint32_t m_next = 0;
};

TEST(XCArchive, LargePiecesAreReadPastTheCache) {
    Bytes stream(3000000, '\0');
    for (std::size_t i = 0; i < stream.size(); i++)
        stream[i] = static_cast<char>(i * i >> 9 ^ i);
    Bytes buffer(600000, '\0');
    NotingArchive archive(stream, buffer);
    std::uint32_t at = 0;
    const auto read = [&](std::uint32_t size) {
        archive.Read(buffer.data(), size);
        EXPECT_EQ(buffer.compare(0, size, stream, at, size), 0) << at;
        EXPECT_EQ(archive.GetPosition(), at += size);
    };
    for (int record = 0; record < 8; record++)
        for (const std::uint32_t size : {5, 262144})
            read(size);
    EXPECT_EQ(archive.taken, at); // each byte once
    EXPECT_GT(archive.takenDirectly, 6 * 256000u);

    for (const std::uint32_t size : {1, 5000, 32768, 32767, 0, 600000, 100})
        read(size);
    at = archive.Seek(-600050, 1);
    for (const std::uint32_t size : {7, 40000, 50000, 3})
        read(size);
    archive.Seek(static_cast<int>(at = 2990000), 0);
    EXPECT_EQ(errorOf([&] { archive.Read(buffer.data(), 40000); }), 0x20010008);
    EXPECT_EQ(buffer.compare(0, 10000, stream, at, 10000), 0);
    EXPECT_EQ(archive.GetPosition(), stream.size());
}

TEST(XCArchive, ByteOrderAndMode) {
    XCArchiveFile archive(6, 10);
    EXPECT_EQ(archive.GetEndianMode(), 4);
    EXPECT_EQ(archive.SetEndianMode(8), 4);
    EXPECT_EQ(archive.SetEndianMode(8), 8);
    archive.SetExtMode(7);
    archive.Setsjiscode();
    EXPECT_EQ(archive.ModeChk(128 | 1), 1);
    archive.Init(9 | 2, 10);
    EXPECT_EQ(archive.IsSaving() + 2 * archive.IsLoading(), 1);
    EXPECT_EQ(archive.GetExtMode() + static_cast<std::uint32_t>(archive.ModeChk(128)), 0u);
}

TEST(XCArchive, ReadingAndWritingWhereItCannotBe) {
    const TempFolder folder;
    folder.write("a", "123");
    folder.write("empty", "");
    XCArchiveFile file;
    file.FileOpen(folder.path("a"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
    char buffer[5] = "....";
    EXPECT_EQ(errorOf([&] { file.Write("x", 1); }), 0x20010008);
    EXPECT_EQ(errorOf([&] { file.Read(buffer, 4); }), 0x20010008);
    EXPECT_STREQ(buffer, "123.");
    EXPECT_EQ(file.GetPosition(), 3u);
    EXPECT_EQ(errorOf([&] { file.Read(buffer, 0); }), 0x20010008);
    file.FileOpen(folder.path("empty"), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
    EXPECT_EQ(errorOf([&] { file.Read(buffer, 1); }), 0x20010008);

    XCArchiveMem memory;
    attach(memory, "123");
    std::uint32_t number = 77;
    memory >> number;
    EXPECT_EQ(number, 0u);
    EXPECT_EQ(memory.GetPosition(), 3u);
}

/// A stream of every kind of value with nested sections; cut anywhere it must end in one of the two codes.
void loadAll(XCArchive& archive) {
    XCString text;
    XCWideString wide;
    XCHandle block;
    double number;
    archive.BeginSection();
    archive >> number >> text >> wide;
    archive.ReadMKString(text);
    archive.BeginSection();
    archive.ReadSectionData(block);
    archive.EndSection();
    archive.SeekSection();
    archive.EndSection();
    std::uint8_t last;
    archive.RequireRemaining(1);
    archive >> last;
    EXPECT_EQ(last, 0x77);
}

/// While it lives, files of this process cannot grow beyond so many bytes.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_signal(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signal);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;

private:
    rlimit m_before;
    void (*m_signal)(int);
};

TEST(XCArchive, WhatCouldNotBeWrittenWholeIsWrittenAgain) {
    const TempFolder folder;
    const std::string data(1500, 'x');
    for (const std::uint32_t cacheSize : {0u, 4096u}) {
        XCArchiveFile archive(9, cacheSize);
        archive.FileCreate(folder.path("f"), 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS, 0);
        const auto write = [&] {
            if (archive.GetPosition() == 0)
                archive.Write(data.data(), static_cast<std::uint32_t>(data.size()));
            archive.DoFlush();
        };
        {
            const FileSizeLimit limit(1000);
            EXPECT_NE(errorOf(write), 0);
        }
        write();
        EXPECT_EQ(archive.GetPosition(), data.size());
        archive.FileClose();
        EXPECT_TRUE(folder.read("f") == data) << cacheSize;
    }
}

TEST(XCArchive, DamagedStreamsEndInAnError) {
    const Bytes whole = hex("00000029 3FF0000000000000 0003 410D42 0004 0041000D FF0002 4344 00000007 00000003 010203 "
                            "00000002 4546 77");
    load(10, whole, loadAll);
    const auto isRefused = [](int code) { return code == 0x20010008 || code == 0x2001000B; };
    for (std::size_t size = 0; size < whole.size(); ++size) {
        XCArchiveMem archive;
        attach(archive, whole.substr(0, size));
        EXPECT_TRUE(isRefused(errorOf([&] { loadAll(archive); }))) << size;
    }
    // Counts that lie: of sections at 0, 28, 32 and 39, of texts at 12, 17 and 24.
    for (const std::size_t at : {0, 12, 17, 24, 28, 32, 39})
        for (const char* lie : {"FFFF", "7FFF", "8000"}) {
            Bytes stream = whole;
            stream.replace(at, 2, hex(lie));
            load(10, stream,
                 [&](XCArchive& archive) { EXPECT_TRUE(isRefused(errorOf([&] { loadAll(archive); }))) << at; });
        }
    load(10, hex("0003 004100"), [](XCArchive& archive) {
        XCWideString wide;
        EXPECT_EQ(errorOf([&] { archive >> wide; }), 0x2001000B);
    });
}

TEST(XCArchive, MemoryGrowsInSteps) {
    XCArchiveMem archive(9, 512000);
    EXPECT_EQ(archive.IsValid(), 0);
    const std::vector<char> zeros(70000);
    archive.Write(zeros.data(), 10);
    archive.Write(zeros.data(), 70000);
    EXPECT_EQ(archive.GetLength(), 70010u);
    archive.Seek(1000000, 0);
    archive.Write("x", 1);
    EXPECT_EQ(archive.GetLength(), 1000001u);
    const VXHANDLE block = archive.Dettach();
    EXPECT_GE(vxGetHandleSize(block), 1000001u);
    EXPECT_EQ((vxGetHandleSize(block) - 65536 - 70000 - 1024) % 65536, 0u);
    EXPECT_EQ(archive.GetLength() + archive.GetPosition(), 0u);
    archive.Attach(block, 100);
    EXPECT_EQ(archive.GetLength(), 100u);
    EXPECT_EQ(archive.GetEndianMode() + archive.IsLoading(), 9);
    archive.Seek(2000000000, 0);
    EXPECT_EQ(archive.GetPosition(), 100u);
    archive.SetMode(1);
    EXPECT_EQ(archive.GetPosition(), 0u);
    archive << std::uint16_t{0x0102};
    EXPECT_EQ(contents(archive).substr(0, 2), hex("0201"));
    EXPECT_EQ(errorOf([&] { archive.Seek(-1, 0); }), 0x20010008);
}

TEST(XCArchive, NewIdentifiersAreRandomOnes) {
    _GUID one, other;
    xcCreateVXUID(one);
    xcCreateVXUID(other);
    EXPECT_NE(std::memcmp(&one, &other, sizeof one), 0);
    EXPECT_EQ(one.Data3 >> 12, 4);
    EXPECT_EQ(one.Data4[0] >> 6, 2);
}

} // namespace
