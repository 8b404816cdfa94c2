#include "Platform/file.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xcvirtualmemory.h"

#include "support/scopes.h"
#include "support/tempfolder.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace ovw::test;
namespace platform = ovw::platform;

constexpr std::uint32_t cnBlock = 196608; // bytes, no pool

// ---- The file in its folder

class SwapFile : public testing::Test {
protected:
    void create(XCVirtualMemory& vm, int cleanup, std::uint32_t size = cnBlock) {
        XCFilePath path = m_folder.path();
        vm.Create(size, &path, cleanup);
    }
    TempFolder m_folder;
};

/// A child process with a store of its own in a folder, up to the moment when its swap file stands there.
class StoreOfAnotherProcess {
public:
    explicit StoreOfAnotherProcess(XCFilePath folder) {
        int ready[2];
        if (pipe(ready) != 0)
            throw std::runtime_error("no pipe");
        m_pid = fork();
        if (m_pid == 0) {
            close(ready[0]);
            {
                XCVirtualMemory vm;
                vm.Create(cnBlock, &folder, 0);
                XCSwapBlock* block = vm.Allocate(cnBlock);
                vm.Lock(block, 1, nullptr);
                vm.Unlock(block);
                vm.Purge(block);
                [[maybe_unused]] const auto written = ::write(ready[1], "r", 1);
                for (;;)
                    pause();
            }
        }
        close(ready[1]);
        char byte = 0;
        m_isReady = ::read(ready[0], &byte, 1) == 1;
        close(ready[0]);
    }
    ~StoreOfAnotherProcess() { die(); }
    StoreOfAnotherProcess(const StoreOfAnotherProcess&) = delete;

    bool isReady() const { return m_isReady; }
    void die() {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        m_pid = 0;
    }

private:
    pid_t m_pid = 0;
    bool m_isReady = false;
};

TEST_F(SwapFile, IsPrivateAndGoesWithItsStore) {
    {
        XCVirtualMemory vm;
        create(vm, 0, 10 * cnBlock);
        const auto names = m_folder.names();
        ASSERT_EQ(names.size(), 1u);
        EXPECT_NE(names[0].find("SWP"), std::string::npos) << names[0];
        struct stat status;
        ASSERT_EQ(stat(m_folder.posix(names[0]).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0600u);
        EXPECT_TRUE(S_ISREG(status.st_mode));
        EXPECT_EQ(status.st_size, 10 * cnBlock);
    }
    EXPECT_TRUE(m_folder.names().empty());
}

TEST_F(SwapFile, LeftOversOfAKilledProcessAreCleanedUpByTheNextStore) {
    StoreOfAnotherProcess other(m_folder.path());
    ASSERT_TRUE(other.isReady());
    ASSERT_EQ(m_folder.names().size(), 1u);
    const std::string name = m_folder.names()[0];
    XCVirtualMemory vm;
    create(vm, 1);
    EXPECT_TRUE(m_folder.has(name)); // its process lives
    vm.Destroy();
    other.die();
    EXPECT_TRUE(m_folder.has(name));
    create(vm, 0);
    EXPECT_TRUE(m_folder.has(name)); // nobody asked
    vm.Destroy();
    create(vm, 1);
    EXPECT_FALSE(m_folder.has(name));
    EXPECT_EQ(m_folder.names().size(), 1u);
}

TEST_F(SwapFile, CleaningUpSparesWhatIsNotALeftOver) {
    XCVirtualMemory first;
    create(first, 0);
    const std::string held = m_folder.names()[0];
    m_folder.write("aSwP77.tmp", "left over");
    m_folder.write("notes.txt", "mine");
    m_folder.write("target", "keep");
    std::filesystem::create_directory(m_folder.posix("SWPfolder"));
    m_folder.write("SWPfolder/SWP1.tmp", "inside");
    std::filesystem::create_symlink("target", m_folder.posix("SWPlink.tmp"));
    m_folder.write("SWPforeign.tmp", "another user's");
    const bool isForeign = chown(m_folder.posix("SWPforeign.tmp").c_str(), 12345, 12345) == 0;
    {
        XCVirtualMemory second;
        create(second, 1);
        EXPECT_TRUE(m_folder.has(held));
        EXPECT_FALSE(m_folder.has("aSwP77.tmp"));
        EXPECT_EQ(m_folder.read("notes.txt"), "mine");
        EXPECT_EQ(m_folder.read("target"), "keep");
        EXPECT_EQ(m_folder.read("SWPfolder/SWP1.tmp"), "inside");
        EXPECT_TRUE(m_folder.has("SWPlink.tmp"));
        EXPECT_EQ(m_folder.has("SWPforeign.tmp"), isForeign);
    }
    EXPECT_TRUE(m_folder.has(held));
}

TEST_F(SwapFile, CleaningUpTheTemporaryFolderSparesStrangersWhoseNamesHoldTheLetters) {
    const char* before = std::getenv("TMPDIR");
    const std::string restored = before ? before : "";
    setenv("TMPDIR", m_folder.posix("").c_str(), 1);
    const std::vector<std::string> strangers = {"stream.euSwPd", "oldSWP1.tmp",  "SWPlan.tmp",    "SWP12345.tmp",
                                                "SWP.tmp",       "SWP12.tmp.gz", "swp_notes.tmp", "SWP1A.txt"};
    for (const std::string& name : strangers)
        m_folder.write(name, "not ours");
    for (const char* name : {"SWP1.tmp", "SWP0AF9.tmp"})
        m_folder.write(name, "left over");
    {
        XCVirtualMemory vm;
        vm.Create(16 * cnBlock, nullptr, 1);
        EXPECT_EQ(m_folder.names().size(), strangers.size() + 1);
    }
    if (before)
        setenv("TMPDIR", restored.c_str(), 1);
    else
        unsetenv("TMPDIR");
    for (const std::string& name : strangers)
        EXPECT_TRUE(m_folder.has(name)) << name;
    EXPECT_EQ(m_folder.names().size(), strangers.size());
}

TEST_F(SwapFile, FoldersThatCannotHoldItAreErrors) {
    XCVirtualMemory vm;
    XCFilePath missing = m_folder.path("no such folder");
    EXPECT_EQ(errorOf([&] { vm.Create(cnBlock, &missing, 1); }), 0x200132C9);
    m_folder.write("file", "");
    XCFilePath file = m_folder.path("file");
    EXPECT_EQ(errorOf([&] { vm.Create(cnBlock, &file, 1); }), 0x200132C9);
    create(vm, 1);
    XCSwapBlock* block = vm.Allocate(cnBlock);
    vm.Free(block);
}

// ---- A failing disk

/// The system's file system, but for what a test takes away from it.
class FailingDisk : public platform::FileSystem {
public:
    FailingDisk() : m_system(&platform::fileSystem()) { platform::replaceFileSystem(this); }
    ~FailingDisk() override { platform::replaceFileSystem(nullptr); }

    int writeError = 0;
    int readError = 0;
    int volumeError = 0;
    std::uint64_t freeBytes = ~std::uint64_t(0);

    int open(const std::string& path, const platform::OpenRequest& request,
             std::unique_ptr<platform::OpenFile>& out) override {
        std::unique_ptr<platform::OpenFile> file;
        const int error = m_system->open(path, request, file);
        if (!error)
            out = std::make_unique<File>(*this, std::move(file));
        return error;
    }
    int volume(const std::string& path, platform::VolumeInformation& out) override {
        if (volumeError)
            return volumeError;
        const int error = m_system->volume(path, out);
        out.freeBytes = std::min(out.freeBytes, freeBytes);
        return error;
    }
    int information(const std::string& path, platform::FileInformation& out) override {
        return m_system->information(path, out);
    }
    int setAttributes(const std::string& path, std::uint32_t attributes) override {
        return m_system->setAttributes(path, attributes);
    }
    int removeFile(const std::string& path) override { return m_system->removeFile(path); }
    int removeFolder(const std::string& path) override { return m_system->removeFolder(path); }
    int createFolder(const std::string& path, std::uint32_t permissions) override {
        return m_system->createFolder(path, permissions);
    }
    int rename(const std::string& from, const std::string& to) override { return m_system->rename(from, to); }
    int replaceFile(const std::string& from, const std::string& to) override { return m_system->replaceFile(from, to); }
    int copyLink(const std::string& from, const std::string& to) override { return m_system->copyLink(from, to); }
    int list(const std::string& folder, std::vector<std::string>& names) override {
        return m_system->list(folder, names);
    }
    int temporaryFolder(std::string& out) override { return m_system->temporaryFolder(out); }
    int createUnique(const std::string& folder, const std::string& prefix, std::string& path) override {
        return m_system->createUnique(folder, prefix, path);
    }
    int removeUnlessHeld(const std::string& path) override { return m_system->removeUnlessHeld(path); }
    int moveToTrash(const std::string& path) override { return m_system->moveToTrash(path); }

private:
    class File : public platform::OpenFile {
    public:
        File(FailingDisk& disk, std::unique_ptr<platform::OpenFile> file) : m_disk(disk), m_file(std::move(file)) {}

        int readAt(void* buffer, std::size_t size, std::uint64_t position, std::size_t& done) override {
            return m_disk.readError ? m_disk.readError : m_file->readAt(buffer, size, position, done);
        }
        int writeAt(const void* buffer, std::size_t size, std::uint64_t position, std::size_t& done) override {
            if (!m_disk.writeError)
                return m_file->writeAt(buffer, size, position, done);
            m_file->writeAt(buffer, size / 2, position, done); // half written
            return m_disk.writeError;
        }
        int setLength(std::uint64_t bytes) override { return m_file->setLength(bytes); }
        int flush() override { return m_file->flush(); }
        int information(platform::FileInformation& out) override { return m_file->information(out); }
        int setTimes(const platform::FileTimes& times) override { return m_file->setTimes(times); }

    private:
        FailingDisk& m_disk;
        std::unique_ptr<platform::OpenFile> m_file;
    };

    platform::FileSystem* m_system;
};

class SwapDisk : public testing::Test {
protected:
    ~SwapDisk() override {
        for (XCSwapBlock* block : m_blocks)
            m_vm.Free(block);
        m_vm.Destroy();
    }
    /// Allocates a block and fills it with its number.
    int add() {
        return errorOf([&] {
            m_blocks.push_back(m_vm.Allocate(cnBlock));
            std::memset(m_vm.Lock(m_blocks.back(), 1, nullptr), int(m_blocks.size()), cnBlock);
            m_vm.Unlock(m_blocks.back());
        });
    }
    /// Whether all blocks still hold their numbers.
    bool isIntact() {
        for (std::size_t i = 0; i < m_blocks.size(); ++i) {
            auto* bytes = static_cast<std::uint8_t*>(m_vm.Lock(m_blocks[i], 0, nullptr));
            const bool same = std::count(bytes, bytes + cnBlock, std::uint8_t(i + 1)) == cnBlock;
            m_vm.Unlock(m_blocks[i]);
            if (!same)
                return false;
        }
        return true;
    }
    FailingDisk m_disk;
    XCVirtualMemory m_vm;
    std::vector<XCSwapBlock*> m_blocks;
};

TEST_F(SwapDisk, AVolumeWithoutRoomForTheFileGives39) {
    m_disk.freeBytes = 2 * cnBlock - 1;
    EXPECT_EQ(errorOf([&] { m_vm.Create(2 * cnBlock, nullptr, 0); }), 39);
    m_disk.volumeError = 21;
    EXPECT_EQ(errorOf([&] { m_vm.Create(2 * cnBlock, nullptr, 0); }), 21);
    m_disk.volumeError = 0;
    m_disk.freeBytes = 2 * cnBlock;
    EXPECT_EQ(errorOf([&] { m_vm.Create(2 * cnBlock, nullptr, 0); }), 0);
}

TEST_F(SwapDisk, AFullVolumeKeepsWhatIsThere) {
    m_vm.Create(2 * cnBlock, nullptr, 0);
    for (int i = 0; i < 4; ++i)
        ASSERT_EQ(add(), 0);
    m_disk.freeBytes = 2 * cnBlock - 1; // less than a growth step
    EXPECT_EQ(add(), 39);
    EXPECT_EQ(m_vm.GetUsedBlockCount(), 4u);
    EXPECT_EQ(m_vm.GetSwapFileSize(), 2 * cnBlock);
    EXPECT_TRUE(isIntact());
    m_disk.freeBytes = 2 * cnBlock;
    EXPECT_EQ(add(), 0);
    EXPECT_EQ(m_vm.GetSwapFileSize(), 4 * cnBlock);
    EXPECT_TRUE(isIntact());
}

TEST_F(SwapDisk, AFailedWriteKeepsTheBlockInMemory) {
    m_vm.Create(2 * cnBlock, nullptr, 0);
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(add(), 0);
    m_disk.writeError = 112;
    EXPECT_EQ(add(), 8);
    EXPECT_EQ(m_blocks[1]->IsOnMemory(), 1);
    EXPECT_EQ(m_blocks[1]->GetEditFlag(), 1);
    EXPECT_EQ(m_vm.Purge(m_blocks[2]), 0);
    EXPECT_EQ(m_vm.GetUsedBlockCount(), 3u);
    EXPECT_TRUE(isIntact()); // reading goes on, over the budget
    m_disk.writeError = 0;
    EXPECT_EQ(add(), 0);
    EXPECT_TRUE(isIntact());
    EXPECT_LE(m_vm.GetUsedPhysicalMemorySize(), 2 * cnBlock);
}

TEST_F(SwapDisk, AFailedReadThrowsAndCanBeTriedAgain) {
    m_vm.Create(2 * cnBlock, nullptr, 0);
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(add(), 0);
    m_disk.readError = 30;
    EXPECT_NE(errorOf([&] { m_vm.Lock(m_blocks[0], 0, nullptr); }), 0);
    EXPECT_EQ(m_blocks[0]->IsOnMemory() + m_blocks[0]->IsLocked(), 0);
    m_disk.readError = 0;
    EXPECT_TRUE(isIntact());
}

TEST_F(SwapDisk, ImagesStayUsableWhenTheDiskFails) {
    m_vm.Create(2 * 65536, nullptr, 0);
    XCVOffscreen8Bit image;
    image.Create(&m_vm, 256 * 6, 256, 1);
    for (int i = 0; i < 4; ++i) {
        XCVOffscreenAutoLock lock(&image, i * 256, 0, 1);
        image.Set8BitColor(std::uint8_t(i + 1));
    }
    m_disk.writeError = 112;
    EXPECT_EQ(errorOf([&] { XCVOffscreenAutoLock lock(&image, 5 * 256, 0, 1); }), 8);
    EXPECT_EQ(image.GetLockCount(), 0);
    for (int i = 0; i < 4; ++i) {
        XCVOffscreenAutoLock lock(&image, i * 256, 0, 0);
        EXPECT_EQ(image.Get8BitColor(), i + 1);
    }
    m_disk.writeError = 0;
    XCVOffscreenAutoLock lock(&image, 5 * 256, 0, 1);
    image.Set8BitColor(6);
}

} // namespace
