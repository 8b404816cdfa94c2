#include "persistence/blockcodec.h"

#include "ovwcmn/xcexception.h"

#include <algorithm>
#include <cstring>
#include <new>

#include <libdeflate.h>
#include <zlib.h>

namespace ovw::persistence {

namespace {

constexpr int cnStored = 0;
constexpr int cnSmallest = 9;
constexpr int cnDefault = 6;
constexpr std::size_t cnSmallBlock = 2048; // where zlib's fixed codes and its stored blocks win

[[noreturn]] void fail() { xcThrowError(foundation::cnCodeNoMemory); }

/// The level of libdeflate that is both faster and no larger than zlib's.
int libdeflateLevel(int level) { return std::max(level == Z_DEFAULT_COMPRESSION ? cnDefault : level, 2); }

} // namespace

BlockCodec::BlockCodec(int level)
    : m_level(level), m_compressor(nullptr, libdeflate_free_compressor),
      m_decompressor(nullptr, libdeflate_free_decompressor) {}

BlockCodec::~BlockCodec() = default;

bool BlockCodec::useZlib(std::size_t size) const { return m_level == cnStored || size < cnSmallBlock; }

std::size_t BlockCodec::bound(std::size_t size) {
    return useZlib(size) ? compressBound(size) : libdeflate_zlib_compress_bound(nullptr, size);
}

std::size_t BlockCodec::compress(ConstBytes block, Bytes out) {
    if (m_level < Z_DEFAULT_COMPRESSION || m_level > cnSmallest)
        fail(); // expanding asks for no level
    if (useZlib(block.size())) {
        uLongf size = out.size();
        if (compress2(out.data(), &size, block.data(), block.size(), m_level) != Z_OK)
            fail();
        return size;
    }
    if (!m_compressor)
        m_compressor.reset(libdeflate_alloc_compressor(libdeflateLevel(m_level)));
    if (!m_compressor)
        fail();
    const std::size_t size =
        libdeflate_zlib_compress(m_compressor.get(), block.data(), block.size(), out.data(), out.size());
    if (size == 0)
        fail();
    return size;
}

std::size_t BlockCodec::expand(ConstBytes stream, Bytes out, Bytes spare) {
    if (!m_decompressor)
        m_decompressor.reset(libdeflate_alloc_decompressor());
    if (!m_decompressor)
        fail();
    // The decompressor copies whole words, so that it may write some bytes behind the last one.
    const bool keepsRest = !out.empty() && spare.size() >= out.size();
    if (keepsRest)
        std::memcpy(spare.data(), out.data(), out.size());
    std::uint8_t nowhere = 0;
    std::size_t used = 0, size = 0;
    const libdeflate_result result =
        libdeflate_zlib_decompress_ex(m_decompressor.get(), stream.data(), stream.size(),
                                      out.empty() ? &nowhere : out.data(), out.size(), &used, &size);
    if (result != LIBDEFLATE_SUCCESS)
        fail();
    if (keepsRest && size < out.size())
        std::memcpy(out.data() + size, spare.data() + size, out.size() - size);
    return size;
}

Bytes BlockCodec::scratch(std::size_t size) {
    if (size > m_scratchSize) {
        m_scratch.reset();
        m_scratchSize = 0;
        m_scratch.reset(new (std::nothrow) std::uint8_t[size]);
        if (!m_scratch)
            fail();
        m_scratchSize = size;
    }
    return {m_scratch.get(), size};
}

} // namespace ovw::persistence
