// Blocks to the swap file and back, beside pwrite and pread of the same blocks. The system's page cache holds both
// files.

#include "duel.h"

#include <ovwcmn/xcvirtualmemory.h>
#include <ovwcmn/xcvoffscreen.h>
#include <ovwcmn/xcvoffscreenlock.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t cnBlockBytes = 262144;
constexpr int cnBlock = XCVOffscreen::cnBlockSize;
constexpr std::uint32_t cnMebibyte = 1u << 20;

/// A file without a name, in the folder where swap files go.
class PlainFile {
public:
    PlainFile() {
        std::string path = (std::filesystem::temp_directory_path() / "ovwbench-XXXXXX").string();
        m_file = mkstemp(path.data());
        if (m_file < 0)
            throw std::runtime_error("cannot create " + path);
        unlink(path.c_str());
    }
    ~PlainFile() { close(m_file); }
    PlainFile(const PlainFile&) = delete;
    PlainFile& operator=(const PlainFile&) = delete;

    void write(const std::uint8_t* block, int index) const { check(pwrite(m_file, block, cnBlockBytes, place(index))); }
    void read(std::uint8_t* block, int index) const { check(pread(m_file, block, cnBlockBytes, place(index))); }

private:
    static off_t place(int index) { return static_cast<off_t>(index) * static_cast<off_t>(cnBlockBytes); }
    static void check(ssize_t bytes) {
        if (bytes != static_cast<ssize_t>(cnBlockBytes))
            throw std::runtime_error("plain file I/O failed");
    }

    int m_file;
};

/// An image of `across` x `across` blocks in a store with a budget, and the same blocks as plain memory.
class SwappedImage {
public:
    SwappedImage(std::uint32_t budget, int across)
        : m_across(across), m_plain(blockCount() * cnBlockBytes), m_buffer(budget) {
        for (std::size_t i = 0; i < m_plain.size(); i++)
            m_plain[i] = static_cast<std::uint8_t>(i * 31 + i / cnBlockBytes);
        m_store.Create(budget, nullptr, 0);
        m_image.Create(&m_store, across * cnBlock, across * cnBlock, 72.0);
        paint();
        for (int i = 0; i < static_cast<int>(blockCount()); i++)
            m_file.write(plainBlock(i), i);
    }

    std::size_t blockCount() const { return static_cast<std::size_t>(m_across * m_across); }
    double megabytes() const { return static_cast<double>(blockCount() * cnBlockBytes) / 1e6; }

    /// Writes every block anew.
    void paint() {
        visit(1, [this](int i, std::uint8_t* block) { std::memcpy(block, plainBlock(i), cnBlockBytes); });
    }
    void unload() { m_image.UnloadAllBlock(); }
    /// Has every block in memory, one after the other.
    void load() {
        visit(0, [](int, std::uint8_t*) {});
    }
    /// Marks every block edited.
    void edit() {
        visit(1, [](int i, std::uint8_t* block) { block[0] = static_cast<std::uint8_t>(i); });
    }
    void writePlain() const {
        for (int i = 0; i < static_cast<int>(blockCount()); i++)
            m_file.write(&m_plain[static_cast<std::size_t>(i) * cnBlockBytes], i);
    }
    /// Through a buffer as large as the budget.
    void copyAndWritePlain() {
        for (int i = 0; i < static_cast<int>(blockCount()); i++) {
            const std::size_t place = static_cast<std::size_t>(i) * cnBlockBytes % m_buffer.size();
            std::memcpy(&m_buffer[place], plainBlock(i), cnBlockBytes);
            m_file.write(&m_buffer[place], i);
        }
    }
    void readPlain() {
        for (int i = 0; i < static_cast<int>(blockCount()); i++)
            m_file.read(plainBlock(i), i);
    }

private:
    std::uint8_t* plainBlock(int index) { return &m_plain[static_cast<std::size_t>(index) * cnBlockBytes]; }

    template <class Visit>
    void visit(int editing, Visit visitBlock) {
        XCVOffscreenAutoLock lock(&m_image, 0, 0, editing);
        for (int i = 0; i < static_cast<int>(blockCount()); i++) {
            m_image.MoveCursor(i % m_across * cnBlock, i / m_across * cnBlock);
            visitBlock(i, m_image.GetBaseAddress());
        }
    }

    int m_across;
    std::vector<std::uint8_t> m_plain;
    std::vector<std::uint8_t> m_buffer;
    XCVirtualMemory m_store;
    XCVOffscreen32Bit m_image;
    PlainFile m_file;
};

ovwbench::Duel duelOfBytes(const SwappedImage& image) {
    ovwbench::Duel duel;
    duel.unit = "MB";
    duel.amount = image.megabytes();
    duel.items = static_cast<double>(image.blockCount());
    duel.aim = 0.80;
    return duel;
}

constexpr int cnAcross = 16; // 64 MiB

void unloadAll(benchmark::State& state) {
    SwappedImage image(128 * cnMebibyte, cnAcross);
    ovwbench::Duel duel = duelOfBytes(image);
    duel.restore = [&] { image.edit(); };
    duel.work = [&] { image.unload(); };
    duel.limitName = "pwrite";
    duel.limit = [&] { image.writePlain(); };
    ovwbench::run(state, duel);
}

void loadAll(benchmark::State& state) {
    SwappedImage image(128 * cnMebibyte, cnAcross);
    ovwbench::Duel duel = duelOfBytes(image);
    duel.restore = [&] { image.unload(); };
    duel.work = [&] { image.load(); };
    duel.limitName = "pread";
    duel.limit = [&] { image.readPlain(); };
    ovwbench::run(state, duel);
}

void paintBeyondBudget(benchmark::State& state) {
    SwappedImage image(16 * cnMebibyte, cnAcross);
    ovwbench::Duel duel = duelOfBytes(image);
    duel.restore = [&] { image.load(); };
    duel.work = [&] { image.paint(); };
    duel.limitName = "memcpy and pwrite";
    duel.limit = [&] { image.copyAndWritePlain(); };
    ovwbench::run(state, duel);
}

void readBeyondBudget(benchmark::State& state) {
    SwappedImage image(16 * cnMebibyte, cnAcross);
    ovwbench::Duel duel = duelOfBytes(image);
    duel.work = [&] { image.load(); };
    duel.limitName = "pread";
    duel.limit = [&] { image.readPlain(); };
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    ovwbench::add("swap/out", unloadAll);
    ovwbench::add("swap/in", loadAll);
    ovwbench::add("swap/out while painting", paintBeyondBudget);
    ovwbench::add("swap/in while reading", readBeyondBudget);
    return true;
}();

} // namespace
