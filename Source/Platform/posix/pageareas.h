#ifndef OVW_PLATFORM_POSIX_PAGEAREAS_H
#define OVW_PLATFORM_POSIX_PAGEAREAS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace ovw::platform {

inline constexpr std::size_t cnLargePage = std::size_t{2} << 20;

/// Asks for large pages, which the system clears and maps in a fraction of the time; a hint.
void adviseLargePages(void* memory, std::size_t bytes);

/// Pieces of 1 MiB and a page, which are fresh and zero: the size of the block store's pools. They are cut from areas
/// of 32 MiB, so that neighbours share large pages. Takes memory by the area, gives back by the piece. Thread-safe.
class PageAreas {
public:
    static PageAreas& instance();
    static std::size_t pieceBytes();

    /// Null when there is no room.
    void* take();
    /// False when the memory is no piece of an area.
    bool give(void* piece);

private:
    static constexpr std::size_t cnAreaBytes = std::size_t{32} << 20;
    static constexpr std::size_t cnMostAreas = 256;
    static constexpr std::size_t cnPieces = 31; // what fits with the pages over

    struct Area {
        char* base = nullptr;
        std::uint32_t used = 0; ///< a bit a piece

        bool isFull() const { return used == (std::uint32_t{1} << cnPieces) - 1; }
        bool holds(const char* piece) const { return base && piece >= base && piece < base + cnAreaBytes; }
    };

    PageAreas() = default;

    std::mutex m_mutex;
    std::array<Area, cnMostAreas> m_areas;
};

} // namespace ovw::platform

#endif // OVW_PLATFORM_POSIX_PAGEAREAS_H
