#ifndef OVW_TESTS_SUPPORT_CRASHINGDISK_H
#define OVW_TESTS_SUPPORT_CRASHINGDISK_H

#include "Platform/file.h"
#include "Platform/systemerror.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// @file
/// The system's file system with a fault at a call of choice.

namespace ovw::test {

/// Stands in for the system's file system while it lives. From changing call number `failAt` on (0: never), either that
/// one call fails, or, as after a power cut, every call does. What a file was not flushed of is lost at the crash.
class CrashingDisk : public platform::FileSystem {
public:
    enum class Fault { oneCall, powerCut };

    explicit CrashingDisk(int failAt = 0, Fault fault = Fault::oneCall)
        : m_system(&platform::fileSystem()), m_failAt(failAt), m_fault(fault) {
        platform::replaceFileSystem(this);
    }
    ~CrashingDisk() override { platform::replaceFileSystem(nullptr); }

    /// Calls so far that change something.
    int calls() const { return m_calls; }

    int open(const std::string& path, const platform::OpenRequest& request,
             std::unique_ptr<platform::OpenFile>& out) override {
        if (request.write && fails())
            return cnFault;
        std::unique_ptr<platform::OpenFile> file;
        const int code = m_system->open(path, request, file);
        if (code == 0)
            out = std::make_unique<File>(*this, path, request.write, std::move(file));
        return code;
    }
    int information(const std::string& path, platform::FileInformation& out) override {
        return m_system->information(path, out);
    }
    int setAttributes(const std::string& path, std::uint32_t attributes) override {
        return fails() ? cnFault : m_system->setAttributes(path, attributes);
    }
    int removeFile(const std::string& path) override { return fails() ? cnFault : m_system->removeFile(path); }
    int removeFolder(const std::string& path) override { return fails() ? cnFault : m_system->removeFolder(path); }
    int createFolder(const std::string& path, std::uint32_t permissions) override {
        return fails() ? cnFault : m_system->createFolder(path, permissions);
    }
    int rename(const std::string& from, const std::string& to) override {
        return moved(from, to, [&] { return m_system->rename(from, to); });
    }
    int replaceFile(const std::string& from, const std::string& to) override {
        return moved(from, to, [&] { return m_system->replaceFile(from, to); });
    }
    int copyLink(const std::string& from, const std::string& to) override {
        return fails() ? cnFault : m_system->copyLink(from, to);
    }
    int list(const std::string& folder, std::vector<std::string>& names) override {
        return m_system->list(folder, names);
    }
    int volume(const std::string& path, platform::VolumeInformation& out) override {
        return m_system->volume(path, out);
    }
    int temporaryFolder(std::string& out) override { return m_system->temporaryFolder(out); }
    int createUnique(const std::string& folder, const std::string& prefix, std::string& path) override {
        return fails() ? cnFault : m_system->createUnique(folder, prefix, path);
    }
    int removeUnlessHeld(const std::string& path) override {
        return fails() ? cnFault : m_system->removeUnlessHeld(path);
    }
    int moveToTrash(const std::string& path) override { return fails() ? cnFault : m_system->moveToTrash(path); }

    static constexpr int cnFault = platform::cnErrorVolumeFull;

private:
    class File : public platform::OpenFile {
    public:
        File(CrashingDisk& disk, std::string path, bool writes, std::unique_ptr<platform::OpenFile> file)
            : m_disk(disk), m_path(std::move(path)), m_writes(writes), m_file(std::move(file)) {}
        int readAt(void* buffer, std::size_t size, std::uint64_t position, std::size_t& done) override {
            return m_file->readAt(buffer, size, position, done);
        }
        int writeAt(const void* buffer, std::size_t size, std::uint64_t position, std::size_t& done) override {
            done = 0;
            if (m_disk.fails())
                return cnFault;
            m_disk.m_unflushed.insert(m_path);
            return m_file->writeAt(buffer, size, position, done);
        }
        int setLength(std::uint64_t bytes) override { return m_disk.fails() ? cnFault : m_file->setLength(bytes); }
        int flush() override {
            if (m_writes && m_disk.fails())
                return cnFault;
            m_disk.m_unflushed.erase(m_path);
            return m_file->flush();
        }
        int information(platform::FileInformation& out) override { return m_file->information(out); }
        int setTimes(const platform::FileTimes& times) override { return m_file->setTimes(times); }

    private:
        CrashingDisk& m_disk;
        std::string m_path;
        bool m_writes;
        std::unique_ptr<platform::OpenFile> m_file;
    };

    bool fails() {
        ++m_calls;
        const bool now = m_failAt > 0 && (m_fault == Fault::oneCall ? m_calls == m_failAt : m_calls >= m_failAt);
        if (now && m_fault == Fault::powerCut && m_calls == m_failAt)
            loseUnflushed();
        return now;
    }

    void loseUnflushed() {
        for (const std::string& path : m_unflushed) {
            std::unique_ptr<platform::OpenFile> file;
            platform::OpenRequest request;
            request.write = request.shareRead = request.shareWrite = true;
            request.disposition = platform::Disposition::openExisting;
            if (m_system->open(path, request, file) == 0)
                file->setLength(0);
        }
        m_unflushed.clear();
    }

    template <class Move>
    int moved(const std::string& from, const std::string& to, Move move) {
        if (fails())
            return cnFault;
        const int code = move();
        if (auto node = m_unflushed.extract(from); code == 0 && !node.empty())
            m_unflushed.insert(to);
        return code;
    }

    platform::FileSystem* m_system;
    int m_failAt;
    Fault m_fault;
    int m_calls = 0;
    std::set<std::string> m_unflushed;
};

} // namespace ovw::test

#endif // OVW_TESTS_SUPPORT_CRASHINGDISK_H
