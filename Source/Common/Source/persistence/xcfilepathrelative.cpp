// From absolute paths to relative ones and back, and names that are safe everywhere.

#include "ovwcmn/xcfilepath.h"

#include "Platform/text.h"
#include "Utility/vxfile.h"
#include "persistence/pathtext.h"

#include <string>
#include <string_view>
#include <vector>

using ovw::persistence::commonLength;
using ovw::persistence::equalNoCase;
using ovw::persistence::requireFits;
using ovw::persistence::splitComponents;
using ovw::persistence::text;

namespace {

constexpr std::size_t cnComponentBufferSize = 256;
constexpr std::size_t cnRelativeBufferSize = 260;

bool isNetworkPath(const std::string& path) { return path.starts_with("\\\\"); }

/// The whole character at a position; "" at the end.
std::string characterAt(const std::string& path, std::size_t position) {
    return path.substr(position, ovw::platform::characterBytes(path.c_str() + position));
}

/// Whether a text is a path of its own, below whatever it is remade. A drive is any single-byte character.
bool isAbsolute(const std::string& path) {
    return isNetworkPath(path) || (path.size() >= 2 && path[1] == ':' && characterAt(path, 0).size() == 1);
}

bool isSeparator(const std::string& path, std::size_t position) {
    return path[position] == '\\' || (path[position] == '/' && path.starts_with('/'));
}

/// Index of the first "\" from `start` on that is a separator, or npos.
std::size_t findDelimiter(const std::string& path, std::size_t start) {
    for (std::size_t i = start; i < path.size(); i += characterAt(path, i).size())
        if (isSeparator(path, i))
            return i;
    return std::string::npos;
}

bool beginsWithDrive(const std::string& path) {
    const char letter = path.empty() ? '\0' : static_cast<char>(path[0] | 0x20);
    return path.size() >= 2 && path[1] == ':' && letter >= 'a' && letter <= 'z';
}

/// Where the comparison of two paths with a common root begins; npos when they have none in common.
std::size_t comparisonStart(const std::string& base, const std::string& target) {
    if (!equalNoCase(characterAt(base, 0), characterAt(target, 0)) || isNetworkPath(base) != isNetworkPath(target) ||
        beginsWithDrive(base) != beginsWithDrive(target))
        return std::string::npos;
    if (!isNetworkPath(base))
        return 0;
    const std::size_t server = findDelimiter(base, 2);
    const bool sameServer = server != std::string::npos && server == findDelimiter(target, 2) &&
                            equalNoCase(base.substr(0, server), target.substr(0, server));
    return sameServer ? server : std::string::npos;
}

/// "..\" for every separator of the base from the position on.
std::string stepsUp(const std::string& base, std::size_t position) {
    std::string steps;
    for (std::size_t i = findDelimiter(base, position); i != std::string::npos; i = findDelimiter(base, i + 1))
        steps += "..\\";
    return steps;
}

std::string relativeFrom(const std::string& base, const std::string& target, std::size_t start) {
    const std::size_t position = commonLength(base, target, start);
    const bool baseEnds = position == base.size();
    const bool targetEnds = position == target.size();
    if (baseEnds && targetEnds)
        return {};
    if (baseEnds && isSeparator(target, position))
        return target.substr(position + 1);
    std::string steps = stepsUp(base, position);
    if (targetEnds && isSeparator(base, position))
        return steps;
    // They part inside a component of the base, which is one more step: C:\a\c and C:\ab give ..\..\ab.
    const std::size_t parting = vxFindLastDelimiter(target, position);
    return "..\\" + steps + target.substr(parting == std::string::npos ? 0 : parting + 1);
}

/// The parent folder. Shares of one server lie beside each other for relative paths, although each is a root.
XCFilePath parentOf(const XCFilePath& path) {
    const std::string full = vxWithoutBackDelimiter(static_cast<const char*>(path));
    const std::size_t last = vxFindLastDelimiter(full);
    if (isNetworkPath(full) && last != std::string::npos && last > 1)
        return full.substr(0, last).c_str();
    XCFilePath parent;
    path.GetFolderPath(parent);
    return parent;
}

XCString safeName(const std::string& name) {
    XCString safe(name.c_str());
    safe.ConvertFileName();
    return safe;
}

std::string safeComponent(const std::string& component, bool withExtension) {
    const int dot = withExtension ? XCString(component.c_str()).ReverseFind(".") : -1;
    if (dot < 0)
        return text(safeName(component));
    const auto place = static_cast<std::size_t>(dot);
    const std::string name = text(safeName(component.substr(0, place)));
    const std::string ext = text(safeName(component.substr(place + 1)));
    return ext.empty() ? name : name + '.' + ext; // names do not end in "."
}

/// Takes a last component that DivideSubPath does not hand out off: a share of a server, a name below "\", a name
/// alone. "" when nothing but a drive, a server or "\" is left.
std::string divideFront(std::string& front) {
    front = vxWithoutBackDelimiter(front);
    const std::size_t last = vxFindLastDelimiter(front);
    const bool isServer = isNetworkPath(front) && last < 2;
    if (isServer || (beginsWithDrive(front) && front.size() == 2))
        return {};
    const std::size_t begin = last == std::string::npos ? 0 : last + 1;
    std::string name = front.substr(begin);
    front.resize(begin);
    return name;
}

} // namespace

int XCFilePath::MakeRelativePath(XCString& out, const XCFilePath& base, const XCFilePath& target) {
    const std::string from = requireFits(vxWithoutBackDelimiter(text(base.m_strPath)), cnPathBufferSize);
    const std::string to = requireFits(vxWithoutBackDelimiter(text(target.m_strPath)), cnPathBufferSize);
    const std::size_t start = comparisonStart(from, to);
    const std::string relative = start != std::string::npos ? relativeFrom(from, to, start) : to;
    const bool isRelative =
        start != std::string::npos && relative.size() < cnRelativeBufferSize && !isAbsolute(relative);
    out = isRelative ? relative.c_str() : to.c_str();
    return isRelative;
}

int XCFilePath::RemakePath(const XCString& relative, const XCFilePath& base) {
    std::string rest = text(relative);
    if (isAbsolute(rest)) {
        m_strPath = requireFits(rest, cnPathBufferSize).c_str();
        return 0;
    }
    XCFilePath result(base);
    constexpr std::string_view stepUp = "..\\";
    while (rest.starts_with(stepUp)) {
        result = parentOf(result);
        rest.erase(0, stepUp.size());
    }
    for (const std::string& component : splitComponents(rest))
        result += requireFits(component, cnComponentBufferSize).c_str();
    requireFits(text(result.m_strPath), cnPathBufferSize);
    *this = result;
    return 1;
}

int XCFilePath::ConvertCannotUseCharactors(XCString& path, int withExtension) {
    XCFilePath root(path);
    std::vector<std::string> components;
    XCString last;
    while (root.DivideSubPath(last))
        components.push_back(text(last));
    std::string front = text(root.m_strPath);
    if (const std::string first = divideFront(front); !first.empty())
        components.push_back(first);
    bool changed = false;
    XCFilePath result(front.c_str());
    for (std::size_t i = components.size(); i-- > 0;) {
        const std::string safe = safeComponent(components[i], withExtension && i == 0);
        changed |= safe != components[i];
        result += safe.c_str();
    }
    if (changed)
        path = result.m_strPath;
    return changed;
}
