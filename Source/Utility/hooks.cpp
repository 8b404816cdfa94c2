#include "Utility/hooks.h"

#include "Platform/dialog.h"
#include "Platform/path.h"
#include "Platform/shell.h"
#include "Utility/encoding.h"

#include <cstring>
#include <string>

namespace ovw::utility {

namespace {

constexpr std::uint32_t cnButtonMask = 0xF;

int printMessage(HWND, const char* text, const char* title, std::uint32_t style, int) {
    platform::showMessage(codePageToUtf8(title).c_str(), codePageToUtf8(text).c_str());
    const std::uint32_t buttons = style & cnButtonMask;
    return buttons == MB_YESNO || buttons == MB_YESNOCANCEL ? IDYES : IDOK;
}

int knownFolder(HWND, int folder, char* path, int size) {
    if (folder != CSIDL_PERSONAL)
        return 0;
    const std::string documents = platform::documentsFolder();
    const std::string text = documents.empty() ? documents : platform::toLibraryPath(documents);
    if (text.empty() || size < 1 || text.size() >= static_cast<std::size_t>(size))
        return 0;
    std::memcpy(path, text.c_str(), text.size() + 1);
    return 1;
}

void doNothing() {}

constexpr VXHOOKS cnDefaults{
    .messageBox = printMessage,
    .mainWindow = []() -> HWND { return nullptr; },
    .modalBegin = doNothing,
    .modalEnd = doNothing,
    .pumpPaint = doNothing,
    .loadString = [](std::uint32_t, std::uint32_t, char*, int) { return 0; },
    .loadResource = [](HINSTANCE, HRSRC, std::uint32_t*) -> const void* { return nullptr; },
    .folderPath = knownFolder,
    .threadBegin = doNothing,
    .threadEnd = doNothing,
    .fillPolygon = [](XCGdi&, int, const tagPOINT*, int, std::uint32_t) { return 0; },
    .debugMessage = [](const char*) {},
};

constinit VXHOOKS s_hooks = cnDefaults;

template <class Procedure>
void keepDefault(Procedure& given, Procedure standard) {
    if (!given)
        given = standard;
}

VXHOOKS completed(VXHOOKS hooks) {
    keepDefault(hooks.messageBox, cnDefaults.messageBox);
    keepDefault(hooks.mainWindow, cnDefaults.mainWindow);
    keepDefault(hooks.modalBegin, cnDefaults.modalBegin);
    keepDefault(hooks.modalEnd, cnDefaults.modalEnd);
    keepDefault(hooks.pumpPaint, cnDefaults.pumpPaint);
    keepDefault(hooks.loadString, cnDefaults.loadString);
    keepDefault(hooks.loadResource, cnDefaults.loadResource);
    keepDefault(hooks.folderPath, cnDefaults.folderPath);
    keepDefault(hooks.threadBegin, cnDefaults.threadBegin);
    keepDefault(hooks.threadEnd, cnDefaults.threadEnd);
    keepDefault(hooks.fillPolygon, cnDefaults.fillPolygon);
    keepDefault(hooks.debugMessage, cnDefaults.debugMessage);
    return hooks;
}

} // namespace

const VXHOOKS& hooks() { return s_hooks; }

} // namespace ovw::utility

using ovw::utility::hooks;

void xcSetHooks(const VXHOOKS* given) { ovw::utility::s_hooks = ovw::utility::completed(given ? *given : VXHOOKS{}); }

VXHOOKS xcGetHooks() { return hooks(); }

int xcwMessageBox(HWND owner, const char* text, const char* title, std::uint32_t style, int checkBox) {
    return hooks().messageBox(owner, text, title, style, checkBox);
}

HWND xcwGetMainWnd() { return hooks().mainWindow(); }

void xcwModalDlgInitialize() { hooks().modalBegin(); }

void xcwModalDlgDestroy() { hooks().modalEnd(); }

int xcwSHGetFolderPath(HWND owner, int folder, char* path, int size) {
    return hooks().folderPath(owner, folder, path, size);
}

void xcwDebugMessage(const char* text) { hooks().debugMessage(text); }
