#include "ovwcmn/xcfilecompression.h"

#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcprogress.h"
#include "support/crashingdisk.h"
#include "support/scopes.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <utime.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

using namespace ovw::test;
namespace fs = std::filesystem;
using Names = std::vector<std::string>;

class Packer : public XCFileCompression, public IXCProgress, public IXCAbort {
public:
    explicit Packer(int atQuestion = 0) : stopAt(atQuestion) {
        m_progress = this;
        m_abort = this;
    }
    void Begin(std::uint32_t newTotal) override { total = newTotal; }
    void Step(std::uint32_t count) override { steps += count; }
    void End() override { ++ends; }
    int IsAbort() override { return ++asked == stopAt; }

    int stopAt;
    std::uint32_t total = 0, steps = 0;
    int ends = 0, asked = 0;
};

class XCFileCompressionTest : public testing::Test {
protected:
    int pack(std::initializer_list<const char*> names, XCFileCompression& packer) {
        std::vector<XCFilePath> paths;
        for (const char* const name : names)
            paths.push_back(m_folder.path(name));
        XCTArray<XCFilePath*> items;
        for (XCFilePath& path : paths)
            items.PushBack(&path);
        return packer.Compress(m_folder.path("packed"), items);
    }
    int pack(std::initializer_list<const char*> names) {
        XCFileCompression packer;
        return pack(names, packer);
    }
    int unpack(XCFileCompression& packer, const char* into = "out") {
        fs::create_directory(m_folder.posix(into));
        return packer.Decompress(m_folder.path(into), m_folder.path("packed"));
    }
    int unpack() {
        XCFileCompression packer;
        return unpack(packer);
    }
    int unpackError() {
        return errorOf([&] { unpack(); });
    }
    Names namesIn(const char* folder) const {
        Names names;
        for (const auto& entry : fs::recursive_directory_iterator(m_folder.posix(folder)))
            names.push_back(entry.path().lexically_relative(m_folder.posix(folder)).string());
        std::sort(names.begin(), names.end());
        return names;
    }
    void setTime(const char* name, std::int64_t seconds) const {
        const utimbuf times = {seconds, seconds};
        utime(m_folder.posix(name).c_str(), &times);
    }
    std::int64_t timeOf(const char* name) const {
        struct stat status = {};
        stat(m_folder.posix(name).c_str(), &status);
        return status.st_mtime;
    }

    TempFolder m_folder;
};

std::string bytes(std::initializer_list<int> values) {
    std::string result;
    for (const int value : values)
        result.push_back(static_cast<char>(value));
    return result;
}

const std::string cnHead = bytes({'A', 'Z', 'X', 'V', 0, 1, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0});
const std::string cnFrameOfX = bytes({9, 0, 0, 0, 0x78, 0x9C, 0xAB, 0, 0, 0, 0x79, 0, 0x79}); // "x"

std::string record(const std::string& name, int size, int time = 86400, int attributes = 0x80) {
    const auto number = [](int value) {
        return bytes({value & 255, value >> 8 & 255, value >> 16 & 255, value >> 24 & 255});
    };
    const int length = static_cast<int>(name.size());
    return bytes({2, 0}) + number(length + 14) + bytes({length & 255, length >> 8}) + name + number(size) +
           number(time) + number(attributes);
}

TEST_F(XCFileCompressionTest, FilesHaveTheirBytes) {
    m_folder.write("a", "x");
    setTime("a", 86400);
    fs::create_directory(m_folder.posix("f"));
    ASSERT_EQ(pack({"a", "missing"}), 1);
    EXPECT_EQ(m_folder.read("packed"), cnHead + record("a", 1) + cnFrameOfX);
    ASSERT_EQ(pack({"f"}), 1);
    EXPECT_EQ(m_folder.read("packed"), cnHead.substr(0, 8) + bytes({0, 0, 0, 0, 1, 0, 0, 0, // no file, one item
                                                                    1, 0, 1, 0, 'f', 0, 0, 0, 0}));
    m_folder.write("packed", cnHead + record("made", 1, -1) + cnFrameOfX);
    EXPECT_EQ(unpack(), 1);
    EXPECT_EQ(m_folder.read("out/made"), "x");
    EXPECT_GT(timeOf("out/made"), 1000000000); // no time was set
}

TEST_F(XCFileCompressionTest, NamesHideNothingBehindANul) {
    m_folder.write("packed", cnHead + record(std::string("a\0b", 3), 1) + cnFrameOfX);
    EXPECT_EQ(unpackError(), 0x2001000B);
    EXPECT_EQ(namesIn("out"), Names());
}

TEST_F(XCFileCompressionTest, TreesComeBackWithTimesAndAttributes) {
    const TimeZoneScope zone("CET-1CEST,M3.5.0,M10.5.0");
    fs::create_directories(m_folder.posix("docs/deep/deeper"));
    fs::create_directories(m_folder.posix("docs/empty"));
    m_folder.write("docs/deep/deeper/large", std::string(300000, 'L'));
    m_folder.write("docs/deep/summer", "s");
    m_folder.write("docs/nothing", "");
    m_folder.write("single", "1");
    setTime("docs/deep/summer", 1719835200); // July
    chmod(m_folder.posix("docs/deep/summer").c_str(), 0444);
    fs::create_symlink("single", m_folder.posix("docs/link"));
    fs::create_symlink("..", m_folder.posix("docs/deep/circle"));
    fs::create_symlink("nowhere", m_folder.posix("docs/deep/dangling"));
    fs::create_symlink("../single", m_folder.posix("docs/tofile"));
    mkfifo(m_folder.posix("docs/pipe").c_str(), 0600);
    Packer packer;
    ASSERT_EQ(pack({"docs", "single"}, packer), 1);
    EXPECT_EQ(packer.total, 5u);
    EXPECT_EQ(packer.steps, 5u);
    EXPECT_EQ(packer.ends, 1);
    Packer unpacker;
    ASSERT_EQ(unpack(unpacker), 1);
    EXPECT_EQ(unpacker.steps, 5u);
    // A file of no bytes is not made again.
    EXPECT_EQ(namesIn("out"), (Names{"docs", "docs/deep", "docs/deep/deeper", "docs/deep/deeper/large",
                                     "docs/deep/summer", "docs/empty", "docs/tofile", "single"}));
    EXPECT_EQ(m_folder.read("out/docs/deep/deeper/large"), std::string(300000, 'L'));
    EXPECT_EQ(m_folder.read("out/docs/tofile"), "1");
    EXPECT_EQ(timeOf("out/docs/deep/summer"), 1719835200);
    EXPECT_EQ(m_folder.path("out\\docs\\deep\\summer").GetReadOnly(), 1);
}

TEST_F(XCFileCompressionTest, TakenNamesGetNumbersOrAreReplaced) {
    for (const char* const name : {"docs", "2024"}) {
        fs::create_directory(m_folder.posix(name));
        m_folder.write(std::string(name) + "/a", name);
    }
    m_folder.write("victim", "kept");
    m_folder.write("single", "new");
    ASSERT_EQ(pack({"2024", "docs", "single"}), 1);
    unpack();
    fs::remove(m_folder.posix("out/single"));
    fs::create_symlink("../victim", m_folder.posix("out/single"));
    unpack();
    EXPECT_EQ(namesIn("out"),
              (Names{"2024", "2024/a", "2025", "2025/a", "docs", "docs/a", "docs0001", "docs0001/a", "single"}));
    EXPECT_EQ(m_folder.read("victim"), "kept"); // never through the link
    EXPECT_EQ(m_folder.read("out/single"), "new");
}

/// A folder that holds itself, and so on.
class BottomlessFolder : public CrashingDisk {
public:
    explicit BottomlessFolder(const XCFilePath& folder) : m_folder(static_cast<const char*>(folder)) {}
    int information(const std::string& path, ovw::platform::FileInformation& out) override {
        return CrashingDisk::information(path.starts_with(m_folder) ? m_folder : path, out);
    }
    int list(const std::string&, std::vector<std::string>& names) override {
        names = {"d"};
        return 0;
    }

private:
    std::string m_folder;
};

TEST_F(XCFileCompressionTest, FoldersTooDeepToBeUnpackedAreNotPacked) {
    fs::create_directory(m_folder.posix("d"));
    m_folder.write("packed", "old");
    const BottomlessFolder disk(m_folder.path("d"));
    EXPECT_EQ(errorOf([&] { pack({"d"}); }), 206);
    EXPECT_EQ(m_folder.read("packed"), "old");
}

TEST_F(XCFileCompressionTest, ThePackedFileIsNotPacked) {
    fs::create_directory(m_folder.posix("f"));
    m_folder.write("f/a", "x");
    std::vector<XCFilePath> paths = {m_folder.path("f"), m_folder.path("f\\packed")};
    XCTArray<XCFilePath*> items;
    for (XCFilePath& path : paths)
        items.PushBack(&path);
    for (int round = 0; round < 2; ++round) {
        XCFileCompression packer;
        EXPECT_EQ(packer.Compress(m_folder.path("f\\packed"), items), 1);
        EXPECT_EQ(namesIn("f"), (Names{"a", "packed"}));
    }
    fs::create_directory_symlink("f", m_folder.posix("same"));
    EXPECT_EQ(XCFileCompression().Compress(m_folder.path("same\\packed"), items), 1); // by another way
    fs::create_directory(m_folder.posix("out"));
    XCFileCompression().Decompress(m_folder.path("out"), m_folder.path("f\\packed"));
    EXPECT_EQ(namesIn("out"), (Names{"f", "f/a"}));
}

TEST_F(XCFileCompressionTest, StoppingLeavesWhatIsThere) {
    for (const char* const name : {"a", "b", "c"})
        m_folder.write(name, name);
    Packer packer(2);
    EXPECT_EQ(pack({"a", "b", "c"}, packer), 0);
    EXPECT_EQ(packer.ends, 1);
    EXPECT_NE(unpackError(), 0); // cut off
    pack({"a", "b", "c"});
    Packer unpacker(3);
    EXPECT_EQ(unpack(unpacker), 0);
    EXPECT_EQ(namesIn("out"), (Names{"a", "b"}));
}

TEST_F(XCFileCompressionTest, DamagedFilesCreateNothing) {
    const std::string good = record("good", 1) + cnFrameOfX;
    const struct {
        const char* name;
        std::string file;
        int code;
    } cases[] = {
        {"no file of ours", "PK\x03\x04 and so on, long enough", 0},
        {"too short for the magic", "AZX", 0x20010008},
        {"nothing", "", 0x20010008},
        {"items that lie", cnHead.substr(0, 12) + bytes({2, 0, 0, 0}) + good, 0x20010008},
        {"very many items", cnHead.substr(0, 12) + bytes({255, 255, 255, 255}) + good, 0x20010008},
        {"kind 3", cnHead.substr(0, 12) + bytes({2, 0, 0, 0}) + good + bytes({3, 0}), 0x2001000B},
        {"size below 0", cnHead + record("a", -1) + cnFrameOfX, 0x2001000B},
        {"size that cannot be", cnHead + record("a", 0x7FFFFFFF) + cnFrameOfX, 0x2001000B},
        {"frame beyond the end", cnHead + record("a", 1) + bytes({10}) + cnFrameOfX.substr(1), 0x20010008},
        {"folder entries that lie", cnHead + bytes({1, 0, 1, 0, 'f', 9, 0, 0, 0}), 0x20010008},
        {"section too short", cnHead + bytes({2, 0, 3, 0, 0, 0, 1, 0, 'a'}), 0x20010008},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        m_folder.write("packed", each.file);
        EXPECT_EQ(errorOf([&] {
                      try {
                          unpack();
                          ADD_FAILURE() << "no error";
                      } catch (const XCException& error) {
                          EXPECT_EQ(error.GetErrorCode(), each.code);
                      }
                  }),
                  0);
        EXPECT_EQ(namesIn("out"), Names());
    }
    std::string nested = cnHead;
    for (int i = 0; i < 300; ++i)
        nested += bytes({1, 0, 1, 0, 'f', 1, 0, 0, 0});
    m_folder.write("packed", nested + bytes({2, 0}));
    EXPECT_EQ(unpackError(), 0x2001000B);
    const std::string whole = cnHead + record("a", 1) + cnFrameOfX;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        m_folder.write("packed", whole.substr(0, size));
        const int code = unpackError();
        EXPECT_TRUE(code == 0x20010008 || code == 0x2001000B) << size;
    }
    EXPECT_EQ(namesIn("out"), Names());
}

TEST_F(XCFileCompressionTest, NoMoreComesOutThanTheLimitAllows) {
    m_folder.write("a", std::string(3000, 'a'));
    m_folder.write("b", std::string(1000, 'b'));
    pack({"a", "b"});
    XCFileCompression packer;
    packer.SetUnpackLimit(3999);
    EXPECT_EQ(errorOf([&] { unpack(packer); }), 0x2001000B);
    EXPECT_EQ(namesIn("out"), Names());
    packer.SetUnpackLimit(4000);
    EXPECT_EQ(unpack(packer), 1);
    // By themselves: 1 GiB. Three records of 500 MiB whose streams could hold them.
    const std::string frame = bytes({0, 0, 8, 0}) + std::string(0x80000, 'x');
    m_folder.write("packed", cnHead.substr(0, 12) + bytes({3, 0, 0, 0}) + record("a", 500 << 20) + frame +
                                 record("b", 500 << 20) + frame + record("c", 500 << 20) + frame);
    EXPECT_EQ(unpackError(), 0x2001000B);
}

TEST_F(XCFileCompressionTest, NamesThatLeaveTheFolderAreRefused) {
    for (const std::string& name : {std::string(), std::string("."), std::string(".."), std::string("a\\b"),
                                    std::string("../a"), std::string("C:a"), std::string(256, 'n')}) {
        m_folder.write("packed", cnHead + record(name, 1) + cnFrameOfX);
        EXPECT_EQ(unpackError(), 0x2001000B) << name;
        m_folder.write("packed",
                       cnHead + bytes({1, 0, static_cast<int>(name.size() & 255), static_cast<int>(name.size() >> 8)}) +
                           name + bytes({0, 0, 0, 0}));
        EXPECT_EQ(unpackError(), 0x2001000B) << name;
    }
    EXPECT_EQ(namesIn("out"), Names());
    m_folder.write("with:colon", "x");
    EXPECT_EQ(errorOf([&] { pack({"with:colon"}); }), 123);
}

TEST_F(XCFileCompressionTest, DamagedContentsLeaveTheFilesBeforeThem) {
    std::string damaged = cnFrameOfX;
    damaged.back() ^= 1; // the check sum
    const std::string longer = record("b", 2) + cnFrameOfX, wrong = record("b", 1) + damaged;
    for (const std::string& second : {longer, wrong}) {
        m_folder.write("packed", cnHead.substr(0, 12) + bytes({2, 0, 0, 0}) + record("a", 1) + cnFrameOfX + second);
        EXPECT_EQ(unpackError(), 8);
        EXPECT_EQ(namesIn("out"), Names{"a"});
    }
}

TEST_F(XCFileCompressionTest, FailuresOfTheDiskLeaveTheOldFile) {
    m_folder.write("a", "x");
    m_folder.write("packed", "old");
    int calls = 0;
    {
        CrashingDisk disk;
        pack({"a"});
        calls = disk.calls();
    }
    const std::string packed = m_folder.read("packed");
    for (int call = 1; call <= calls; ++call)
        for (const auto fault : {CrashingDisk::Fault::oneCall, CrashingDisk::Fault::powerCut}) {
            m_folder.write("packed", "old");
            {
                CrashingDisk disk(call, fault);
                errorOf([&] { pack({"a"}); });
            }
            const std::string now = m_folder.read("packed");
            EXPECT_TRUE(now == "old" || now == packed) << call;
            if (fault == CrashingDisk::Fault::powerCut)
                for (const std::string& name : m_folder.names())
                    if (name.ends_with(".tmp"))
                        fs::remove(m_folder.posix(name));
        }
    EXPECT_EQ(m_folder.names(), (Names{"a", "packed"}));
}

} // namespace
