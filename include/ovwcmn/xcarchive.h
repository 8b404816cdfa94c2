#ifndef OVWCMN_XCARCHIVE_H
#define OVWCMN_XCARCHIVE_H

/// @file
/// The stream through which everything is saved and loaded.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xccolor.h"
#include "ovwcmn/xchandle.h"

#include <cstdint>
#include <vector>

class XCString;
class XCTime;
class XCWideString;

/// A stream that is either saved to or loaded from: numbers in a byte order, texts, and sections, which carry their
/// length and nest. The stores are XCArchiveFile and XCArchiveMem. Owns its cache; what is still in it when the archive
/// dies is not written (DoFlush). Positions and lengths have 32 bits: going beyond throws 0x20010008, as do writing
/// while loading and reading past the end; contents that contradict themselves throw 0x2001000B. A memory archive reads
/// short instead of throwing: then `>>` gives 0 or an empty text. One thread at a time.
class OVWCMN_API XCArchive {
public:
    /// @name Mode
    /// @{
    static constexpr std::uint32_t cnSaving = 1;          ///< mode: writing
    static constexpr std::uint32_t cnLoading = 2;         ///< mode: reading
    static constexpr std::uint32_t cnLittleEndian = 4;    ///< mode: the least significant byte first
    static constexpr std::uint32_t cnBigEndian = 8;       ///< mode: the most significant byte first
    static constexpr std::uint32_t cnMultibyteText = 128; ///< kept for users of the archive

    /// Loading, big-endian, with a cache that has no block yet.
    XCArchive();
    XCArchive(const XCArchive&) = delete;
    XCArchive& operator=(const XCArchive&) = delete;
    virtual ~XCArchive(); ///< Writes nothing more.

    /// Saving with cnSaving, else loading; little-endian with cnLittleEndian, else big-endian. Allocates the cache.
    void Init(std::uint32_t flags, std::uint32_t cacheSize);
    int IsLoading() const { return ModeChk(cnLoading); } ///< mode cnLoading
    int IsSaving() const { return ModeChk(cnSaving); }   ///< mode cnSaving
    /// 1 when any of the bits is set.
    int ModeChk(std::uint32_t bits) const { return (m_mode & bits) != 0; }
    /// cnBigEndian or cnLittleEndian.
    int GetEndianMode() const { return static_cast<int>(m_mode & cnBigEndian ? cnBigEndian : cnLittleEndian); }
    /// Returns the order before.
    int SetEndianMode(int order);
    void Setunicode() { m_mode &= ~cnMultibyteText; } ///< clears cnMultibyteText
    void Setsjiscode() { m_mode |= cnMultibyteText; } ///< sets cnMultibyteText
    /// A word that is the caller's; Init clears it.
    std::uint32_t GetExtMode() const { return m_extMode; }
    void SetExtMode(std::uint32_t mode) { m_extMode = mode; } ///< as GetExtMode
    /// @}

    /// @name Position and raw bytes
    /// @{
    std::uint32_t GetPosition() const { return m_position + pendingBytes(); } ///< bytes from the start of the stream
    std::uint32_t GetLength() const { return m_length + pendingBytes(); }     ///< bytes of the whole stream
    /// Origin 0 counts from the start, 1 from the position; others go to the start. While loading it stops at the end.
    /// Before the start throws 0x20010008. Returns the new position.
    std::uint32_t Seek(int offset, std::uint32_t origin);
    void Write(const void* bytes, std::uint32_t size); ///< the bytes as they are
    void Read(void* bytes, std::uint32_t size);        ///< the bytes as they are
    /// Hands what the cache holds to the store. Closing a file does not.
    void DoFlush();
    /// Drops what the cache holds.
    void ClearCache();
    // What Write and Read come down to while caching.
    /// What Write comes down to while caching.
    void WriteCache(const void* bytes, std::uint32_t size);
    /// What Read comes down to while caching.
    void ReadCache(void* bytes, std::uint32_t size);
    /// Fills the cache from the position on.
    void LoadCache();
    /// @}

    /// @name Sections
    /// A length of 32 bits, then that many bytes.
    /// @{
    void BeginSection(); ///< Opens a section, inside the open ones; its length is written when it ends.
    /// While loading, skips what was not read. Without an open section nothing.
    void EndSection();
    /// Skips a section that is not open; while loading only.
    void SeekSection();
    /// Copies a section that `src` is about to read.
    void CopySection(XCArchive& src);
    /// Of the innermost open section while loading; 0 without one.
    std::uint32_t GetSectionSize() const;
    /// What the innermost open section still holds; 0 behind its end and without one.
    std::uint32_t GetRemainingSectionSize() const;
    /// A block as a section's contents. Reading an empty one frees `block`.
    void WriteSectionData(XCHandle& block);
    void ReadSectionData(XCHandle& block); ///< As WriteSectionData.
    /// While loading: bytes before the end of the innermost open section, or of the stream when none is open. What a
    /// reader may believe of an announced size.
    std::uint32_t GetRemainingSize() const;
    /// Throws 0x20010008 when fewer than `size` bytes remain. For readers, before they allocate or loop.
    void RequireRemaining(std::uint64_t size) const;
    /// @}

    /// @name Values
    /// Texts are at most 65535 bytes as stored (a line break there is CR alone): longer ones throw 0x20010008 and write
    /// nothing.
    /// @{
    /// A value in the archive's byte order, or a text behind its length.
    XCArchive& operator<<(std::uint8_t value) { return writeValue(&value, sizeof value); }
    XCArchive& operator<<(std::uint16_t value) { return writeValue(&value, sizeof value); }
    XCArchive& operator<<(std::int16_t value) { return writeValue(&value, sizeof value); }
    XCArchive& operator<<(std::uint32_t value) { return writeValue(&value, sizeof value); }
    XCArchive& operator<<(std::int32_t value) { return writeValue(&value, sizeof value); }
    XCArchive& operator<<(std::uint64_t value) { return writeValue(&value, sizeof value); }
    XCArchive& operator<<(std::int64_t value) { return writeValue(&value, sizeof value); }
    XCArchive& operator<<(float value) { return writeValue(&value, sizeof value); }
    XCArchive& operator<<(double value) { return writeValue(&value, sizeof value); }
    XCArchive& operator<<(const _GUID& value);
    XCArchive& operator<<(const tagVXRGBCOLOR16& color);
    XCArchive& operator<<(const tagVXHSVCOLOR16& color);
    XCArchive& operator<<(const XCString& text);
    XCArchive& operator<<(const char* text);
    XCArchive& operator<<(const XCWideString& text);
    // As numbers they would take the width of an int.
    XCArchive& operator<<(bool) = delete;
    XCArchive& operator<<(char) = delete;
    XCArchive& operator<<(char16_t) = delete;

    XCArchive& operator>>(std::uint8_t& value) { return readValue(&value, sizeof value); }
    XCArchive& operator>>(std::uint16_t& value) { return readValue(&value, sizeof value); }
    XCArchive& operator>>(std::int16_t& value) { return readValue(&value, sizeof value); }
    XCArchive& operator>>(std::uint32_t& value) { return readValue(&value, sizeof value); }
    XCArchive& operator>>(std::int32_t& value) { return readValue(&value, sizeof value); }
    XCArchive& operator>>(std::uint64_t& value) { return readValue(&value, sizeof value); }
    XCArchive& operator>>(std::int64_t& value) { return readValue(&value, sizeof value); }
    XCArchive& operator>>(float& value) { return readValue(&value, sizeof value); }
    XCArchive& operator>>(double& value) { return readValue(&value, sizeof value); }
    XCArchive& operator>>(_GUID& value);
    XCArchive& operator>>(tagVXRGBCOLOR16& color);
    XCArchive& operator>>(tagVXHSVCOLOR16& color);
    XCArchive& operator>>(XCString& text);
    XCArchive& operator>>(XCWideString& text);
    /// A text whose length stands before it in 8, 16 or 32 bits; its line breaks are left alone.
    void ReadMKString(XCString& text);
    /// @}

protected:
    /// @{ The store. Each returns the bytes moved, or the new position, which SeekSelf counts from the start (origin 0,
    /// with `offset` taken as unsigned) or from the position (1). Writing and reading go on where the last one ended.
    virtual std::uint32_t WriteSelf(const void* bytes, std::uint32_t size) = 0;
    virtual std::uint32_t ReadSelf(void* bytes, std::uint32_t size) = 0;
    virtual std::uint32_t SeekSelf(int offset, std::uint32_t origin) = 0;
    /// @}

    /// For stores that are memory anyway. To be called before Init.
    void disableCache() { m_isCached = 0; }
    void setMode(std::uint32_t mode) { m_mode = mode; } ///< the whole mode word
    /// Forgets cache and sections; the stream stands at 0 and the store holds `length` bytes.
    void restart(std::uint32_t length);

private:
    enum class CacheState { empty, readAhead, passedBy, unwritten }; // passed by: empty, and a large piece was read

    XCArchive& writeValue(const void* value, std::uint32_t size);
    XCArchive& readValue(void* value, std::uint32_t size);
    std::uint32_t pendingBytes() const { return IsSaving() ? m_cacheIndex : 0; }
    std::uint32_t seekTo(std::int64_t target);
    void moveInCache(std::uint32_t oldPosition);
    void allocateCache(std::uint32_t size);
    void writeStore(const void* bytes, std::uint32_t size);
    bool isCacheReadOut() const { return m_cacheIndex == m_cacheFill; }
    void fillCache(std::uint32_t most);
    std::uint32_t readPastCache(std::uint8_t* to, std::uint32_t size);
    std::uint32_t readFromCache(std::uint8_t* to, std::uint32_t size);
    std::uint32_t readSectionLength();
    void endSavedSection(std::uint32_t start);
    void WriteString(const char* text);
    void ReadString(XCString& text);
    void WriteWideString(const XCWideString& text);
    void ReadWideString(XCWideString& text);
    std::uint32_t ReadMKStringLength();

    std::uint32_t m_mode = cnLoading | cnBigEndian;
    std::uint32_t m_extMode = 0;
    std::uint32_t m_position = 0; // of the next byte read; while saving, of the next byte that the store will get
    std::uint32_t m_length = 0;   // of the store, as far as known
    XCHandle m_cache;
    int m_isCached = 1;
    CacheState m_cacheState = CacheState::empty;
    std::uint32_t m_cacheIndex = 0; // of the next byte
    std::uint32_t m_cacheSize = 0;
    std::uint32_t m_cacheFill = 0;
    std::vector<std::uint32_t> m_sectionSizes;  // while loading
    std::vector<std::uint32_t> m_sectionStarts; // behind the lengths
};

/// A new identifier, different from all others, from the system's random numbers. Throws 8 when there are none.
OVWCMN_API void xcCreateVXUID(VXUID& id);

/// @name Times
/// As 32-bit seconds since 1970.
/// @{
OVWCMN_API XCArchive& operator<<(XCArchive& archive, const XCTime& time); ///< Whole seconds.
OVWCMN_API XCArchive& operator>>(XCArchive& archive, XCTime& time);
/// @}

#endif // OVWCMN_XCARCHIVE_H
