#ifndef OVW_PERSISTENCE_BLOCKCODEC_H
#define OVW_PERSISTENCE_BLOCKCODEC_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

struct libdeflate_compressor;
struct libdeflate_decompressor;

namespace ovw::persistence {

using Bytes = std::span<std::uint8_t>;
using ConstBytes = std::span<const std::uint8_t>;

/// Whole blocks from and to zlib streams. libdeflate does the work: a block lies in memory anyway, and it is several
/// times faster than zlib at better ratios. zlib takes the small blocks and the stored ones, which it makes smaller.
/// Everything that fails throws 8.
class BlockCodec {
public:
    /// Level -1 to 9, as zlib counts them.
    explicit BlockCodec(int level);
    ~BlockCodec();
    BlockCodec(const BlockCodec&) = delete;
    BlockCodec& operator=(const BlockCodec&) = delete;

    int level() const { return m_level; }
    /// Room that the stream of so many bytes may need.
    std::size_t bound(std::size_t size);
    /// Size of the stream; `out` has the room of bound().
    std::size_t compress(ConstBytes block, Bytes out);
    /// Bytes that came out. Bytes of `out` behind them are not touched only when `spare` is as large as `out`.
    std::size_t expand(ConstBytes stream, Bytes out, Bytes spare);
    /// A buffer that lives until the next call.
    Bytes scratch(std::size_t size);

private:
    bool useZlib(std::size_t size) const;

    int m_level;
    std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> m_compressor;
    std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> m_decompressor;
    std::unique_ptr<std::uint8_t[]> m_scratch;
    std::size_t m_scratchSize = 0;
};

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_BLOCKCODEC_H
