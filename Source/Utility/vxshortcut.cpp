#include "Platform/systemerror.h"
#include "Platform/text.h"
#include "Utility/vxfile.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/wintypes.h"

#include <algorithm>
#include <cstring>
#include <vector>

// The Shell Link binary file format ([MS-SHLLINK]): a header of fixed size, an optional list of shell items, and the
// link information, whose texts give the target. Integers are little-endian; every offset is checked before it is
// followed.

namespace platform = ovw::platform;

namespace {

constexpr std::size_t cnHeaderBytes = 0x4C;
constexpr std::size_t cnFlagsOffset = 20;
constexpr std::uint32_t cnHasItemList = 1;
constexpr std::uint32_t cnHasLinkInfo = 2;
constexpr std::uint32_t cnHasLocalPath = 1;   // flag of the link information
constexpr std::size_t cnLinkInfoBytes = 0x1C; // least size; 0x24 with the UTF-16 texts
constexpr std::size_t cnLinkInfoWideBytes = 0x24;
constexpr std::uint32_t cnMaxFileBytes = 1 << 20;

constexpr unsigned char cnClassId[16] = {0x01, 0x14, 0x02, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46};

/// A range of the file's bytes; reading outside gives zeros and empty texts.
struct Bytes {
    const unsigned char* data;
    std::size_t size;

    Bytes from(std::size_t offset) const {
        return offset < size ? Bytes{data + offset, size - offset} : Bytes{data, 0};
    }

    std::uint32_t number(std::size_t offset, std::size_t width) const {
        if (offset > size || size - offset < width)
            return 0;
        std::uint32_t value = 0;
        for (std::size_t i = width; i-- > 0;)
            value = value << 8 | data[offset + i];
        return value;
    }

    std::string narrowText() const {
        const auto* const end = size ? static_cast<const unsigned char*>(std::memchr(data, 0, size)) : nullptr;
        return end ? std::string(data, end) : std::string();
    }

    std::string wideText() const {
        std::u16string units;
        for (std::size_t i = 0; i + 1 < size && number(i, 2) != 0; i += 2)
            units += static_cast<char16_t>(number(i, 2));
        std::string out(units.size() * 3, '\0');
        const auto converted =
            platform::fromUtf16(platform::codePage(), units.data(), units.size(), out.data(), out.size());
        out.resize(converted.result == platform::Conversion::done ? converted.length : 0);
        return out;
    }
};

bool readFile(const char* path, std::vector<unsigned char>& out) {
    const std::uint32_t file = vxOpenFile(path, 0, 0, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0, nullptr);
    if (file == cnNoFileHandle)
        return false;
    out.resize(cnMaxFileBytes);
    std::uint32_t done = 0;
    const int read = vxReadFile(file, out.data(), cnMaxFileBytes, &done, nullptr);
    vxCloseFile(file);
    out.resize(done);
    return read;
}

std::string linkTarget(const Bytes& file) {
    if (file.size < cnHeaderBytes || file.number(0, 4) != cnHeaderBytes ||
        std::memcmp(file.data + 4, cnClassId, 16) != 0)
        return {};
    const std::uint32_t flags = file.number(cnFlagsOffset, 4);
    const std::size_t items = flags & cnHasItemList ? 2 + file.number(cnHeaderBytes, 2) : 0;
    Bytes info = file.from(cnHeaderBytes + items);
    info.size = std::min<std::size_t>(info.size, info.number(0, 4));
    if (!(flags & cnHasLinkInfo) || info.size < cnLinkInfoBytes || !(info.number(8, 4) & cnHasLocalPath))
        return {};
    const bool isWide = info.number(4, 4) >= cnLinkInfoWideBytes && info.size >= cnLinkInfoWideBytes;
    std::string target = isWide ? info.from(info.number(28, 4)).wideText() : std::string();
    if (!target.empty())
        return target + info.from(info.number(32, 4)).wideText();
    target = info.from(info.number(16, 4)).narrowText();
    return target.empty() ? target : target + info.from(info.number(24, 4)).narrowText();
}

} // namespace

int vxwGetShortcutLink(const char* path, std::string& target) {
    std::vector<unsigned char> bytes;
    if (!readFile(path, bytes))
        return 0;
    std::string found = linkTarget({bytes.data(), bytes.size()});
    if (found.empty() || found.size() >= cnPathBufferSize) {
        vxSetLastError(platform::cnErrorPathNotFound);
        return 0;
    }
    target.swap(found);
    return 1;
}
