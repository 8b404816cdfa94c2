#ifndef OVWCMN_WINTYPES_H
#define OVWCMN_WINTYPES_H

/// @file
/// The structs and constants of the Windows interface that the library's own interface uses, and their floating-point
/// kin.

#include "ovwcmn/ovwdefs.h"

#include <cstdint>

struct OVWCMN_MAY_ALIAS tagPOINT {
    std::int32_t x;
    std::int32_t y;
};
using POINT = tagPOINT;

struct tagSIZE {
    std::int32_t cx;
    std::int32_t cy;
};
using SIZE = tagSIZE;

/// right and bottom are exclusive.
struct tagRECT {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;
};
using RECT = tagRECT;

struct OVWCMN_MAY_ALIAS tagPOINTF {
    float x;
    float y;
};
using POINTF = tagPOINTF;

struct tagSIZEF {
    float cx;
    float cy;
};
using SIZEF = tagSIZEF;

struct tagRECTF {
    float left;
    float top;
    float right;
    float bottom;
};
using RECTF = tagRECTF;

struct OVWCMN_MAY_ALIAS tagPOINTD {
    double x;
    double y;
};
using POINTD = tagPOINTD;

struct tagSIZED {
    double cx;
    double cy;
};
using SIZED = tagSIZED;

struct tagRECTD {
    double left;
    double top;
    double right;
    double bottom;
};
using RECTD = tagRECTD;

/// A calendar time, as the system's clock calls give it. wDayOfWeek counts from Sunday = 0.
struct SYSTEMTIME {
    std::uint16_t wYear;
    std::uint16_t wMonth;
    std::uint16_t wDayOfWeek;
    std::uint16_t wDay;
    std::uint16_t wHour;
    std::uint16_t wMinute;
    std::uint16_t wSecond;
    std::uint16_t wMilliseconds;
};

/// 100-nanosecond steps since 1601-01-01 UTC, in two halves.
struct FILETIME {
    std::uint32_t dwLowDateTime;
    std::uint32_t dwHighDateTime;
};

/// An entry of a folder, as a search finds it.
struct WIN32_FIND_DATAA {
    std::uint32_t dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    std::uint32_t nFileSizeHigh;
    std::uint32_t nFileSizeLow;
    std::uint32_t dwReserved0;
    std::uint32_t dwReserved1;
    char cFileName[260];
    char cAlternateFileName[14];
};

struct _GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
using GUID = _GUID;
using VXUID = _GUID;

// Windows, modules and resources are the application's business: the library only passes them on.
struct HWND__;
using HWND = HWND__*;
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;
struct HRSRC__;
using HRSRC = HRSRC__*;

// Access, sharing and disposition of files.
inline constexpr std::uint32_t GENERIC_READ = 0x80000000;
inline constexpr std::uint32_t GENERIC_WRITE = 0x40000000;
inline constexpr std::uint32_t FILE_SHARE_READ = 1;
inline constexpr std::uint32_t FILE_SHARE_WRITE = 2;
inline constexpr std::uint32_t CREATE_NEW = 1;
inline constexpr std::uint32_t CREATE_ALWAYS = 2;
inline constexpr std::uint32_t OPEN_EXISTING = 3;
inline constexpr std::uint32_t OPEN_ALWAYS = 4;
inline constexpr std::uint32_t TRUNCATE_EXISTING = 5;
inline constexpr std::uint32_t FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr std::uint32_t FILE_ATTRIBUTE_HIDDEN = 0x2;
inline constexpr std::uint32_t FILE_ATTRIBUTE_SYSTEM = 0x4;
inline constexpr std::uint32_t FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr std::uint32_t FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr std::uint32_t FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr std::uint32_t FILE_ATTRIBUTE_TEMPORARY = 0x100;
inline constexpr std::uint32_t FILE_FLAG_DELETE_ON_CLOSE = 0x04000000;
inline constexpr std::uint32_t FILE_FLAG_NO_BUFFERING = 0x20000000;
inline constexpr std::uint32_t INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr std::uint32_t FILE_BEGIN = 0;
inline constexpr std::uint32_t FILE_CURRENT = 1;
inline constexpr std::uint32_t FILE_END = 2;

// Styles of message boxes and the buttons that end them.
inline constexpr std::uint32_t MB_OK = 0x0;
inline constexpr std::uint32_t MB_OKCANCEL = 0x1;
inline constexpr std::uint32_t MB_YESNOCANCEL = 0x3;
inline constexpr std::uint32_t MB_YESNO = 0x4;
inline constexpr std::uint32_t MB_ICONHAND = 0x10;
inline constexpr std::uint32_t MB_ICONQUESTION = 0x20;
inline constexpr std::uint32_t MB_ICONEXCLAMATION = 0x30;
inline constexpr std::uint32_t MB_ICONASTERISK = 0x40;
inline constexpr std::uint32_t MB_SETFOREGROUND = 0x10000;
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

// Results of waiting for a thread.
inline constexpr std::uint32_t WAIT_OBJECT_0 = 0;
inline constexpr std::uint32_t WAIT_TIMEOUT = 258;

// Where text stands in its rectangle.
inline constexpr int DT_LEFT = 0;
inline constexpr int DT_TOP = 0;
inline constexpr int DT_CENTER = 1;
inline constexpr int DT_RIGHT = 2;
inline constexpr int DT_VCENTER = 4;
inline constexpr int DT_BOTTOM = 8;

#endif // OVWCMN_WINTYPES_H
