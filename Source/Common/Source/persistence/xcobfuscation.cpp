#include "ovwcmn/xcobfuscation.h"

#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcfile.h"
#include "persistence/replacingfile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <vector>

namespace {

constexpr int cnFirstTable = 1;
constexpr int cnLastTable = 14;
constexpr int cnPlainTable = 7;
constexpr int cnTagSize = 6;
constexpr int cnMarkByte = 6;
constexpr int cnNumberByte = 7;
constexpr std::uint8_t cnMark = 0xFF;
constexpr int cnFileChunk = 1 << 18;
static_assert(cnFileChunk >= XCObfuscation::cnSpan);

struct Table {
    int number;
    std::uint8_t places[8];
};

// Data of the file formats: changing one makes files unreadable.
constexpr Table cnTables[] = {
    {1, {3, 6, 0, 5, 7, 1, 4, 2}},
    {2, {5, 0, 7, 2, 1, 6, 3, 4}},
    {3, {2, 4, 6, 7, 0, 3, 5, 1}},
    {4, {7, 3, 1, 4, 6, 0, 2, 5}},
    {5, {1, 7, 4, 6, 2, 5, 0, 3}},
    {6, {6, 2, 5, 0, 3, 4, 1, 7}},
    {7, {4, 5, 3, 1, 0, 2, 7, 6}},
    {8, {0, 4, 1, 3, 5, 7, 6, 2}},
    {9, {3, 0, 6, 1, 7, 2, 5, 4}},
    {10, {5, 7, 2, 0, 4, 3, 1, 6}},
    {11, {2, 6, 0, 4, 1, 7, 3, 5}},
    {12, {7, 1, 3, 6, 5, 4, 0, 2}},
    {13, {1, 5, 7, 3, 6, 0, 2, 4}},
    {14, {6, 3, 4, 7, 2, 1, 5, 0}},
    {XCObfuscation::cnProjectTable, {4, 2, 7, 5, 3, 6, 1, 0}},
    {XCObfuscation::cnProjectTable + 1, {0, 7, 5, 2, 6, 4, 3, 1}},
};

/// Every table is a permutation, and no two are the same.
constexpr bool tablesAreSound() {
    for (const Table& table : cnTables) {
        unsigned seen = 0;
        for (const std::uint8_t place : table.places)
            seen |= 1u << place;
        if (seen != 0xFF)
            return false;
        for (const Table& other : cnTables)
            if (&other != &table && std::equal(std::begin(table.places), std::end(table.places), other.places))
                return false;
    }
    return true;
}
static_assert(tablesAreSound());

void copyBytes(const void* src, void* dst, int size) {
    if (size > 0)
        std::memmove(dst, src, static_cast<std::size_t>(size));
}

} // namespace

XCObfuscation::~XCObfuscation() = default;

void XCObfuscation::select(int number) {
    const auto* found =
        std::find_if(std::begin(cnTables), std::end(cnTables), [&](const Table& t) { return t.number == number; });
    m_table = found == std::end(cnTables) ? nullptr : found->places;
    m_tableNo = m_table ? number : 0;
}

void XCObfuscation::SetObfuscationTableNo(int number) {
    select(number >= cnFirstTable && number <= cnLastTable ? number : 0);
}

void XCObfuscation::SetObfuscationProjectTableNo(int number) { select(number >= cnProjectTable ? number : 0); }

int XCObfuscation::GetObfuscationTableSize() const { return m_table && m_tableNo != cnPlainTable; }

int XCObfuscation::CheckObfuscationTableNo(std::uint8_t number) { return number <= cnLastTable; }

void XCObfuscation::EncodeObfuscationDataByte(std::uint8_t in, std::uint8_t& out, const std::uint8_t* table) {
    unsigned moved = 0;
    for (int i = 0; i < 8; ++i)
        moved |= (in >> i & 1u) << table[i];
    out = static_cast<std::uint8_t>(moved);
}

void XCObfuscation::DecodeObfuscationDataByte(std::uint8_t in, std::uint8_t& out, const std::uint8_t* table) {
    unsigned moved = 0;
    for (int i = 0; i < 8; ++i)
        moved |= (in >> table[i] & 1u) << i;
    out = static_cast<std::uint8_t>(moved);
}

std::uint8_t XCObfuscation::DecodeObfuscationDataByte(std::uint8_t byte) const {
    std::uint8_t out = byte;
    if (m_table)
        DecodeObfuscationDataByte(byte, out, m_table);
    return out;
}

void XCObfuscation::moveBits(Move move, std::uint8_t* bytes, std::int64_t size) const {
    std::array<std::uint8_t, 256> moved;
    for (std::size_t i = 0; i < moved.size(); ++i)
        move(static_cast<std::uint8_t>(i), moved[i], m_table);
    for (std::int64_t i = 0; i < size; ++i)
        bytes[i] = moved[bytes[i]];
}

int XCObfuscation::recode(Move move, const void* src, void* dst, int size, int first, int end) const {
    copyBytes(src, dst, size);
    if (!movesBits())
        return 0;
    const int last = std::min(size, end);
    if (last > first)
        moveBits(move, static_cast<std::uint8_t*>(dst) + first, last - first);
    return 1;
}

int XCObfuscation::EncodeObfuscationMemory(const void* src, void* dst, int size, int withHead) const {
    if (!withHead)
        return recode(EncodeObfuscationDataByte, src, dst, size, 0, cnSpan);
    if (size < cnHeadSize) {
        copyBytes(src, dst, size);
        return 0;
    }
    const int result = recode(EncodeObfuscationDataByte, src, dst, size, cnHeadSize, cnSpan);
    auto* const bytes = static_cast<std::uint8_t*>(dst);
    bytes[cnMarkByte] = cnMark;
    bytes[cnNumberByte] = static_cast<std::uint8_t>(m_tableNo);
    return result;
}

int XCObfuscation::DecodeObfuscationMemory(const void* src, void* dst, int size, int withHead) const {
    const int result = recode(DecodeObfuscationDataByte, src, dst, size, withHead ? cnHeadSize : 0, cnSpan);
    return result && (!withHead || size >= cnHeadSize);
}

int XCObfuscation::EncodeProjectObfuscationMemory(const void* src, void* dst, int size) const {
    return recode(EncodeObfuscationDataByte, src, dst, size, cnTagSize, size);
}

int XCObfuscation::DecodeProjectObfuscationMemory(const void* src, void* dst, int size) const {
    return recode(DecodeObfuscationDataByte, src, dst, size, cnTagSize, size);
}

int XCObfuscation::DecodeObfuscationFaceBinMemory(const std::uint8_t* src, std::uint8_t* dst, int size) {
    if (size < cnHeadSize || src[cnMarkByte] < cnMark) {
        copyBytes(src, dst, size);
        return size >= cnHeadSize;
    }
    SetObfuscationTableNo(src[cnNumberByte]);
    DecodeObfuscationMemory(src, dst, size, 1);
    return 1;
}

int XCObfuscation::EncodeObfuscationFile(const XCFilePath& path) const {
    return rewriteFile(path, EncodeObfuscationDataByte);
}

int XCObfuscation::DecodeObfuscationFile(const XCFilePath& path) const {
    return rewriteFile(path, DecodeObfuscationDataByte);
}

int XCObfuscation::rewriteFile(const XCFilePath& path, Move move) const {
    if (!m_table || !path.IsExistence())
        return 0;
    XCFile source;
    source.Open(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
    ovw::persistence::ReplacingFile replacing(path, "xco");
    XCFile target;
    target.Create(replacing.path(), 0, 0, GENERIC_WRITE, FILE_SHARE_WRITE, CREATE_ALWAYS, 0);
    std::vector<std::uint8_t> chunk(cnFileChunk);
    std::uint32_t done = cnFileChunk;
    for (bool isFirst = true; done == cnFileChunk; isFirst = false) {
        source.Read(chunk.data(), cnFileChunk, &done);
        if (isFirst && movesBits())
            moveBits(move, chunk.data(), std::min<std::int64_t>(done, cnSpan));
        target.Write(chunk.data(), done);
    }
    target.Flush();
    target.Close();
    source.Close();
    replacing.commit();
    return 1;
}
