#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcarchive.h"
#include "ovwcmn/xcexception.h"

#include <cstring>
#include <random>

// RFC 9562, section 5.4: an identifier of random bits (version 4).
void xcCreateVXUID(VXUID& id) {
    constexpr std::uint16_t versionBits = 0xF000, version = 0x4000;
    constexpr std::uint8_t variantBits = 0xC0, variant = 0x80;
    try {
        std::random_device source; // the system's
        std::uint32_t words[sizeof id / sizeof(std::uint32_t)];
        for (std::uint32_t& word : words)
            word = source();
        std::memcpy(&id, words, sizeof id);
    } catch (const std::exception&) {
        xcThrowError(ovw::foundation::cnCodeNoMemory);
    }
    id.Data3 = static_cast<std::uint16_t>((id.Data3 & ~versionBits) | version);
    id.Data4[0] = static_cast<std::uint8_t>((id.Data4[0] & ~variantBits) | variant);
}
