#ifndef OVWCMN_WINTYPES_H
#define OVWCMN_WINTYPES_H

/// @file
/// The structs and constants of the Windows interface that the library's own interface uses, and their floating-point
/// kin.

#include "ovwcmn/ovwdefs.h"

#include <cstdint>

/// A position in whole units.
struct OVWCMN_MAY_ALIAS tagPOINT {
    std::int32_t x; ///< to the right
    std::int32_t y; ///< downward
};
using POINT = tagPOINT; ///< the short name

/// An extent in whole units.
struct tagSIZE {
    std::int32_t cx; ///< width
    std::int32_t cy; ///< height
};
using SIZE = tagSIZE; ///< the short name

/// right and bottom are exclusive.
struct tagRECT {
    std::int32_t left;   ///< the first column
    std::int32_t top;    ///< the first row
    std::int32_t right;  ///< behind the last column
    std::int32_t bottom; ///< behind the last row
};
using RECT = tagRECT; ///< the short name

/// A position in floats.
struct OVWCMN_MAY_ALIAS tagPOINTF {
    float x; ///< to the right
    float y; ///< downward
};
using POINTF = tagPOINTF; ///< the short name

/// An extent in floats.
struct tagSIZEF {
    float cx; ///< width
    float cy; ///< height
};
using SIZEF = tagSIZEF; ///< the short name

/// A rectangle in floats; right and bottom are exclusive.
struct tagRECTF {
    /// @{ The edges.
    float left;
    float top;
    float right;
    float bottom;
    /// @}
};
using RECTF = tagRECTF; ///< the short name

/// A position in doubles.
struct OVWCMN_MAY_ALIAS tagPOINTD {
    double x; ///< to the right
    double y; ///< downward
};
using POINTD = tagPOINTD; ///< the short name

/// An extent in doubles.
struct tagSIZED {
    double cx; ///< width
    double cy; ///< height
};
using SIZED = tagSIZED; ///< the short name

/// A rectangle in doubles; right and bottom are exclusive.
struct tagRECTD {
    /// @{ The edges.
    double left;
    double top;
    double right;
    double bottom;
    /// @}
};
using RECTD = tagRECTD; ///< the short name

/// A calendar time, as the system's clock calls give it. wDayOfWeek counts from Sunday = 0.
struct SYSTEMTIME {
    std::uint16_t wYear;         ///< all four digits
    std::uint16_t wMonth;        ///< 1 to 12
    std::uint16_t wDayOfWeek;    ///< 0 to 6
    std::uint16_t wDay;          ///< 1 to 31
    std::uint16_t wHour;         ///< 0 to 23
    std::uint16_t wMinute;       ///< 0 to 59
    std::uint16_t wSecond;       ///< 0 to 59
    std::uint16_t wMilliseconds; ///< 0 to 999
};

/// 100-nanosecond steps since 1601-01-01 UTC, in two halves.
struct FILETIME {
    std::uint32_t dwLowDateTime;  ///< bits 0 to 31
    std::uint32_t dwHighDateTime; ///< bits 32 to 63
};

/// An entry of a folder, as a search finds it.
struct WIN32_FIND_DATAA {
    std::uint32_t dwFileAttributes; ///< FILE_ATTRIBUTE_ bits
    /// @{ UTC; zero where the system does not know.
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    /// @}
    std::uint32_t nFileSizeHigh; ///< bits 32 to 63 of the size in bytes
    std::uint32_t nFileSizeLow;  ///< bits 0 to 31
    std::uint32_t dwReserved0;   ///< unused
    std::uint32_t dwReserved1;   ///< unused
    char cFileName[260];         ///< terminated, in the current code page
    char cAlternateFileName[14]; ///< the short name of old systems; unused
};

/// A 128-bit identifier.
struct _GUID {
    /// @{ Its parts as they are written, Data4 being the last two groups.
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
    /// @}
};
using GUID = _GUID;  ///< the short name
using VXUID = _GUID; ///< the name by which the library's own identifiers go

// Windows, modules and resources are the application's business: the library only passes them on.
struct HWND__;
using HWND = HWND__*; ///< a window; the library only passes it on
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*; ///< a module; the library only passes it on
struct HRSRC__;
using HRSRC = HRSRC__*; ///< a resource of a module; the library only passes it on

/// @{ Access, sharing, disposition, attributes and seek origins of files, with the values of the Windows interface.
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
/// @}

/// @{ Styles of message boxes and the buttons that end them.
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
/// @}

/// @{ Results of waiting for a thread.
inline constexpr std::uint32_t WAIT_OBJECT_0 = 0;
inline constexpr std::uint32_t WAIT_TIMEOUT = 258;
/// @}

/// @{ Where text stands in its rectangle.
inline constexpr int DT_LEFT = 0;
inline constexpr int DT_TOP = 0;
inline constexpr int DT_CENTER = 1;
inline constexpr int DT_RIGHT = 2;
inline constexpr int DT_VCENTER = 4;
inline constexpr int DT_BOTTOM = 8;
/// @}

#endif // OVWCMN_WINTYPES_H
