#ifndef OVW_TESTS_SUPPORT_TEMPFOLDER_H
#define OVW_TESTS_SUPPORT_TEMPFOLDER_H

#include "ovwcmn/xcfilepath.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

/// @file
/// A folder for one test, seen from both sides: as the library names it and as the system does.

namespace ovw::test {

class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "ovwtestXXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("no temporary folder");
        m_folder = pattern;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& posix() const { return m_folder; }
    std::filesystem::path posix(const std::string& name) const { return m_folder / name; }
    XCFilePath path() const { return xcPathFromPosix(m_folder.c_str()); }
    /// Of an entry; sub-paths with "\".
    XCFilePath path(const char* name) const {
        XCFilePath result = path();
        result += name;
        return result;
    }

    void write(const std::string& name, const std::string& text) const {
        std::ofstream(posix(name), std::ios::binary) << text;
    }
    std::string read(const std::string& name) const {
        std::ifstream in(posix(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    bool has(const std::string& name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(posix(name)));
    }
    /// The names of the entries, sorted.
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder))
            result.push_back(entry.path().filename().string());
        std::sort(result.begin(), result.end());
        return result;
    }

private:
    std::filesystem::path m_folder;
};

} // namespace ovw::test

#endif // OVW_TESTS_SUPPORT_TEMPFOLDER_H
