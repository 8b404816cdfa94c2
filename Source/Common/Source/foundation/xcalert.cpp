#include "ovwcmn/xcexception.h"

#include "Platform/path.h"
#include "Platform/shell.h"
#include "Platform/systemerror.h"
#include "Utility/encoding.h"
#include "Utility/hooks.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcstring.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <utility>

using namespace ovw::foundation;
using ovw::utility::copyCut;
using ovw::utility::hooks;

namespace {

// A packed message description, taken apart.
constexpr std::uint32_t cnCheckBoxBit = 1u << 21;

constexpr std::uint32_t stringIDOf(std::uint32_t alertID) { return alertID & 0xFFFF; }
constexpr std::uint32_t selectorOf(std::uint32_t alertID) { return (alertID >> 16) & 0xF; }
constexpr std::uint32_t sourceOf(std::uint32_t alertID) { return (alertID >> 22) & 3; }
constexpr int parameterCountOf(std::uint32_t alertID) { return static_cast<int>((alertID >> 25) & 3); }
constexpr std::uint32_t buttonsOf(std::uint32_t alertID) { return (alertID >> 27) & 7; }
constexpr std::uint32_t iconOf(std::uint32_t alertID) { return alertID >> 30; }

constexpr std::uint32_t cnSourceLibrary = 1;
constexpr std::uint32_t cnSourceResource = 2;

constexpr std::uint32_t cnButtons[8] = {MB_OK,          MB_OKCANCEL, MB_YESNO, MB_YESNOCANCEL,
                                        MB_YESNOCANCEL, MB_OK,       MB_OK,    MB_OK};
constexpr std::uint32_t cnIcons[4] = {MB_ICONHAND, MB_ICONEXCLAMATION, MB_ICONASTERISK, MB_ICONQUESTION};

// Error codes with a message in the library's string table.
constexpr std::pair<std::uint32_t, std::uint32_t> cnCodeMessages[] = {
    {0x20010000, 1},  {0x20010001, 2},  {0x20010002, 3},  {0x20010003, 4},  {0x20010006, 5},  {0x20010008, 6},
    {0x20010009, 7},  {0x2001000A, 8},  {0x2001000B, 9},  {0x2001000C, 10}, {0x2001000D, 16}, {0x2001000E, 17},
    {0x2001000F, 18}, {0x60011388, 11}, {0x60011389, 12}, {0x6001138A, 13}, {0x6001138B, 14}, {0x6001138C, 15},
};

using Message = char[cnAlertMessageSize];
using Parameters = char[cnAlertParameters][cnAlertParameterSize];

void loadCodeMessage(Message& message, std::uint32_t code) {
    const auto* const found = std::ranges::find(cnCodeMessages, code, &std::pair<std::uint32_t, std::uint32_t>::first);
    if (found != std::ranges::end(cnCodeMessages))
        vxLoadString(vxGetLibraryModule(), found->second, 0, message, cnAlertMessageSize);
    else
        copyCut(message, cnAlertMessageSize, ovw::platform::systemErrorText(static_cast<int>(code)));
}

void loadResourceText(Message& message, const XCStringResource& resource, std::uint32_t id) {
    // A few bytes more than fit, so that the cut sees whether it would fall into a character.
    char text[cnAlertMessageSize + 4];
    try {
        resource.LoadStringA(text, sizeof(text) - 1, static_cast<int>(id));
    } catch (const XCException&) {
        return; // A message that memory does not suffice for stays empty.
    }
    text[sizeof(text) - 1] = '\0';
    copyCut(message, cnAlertMessageSize, text);
}

void loadDescribedText(Message& message, std::uint32_t alertID, const XCStringResource* resource) {
    const std::uint32_t id = stringIDOf(alertID);
    const std::uint32_t source = sourceOf(alertID);
    if (source == cnSourceResource)
        loadResourceText(message, resource ? *resource : *xcGetStringResource(), id);
    else
        vxLoadString(source == cnSourceLibrary ? vxGetLibraryModule() : nullptr, id, selectorOf(alertID), message,
                     cnAlertMessageSize);
}

// Text that is put together in a buffer and cut when it is full.
class Composer {
public:
    void add(const char* text, std::size_t length) {
        length = std::min(length, sizeof(m_text) - 1 - m_length);
        std::memcpy(m_text + m_length, text, length);
        m_length += length;
    }
    // At least one byte more than a message holds was kept, so that the cut is made between characters.
    void copyTo(Message& message) {
        m_text[m_length] = '\0';
        copyCut(message, cnAlertMessageSize, m_text);
    }

private:
    char m_text[cnAlertMessageSize + 4];
    std::size_t m_length = 0;
};

// Puts the parameters in the place of %s, one after the other, and % in that of %%. The text may come from a file:
// whatever else looks like a format is text.
void insertParameters(Message& message, const Parameters& parameters, int count) {
    Composer composed;
    int next = 0;
    for (const char* text = message; *text;) {
        const char following = text[0] == '%' ? text[1] : '\0';
        if (following == 's' && next < count) {
            composed.add(parameters[next], std::strlen(parameters[next]));
            ++next;
            text += 2;
        } else {
            composed.add(text, 1);
            text += following == '%' ? 2 : 1;
        }
    }
    composed.copyTo(message);
}

// The bracket around a modal box.
class ModalBracket {
public:
    ModalBracket() { hooks().modalBegin(); }
    ModalBracket(const ModalBracket&) = delete;
    ModalBracket& operator=(const ModalBracket&) = delete;
    ~ModalBracket() { hooks().modalEnd(); }
};

HWND ownerOr(HWND owner) { return owner ? owner : hooks().mainWindow(); }

} // namespace

XCString XCAlert::s_strTitle;

XCAlert::~XCAlert() = default;

void XCAlert::SetAlertID(std::uint32_t alertID, int code, const char* p1, const char* p2, const char* p3,
                         const char* p4, const char* p5) {
    if (code == cnCodeCancelled)
        return InitializeAlertID();
    m_isErrorCode = alertID == cnAlertFromCode;
    m_alertID = m_isErrorCode ? static_cast<std::uint32_t>(code) : alertID;
    const char* const given[cnAlertParameters] = {p1, p2, p3, p4, p5};
    for (int i = 0; i < cnAlertParameters; ++i)
        copyCut(m_parameters[i], cnAlertParameterSize, given[i] ? given[i] : "");
}

void XCAlert::InitializeAlertID() { SetAlertID(0, 0); }

void XCAlert::buildMessage(char (&message)[cnAlertMessageSize], XCStringResource* resource) const {
    message[0] = '\0';
    if (m_isErrorCode)
        return loadCodeMessage(message, m_alertID);
    loadDescribedText(message, m_alertID, resource);
    if (const int count = parameterCountOf(m_alertID))
        insertParameters(message, m_parameters, count);
}

void XCAlert::GetAlertMessage(XCString& out, XCStringResource* resource) const {
    char message[cnAlertMessageSize];
    buildMessage(message, resource);
    out = message;
}

std::uint32_t XCAlert::boxStyle() const {
    return m_isErrorCode ? MB_ICONEXCLAMATION | MB_OK : cnIcons[iconOf(m_alertID)] | cnButtons[buttonsOf(m_alertID)];
}

int XCAlert::doAlert(HWND owner, XCStringResource* resource) {
    if (m_alertID == 0)
        return -1;
    XCString title;
    XCString message;
    GetTitleText(title);
    GetAlertMessage(message, resource);
    std::uint32_t style = boxStyle();
    int button = 0;
    {
        const ModalBracket bracket;
        const HWND window = ownerOr(owner);
        if (!window)
            style |= MB_SETFOREGROUND;
        button = hooks().messageBox(window, message.GetStr(), title.GetStr(), style, 0);
    }
    InitializeAlertID();
    return button;
}

void XCAlert::GetTitleText(XCString& out) {
    if (!s_strTitle.IsEmpty()) {
        out = s_strTitle;
        return;
    }
    try {
        std::string name = ovw::platform::executablePath();
        name.erase(0, name.rfind('/') + 1);
        name.erase(std::min(name.rfind('.'), name.size()));
        out = ovw::platform::toLibraryName(name).c_str();
    } catch (const std::bad_alloc&) {
        xcThrowError(cnCodeNoMemory);
    }
}

void XCAlert::SetTitleText(const char* title) { s_strTitle = title; }

void XCAlert2::SetAlertID(std::uint32_t alertID, int code, const char* p1, const char* p2, const char* p3,
                          const char* p4, const char* p5) {
    const bool isDescription = alertID != cnAlertFromCode;
    m_hasCheckBox = isDescription && (alertID & cnCheckBoxBit) != 0;
    XCAlert::SetAlertID(isDescription ? alertID & ~cnCheckBoxBit : alertID, code, p1, p2, p3, p4, p5);
}

void XCAlert2::InitializeAlertID() {
    XCAlert::InitializeAlertID();
    m_hasCheckBox = 0;
    m_returnCode = 1;
}

int XCAlert2::doAlert(HWND owner, XCStringResource* resource) {
    if (!m_hasCheckBox) {
        const int result = XCAlert::doAlert(owner, resource);
        m_returnCode = result;
        return result;
    }
    if (GetAlertID() == 0)
        return -1;
    XCString title;
    XCString message;
    GetTitleText(title);
    GetAlertMessage(message, resource);
    const ModalBracket bracket;
    m_returnCode = hooks().messageBox(ownerOr(owner), message.GetStr(), title.GetStr(), boxStyle(), 1);
    return m_returnCode & 0xFFFF;
}

int XCAlert2::IsChecked() const { return m_hasCheckBox && (m_returnCode & 0x10000) != 0; }
