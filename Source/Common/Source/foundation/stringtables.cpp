#include "foundation/stringtables.h"

#include "Platform/text.h"

#include <algorithm>
#include <utility>

namespace ovw::foundation {

namespace {

constexpr std::size_t cnLongestIDText = 63;
constexpr std::size_t cnNowhere = std::string::npos;

bool isBlank(char byte) { return byte == ' ' || byte == '\t'; }

// Walks a line by characters, so that a later byte of a character is never taken for a character of its own.
class LineScanner {
public:
    explicit LineScanner(const std::string& line) : m_line(line) {}

    bool atEnd() const { return m_position == m_line.size(); }
    std::size_t position() const { return m_position; }
    // The character as a byte; 0 for one of several bytes (which matches nothing that a line gives a meaning to).
    char character() const { return length() == 1 ? m_line[m_position] : '\0'; }
    std::string_view text() const { return {m_line.data() + m_position, length()}; }
    void step() { m_position += length(); }

private:
    // A NUL byte inside the line is a character like others.
    std::size_t length() const {
        return std::max<std::size_t>(platform::characterBytes(m_line.c_str() + m_position), 1);
    }

    const std::string& m_line;
    std::size_t m_position = 0;
};

// The number that `digits` spell, 0 when there is another character or the number is no string id.
std::uint16_t parseID(std::string_view digits) {
    std::uint32_t value = 0;
    for (const char digit : digits.substr(0, cnLongestIDText)) {
        if (digit < '0' || digit > '9')
            return 0;
        value = std::min<std::uint32_t>(value * 10 + static_cast<std::uint32_t>(digit - '0'), cnLastStringID + 1);
    }
    return value > cnLastStringID ? 0 : static_cast<std::uint16_t>(value);
}

// What a backslash before `character` stands for, 0 when it stands for itself.
char escaped(char character) {
    switch (character) {
    case '\\': return '\\';
    case 'n': return '\n';
    case 'r': return '\r';
    case 't': return '\t';
    default: return '\0';
    }
}

std::string resolveEscapes(const std::string& text) {
    std::string result;
    for (LineScanner scanner(text); !scanner.atEnd(); scanner.step()) {
        if (scanner.character() == '\\') {
            LineScanner next = scanner;
            next.step();
            const char meaning = next.atEnd() ? '\0' : escaped(next.character());
            if (meaning) {
                result += meaning;
                scanner.step();
                continue;
            }
        }
        result += scanner.text();
    }
    return result;
}

// The text between the first and the last double quote from the scanner's place on; nothing without two of them.
std::optional<std::string> quotedText(const std::string& line, LineScanner scanner) {
    std::size_t first = cnNowhere;
    std::size_t last = cnNowhere;
    for (; !scanner.atEnd(); scanner.step())
        if (scanner.character() == '"')
            (first == cnNowhere ? first : last) = scanner.position();
    if (last == cnNowhere)
        return std::nullopt;
    return resolveEscapes(line.substr(first + 1, last - first - 1));
}

void parseLine(const std::string& line, StringTable& table) {
    LineScanner scanner(line);
    while (!scanner.atEnd() && isBlank(scanner.character()))
        scanner.step();
    const std::size_t begin = scanner.position();
    if (line.compare(begin, 2, "//") == 0)
        return;
    while (!scanner.atEnd() && !isBlank(scanner.character()))
        scanner.step();
    const std::uint16_t id = parseID(std::string_view(line).substr(begin, scanner.position() - begin));
    if (id == 0 || table.contains(id))
        return;
    if (std::optional<std::string> text = quotedText(line, scanner))
        table.emplace(id, std::move(*text));
}

} // namespace

StringTable parseStringTable(std::string_view text) {
    constexpr std::string_view cnByteOrderMark = "\xEF\xBB\xBF";
    constexpr std::string_view cnLineEnds = "\r\n";
    if (text.starts_with(cnByteOrderMark))
        text.remove_prefix(cnByteOrderMark.size());
    StringTable table;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(cnLineEnds), text.size());
        parseLine(std::string(text.substr(0, end)), table);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return table;
}

void StringTables::add(StringTable table) {
    const XCCriticalSectionAutoLeave guard(&m_lock);
    m_tables.push_back(std::move(table));
}

std::optional<std::string> StringTables::find(int id) {
    const XCCriticalSectionAutoLeave guard(&m_lock);
    for (const StringTable& table : m_tables)
        if (const auto found = table.find(static_cast<std::uint16_t>(id)); found != table.end())
            return found->second;
    return std::nullopt;
}

} // namespace ovw::foundation
