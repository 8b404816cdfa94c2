#include "ovwcmn/xcexception.h"

#include "ovwcmn/xcstring.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

bool s_newFails = false;

/// Every allocation by new fails.
class NoMemoryScope {
public:
    NoMemoryScope() { s_newFails = true; }
    ~NoMemoryScope() { s_newFails = false; }
    NoMemoryScope(const NoMemoryScope&) = delete;
};

} // namespace

void* operator new(std::size_t size) {
    void* const memory = s_newFails ? nullptr : std::malloc(size);
    return memory ? memory : throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using ovw::test::CodePageScope;
using ovw::test::errorOf;
using ovw::test::HooksScope;
using ovw::test::LanguageScope;

constexpr std::uint32_t cnEnglish = 1033;
constexpr std::uint32_t cnJapanese = 1041;
constexpr std::uint32_t cnFromCode = 0xFFFFFFFF;
constexpr int cnCancelled = 0x20010004;
constexpr std::uint32_t cnSavePrompt = 0xE2400064; // question, Yes/No/Cancel, one parameter, library's string 100
constexpr std::uint32_t cnCheckBox = 1u << 21;

const auto s_owner = reinterpret_cast<HWND>(0x1234);
const auto s_mainWindow = reinterpret_cast<HWND>(0x5678);

/// What a message box was asked to show.
struct Box {
    HWND owner = nullptr;
    std::string text, title;
    std::uint32_t style = 0;
    int checkBox = 0;
};

std::vector<Box> s_boxes;
int s_answer = IDOK;
std::string s_steps;
std::string s_executableString;
std::pair<std::uint32_t, std::uint32_t> s_asked;

/// Hooks that record into the variables above.
VXHOOKS recordingHooks() {
    s_boxes.clear();
    s_steps.clear();
    VXHOOKS hooks{};
    hooks.messageBox = [](HWND owner, const char* text, const char* title, std::uint32_t style, int checkBox) {
        s_boxes.push_back({owner, text, title, style, checkBox});
        s_steps += "box ";
        return s_answer;
    };
    hooks.modalBegin = [] { s_steps += "begin "; };
    hooks.modalEnd = [] { s_steps += "end "; };
    hooks.pumpPaint = [] { s_steps += "paint "; };
    hooks.loadString = [](std::uint32_t id, std::uint32_t selector, char* buffer, int size) {
        s_asked = {id, selector};
        std::strncpy(buffer, s_executableString.c_str(), std::size_t(size) - 1);
        return int(std::strlen(buffer));
    };
    return hooks;
}

std::string messageOf(const XCAlert& alert) {
    XCString message;
    alert.GetAlertMessage(message);
    return message.GetStr();
}

std::string messageOfCode(int code) {
    XCString message;
    XCException(code, cnFromCode).GetAlertMessage(message);
    return message.GetStr();
}

/// The message of a description whose text is the executable's.
std::string formatted(const std::string& text, int parameters, const char* p1 = "", const char* p2 = "",
                      const char* p3 = "") {
    s_executableString = text;
    XCAlert alert;
    alert.SetAlertID(std::uint32_t(parameters) << 25 | 7, -1, p1, p2, p3);
    return messageOf(alert);
}

TEST(XCException, CodesHaveTheirMessagesInTwoLanguages) {
    const struct {
        std::uint32_t code;
        const char *english, *japanese;
    } cases[] = {
        {0x20010000, "Non-full color image cannot be opened!", "フルカラー画像以外は開くことができません！"},
        {0x20010001, "VEXA format tag does not exist!", "指定のタグが存在しません！"},
        {0x20010002, "Wrong Color Chart version number; it cannot be used!",
         "カラーチャートファイルのバージョン番号が異なるため利用できません！"},
        {0x20010003, "This is not a Color Chart file!", "このファイルはカラーチャートファイルではありません！"},
        {0x20010006, "No tag found in the management file!", "マネジメントファイルに指定のタグが存在しません！"},
        {0x20010008, "Incorrect parameter!", "パラメータが不正です！"},
        {0x20010009, "Failed to obtain time!", "時間の取得に失敗しました！"},
        {0x2001000A, "That file already exists!", "このファイルは既に存在しています！"},
        {0x2001000B, "Wrong file format!", "ファイルの形式が異なります！"},
        {0x2001000C, "Wrong file version number; it cannot be used!",
         "ファイルのバージョン番号が異なるため利用できません！"},
        {0x2001000D, "Vectorization error occurred!", "ラスター・ベクター変換でエラーが発生しました！"},
        {0x2001000E, "Too many colors; vectorization failed!",
         "色数が多すぎるのでベクターデータに変換できませんでした！"},
        {0x2001000F, "Error occurred during vector data processing!\nThe vector data may be corrupted.",
         "ベクターデータの操作中にエラーが発生しました！\nベクターデータが壊れた可能性があります。"},
        {0x60011388, "Plugin not found!", "プラグインが見つかりませんでした！"},
        {0x60011389, "Layer not found!", "指定のレイヤーが見つかりませんでした！"},
        {0x6001138A, "File format not supported!", "指定のファイル形式はサポートされていません"},
        {0x6001138B, "This format does not support that size!",
         "指定のサイズはこのフォーマットではサポートされていません！"},
        {0x6001138C, "DDR not connected!", "DDRが接続されていません！"},
        {0x20010004, "", ""},
        {0x200132C8, "", ""},
        {0x20010005, "", ""},
        {0xFFFFFFFF, "", ""},
    };
    for (const auto& c : cases) {
        const LanguageScope english(cnEnglish);
        EXPECT_EQ(messageOfCode(int(c.code)), c.english) << std::hex << c.code;
        const LanguageScope japanese(cnJapanese);
        EXPECT_EQ(messageOfCode(int(c.code)), c.japanese) << std::hex << c.code;
    }
    for (const int system : {2, 3, 5, 8, 32, 39, 112, 123, 183})
        EXPECT_NE(messageOfCode(system), "") << system;
}

TEST(XCException, SpeaksJapaneseWhereTheCodePageCan) {
    const LanguageScope language(cnJapanese);
    {
        const CodePageScope page(932);
        EXPECT_EQ(messageOfCode(0x20010008), "\x83\x70\x83\x89\x83\x81\x81\x5B\x83\x5E\x82\xAA\x95\x73\x90\xB3\x82\xC5"
                                             "\x82\xB7\x81\x49");
    }
    const CodePageScope page(1252);
    EXPECT_EQ(messageOfCode(0x20010008), "Incorrect parameter!");
}

TEST(XCException, RecordsItsThrowSite) {
    int line = 0;
    try {
        line = __LINE__ + 1;
        xcThrowError(0x20010008);
    } catch (const std::exception& error) {
        const auto* exception = dynamic_cast<const XCException*>(&error);
        ASSERT_NE(exception, nullptr);
        EXPECT_STREQ(exception->GetFile(), __FILE__);
        EXPECT_EQ(exception->GetLine(), line);
        EXPECT_EQ(int(*exception), 0x20010008);
        EXPECT_EQ(exception->GetAlertID(), 0x20010008u);
        EXPECT_EQ(exception->IsSystemError(), 1);
        EXPECT_STRNE(exception->what(), "");
    }
    const XCException longName(std::string(400, 'x').c_str(), 7, 5, cnFromCode);
    EXPECT_EQ(std::strlen(longName.GetFile()), 259u);
    EXPECT_STREQ(XCException(nullptr, 7, 5, cnFromCode).GetFile(), "");
    EXPECT_STREQ(XCException().GetFile(), "");
    EXPECT_EQ(XCException().GetErrorCode(), 0);
}

TEST(XCException, CancellingShowsNothing) {
    const HooksScope hooks(recordingHooks());
    XCException cancelled(cnCancelled, cnSavePrompt, "name");
    EXPECT_EQ(cancelled.GetErrorCode(), cnCancelled);
    EXPECT_EQ(cancelled.GetAlertID(), 0u);
    EXPECT_EQ(cancelled.IsSystemError(), 0);
    EXPECT_EQ(cancelled.doAlert(), -1);
    EXPECT_TRUE(s_boxes.empty());
}

TEST(XCException, CarriesAnAlertAndItsStringTable) {
    XCStringResource resource;
    const std::string table = "7 \"seven %s\"";
    ASSERT_EQ(resource.AddText(table.data(), std::uint32_t(table.size())), 1);
    const HooksScope hooks(recordingHooks());
    try {
        xcThrowError(&resource, 0x02800007u, "up");
    } catch (XCException& error) {
        EXPECT_EQ(error.GetErrorCode(), -1);
        EXPECT_EQ(error.doAlert(s_owner), IDOK);
        EXPECT_EQ(error.doAlert(s_owner), -1);
    }
    XCAlert alert;
    alert.SetAlertID(0x02800007, -1, "down");
    try {
        xcThrowError(&resource, alert);
    } catch (XCException& error) {
        const XCException copy(error);
        error.doAlert();
        XCString message;
        copy.GetAlertMessage(message);
        EXPECT_STREQ(message, "seven down");
    }
    try {
        xcThrowError(39, alert);
    } catch (const XCException& error) {
        EXPECT_EQ(error.GetErrorCode(), 39);
        EXPECT_EQ(error.GetAlertID(), 0x02800007u);
    }
    ASSERT_EQ(s_boxes.size(), 2u);
    EXPECT_EQ(s_boxes[0].text, "seven up");
    EXPECT_EQ(s_boxes[1].text, "seven down");
}

TEST(XCAlert, ShowsTheSavePrompt) {
    const LanguageScope language(cnEnglish);
    const HooksScope hooks(recordingHooks());
    s_answer = IDNO;
    XCAlert::SetTitleText("Caption");
    XCAlert alert;
    alert.SetAlertID(cnSavePrompt, -1, "a.png");
    EXPECT_EQ(alert.IsSystemError(), 0);
    EXPECT_EQ(alert.doAlert(s_owner), IDNO);
    EXPECT_EQ(alert.GetAlertID(), 0u);
    EXPECT_EQ(alert.doAlert(s_owner), -1);
    ASSERT_EQ(s_boxes.size(), 1u);
    EXPECT_EQ(s_boxes[0].text, "a.png has changed. Save the changes?");
    EXPECT_EQ(s_boxes[0].title, "Caption");
    EXPECT_EQ(s_boxes[0].style, MB_ICONQUESTION | MB_YESNOCANCEL);
    EXPECT_EQ(s_boxes[0].owner, s_owner);
    EXPECT_EQ(s_boxes[0].checkBox, 0);
    EXPECT_EQ(s_steps, "begin box end ");
    XCAlert::SetTitleText("");
    XCString title;
    XCAlert::GetTitleText(title);
    EXPECT_STREQ(title, "test_foundation");
}

TEST(XCAlert, IconAndButtonsComeFromTheDescription) {
    const std::uint32_t icons[] = {MB_ICONHAND, MB_ICONEXCLAMATION, MB_ICONASTERISK, MB_ICONQUESTION};
    const std::uint32_t buttons[] = {MB_OK, MB_OKCANCEL, MB_YESNO, MB_YESNOCANCEL, MB_YESNOCANCEL, MB_OK, MB_OK, MB_OK};
    const HooksScope hooks(recordingHooks());
    for (std::uint32_t icon = 0; icon < 4; ++icon) {
        for (std::uint32_t button = 0; button < 8; ++button) {
            XCAlert alert;
            alert.SetAlertID(icon << 30 | button << 27 | 1u << 22 | 6, -1);
            alert.doAlert(s_owner);
            EXPECT_EQ(s_boxes.back().style, icons[icon] | buttons[button]) << icon << ' ' << button;
        }
    }
    XCAlert alert;
    alert.SetAlertID(cnFromCode, int(0xE2010008)); // bits of a code are not those of a description
    alert.doAlert(s_owner);
    EXPECT_EQ(s_boxes.back().style, MB_ICONEXCLAMATION | MB_OK);
}

TEST(XCAlert, BelongsToTheMainWindowOrComesToTheFront) {
    VXHOOKS hooks = recordingHooks();
    XCAlert alert;
    {
        const HooksScope scope(hooks);
        alert.SetAlertID(cnFromCode, 8);
        alert.doAlert();
        EXPECT_EQ(s_boxes.back().owner, nullptr);
        EXPECT_EQ(s_boxes.back().style, MB_ICONEXCLAMATION | MB_OK | MB_SETFOREGROUND);
    }
    hooks.mainWindow = [] { return s_mainWindow; };
    const HooksScope scope(hooks);
    alert.SetAlertID(cnFromCode, 8);
    alert.doAlert();
    EXPECT_EQ(s_boxes.back().owner, s_mainWindow);
    EXPECT_EQ(s_boxes.back().style, MB_ICONEXCLAMATION | MB_OK);
}

TEST(XCAlert, WithoutAnApplicationTheDefaultButtonAnswers) {
    const int answers[] = {IDOK, IDOK, IDYES, IDYES};
    for (std::uint32_t button = 0; button < 4; ++button) {
        XCAlert alert;
        alert.SetAlertID(button << 27 | 1u << 22 | 6, -1);
        testing::internal::CaptureStderr();
        EXPECT_EQ(alert.doAlert(), answers[button]);
        EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    }
}

TEST(XCAlert, ParametersFillTheTextAndNothingElse) {
    const HooksScope hooks(recordingHooks());
    EXPECT_EQ(formatted("%s and %s", 2, "a", "b"), "a and b");
    EXPECT_EQ(formatted("%s and %s", 1, "a", "b"), "a and %s");
    EXPECT_EQ(formatted("%s and %%", 0, "a"), "%s and %%"); // no parameters, no format
    EXPECT_EQ(formatted("%d %n %5s %s %% %", 3, "a", "b", "c"), "%d %n %5s a % %");
    EXPECT_EQ(formatted("%s%s%s%s", 3, "%s", "%%", "c"), "%s%%c%s");
    EXPECT_EQ(formatted("[%s]", 1, nullptr), "[]");
    XCAlert alert;
    alert.SetAlertID(0x000B0009, -1);
    messageOf(alert);
    EXPECT_EQ(s_asked, (std::pair<std::uint32_t, std::uint32_t>(9, 0xB)));
    alert.SetAlertID(0x00C00005, -1); // source 3 is the executable too
    messageOf(alert);
    EXPECT_EQ(s_asked.first, 5u);
}

TEST(XCAlert, LongTextsAreCutBetweenCharacters) {
    const HooksScope hooks(recordingHooks());
    std::string kana;
    for (int i = 0; i < 85; ++i)
        kana += "\xE3\x81\x82"; // 255 bytes
    const std::string letters(300, 'x');
    EXPECT_EQ(formatted("%s", 1, letters.c_str()), std::string(255, 'x'));
    EXPECT_EQ(formatted("%s", 1, ("a" + kana).c_str()), "a" + kana.substr(0, 252));
    EXPECT_EQ(formatted("abc%s%s%s", 3, letters.c_str(), letters.c_str(), letters.c_str()),
              "abc" + std::string(764, 'x'));
    EXPECT_EQ(formatted("abc%s%s%s", 3, kana.c_str(), kana.c_str(), kana.c_str()),
              "abc" + kana + kana + kana.substr(0, 252));
}

TEST(XCAlert2, KeepsTheCheckBox) {
    const HooksScope hooks(recordingHooks());
    s_answer = IDYES | 1 << 16;
    XCAlert2 alert;
    EXPECT_EQ(alert.GetReturnCode(), 1);
    alert.SetAlertID(cnSavePrompt | cnCheckBox, -1, "name");
    EXPECT_EQ(alert.GetAlertID(), cnSavePrompt);
    EXPECT_EQ(alert.doAlert(), IDYES);
    EXPECT_EQ(alert.GetReturnCode(), IDYES | 1 << 16);
    EXPECT_EQ(alert.IsChecked(), 1);
    EXPECT_EQ(s_boxes.back().checkBox, 1);
    EXPECT_EQ(s_boxes.back().style, MB_ICONQUESTION | MB_YESNOCANCEL); // never MB_SETFOREGROUND
    EXPECT_EQ(s_steps, "begin box end ");
    s_answer = IDNO;
    EXPECT_EQ(alert.doAlert(), IDNO); // not spent
    EXPECT_EQ(alert.IsChecked(), 0);
    alert.InitializeAlertID();
    EXPECT_EQ(alert.GetReturnCode(), 1);
    EXPECT_EQ(alert.doAlert(), -1);
    EXPECT_EQ(s_boxes.size(), 2u);
}

TEST(XCAlert2, WithoutACheckBoxIsAnAlert) {
    const HooksScope hooks(recordingHooks());
    s_answer = IDCANCEL;
    XCAlert2 alert;
    alert.SetAlertID(cnSavePrompt, -1, "name");
    EXPECT_EQ(alert.doAlert(), IDCANCEL);
    EXPECT_EQ(alert.IsChecked(), 0);
    EXPECT_EQ(alert.GetReturnCode(), IDCANCEL);
    EXPECT_EQ(alert.GetAlertID(), 0u);
    EXPECT_EQ(s_boxes.back().checkBox, 0);
    // The marker for "message from the code" has the check box's bit set.
    alert.SetAlertID(cnFromCode, 8);
    EXPECT_EQ(alert.IsSystemError(), 1);
    EXPECT_EQ(alert.GetAlertID(), 8u);
    alert.doAlert();
    EXPECT_EQ(s_boxes.back().checkBox, 0);
    EXPECT_NE(s_boxes.back().text, "");
}

TEST(XCStringResource, ShowsAlertsFromItsTables) {
    const HooksScope hooks(recordingHooks());
    s_answer = IDOK;
    XCStringResource resource;
    const std::string table = "5 \"five\"";
    ASSERT_EQ(resource.AddText(table.data(), std::uint32_t(table.size())), 1);
    EXPECT_EQ(resource.doAlert(s_owner, 0x80800005, -1), IDOK);
    EXPECT_EQ(s_boxes.back().text, "five");
    EXPECT_EQ(s_boxes.back().style, MB_ICONASTERISK | MB_OK);
    EXPECT_EQ(resource.doAlert(s_owner, 0, -1), -1);
}

int s_questions = 0;

TEST(XCAbort, AsksUntilTheAnswerIsDecided) {
    const HooksScope hooks(recordingHooks());
    s_questions = 0;
    XCAbort::SetCallback([] { return ++s_questions < 4 ? 2 : 1; });
    EXPECT_EQ(XCAbort(0).CheckAbort(), 1);
    EXPECT_EQ(s_questions, 4);
    EXPECT_EQ(s_steps, "paint paint paint ");
    EXPECT_EQ(errorOf([] { XCAbort().CheckAbort(); }), cnCancelled);
    XCAbort::SetCallback([] { return 0; });
    EXPECT_EQ(XCAbort().CheckAbort(), 0);
    XCAbort::SetCallback(nullptr);
}

TEST(XCAbort, AsksTheUtilityLibraryOtherwise) {
    EXPECT_EQ(XCAbort().CheckAbort(), 0);
    vxSetAbortProc([] { return 2; }, [] { return 0; }); // any answer but 0 means stop
    EXPECT_EQ(XCAbort(0, 0).CheckAbort(), 1);
    EXPECT_EQ(XCAbort(0, 1).CheckAbort(), 0);
    vxSetAbortProc(nullptr, [] { return -1; });
    EXPECT_EQ(XCAbort(0, 0).CheckAbort(), 0);
    EXPECT_EQ(errorOf([] { XCAbort(1, 1).CheckAbort(); }), cnCancelled);
    vxSetAbortProc(nullptr, nullptr);
}

TEST(XCException, LackOfMemoryIsError8) {
    XCStringResource resource;
    const std::string line = "7 \"" + std::string(100, 'x') + '"';
    ASSERT_EQ(resource.AddText(line.data(), std::uint32_t(line.size())), 1);
    XCString text = "as it was";
    XCWideString wide;
    const auto errorWithoutMemory = [](auto operation) {
        const NoMemoryScope scope;
        return errorOf(operation);
    };
    EXPECT_EQ(errorWithoutMemory([&] { XCAlert::GetTitleText(text); }), 8);
    EXPECT_EQ(errorWithoutMemory([&] { resource.LoadStringA(text, 7); }), 8);
    EXPECT_EQ(errorWithoutMemory([&] { wide.Format(u"%100d", 1); }), 8);
    EXPECT_STREQ(text.GetStr(), "as it was");
    int isAdded = 1;
    EXPECT_EQ(errorWithoutMemory([&] { isAdded = resource.AddText(line.data(), std::uint32_t(line.size())); }), 0);
    EXPECT_EQ(isAdded, 0);
}

} // namespace
