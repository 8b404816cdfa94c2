#ifndef OVW_FOUNDATION_STRINGTABLES_H
#define OVW_FOUNDATION_STRINGTABLES_H

/// @file
/// String tables read from text: what XCStringResource owns.

#include "ovwcmn/xcthread.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ovw::foundation {

inline constexpr int cnLastStringID = 0xFFFF;

using StringTable = std::unordered_map<std::uint16_t, std::string>;

/// The definitions of a text, in the current code page; a UTF-8 byte order mark is skipped. Malformed lines define
/// nothing; the first definition of an id wins.
StringTable parseStringTable(std::string_view text);

/// Tables in the order of their addition, behind a lock. Throws std::bad_alloc.
class StringTables {
public:
    StringTables() { m_lock.Initialize(); }

    void add(StringTable table);
    /// The text of the first table that has it; no text for an id that no table has.
    std::optional<std::string> find(int id);

private:
    XCCriticalSection m_lock;
    std::vector<StringTable> m_tables;
};

} // namespace ovw::foundation

#endif // OVW_FOUNDATION_STRINGTABLES_H
