#ifndef OVW_FUZZ_SUPPORT_H
#define OVW_FUZZ_SUPPORT_H

#include "targets.h"

#include "ovwcmn/xcarchivemem.h"
#include "ovwcmn/xcexception.h"
#include "support/tempfolder.h"

#include <cstring>
#include <string>
#include <utility>

namespace ovw::fuzz {

/// Runs what may refuse its input.
template <class Action>
void mayThrow(Action&& action) {
    try {
        std::forward<Action>(action)();
    } catch (const XCException&) {
        return; // the answer that hostile input gets
    }
}

/// Takes single values off the front, for choices that the input makes.
inline std::uint8_t takeByte(Input& input) {
    if (input.empty())
        return 0;
    const std::uint8_t byte = input.front();
    input = input.subspan(1);
    return byte;
}

inline std::string textOf(Input input) { return {reinterpret_cast<const char*>(input.data()), input.size()}; }

/// An archive that reads the input from memory.
class InputArchive {
public:
    explicit InputArchive(Input input, std::uint32_t order = XCArchive::cnBigEndian) {
        const auto size = static_cast<std::uint32_t>(input.size());
        XCHandle block;
        block.Alloc(size + 1);
        if (size > 0)
            block.Copy(input.data(), size, 0, 0);
        m_archive.Attach(block.Detach(), size);
        m_archive.SetEndianMode(static_cast<int>(order));
    }
    XCArchive& get() { return m_archive; }

private:
    XCArchiveMem m_archive;
};

/// The input as a file in a folder of its own.
class InputFile {
public:
    explicit InputFile(Input input, const char* name = "input") : m_path(m_folder.path(name)) {
        m_folder.write(name, textOf(input));
    }
    const XCFilePath& path() const { return m_path; }
    const test::TempFolder& folder() const { return m_folder; }

private:
    test::TempFolder m_folder;
    XCFilePath m_path;
};

} // namespace ovw::fuzz

#endif // OVW_FUZZ_SUPPORT_H
