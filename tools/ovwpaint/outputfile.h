#ifndef OVWPAINT_OUTPUTFILE_H
#define OVWPAINT_OUTPUTFILE_H

/// @file
/// A file that appears whole or not at all.

#include <cstddef>
#include <cstdint>
#include <string>

namespace ovwpaint {

/// Writes beside the file wanted, and takes its place in commit(), once everything is on the disk; without commit() it
/// leaves nothing behind. A target that is no regular file (a pipe, a device) is written directly. Throws Failure that
/// names the file.
class OutputFile {
public:
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(const void* bytes, std::size_t count);
    /// Goes to a place counted from the start or, with `fromHere`, from where the file stands. Returns the new place.
    std::uint64_t seek(std::int64_t offset, bool fromHere);
    void commit();

private:
    void openBeside();
    [[noreturn]] void fail(int error) const;

    const std::string m_path; ///< as the user calls it
    std::string m_target;     ///< with symbolic links followed
    std::string m_temporary;  ///< empty when the target is written directly
    int m_descriptor = -1;
};

} // namespace ovwpaint

#endif // OVWPAINT_OUTPUTFILE_H
