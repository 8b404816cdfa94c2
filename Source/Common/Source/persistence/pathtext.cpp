#include "persistence/pathtext.h"

#include "Utility/vxfile.h"
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

bool equalNoCase(const std::string& a, const std::string& b) {
    return XCString(a.c_str()).CompareNoCase(b.c_str()) == 0;
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
