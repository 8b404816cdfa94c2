// The next free name of a numbered series.

#include "ovwcmn/xcfilepath.h"

#include "Platform/text.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcfindfile.h"
#include "persistence/pathtext.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

using ovw::persistence::equalNoCase;
using ovw::persistence::text;

namespace {

constexpr std::int64_t cnMaxNumber = std::numeric_limits<std::int32_t>::max();
constexpr int cnMaxDigits = 200; // a component holds 255 bytes

/// How the names of a series look.
struct Series {
    std::string prefix;
    const char* ext; ///< null for none
    int digits;
};

bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }

/// The first run of digits at or behind `start`; -1 when there is none. Numbers beyond 31 bits belong to no series.
std::int64_t numberIn(const std::string& name, std::size_t start) {
    std::size_t position = start;
    while (position < name.size() && !isDigit(name[position]))
        position += std::max<std::size_t>(ovw::platform::characterBytes(name.c_str() + position), 1);
    std::int64_t number = position < name.size() ? 0 : -1;
    for (; position < name.size() && isDigit(name[position]); ++position) {
        number = number * 10 + (name[position] - '0');
        if (number > cnMaxNumber)
            return -1;
    }
    return number;
}

std::string withoutExtension(const XCString& entry) {
    XCString name, ext;
    XCFilePath(entry).GetNameAndExtension(name, ext);
    return text(name);
}

bool belongs(const XCFindFile& entry, const XCString& name, const Series& series) {
    if (entry.IsHidden() || entry.IsParentFolder())
        return false;
    if (series.ext && (entry.IsFolder() || !XCFilePath(name).IsExtensionFile(series.ext)))
        return false;
    return equalNoCase(text(name).substr(0, series.prefix.size()), series.prefix);
}

std::vector<std::int64_t> usedNumbers(const XCFilePath& folder, const Series& series) {
    std::vector<std::int64_t> numbers;
    XCFindFile search;
    for (int found = search.First(folder); found; found = search.Next()) {
        XCString entry;
        search.GetName(entry);
        const std::string name = series.ext ? withoutExtension(entry) : text(entry);
        const std::int64_t number = belongs(search, entry, series) ? numberIn(name, series.prefix.size()) : -1;
        if (number >= 0)
            numbers.push_back(number);
    }
    std::ranges::sort(numbers);
    return numbers;
}

/// The number behind the first gap's lower end; a gap below the first number does not count.
std::int64_t nextNumber(const std::vector<std::int64_t>& numbers) {
    if (numbers.empty())
        return 1;
    const auto gap = std::ranges::adjacent_find(numbers, [](std::int64_t a, std::int64_t b) { return b - a > 1; });
    return (gap == numbers.end() ? numbers.back() : *gap) + 1;
}

/// A prefix of digits only is no prefix but a pattern for the number.
Series seriesOf(int digits, const char* ext, const char* prefix) {
    if (ext && !*ext)
        ext = nullptr;
    if (vxIsOnlyNumberString(prefix))
        return {"", ext, *prefix == '0' ? static_cast<int>(std::string(prefix).size()) : 1};
    return {prefix ? prefix : "", ext, digits};
}

std::string numberedName(const Series& series, std::int64_t number) {
    const std::string plain = std::to_string(number);
    const std::size_t digits = static_cast<std::size_t>(std::clamp(series.digits, 1, cnMaxDigits));
    std::string name = series.prefix + std::string(digits - std::min(digits, plain.size()), '0') + plain;
    if (series.ext)
        name += std::string(".") + series.ext;
    return name;
}

} // namespace

int XCFilePath::GetSequencialFilePath(const XCFilePath& folder, int digits, const char* ext, const char* prefix) {
    return GetSequencialFilePath2(folder, digits, ext, prefix, 0);
}

int XCFilePath::GetSequencialFilePath2(const XCFilePath& folder, int digits, const char* ext, const char* prefix,
                                       int maximum) {
    const Series series = seriesOf(digits, ext, prefix);
    const std::int64_t next = nextNumber(usedNumbers(folder, series));
    if (maximum != 0 && next > maximum)
        return 0;
    XCFilePath result(folder);
    result += numberedName(series, next).c_str();
    *this = result;
    return 1;
}
