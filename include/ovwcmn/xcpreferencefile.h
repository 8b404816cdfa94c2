#ifndef OVWCMN_XCPREFERENCEFILE_H
#define OVWCMN_XCPREFERENCEFILE_H

/// @file
/// Settings in a file.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

#include <cstdint>
#include <memory>

class XCFilePath;
class XCLength;
class XCString;
class XCStringArray;
struct _VXNUMBER;
struct tagVXRGBCOLOR16;

/// Labelled settings in one file, open either for reading or for writing. Closing a file that was opened for writing
/// replaces it in one step by the records set since, followed by those of the old file whose labels were not set again;
/// without closing nothing is written. Labels are compared exactly; the first record of a label wins. File errors throw
/// the system's code, an empty label and a value of over 32767 bytes 0x20010008. One thread at a time; of two programs
/// that write one file the last to close wins.
class OVWCMN_API XCPreferenceFile {
public:
    XCPreferenceFile();
    XCPreferenceFile(const XCPreferenceFile&) = delete;
    XCPreferenceFile& operator=(const XCPreferenceFile&) = delete;
    virtual ~XCPreferenceFile();

    /// Closes what is open first. 1, or 0 when a file to be read does not exist.
    int OpenPreferenceFile(int forWriting, const XCFilePath& path);
    /// Writes the file, also when nothing was set. When that fails the settings stay, and closing can be tried again.
    void ClosePreferenceFile();
    int IsValid() const;                   ///< 1 while a file is open
    const XCFilePath& GetFilePath() const; ///< empty while none is

    /// @name Setting
    /// What is set while the file is not open for writing is forgotten when it is closed.
    /// @{
    /// A number in binary, or a text or path as it is.
    void SetPreferenceFile(const char* label, std::int16_t value);
    void SetPreferenceFile(const char* label, std::uint16_t value);
    void SetPreferenceFile(const char* label, std::int32_t value);
    void SetPreferenceFile(const char* label, std::uint32_t value);
    void SetPreferenceFile(const char* label, float value);
    /// As text in a printf format for one double.
    void SetPreferenceFile(const char* label, double value, const char* format = "%4.1lf");
    void SetPreferenceFile(const char* label, int size, const void* data);
    void SetPreferenceFile(const char* label, int size, const char* data) {
        SetPreferenceFile(label, size, static_cast<const void*>(data)); // not a number with its format
    }
    /// A null or empty text is stored as a space, which reads as the empty text.
    void SetPreferenceFile(const char* label, const char* text);
    void SetPreferenceFile(const char* label, const XCString& text);
    void SetPreferenceFile(const char* label, const XCFilePath& path);
    void SetPreferenceFile(const char* label, const _VXNUMBER& number);
    /// Four records: the label with _A, _R, _G, _B.
    void SetPreferenceFile(const char* label, const tagVXRGBCOLOR16& color);
    /// Three records: _D (value, two decimals), _U (unit), _R (resolution, two decimals).
    void SetPreferenceFile(const char* label, const XCLength& length);
    /// Four records: _Left, _Top, _Right, _Bottom.
    void SetPreferenceFile(const char* label, const tagRECT& rect);
    /// @}

    /// @name Getting
    /// 1, or 0 and the value left alone when a label is missing or has another size, and while the file is not open for
    /// reading. An unsigned int and a number may be larger in the file.
    /// @{
    int GetPreferenceFile(const char* label, std::int16_t& value); ///< The value as it was set.
    int GetPreferenceFile(const char* label, std::uint16_t& value);
    int GetPreferenceFile(const char* label, std::int32_t& value);
    int GetPreferenceFile(const char* label, std::uint32_t& value);
    int GetPreferenceFile(const char* label, float& value);
    int GetPreferenceFile(const char* label, double& value);
    /// At most `size` bytes: a text of that length or more is cut and has no terminator.
    int GetPreferenceFile(const char* label, char* buffer, int size);
    int GetPreferenceFile(const char* label, int size, void* data);
    int GetPreferenceFile(const char* label, XCString& text);
    int GetPreferenceFile(const char* label, XCFilePath& path);
    int GetPreferenceFile(const char* label, _VXNUMBER& number);
    int GetPreferenceFile(const char* label, tagVXRGBCOLOR16& color);
    int GetPreferenceFile(const char* label, XCLength& length);
    int GetPreferenceFile(const char* label, tagRECT& rect);
    /// Appends every label once, in the order of the file. How many; 0 while the file is not open for reading.
    int GetLabels(XCStringArray& labels);
    /// Bytes of a label's value, as getting it as data needs; -1 when it is missing.
    int GetValueSize(const char* label);
    /// @}

private:
    struct State;

    std::unique_ptr<State> m_state;
};

#endif // OVWCMN_XCPREFERENCEFILE_H
