#ifndef OVWCMN_XCREGKEY_H
#define OVWCMN_XCREGKEY_H

/// @file
/// The settings key store.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

#include <cstdint>
#include <memory>

class XCFilePath;
class XCLength;
class XCString;
class XCStringArray;

/// A key of settings: a folder whose file "pref.pff" holds labelled values and whose sub-folders are sub-keys. Open
/// either for reading or for writing; closing replaces the file in one step by the values set since, followed by the
/// old ones whose labels were not set again. Labels are compared exactly; the first value of a label wins. File errors
/// throw the system's code. One thread at a time; of two programs that write one key the last to close wins.
class OVWCMN_API XCRegKey {
public:
    static constexpr std::uint16_t cnRead = 1;  ///< open for reading
    static constexpr std::uint16_t cnWrite = 2; ///< open for writing

    XCRegKey();
    XCRegKey(const XCRegKey&) = delete;
    XCRegKey& operator=(const XCRegKey&) = delete;
    /// Closes; a failure is lost here, so close first.
    virtual ~XCRegKey();

    /// Closes what is open first. `subKey` (may be null) names folders below `folder`, between "\" or ":"; writing
    /// creates the missing ones. Without it `folder` is the key's folder, or the value file itself. 1, or 0 when a
    /// folder is missing for reading (a missing value file is none) and for flags that name neither way.
    int Open(const XCFilePath& folder, const char* subKey, std::uint16_t flags);
    int Open(const XCRegKey& parent, const char* subKey, std::uint16_t flags); ///< A key below an open one.
    /// Whether the folder exists.
    static int IsExistKey(const XCFilePath& folder, const char* subKey);
    /// Writes nothing when nothing was set. When writing fails the values stay, and closing can be tried again.
    void Close();

    const XCFilePath& GetFilePath() const; ///< of the value file; empty while closed
    /// Bytes: of the file while reading, of what was set so far while writing; 0 while closed.
    std::uint32_t GetFileSize() const;

    /// @name Setting
    /// Throws 0x20010008 unless open for writing, for an empty label and for values of no or over 32767 bytes.
    /// @{
    /// The value in binary: a number, or the fields of a struct; a path as its text.
    void SetValue(const std::uint8_t& value, const char* label);
    void SetValue(const std::int16_t& value, const char* label);
    void SetValue(const std::uint16_t& value, const char* label);
    void SetValue(const std::int32_t& value, const char* label);
    void SetValue(const std::uint32_t& value, const char* label);
    void SetValue(const std::int64_t& value, const char* label);
    void SetValue(const std::uint64_t& value, const char* label);
    void SetValue(const float& value, const char* label);
    /// In binary or, with asText, as text with one decimal.
    void SetValue(const double& value, const char* label, int asText = 0);
    /// A null or empty text is stored as a space, which reads as the empty text.
    void SetValue(const char* text, const char* label);
    void SetValue(const XCString& text, const char* label);
    void SetValue(const XCFilePath& path, const char* label);
    void SetValue(const tagPOINT& value, const char* label);
    void SetValue(const tagSIZE& value, const char* label);
    void SetValue(const tagRECT& value, const char* label);
    void SetValue(const tagPOINTF& value, const char* label);
    void SetValue(const tagSIZEF& value, const char* label);
    void SetValue(const tagRECTF& value, const char* label);
    void SetValue(const tagPOINTD& value, const char* label);
    void SetValue(const tagSIZED& value, const char* label);
    void SetValue(const tagRECTD& value, const char* label);
    void SetValue(const XCLength& value, const char* label);
    void SetValue(const void* data, int size, const char* label);
    /// @}

    /// @name Getting
    /// 1, or 0 and the value left alone when the label is missing or its size is another, and unless open for reading.
    /// Only the size is compared: a value may be read as another type of the same size.
    /// @{
    int GetValue(std::uint8_t& value, const char* label); ///< The value as it was set.
    int GetValue(std::int16_t& value, const char* label);
    int GetValue(std::uint16_t& value, const char* label);
    int GetValue(std::int32_t& value, const char* label);
    int GetValue(std::uint32_t& value, const char* label);
    int GetValue(std::int64_t& value, const char* label);
    int GetValue(std::uint64_t& value, const char* label);
    int GetValue(float& value, const char* label);
    int GetValue(double& value, const char* label, int asText = 0);
    int GetValue(XCString& text, const char* label);
    int GetValue(XCFilePath& path, const char* label);
    int GetValue(tagPOINT& value, const char* label);
    int GetValue(tagSIZE& value, const char* label);
    int GetValue(tagRECT& value, const char* label);
    int GetValue(tagPOINTF& value, const char* label);
    int GetValue(tagSIZEF& value, const char* label);
    int GetValue(tagRECTF& value, const char* label);
    int GetValue(tagPOINTD& value, const char* label);
    int GetValue(tagSIZED& value, const char* label);
    int GetValue(tagRECTD& value, const char* label);
    int GetValue(XCLength& value, const char* label);
    int GetValue(void* data, int size, const char* label);
    /// Appends every label once, in the order of the file. How many; 0 unless open for reading.
    int GetLabels(XCStringArray& labels);
    /// Bytes of a label's value; -1 when it is missing.
    int GetValueSize(const char* label);
    /// @}

private:
    struct State;

    void requireWriting() const;
    template <class Part, class Value>
    void setParts(const Value& value, const char* label);
    template <class Part, class Value>
    int getParts(Value& value, const char* label);

    std::unique_ptr<State> m_state;
};

#endif // OVWCMN_XCREGKEY_H
