#ifndef OVWCMN_OVWHOOKS_H
#define OVWCMN_OVWHOOKS_H

/// @file
/// What the library asks of the application: windows, message boxes, strings, folders. Every hook has a default that
/// makes sense on a machine without a display. The code page and the language are set in vxwutl.h, the abort requests
/// there too.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

#include <cstdint>

class XCGdi; // the window system's drawing interface; the library only passes it on

/// The application's procedures; a null member keeps the default. They are process-wide and set at start-up, before
/// other threads use the library; they must not throw. Texts are in the current code page (vxGetCodePage).
struct VXHOOKS {
    /// Shows a box (MB_ style) and returns its button in the low 16 bits; with `checkBox` also a check box labelled
    /// with string 200 of vxGetLibraryModule(), whose state is bit 16. Default: writes title and text to standard error
    /// and answers the first button.
    int (*messageBox)(HWND owner, const char* text, const char* title, std::uint32_t style, int checkBox);
    /// The main window; default null.
    HWND (*mainWindow)();
    /// @{ Called before and after a modal box; default nothing.
    void (*modalBegin)();
    void (*modalEnd)();
    /// @}
    /// Dispatches the calling thread's pending paint requests; default nothing.
    void (*pumpPaint)();
    /// Text `id` of the executable's string table, at most `size` bytes with its terminator; returns the length.
    /// Default: no text.
    int (*loadString)(std::uint32_t id, std::uint32_t selector, char* buffer, int size);
    /// The bytes of a resource, which must stay; null for none (the default). Writes their number to `size`.
    const void* (*loadResource)(HINSTANCE module, HRSRC resource, std::uint32_t* size);
    /// Path of a folder by its CSIDL number (5: the user's documents), in the library's form (`C:\home\me`); 1, or 0
    /// when there is none or it does not fit. Default: knows the documents folder.
    int (*folderPath)(HWND owner, int folder, char* path, int size);
    /// @{ Called by a worker thread before and after its body; default nothing.
    void (*threadBegin)();
    void (*threadEnd)();
    /// @}
    /// Fills a closed polygon of a tip's preview with a colour, 0xAABBGGRR; points and mode are what the tip's DrawGDI
    /// was given, or made of it. 1 when something was drawn. Default: draws nothing and answers 0.
    int (*fillPolygon)(XCGdi& gdi, int mode, const tagPOINT* points, int count, std::uint32_t color);
    /// Takes a message for whoever debugs the application; default nothing.
    void (*debugMessage)(const char* text);
};

/// Null brings all defaults back.
OVWCMN_API void xcSetHooks(const VXHOOKS* hooks);
/// The hooks in effect; no member is null.
OVWCMN_API VXHOOKS xcGetHooks();

inline constexpr int CSIDL_PERSONAL = 5; ///< the number of the user's documents folder

/// @name The hooks by the names that the library calls them by
/// @{
/// The hook messageBox.
OVWCMN_API int xcwMessageBox(HWND owner, const char* text, const char* title, std::uint32_t style, int checkBox);
/// The hook mainWindow.
OVWCMN_API HWND xcwGetMainWnd();
/// The hook modalBegin.
OVWCMN_API void xcwModalDlgInitialize();
/// The hook modalEnd.
OVWCMN_API void xcwModalDlgDestroy();
/// The hook folderPath.
OVWCMN_API int xcwSHGetFolderPath(HWND owner, int folder, char* path, int size);
/// The hook debugMessage.
OVWCMN_API void xcwDebugMessage(const char* text);
/// @}

#endif // OVWCMN_OVWHOOKS_H
