#ifndef OVWCMN_XCEXCEPTION_H
#define OVWCMN_XCEXCEPTION_H

/// @file
/// Errors, alerts and aborts. Everything that fails to do its work throws XCException by value, built by xcThrowError.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

#include <cstdint>
#include <exception>
#include <memory>

class XCFilePath;
class XCString;
class XCStringResource;
class XCWideString;

namespace ovw::foundation {

/// Where a call stands. As a default argument, current() is the caller's place; std::source_location would say the
/// same, but clang 14 does not find it in the libraries of g++.
struct SourcePlace {
    const char* file; ///< of the source
    int line;         ///< of the file, from 1

    /// The place of the call that leaves the arguments away.
    static constexpr SourcePlace current(const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
        return {file, line};
    }
};

class StringTables;

inline constexpr int cnCodeCancelled = 0x20010004;           ///< the user cancelled; shows no message
inline constexpr int cnCodeParameter = 0x20010008;           ///< bad argument, index out of range, read past the end
inline constexpr int cnCodeTime = 0x20010009;                ///< a time that cannot be read or converted
inline constexpr int cnCodeFileExists = 0x2001000A;          ///< the target of a copy, a move or a new folder exists
inline constexpr int cnCodeFileFormat = 0x2001000B;          ///< malformed file
inline constexpr int cnCodeFileVersion = 0x2001000C;         ///< unsupported version
inline constexpr int cnCodeNoMemory = 8;                     ///< the system's code for lack of memory
inline constexpr int cnCodeNone = -1;                        ///< an exception that carries an alert only
inline constexpr std::uint32_t cnAlertFromCode = 0xFFFFFFFF; ///< alert id: the message comes from the error code

inline constexpr int cnAlertParameters = 5;      ///< p1 to p5
inline constexpr int cnAlertParameterSize = 256; ///< bytes of a parameter with its terminator
inline constexpr int cnAlertMessageSize = 768;   ///< bytes of a message with its terminator

} // namespace ovw::foundation

/// A message box to come: either an error code or a packed message description (string id, source, buttons, icon).
/// Showing it spends it. Copies are independent. Nothing throws but lack of memory (8).
/// Bits of a description: 0-15 string id, 16-19 table selector, 21 check box (XCAlert2), 22-23 source (0, 3 executable;
/// 1 library; 2 XCStringResource), 25-26 number of parameters, 27-29 buttons (0 OK; 1 OK, Cancel; 2 Yes, No; 3, 4 Yes,
/// No, Cancel), 30-31 icon (stop, exclamation, information, question). Id 0: no alert.
class OVWCMN_API XCAlert {
public:
    XCAlert() = default;
    XCAlert(const XCAlert&) = default;
    XCAlert& operator=(const XCAlert&) = default;
    virtual ~XCAlert();

    /// Takes the description, or the error code when `alertID` is 0xFFFFFFFF; code 0x20010004 clears the alert. Of the
    /// parameters the first three can reach a message; each is cut to 255 bytes, and null is empty.
    virtual void SetAlertID(std::uint32_t alertID, int code, const char* p1 = "", const char* p2 = "",
                            const char* p3 = "", const char* p4 = "", const char* p5 = "");
    virtual void InitializeAlertID(); ///< Becomes an alert that shows nothing.
    /// Shows the box and clears the alert; the button (IDOK, IDCANCEL, IDYES, IDNO), or -1 when there is no alert.
    virtual int doAlert(HWND owner = nullptr, XCStringResource* resource = nullptr);

    /// @{ The description or the error code; 0 without an alert.
    std::uint32_t GetAlertID() const { return m_alertID; }
    operator std::uint32_t() const { return m_alertID; }
    /// @}
    /// 1 when the alert id is an error code.
    int IsSystemError() const { return m_isErrorCode; }
    /// The message in the current code page; empty when there is no text. `resource` null is the global one.
    void GetAlertMessage(XCString& out, XCStringResource* resource = nullptr) const;

    /// Caption of the boxes: the text set, else the executable's name without folder and extension.
    static void GetTitleText(XCString& out);
    static void SetTitleText(const char* title); ///< Null or "": back to the name.

protected:
    /// Icon and buttons as MB_ constants.
    std::uint32_t boxStyle() const;

    static XCString s_strTitle; ///< the text of SetTitleText

private:
    friend class XCException;

    void buildMessage(char (&message)[ovw::foundation::cnAlertMessageSize], XCStringResource* resource) const;

    std::uint32_t m_alertID = 0;
    char m_parameters[ovw::foundation::cnAlertParameters][ovw::foundation::cnAlertParameterSize] = {};
    int m_isErrorCode = 0;
};

/// An alert that may carry a "Don't show again" check box (bit 21 of the description) and remembers the answer.
class OVWCMN_API XCAlert2 : public XCAlert {
public:
    void SetAlertID(std::uint32_t alertID, int code, const char* p1 = "", const char* p2 = "", const char* p3 = "",
                    const char* p4 = "", const char* p5 = "") override;
    void InitializeAlertID() override;
    /// As XCAlert without a check box; with one the alert is kept, so that IsChecked() can be asked.
    int doAlert(HWND owner = nullptr, XCStringResource* resource = nullptr) override;

    /// 1 when there was a check box and it was ticked.
    int IsChecked() const;
    /// With a check box: the button in the low 16 bits, the check box in bit 16. 1 before a box was shown.
    int GetReturnCode() const { return m_returnCode; }

private:
    int m_hasCheckBox = 0;
    int m_returnCode = 1;
};

/// The one thrown type. Holds an error code, the alert that explains it and where it was built; owns nothing else (the
/// string resource must outlive it). what() is the message as it stood when the exception was built.
class OVWCMN_API XCException : public std::exception {
public:
    XCException();
    /// @{ An error code and its message, and the place of the throw.
    XCException(const char* file, int line, int code, std::uint32_t alertID, const char* p1 = "", const char* p2 = "",
                const char* p3 = "", const char* p4 = "", const char* p5 = "");
    explicit XCException(int code, std::uint32_t alertID = ovw::foundation::cnAlertFromCode, const char* p1 = "",
                         const char* p2 = "", const char* p3 = "", const char* p4 = "", const char* p5 = "",
                         ovw::foundation::SourcePlace where = ovw::foundation::SourcePlace::current());
    XCException(const char* file, int line, int code, const XCAlert& alert);
    XCException(int code, const XCAlert& alert,
                ovw::foundation::SourcePlace where = ovw::foundation::SourcePlace::current());
    /// @}
    /// Code -1: the exception carries only the alert, whose text comes from `resource`.
    XCException(XCStringResource* resource, const XCAlert& alert,
                ovw::foundation::SourcePlace where = ovw::foundation::SourcePlace::current());
    XCException(const XCException&) = default;
    XCException& operator=(const XCException&) = default;
    ~XCException() override;

    /// Source file of the throw site, cut to 259 bytes.
    const char* GetFile() const { return m_file; }
    int GetLine() const { return m_line; } ///< line of the throw site, from 1
    /// @{ The code; -1 for an alert alone.
    int GetErrorCode() const { return m_code; }
    operator int() const { return m_code; }
    /// @}
    /// @{ As XCAlert has them.
    std::uint32_t GetAlertID() const { return m_alert.GetAlertID(); }
    int IsSystemError() const { return m_alert.IsSystemError(); }
    void GetAlertMessage(XCString& out) const { m_alert.GetAlertMessage(out, m_resource); }
    /// @}
    /// Shows the message and spends it; the button, or -1 when there is nothing to show.
    int doAlert(HWND owner = nullptr) { return m_alert.doAlert(owner, m_resource); }
    /// Never empty: without a message the code in hexadecimal.
    const char* what() const noexcept override { return m_what; }

private:
    static constexpr int cnFileSize = 260;

    void setPlace(const char* file, int line);
    void describe() noexcept;

    char m_file[cnFileSize] = {};
    int m_line = 0;
    int m_code = 0;
    XCAlert m_alert;
    XCStringResource* m_resource = nullptr;
    char m_what[ovw::foundation::cnAlertMessageSize] = {};
};

/// @name Throwing
/// Each throws an XCException with the caller's file and line.
/// @{
/// The code, and the message for it: from the code itself, or as XCAlert takes it.
[[noreturn]] OVWCMN_API void xcThrowError(int code, std::uint32_t alertID = ovw::foundation::cnAlertFromCode,
                                          const char* p1 = "", const char* p2 = "", const char* p3 = "",
                                          const char* p4 = "", const char* p5 = "",
                                          ovw::foundation::SourcePlace where = ovw::foundation::SourcePlace::current());
[[noreturn]] OVWCMN_API void xcThrowError(int code, const XCAlert& alert,
                                          ovw::foundation::SourcePlace where = ovw::foundation::SourcePlace::current());
/// Code -1: the exception carries only the alert, whose text comes from `resource`.
[[noreturn]] OVWCMN_API void xcThrowError(XCStringResource* resource, const XCAlert& alert,
                                          ovw::foundation::SourcePlace where = ovw::foundation::SourcePlace::current());
[[noreturn]] OVWCMN_API void xcThrowError(XCStringResource* resource, std::uint32_t alertID, const char* p1 = "",
                                          const char* p2 = "", const char* p3 = "", const char* p4 = "",
                                          const char* p5 = "",
                                          ovw::foundation::SourcePlace where = ovw::foundation::SourcePlace::current());
/// @}

/// Asks whether the user wants to stop: the callback if one is set, else the utility library's abort requests.
/// One object belongs to one thread; the callback is process-wide and set at start-up.
class OVWCMN_API XCAbort {
public:
    /// Answers 0 (go on), 1 (abort) or 2 (undecided: ask again after pending paint requests).
    using Callback = int (*)();

    /// ThrowOnAbort: throw instead of answering 1. useEx: ask vxAbortEx instead of vxAbort.
    explicit XCAbort(int throwOnAbort = 1, int useEx = 0) : m_throwOnAbort(throwOnAbort), m_useEx(useEx) {}

    static void SetCallback(Callback callback) { s_pAbort = callback; } ///< null takes it back
    /// 1 for abort, 0 for go on; throws 0x20010004 instead of answering 1 when throw-on-abort is set.
    int CheckAbort() const;

private:
    static Callback s_pAbort;

    int ask() const;

    int m_throwOnAbort;
    int m_useEx;
};

/// String tables read from text, searched in the order in which they were added; owns them. Lines read: id, spaces,
/// "text" with the escapes `\\ \n \r \t`; // begins a comment line. Lookups may run in several threads; add tables at
/// start-up. Adding and looking up answer 0 on failure; only lack of memory throws (8), and only in lookups.
class OVWCMN_API XCStringResource {
public:
    XCStringResource();
    XCStringResource(const XCStringResource&) = delete;
    XCStringResource& operator=(const XCStringResource&) = delete;
    virtual ~XCStringResource();

    int AddTextFile(XCFilePath& path); ///< A table from a file.
    /// The bytes come from the application's hook (ovwhooks.h).
    int AddResource(HINSTANCE module, HRSRC resource);
    /// As AddTextFile, from memory: `text` need not be terminated and is not kept.
    int AddText(const char* text, std::uint32_t size);

    /// Text `id` (1 to 65535); 0 and `out` left alone for other ids, 0 and `out` empty when no table has it.
    int LoadStringA(XCString& out, int id) const;
    /// Zeroes `size` bytes, then copies at most `size` bytes: a text of that very length has no terminator. A buffer of
    /// no size gives 0.
    int LoadStringA(char* buffer, int size, int id) const;
    int LoadStringA(XCWideString& out, int id) const; ///< As the first form, in UTF-16.
    /// As the char form, in UTF-16 code units.
    int LoadStringA(char16_t* buffer, int size, int id) const;

    /// Shows an alert whose text comes from these tables; see XCAlert.
    int doAlert(HWND owner, std::uint32_t alertID, int code, const char* p1 = "", const char* p2 = "",
                const char* p3 = "", const char* p4 = "", const char* p5 = "");

private:
    std::unique_ptr<ovw::foundation::StringTables> m_tables;
};

/// The process-wide instance; lives as long as the library.
OVWCMN_API XCStringResource* xcGetStringResource();

#endif // OVWCMN_XCEXCEPTION_H
