#include "Platform/file.h"

#include "Platform/path.h"
#include "Platform/systemerror.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace ovw::platform;
namespace fs = std::filesystem;

class PlatformFile : public testing::Test {
protected:
    PlatformFile() {
        std::string pattern = (fs::temp_directory_path() / "ovwtestXXXXXX").string();
        m_folder = mkdtemp(pattern.data());
    }
    ~PlatformFile() override { fs::remove_all(m_folder); }

    fs::path posix(const char* name) const { return m_folder / name; }
    std::string path(const char* name) const { return toLibraryPath(posix(name).string()); }
    void write(const char* name, const char* text) const { std::ofstream(posix(name)) << text; }
    std::string read(const char* name) const {
        std::string text;
        std::getline(std::ifstream(posix(name)), text);
        return text;
    }
    int openPrivate(const char* name, std::unique_ptr<OpenFile>& out) const {
        OpenRequest request;
        request.read = request.write = request.isPrivate = request.deleteOnClose = true;
        request.disposition = Disposition::createAlways;
        return fileSystem().open(path(name), request, out);
    }
    fs::path m_folder;
};

TEST_F(PlatformFile, PrivateFilesReplaceWhatStandsThere) {
    write("target", "precious");
    fs::create_symlink("target", posix("link"));
    fs::create_hard_link(posix("target"), posix("hard"));
    for (const char* name : {"link", "hard", "new"}) {
        std::unique_ptr<OpenFile> file;
        ASSERT_EQ(openPrivate(name, file), 0) << name;
        std::size_t done = 0;
        EXPECT_EQ(file->writeAt("secret", 6, 0, done), 0);
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(posix(name))));
        EXPECT_EQ(fs::status(posix(name)).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        EXPECT_EQ(read("target"), "precious") << name;
        file.reset();
        EXPECT_FALSE(fs::exists(fs::symlink_status(posix(name)))) << name;
    }
}

TEST_F(PlatformFile, OnlyFilesThatNobodyHoldsAreRemoved) {
    std::unique_ptr<OpenFile> file;
    ASSERT_EQ(openPrivate("held", file), 0);
    EXPECT_EQ(fileSystem().removeUnlessHeld(path("held")), cnErrorSharingViolation);
    EXPECT_TRUE(fs::exists(posix("held")));
    write("free", "");
    EXPECT_EQ(fileSystem().removeUnlessHeld(path("free")), 0);
    EXPECT_FALSE(fs::exists(posix("free")));
    write("target", "precious");
    fs::create_symlink("target", posix("link"));
    fs::create_directory(posix("folder"));
    EXPECT_EQ(fileSystem().removeUnlessHeld(path("link")), cnErrorAccessDenied);
    EXPECT_EQ(fileSystem().removeUnlessHeld(path("folder")), cnErrorAccessDenied);
    EXPECT_EQ(read("target"), "precious");
    EXPECT_TRUE(fs::exists(posix("folder")));
    EXPECT_NE(fileSystem().removeUnlessHeld(path("missing")), 0);
}

TEST_F(PlatformFile, RenamingReplacesNothing) {
    write("from", "1");
    write("to", "2");
    EXPECT_EQ(fileSystem().rename(path("from"), path("to")), cnErrorAlreadyExists);
    EXPECT_EQ(read("from") + read("to"), "12");
}

TEST(PlatformError, CodesOfTheSystem) {
    constexpr int codes[][2] = {{0, 0},       {ENOENT, 2},  {EACCES, 5},         {EBADF, 6},
                                {ENOMEM, 8},  {EXDEV, 17},  {ENOTSUP, 50},       {ENOSPC, 39},
                                {EINVAL, 87}, {EEXIST, 80}, {ENAMETOOLONG, 206}, {99999, 31}};
    for (auto [error, code] : codes)
        EXPECT_EQ(systemErrorFromErrno(error), code) << error;
    for (int code : {2, 3, 5, 8, 17, 32, 39, 50, 80, 87, 112, 123, 183, 206})
        EXPECT_STRNE(systemErrorText(code), "") << code;
    EXPECT_STREQ(systemErrorText(-5), "");
}

} // namespace
