#ifndef OVWCMN_XCOBFUSCATION_H
#define OVWCMN_XCOBFUSCATION_H

/// @file
/// Data files whose head is hidden.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcstring.h"

#include <cstdint>

class XCFilePath;

/// Hides the head of data by moving the eight bits of each byte about, in one of sixteen orders. Data with a head carry
/// the number of their order: a tag of 6 bytes, 0xFF, the number, then up to 5112 hidden bytes and the rest plain. In
/// memory, source and destination are of `size` bytes and may be the same; the results tell whether bits were moved.
/// Objects are independent values: one thread at a time each.
class OVWCMN_API XCObfuscation {
public:
    static constexpr int cnProjectTable = 0x100000; ///< the first of two numbers for projects
    static constexpr int cnHeadSize = 8;            ///< bytes of a head
    static constexpr int cnSpan = 5120;             ///< bytes from the start within which bits are moved

    XCObfuscation() = default;
    XCObfuscation(const XCObfuscation&) = default;
    XCObfuscation& operator=(const XCObfuscation&) = default;
    virtual ~XCObfuscation();

    /// 1 to 14; of these 7 leaves data as they are. Another number selects no table.
    void SetObfuscationTableNo(int number);
    /// cnProjectTable or cnProjectTable + 1; another number selects no table.
    void SetObfuscationProjectTableNo(int number);
    /// 0 when no table is selected.
    int GetObfuscationTableNo() const { return m_tableNo; }
    /// Where bit 0, 1, ... 7 of a byte goes; null when no table is selected.
    const std::uint8_t* GetObfuscationTable() const { return m_table; }
    /// Bytes that are moved together: 1, or 0 when data stay as they are.
    int GetObfuscationTableSize() const;
    /// 1 for numbers below 15.
    static int CheckObfuscationTableNo(std::uint8_t number);

    /// One byte through the eight places at `table`.
    static void EncodeObfuscationDataByte(std::uint8_t in, std::uint8_t& out, const std::uint8_t* table);
    /// The inverse.
    static void DecodeObfuscationDataByte(std::uint8_t in, std::uint8_t& out, const std::uint8_t* table);
    /// With the table selected; the byte itself without one.
    std::uint8_t DecodeObfuscationDataByte(std::uint8_t byte) const;

    /// With a head, bytes 6 and 7 become 0xFF and the table number, also when data stay as they are. Data too short for
    /// a head are copied. Project tables have no number that a head can hold: use them without one.
    int EncodeObfuscationMemory(const void* src, void* dst, int size, int withHead) const;
    /// The inverse; takes no notice of what the head says.
    int DecodeObfuscationMemory(const void* src, void* dst, int size, int withHead) const;
    /// All bytes but the first 6.
    int EncodeProjectObfuscationMemory(const void* src, void* dst, int size) const;
    int DecodeProjectObfuscationMemory(const void* src, void* dst, int size) const; ///< The inverse.
    /// By the data's own head: selects its table and decodes, or copies plain data. 1.
    int DecodeObfuscationFaceBinMemory(const std::uint8_t* src, std::uint8_t* dst, int size);

    /// A whole file, without a head; it is replaced in one step. 0 when there is no such file or no table is selected;
    /// throws the system's code.
    int EncodeObfuscationFile(const XCFilePath& path) const;
    int DecodeObfuscationFile(const XCFilePath& path) const; ///< The inverse.

private:
    using Move = void (*)(std::uint8_t in, std::uint8_t& out, const std::uint8_t* table);

    void select(int number);
    bool movesBits() const { return GetObfuscationTableSize() != 0; }
    void moveBits(Move move, std::uint8_t* bytes, std::int64_t size) const;
    int recode(Move move, const void* src, void* dst, int size, int first, int end) const;
    int rewriteFile(const XCFilePath& path, Move move) const;

    XCString m_text; ///< the application's
    int m_tableNo = 0;
    const std::uint8_t* m_table = nullptr;
};

#endif // OVWCMN_XCOBFUSCATION_H
