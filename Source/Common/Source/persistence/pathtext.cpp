#include "persistence/pathtext.h"

#include "Platform/text.h"
#include "Utility/vxfile.h"
#include "foundation/charactercase.h"
#include "ovwcmn/xcexception.h"

#include <algorithm>
#include <cstring>

namespace ovw::persistence {

const std::string& requireFits(const std::string& text, std::size_t bufferSize) {
    if (text.size() >= bufferSize)
        xcThrowError(foundation::cnCodeParameter);
    return text;
}

void copyToBuffer(char* out, const std::string& text) {
    requireFits(text, cnPathBufferSize);
    std::memcpy(out, text.c_str(), text.size() + 1);
}

std::size_t commonLength(const std::string& a, const std::string& b, std::size_t start) {
    std::size_t position = start;
    while (position < a.size() && position < b.size()) {
        const std::size_t bytes = platform::characterBytes(a.c_str() + position);
        const bool isSame = bytes == 1 ? foundation::lowerAscii(a[position]) == foundation::lowerAscii(b[position])
                                       : a.compare(position, bytes, b, position, bytes) == 0;
        if (!isSame || platform::characterBytes(b.c_str() + position) != bytes)
            break;
        position += bytes;
    }
    return position;
}

bool equalNoCase(const std::string& a, const std::string& b) {
    return a.size() == b.size() && commonLength(a, b, 0) == a.size();
}

std::vector<std::string> splitComponents(const std::string& path) {
    std::vector<std::string> components;
    std::size_t end = path.size();
    for (;;) {
        const std::size_t delimiter = vxFindLastDelimiter(path, end);
        const std::size_t begin = delimiter == std::string::npos ? 0 : delimiter + 1;
        components.push_back(path.substr(begin, end - begin));
        if (delimiter == std::string::npos)
            break;
        end = delimiter;
    }
    std::reverse(components.begin(), components.end());
    return components;
}

} // namespace ovw::persistence
