// Preference files and the key store, which share their records.
#include "ovwcmn/xcarchivemem.h"
#include "ovwcmn/xccolor.h"
#include "ovwcmn/xclength.h"
#include "ovwcmn/xcnumber.h"
#include "ovwcmn/xcpreferencefile.h"
#include "ovwcmn/xcregkey.h"
#include "ovwcmn/xcstringarray.h"
#include "support/crashingdisk.h"
#include "support/scopes.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using ovw::test::CrashingDisk;
using ovw::test::errorOf;
using ovw::test::TempFolder;

/// Writes a preference file by `set(file)`.
template <class Set>
void writeFile(const XCFilePath& path, Set set) {
    XCPreferenceFile file;
    file.OpenPreferenceFile(1, path);
    set(file);
    file.ClosePreferenceFile();
}

template <class Set>
void writeKey(const XCFilePath& folder, Set set) {
    XCRegKey key;
    ASSERT_EQ(key.Open(folder, nullptr, XCRegKey::cnWrite), 1);
    set(key);
    key.Close();
}

std::string record(const std::string& label, const std::string& value) {
    const auto counted = [](const std::string& text) {
        return std::string{static_cast<char>(text.size() >> 8), static_cast<char>(text.size())} + text;
    };
    return counted(label) + counted(value);
}

std::string zeros(std::size_t count) { return std::string(count, '\0'); }

TEST(XCPreferenceFile, WritesItsRecordsToTheByte) {
    const TempFolder folder;
    writeFile(folder.path("p"), [](XCPreferenceFile& file) {
        file.SetPreferenceFile("Size", 5);
        file.SetPreferenceFile("s", std::int16_t{-2});
        file.SetPreferenceFile("f", 1.0f);
        file.SetPreferenceFile("e", "");
        file.SetPreferenceFile("t", "a\r\nb");
        file.SetPreferenceFile("d", 1234.56);
        file.SetPreferenceFile("n", _VXNUMBER{12, "A"});
        file.SetPreferenceFile("c", tagVXRGBCOLOR16{1, 2, 3, 4});
        file.SetPreferenceFile("l", XCLength(1.5, 2, 300));
        file.SetPreferenceFile("r", tagRECT{1, 2, 3, -1});
        file.SetPreferenceFile("p", XCFilePath("C:\\a\\"));
        file.SetPreferenceFile("raw", 3, "xyz");
    });
    EXPECT_EQ(folder.read("p").substr(0, 12), std::string("\0\4Size\0\4\0\0\0\5", 12));
    const std::string word[] = {zeros(3) + '\1', zeros(3) + '\2', zeros(3) + '\3', "\xFF\xFF\xFF\xFF"};
    EXPECT_EQ(folder.read("p").substr(12),
              record("s", "\xFF\xFE") + record("f", std::string("\x3F\x80\0\0", 4)) + record("e", " ") +
                  record("t", "a\rb") + record("d", "1234.6") + record("n", zeros(3) + '\x0C' + 'A' + zeros(3)) +
                  record("c_A", word[0].substr(2)) + record("c_R", word[1].substr(2)) +
                  record("c_G", word[2].substr(2)) + record("c_B", std::string("\0\4", 2)) + record("l_D", " 1.50") +
                  record("l_U", word[1]) + record("l_R", "300.00") + record("r_Left", word[0]) +
                  record("r_Top", word[1]) + record("r_Right", word[2]) + record("r_Bottom", word[3]) +
                  record("p", "C:\\a") + record("raw", "xyz"));
}

TEST(XCPreferenceFile, ReadsEveryTypeBack) {
    const TempFolder folder;
    const std::string longLabel(400, 'L');
    writeFile(folder.path("p"), [&](XCPreferenceFile& file) {
        file.SetPreferenceFile("us", std::uint16_t{65535});
        file.SetPreferenceFile("u", 4000000000u);
        file.SetPreferenceFile("d", -0.25, "%.3f");
        file.SetPreferenceFile("e", "");
        file.SetPreferenceFile("t", "a\r\nb");
        file.SetPreferenceFile("n", XCNumber(12));
        file.SetPreferenceFile(longLabel.c_str(), tagRECT{1, 2, 3, 4});
        file.SetPreferenceFile("l", XCLength(1.5, 2, 300));
        file.SetPreferenceFile("c", tagVXRGBCOLOR16{1, 2, 3, 4});
        file.SetPreferenceFile("us", std::uint16_t{1}); // the first wins
        file.SetPreferenceFile("p", XCFilePath("C:\\a"));
    });
    XCPreferenceFile file;
    ASSERT_EQ(file.OpenPreferenceFile(0, folder.path("p")), 1);
    std::uint16_t us = 0;
    std::uint32_t u = 0;
    double d = 0;
    XCString text = "x";
    _VXNUMBER number = {};
    tagRECT rect = {};
    XCLength length;
    tagVXRGBCOLOR16 color = {};
    XCFilePath path;
    EXPECT_TRUE(file.GetPreferenceFile("us", us) && us == 65535);
    EXPECT_TRUE(file.GetPreferenceFile("u", u) && u == 4000000000u);
    EXPECT_TRUE(file.GetPreferenceFile("d", d) && d == -0.25);
    EXPECT_TRUE(file.GetPreferenceFile("e", text) && text.IsEmpty());
    EXPECT_TRUE(file.GetPreferenceFile("t", text) && text == "a\r\nb");
    EXPECT_TRUE(file.GetPreferenceFile("n", number) && XCNumber(number) == 12);
    EXPECT_TRUE(file.GetPreferenceFile(longLabel.c_str(), rect) && rect.bottom == 4 && rect.left == 1);
    EXPECT_TRUE(file.GetPreferenceFile("l", length) && length == XCLength(1.5, 2, 300));
    EXPECT_TRUE(file.GetPreferenceFile("c", color) && color.alpha == 1 && color.blue == 4);
    EXPECT_TRUE(file.GetPreferenceFile("p", path) && path == "C:\\a");
    char buffer[5] = "####";
    EXPECT_TRUE(file.GetPreferenceFile("t", buffer, 4));
    EXPECT_EQ(std::string(buffer), "a\r\nb") << "filled, and not terminated";
}

TEST(XCPreferenceFile, AnswersNoToWhatIsMissingOrOfAnotherSize) {
    const TempFolder folder;
    folder.write("p", record("s", "12") + record("i", "1234") + record("n", "1234567") + record("c_A", "11") +
                          record("r_Left", "1234") + record("z", "") + record("", "end") + record("behind", "1234"));
    XCPreferenceFile file;
    file.OpenPreferenceFile(0, folder.path("p"));
    std::int32_t i = 77;
    std::uint32_t u = 77;
    std::int16_t s = 77;
    float f = 77;
    _VXNUMBER number = {77, ""};
    tagRECT rect = {77, 0, 0, 0};
    tagVXRGBCOLOR16 color = {77, 0, 0, 0};
    XCLength length(77, 1);
    char raw[4] = {77};
    EXPECT_FALSE(file.GetPreferenceFile("s", i) || file.GetPreferenceFile("s", u) || file.GetPreferenceFile("i", s) ||
                 file.GetPreferenceFile("s", f) || file.GetPreferenceFile("n", number) ||
                 file.GetPreferenceFile("r", rect) || file.GetPreferenceFile("c", color) ||
                 file.GetPreferenceFile("l", length) || file.GetPreferenceFile("i", 3, raw) ||
                 file.GetPreferenceFile("behind", i) || file.GetPreferenceFile("", i) ||
                 file.GetPreferenceFile(nullptr, i) || file.GetPreferenceFile("S", s));
    EXPECT_TRUE(i == 77 && u == 77 && s == 77 && f == 77 && number.number == 77 && rect.left == 77 &&
                color.alpha == 77 && length.GetData() == 77 && raw[0] == 77);
    EXPECT_EQ(file.GetPreferenceFile("z", 0, raw), 1) << "a value of no bytes is passed over";
    EXPECT_EQ(file.OpenPreferenceFile(0, folder.path("none")), 0);
    EXPECT_EQ(file.GetPreferenceFile("s", s), 0);
    file.OpenPreferenceFile(1, folder.path("p"));
    EXPECT_EQ(file.GetPreferenceFile("s", s), 0) << "open for writing";
}

TEST(XCPreferenceFile, MergesNewRecordsBeforeTheOldOnes) {
    const TempFolder folder;
    folder.write("p", record("a", "1") + record("b", "2") + record("z", "") + record("b", "3") + record("c", "4"));
    ::chmod(folder.posix("p").c_str(), 0640);
    writeFile(folder.path("p"), [](XCPreferenceFile& file) {
        file.SetPreferenceFile("new", "5");
        file.SetPreferenceFile("b", "6");
    });
    EXPECT_EQ(folder.read("p"),
              record("new", "5") + record("b", "6") + record("a", "1") + record("z", "") + record("c", "4"));
    struct stat status;
    ASSERT_EQ(::stat(folder.posix("p").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    writeFile(folder.path("empty"), [](XCPreferenceFile&) {});
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"empty", "p"})) << "nothing set, and yet a file";
}

TEST(XCPreferenceFile, KeepsTheWholeRecordsBeforeADamage) {
    const TempFolder folder;
    const std::string good = record("a", "1") + record("b", "22");
    const std::string damages[] = {"",
                                   "\1",
                                   std::string("\0\5ab", 4),
                                   std::string("\0\1c\0", 4),
                                   std::string("\0\1c\0\2x", 6),
                                   std::string("\0\1c\xFF\xFFxx", 7) + record("d", "4"),
                                   record("", "x") + record("d", "4"),
                                   std::string("\0\2\0c\0\1x", 7)};
    for (const std::string& damage : damages) {
        folder.write("p", good + damage);
        writeFile(folder.path("p"), [](XCPreferenceFile& file) { file.SetPreferenceFile("n", "9"); });
        EXPECT_EQ(folder.read("p"), record("n", "9") + good);
    }
}

TEST(XCPreferenceFile, RefusesWhatARecordCannotHold) {
    const TempFolder folder;
    const std::string most(32767, 'x'), tooLong(65528, 'L');
    writeFile(folder.path("p"), [&](XCPreferenceFile& file) {
        file.SetPreferenceFile("most", most.c_str());
        EXPECT_EQ(errorOf([&] { file.SetPreferenceFile("t", (most + 'x').c_str()); }), 0x20010008);
        EXPECT_EQ(errorOf([&] { file.SetPreferenceFile("r", 32768, tooLong.data()); }), 0x20010008);
        EXPECT_EQ(errorOf([&] { file.SetPreferenceFile("r", -1, tooLong.data()); }), 0x20010008);
        EXPECT_EQ(errorOf([&] { file.SetPreferenceFile("", 5); }), 0x20010008);
        EXPECT_EQ(errorOf([&] { file.SetPreferenceFile(nullptr, "x"); }), 0x20010008);
        tagRECT rect = {};
        EXPECT_EQ(errorOf([&] { file.SetPreferenceFile((tooLong + "12").c_str(), rect); }), 0x20010008);
        EXPECT_EQ(errorOf([&] { file.SetPreferenceFile((tooLong + std::string(9, 'x')).c_str(), 1); }), 0x20010008);
    });
    EXPECT_EQ(folder.read("p"), record("most", most)) << "what is refused leaves nothing behind";
}

TEST(XCPreferenceFile, WritesAPointWhateverTheLocale) {
    const TempFolder folder;
    const ovw::test::DecimalCommaScope locale;
    if (!locale.hasComma())
        GTEST_SKIP() << "this machine cannot make a locale";
    XCString asPrinted;
    asPrinted.SetNumber(2.5, "%.1f");
    ASSERT_STREQ(asPrinted.GetStr(), "2,5");
    writeFile(folder.path("p"), [](XCPreferenceFile& file) { file.SetPreferenceFile("d", 2.5); });
    XCPreferenceFile file;
    file.OpenPreferenceFile(0, folder.path("p"));
    double d = 0;
    file.GetPreferenceFile("d", d);
    EXPECT_EQ(folder.read("p"), record("d", " 2.5"));
    EXPECT_EQ(d, 2.5);
}

TEST(XCRegKey, WritesItsRecordsToTheByte) {
    const TempFolder folder;
    writeKey(folder.path(), [](XCRegKey& key) {
        key.SetValue(std::uint8_t{7}, "b");
        key.SetValue(std::int64_t{-2}, "l");
        key.SetValue(1.0, "d");
        key.SetValue(1.25, "t", 1);
        key.SetValue("", "e");
        key.SetValue(tagPOINT{1, -1}, "p");
        key.SetValue(tagSIZEF{1, 0}, "s");
        key.SetValue(XCLength(1, 2, 1), "len");
        EXPECT_EQ(key.GetFileSize(),
                  4 + 1 + 1 + 4 + 1 + 8 + 4 + 1 + 8 + 4 + 1 + 4 + 4 + 1 + 1 + 4 + 1 + 8 + 4 + 1 + 8 + 4 + 3 + 24u);
    });
    const std::string one("\x3F\xF0\0\0\0\0\0\0", 8), oneLittle(one.rbegin(), one.rend());
    EXPECT_EQ(folder.read("pref.pff"), record("b", "\7") + record("l", std::string(7, '\xFF') + '\xFE') +
                                           record("d", one) + record("t", " 1.2") + record("e", " ") +
                                           record("p", zeros(3) + '\1' + std::string(4, '\xFF')) +
                                           record("s", std::string("\x3F\x80", 2) + zeros(6)) +
                                           record("len", oneLittle + '\2' + zeros(7) + oneLittle));
}

template <class Value>
void expectKept(const TempFolder& folder, const Value& value) {
    std::remove(folder.posix("pref.pff").c_str());
    writeKey(folder.path(), [&](XCRegKey& key) { key.SetValue(value, "v"); });
    XCRegKey key;
    ASSERT_EQ(key.Open(folder.path(), nullptr, XCRegKey::cnRead), 1);
    Value back = {};
    EXPECT_EQ(key.GetValue(back, "v"), 1);
    if constexpr (std::is_trivially_copyable_v<Value>) {
        EXPECT_EQ(std::memcmp(&back, &value, sizeof value), 0);
    }
    char wrong[3];
    EXPECT_EQ(key.GetValue(wrong, 3, "v"), 0);
}

TEST(XCRegKey, ReadsEveryTypeBack) {
    const TempFolder folder;
    expectKept(folder, std::uint8_t{200});
    expectKept(folder, std::int16_t{-200});
    expectKept(folder, std::uint16_t{60000});
    expectKept(folder, std::int32_t{-70000});
    expectKept(folder, std::uint32_t{4000000000});
    expectKept(folder, std::int64_t{-5000000000});
    expectKept(folder, std::uint64_t{0xFEDCBA9876543210});
    expectKept(folder, 1.5f);
    expectKept(folder, -2.25e300);
    expectKept(folder, tagPOINT{1, -2});
    expectKept(folder, tagSIZE{1, -2});
    expectKept(folder, tagRECT{1, -2, 3, -4});
    expectKept(folder, tagPOINTF{1.5f, -2});
    expectKept(folder, tagSIZEF{1.5f, -2});
    expectKept(folder, tagRECTF{1.5f, -2, 3, -4});
    expectKept(folder, tagPOINTD{1.5, -2});
    expectKept(folder, tagSIZED{1.5, -2});
    expectKept(folder, tagRECTD{1.5, -2, 3, -4});
    writeKey(folder.path(), [&](XCRegKey& key) {
        key.SetValue(tagRECT{0x3F800000, 0, 0, 0}, "rect");
        key.SetValue(XCLength(1.5, 2, 300), "length");
        key.SetValue(2.5, "text", 1);
        key.SetValue("", "empty");
        key.SetValue(XCFilePath("C:\\a\\b\\"), "path");
    });
    XCRegKey key;
    key.Open(folder.path("pref.pff"), nullptr, XCRegKey::cnRead); // by its file
    tagRECTF asFloats = {};
    tagRECTD asDoubles = {};
    XCLength length;
    double number = 7;
    XCString text = "x";
    XCFilePath path;
    EXPECT_TRUE(key.GetValue(asFloats, "rect") && asFloats.left == 1.0f);
    EXPECT_FALSE(key.GetValue(asDoubles, "rect"));
    EXPECT_TRUE(key.GetValue(length, "length") && length == XCLength(1.5, 2, 300));
    EXPECT_TRUE(!key.GetValue(number, "text") && number == 7 && key.GetValue(number, "text", 1) && number == 2.5);
    EXPECT_TRUE(key.GetValue(text, "empty") && text.IsEmpty());
    EXPECT_TRUE(key.GetValue(path, "path") && path == "C:\\a\\b");
    EXPECT_EQ(key.GetFileSize(), folder.read("pref.pff").size());
}

TEST(XCRegKey, OpensAndCreatesSubKeys) {
    const TempFolder folder;
    EXPECT_EQ(XCRegKey::IsExistKey(folder.path(), "Tools\\Brush"), 0);
    {
        XCRegKey key, below;
        EXPECT_EQ(key.Open(folder.path(), "Tools\\Brush", XCRegKey::cnRead), 0);
        EXPECT_EQ(key.Open(folder.path(), "Tools\\Brush", 4), 0);
        EXPECT_FALSE(folder.has("Tools"));
        EXPECT_EQ(key.Open(folder.path(), "\\Tools::Brush\\", XCRegKey::cnWrite), 1);
        EXPECT_EQ(below.Open(key, "Round", XCRegKey::cnWrite), 1);
        key.SetValue(5, "size");
        EXPECT_FALSE(folder.has("Tools/Brush/pref.pff"));
    } // closes
    EXPECT_EQ(folder.read("Tools/Brush/pref.pff"), record("size", zeros(3) + '\5'));
    EXPECT_EQ(XCRegKey::IsExistKey(folder.path(), "Tools\\Brush"), 1);
    EXPECT_TRUE(folder.has("Tools/Brush/Round") && !folder.has("Tools/Brush/Round/pref.pff"));
    XCRegKey key;
    EXPECT_EQ(key.Open(folder.path(), "Tools:Brush:Round", XCRegKey::cnRead), 1);
    int value = 7;
    EXPECT_EQ(key.GetValue(value, "size"), 0);
    EXPECT_EQ(errorOf([&] { key.SetValue(1, "x"); }), 0x20010008) << "open for reading";
    folder.write("file", "");
    EXPECT_EQ(errorOf([&] { key.Open(folder.path(), "file\\x", XCRegKey::cnWrite); }), 0x2001000A);
    const ovw::test::CodePageScope japanese(932); // where a second byte may be the separator's
    EXPECT_EQ(key.Open(folder.path(), "\x83\x5C\\b", XCRegKey::cnWrite), 1);
    EXPECT_TRUE(folder.has("\u30BD/b"));
}

TEST(XCRegKey, KeepsTheOtherValuesUpToAnEmptyOne) {
    const TempFolder folder;
    folder.write("pref.pff", record("a", "1") + record("b", "2") + record("z", "") + record("c", "4"));
    writeKey(folder.path(), [](XCRegKey&) {});
    EXPECT_EQ(folder.read("pref.pff").size(), 23u) << "nothing set, nothing written";
    writeKey(folder.path(), [](XCRegKey& key) {
        key.SetValue("9", "b");
        EXPECT_EQ(errorOf([&] { key.SetValue("x", 0, "raw"); }), 0x20010008);
        EXPECT_EQ(errorOf([&] { key.SetValue(1, ""); }), 0x20010008);
    });
    EXPECT_EQ(folder.read("pref.pff"), record("b", "9") + record("a", "1"));
}

// Every save leaves the old file or the new one, whichever call of the system fails or is the last before a power cut.
std::string joined(XCStringArray& labels) {
    std::string text;
    for (int i = 0; i < labels.GetSize(); ++i)
        text += std::string(labels.GetAt(i)->GetStr()) + ";";
    return text;
}

// The same bytes, read as a preference file and as a key's values.
TEST(Settings, ListTheirLabels) {
    const TempFolder folder;
    folder.write("pref.pff",
                 record("b", "12") + record("a\rc", "") + record("b", "3") + record("d", zeros(4)) + "\0\1");
    XCPreferenceFile file;
    XCRegKey key;
    XCStringArray labels;
    EXPECT_EQ(file.GetLabels(labels) + key.GetLabels(labels), 0) << "while closed";
    ASSERT_TRUE(file.OpenPreferenceFile(0, folder.path("pref.pff")));
    ASSERT_TRUE(key.Open(folder.path(), nullptr, XCRegKey::cnRead));
    EXPECT_EQ(file.GetLabels(labels), 3);
    const std::string listed = joined(labels);
    EXPECT_EQ(key.GetLabels(labels), 3);
    EXPECT_EQ(joined(labels), listed + listed);
    for (const auto& [index, bytes] : {std::pair{0, 2}, {1, 0}, {2, 4}}) {
        EXPECT_EQ(file.GetValueSize(labels.GetAt(index)->GetStr()), bytes);
        EXPECT_EQ(key.GetValueSize(labels.GetAt(index)->GetStr()), bytes);
    }
    EXPECT_EQ(file.GetValueSize("c"), -1);
}

TEST(Settings, LeaveTheOldFileOrTheNewOneAtAnyFault) {
    const TempFolder folder;
    const std::string before = record("a", "1"), merged = record("b", "2") + before;
    for (const CrashingDisk::Fault fault : {CrashingDisk::Fault::oneCall, CrashingDisk::Fault::powerCut}) {
        for (int call = 1, failed = 1; failed; ++call) {
            folder.write("pref.pff", before);
            XCRegKey key;
            XCPreferenceFile file;
            key.Open(folder.path(), nullptr, XCRegKey::cnWrite);
            key.SetValue("2", "b");
            file.OpenPreferenceFile(1, folder.path("pref.pff"));
            file.SetPreferenceFile("b", "2");
            {
                CrashingDisk disk(call, fault);
                failed = errorOf([&] { call % 2 ? key.Close() : file.ClosePreferenceFile(); }) != 0;
                ASSERT_LE(call, disk.calls() + 1);
            }
            EXPECT_EQ(folder.read("pref.pff"), failed ? before : merged) << "call " << call;
            key.Close();
            file.ClosePreferenceFile();
            EXPECT_EQ(folder.read("pref.pff"), merged) << "closing again succeeds";
        }
    }
    writeFile(folder.path("new"), [](XCPreferenceFile& file) {
        file.SetPreferenceFile("b", "2");
        CrashingDisk disk(2);
        EXPECT_EQ(errorOf([&] { file.ClosePreferenceFile(); }), CrashingDisk::cnFault);
    });
    EXPECT_EQ(folder.read("new"), record("b", "2"));
}

TEST(Settings, AreReplacedByTheLastOfTwoProcessesWhole) {
    const TempFolder folder;
    constexpr int rounds = 25;
    const std::string big[] = {std::string(20000, 'a'), std::string(20000, 'b')};
    const auto work = [&](int who) {
        for (int i = 0; i < rounds; ++i)
            writeFile(folder.path("p"), [&](XCPreferenceFile& file) {
                file.SetPreferenceFile("first", big[who].c_str());
                file.SetPreferenceFile("second", big[who].c_str());
            });
    };
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        work(1);
        ::_exit(0);
    }
    work(0);
    int status = 1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    const auto whole = [&](int who) { return record("first", big[who]) + record("second", big[who]); };
    EXPECT_TRUE(folder.read("p") == whole(0) || folder.read("p") == whole(1));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"p"});
}

/// Processor time of this thread for reading so many labels one by one, in seconds; the best of a few.
double secondsToReadAll(const TempFolder& folder, int count) {
    std::vector<std::string> labels;
    for (int i = 0; i < count; ++i)
        labels.push_back("label " + std::to_string(i));
    writeFile(folder.path("p"), [&](XCPreferenceFile& file) {
        for (int i = 0; i < count; ++i)
            file.SetPreferenceFile(labels[static_cast<std::size_t>(i)].c_str(), i);
    });
    double best = 1e9;
    for (int round = 0; round < 3; ++round) {
        XCPreferenceFile file;
        file.OpenPreferenceFile(0, folder.path("p"));
        timespec before, after;
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &before);
        int missing = 0;
        for (int value = 0, i = 0; i < count; ++i)
            missing += !file.GetPreferenceFile(labels[static_cast<std::size_t>(i)].c_str(), value) || value != i;
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &after);
        EXPECT_EQ(missing, 0);
        best = std::min(best, static_cast<double>(after.tv_sec - before.tv_sec) +
                                  1e-9 * static_cast<double>(after.tv_nsec - before.tv_nsec));
    }
    return best;
}

TEST(Settings, FindLabelsInTimeThatGrowsWithTheirNumber) {
    const TempFolder folder;
    const double few = secondsToReadAll(folder, 500);
    std::remove(folder.posix("p").c_str());
    // 20 times the labels; record by record it would be 400 times the work.
    EXPECT_LT(secondsToReadAll(folder, 10000) / few, 100);
}

TEST(NumberArchive, KeepsNumbersAndLengthsInStreamsAndSettings) {
    XCArchiveMem archive(XCArchive::cnSaving | XCArchive::cnBigEndian, 0);
    archive << _VXNUMBER{12, {'A', 'B', 'C', 'D'}} << XCLength(1, 3, 0);
    archive.SetMode(XCArchive::cnLoading | XCArchive::cnBigEndian);
    EXPECT_EQ(archive.GetLength(), 28u);
    XCNumber number;
    XCLength length(9, 9, 300);
    archive >> number >> length;
    _VXNUMBER abc = {12, "ABC"};
    EXPECT_TRUE(number == XCNumber(abc)) << "the fourth byte ends the suffix";
    EXPECT_TRUE(length == XCLength(1, 3, 300)) << "a resolution of 0 leaves the old one";
    EXPECT_EQ(errorOf([&] { archive >> number; }), 0x20010008);

    const TempFolder folder;
    writeFile(folder.path("p"), [](XCPreferenceFile& file) {
        XCLength(2.5, 2, 300).WritePreference(file, "w", 0, nullptr);
        XCLength(2.5, 2, 300).WritePreference(file, "h", 72, "%.1f");
        file.SetPreferenceFile("brokenData", 4.0);
    });
    XCPreferenceFile file;
    file.OpenPreferenceFile(0, folder.path("p"));
    EXPECT_TRUE(length.ReadPreference(file, "w", 0) && length == XCLength(2.5, 2, 300));
    EXPECT_TRUE(length.ReadPreference(file, "w", 96) && length == XCLength(2.5, 2, 96));
    EXPECT_TRUE(length.ReadPreference(file, "h", 0) && length == XCLength(2.5, 2, 72));
    EXPECT_TRUE(!length.ReadPreference(file, "broken", 50) && length == XCLength(4, 2, 50));
    writeKey(folder.path(), [](XCRegKey& key) { XCLength(0.1, 2, 300).WritePreference(key, "w", 0); });
    XCRegKey key;
    key.Open(folder.path(), nullptr, XCRegKey::cnRead);
    EXPECT_TRUE(length.ReadPreference(key, "w", 0) && length == XCLength(0.1, 2, 300));
    EXPECT_FALSE(length.ReadPreference(key, "x", 0));
}

} // namespace
