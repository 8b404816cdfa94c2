// Images as streams: compressed in memory beside zlib alone on the same blocks, raw in files beside plain file I/O.

#include "canvas.h"
#include "duel.h"

#include <ovwcmn/xcarchivefile.h>
#include <ovwcmn/xcarchivemem.h>
#include <ovwcmn/xcfilepath.h>
#include <ovwcmn/xcvirtualmemory.h>
#include <ovwcmn/xcvoffscreen.h>
#include <ovwcmn/xcvoffscreenlock.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>
#include <zlib.h>

namespace {

constexpr int cnBlock = XCVOffscreen::cnBlockSize;
constexpr std::size_t cnBlockBytes = std::size_t{cnBlock} * cnBlock * 4;
using Bytes = std::vector<std::uint8_t>;

/// A 32-bit image of varied pixels in every `step`-th block, and those blocks as plain memory.
class Picture {
public:
    Picture(int side, int step) {
        xcCreateVirtualMemory(nullptr);
        m_image.Create(xcGetVirtualMemory(), side, side, 72.0);
        const std::vector<std::uint32_t> pixels = ovwbench::variedPixels(cnBlock, cnBlock);
        XCVOffscreenAutoLock lock(&m_image, 1);
        const int across = side / cnBlock;
        for (int i = 0; i < across * across; i += step) {
            m_image.MoveCursor(i % across * cnBlock, i / across * cnBlock);
            std::memcpy(m_image.GetBaseAddress(), pixels.data(), cnBlockBytes);
            m_image.GetBaseAddress()[i % 4096] ^= 0x55;
            m_blocks.emplace_back(m_image.GetBaseAddress(), m_image.GetBaseAddress() + cnBlockBytes);
        }
    }
    ~Picture() {
        m_image.Destroy();
        xcDestroyVirtualMemory();
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    XCVOffscreen& image() { return m_image; }
    const std::vector<Bytes>& blocks() const { return m_blocks; }
    double megabytes() const { return static_cast<double>(m_blocks.size() * cnBlockBytes) / 1e6; }

private:
    XCVOffscreen32Bit m_image;
    std::vector<Bytes> m_blocks;
};

ovwbench::Duel duelOfBytes(const Picture& picture, double aim) {
    ovwbench::Duel duel;
    duel.unit = "MB";
    duel.amount = picture.megabytes();
    duel.items = static_cast<double>(picture.blocks().size());
    duel.aim = aim;
    return duel;
}

std::vector<Bytes> deflated(const std::vector<Bytes>& blocks) {
    std::vector<Bytes> result;
    for (const Bytes& block : blocks) {
        Bytes out(compressBound(cnBlockBytes));
        uLongf size = out.size();
        compress(out.data(), &size, block.data(), block.size());
        out.resize(size);
        result.push_back(std::move(out));
    }
    return result;
}

void writeInMemory(XCArchiveMem& archive, Picture& picture, int compress) {
    archive.MemFree();
    archive.SetMode(static_cast<int>(XCArchive::cnSaving | XCArchive::cnBigEndian));
    XCVOffscreen::Write(archive, &picture.image(), compress);
}

void readInMemory(XCArchiveMem& archive) {
    archive.SetMode(static_cast<int>(XCArchive::cnLoading | XCArchive::cnBigEndian));
    XCVOffscreen::DeleteOffscreen(XCVOffscreen::Read(archive, nullptr));
}

void writeCompressed(benchmark::State& state, int side, int step) {
    Picture picture(side, step);
    XCArchiveMem archive(XCArchive::cnSaving, 0);
    ovwbench::Duel duel = duelOfBytes(picture, 0.9);
    duel.work = [&] { writeInMemory(archive, picture, 1); };
    duel.limitName = "zlib's compress";
    duel.limit = [&] { deflated(picture.blocks()); };
    ovwbench::run(state, duel);
}

void readCompressed(benchmark::State& state, int side, int step) {
    Picture picture(side, step);
    XCArchiveMem archive(XCArchive::cnSaving, 0);
    writeInMemory(archive, picture, 1);
    const std::vector<Bytes> streams = deflated(picture.blocks());
    Bytes block(cnBlockBytes);
    ovwbench::Duel duel = duelOfBytes(picture, 0.9);
    duel.work = [&] { readInMemory(archive); };
    duel.limitName = "zlib's uncompress";
    duel.limit = [&] {
        for (const Bytes& stream : streams) {
            uLongf size = block.size();
            uncompress(block.data(), &size, stream.data(), stream.size());
        }
    };
    ovwbench::run(state, duel);
}

/// Two files in the system's temporary folder, gone afterwards.
class TwoFiles {
public:
    ~TwoFiles() {
        for (const std::string& name : {ours, plain})
            std::remove(name.c_str());
    }
    const std::string ours = (std::filesystem::temp_directory_path() / "ovwbench-image").string();
    const std::string plain = (std::filesystem::temp_directory_path() / "ovwbench-plain").string();
};

void writePlain(const std::string& name, const std::vector<Bytes>& blocks) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "wb"), std::fclose);
    for (const Bytes& block : blocks)
        std::fwrite(block.data(), 1, block.size(), file.get());
}

void writeFile(const std::string& name, Picture& picture) {
    XCArchiveFile archive(XCArchive::cnSaving, XCArchiveFile::cnCacheSize);
    archive.FileCreate(xcPathFromPosix(name.c_str()), 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL);
    XCVOffscreen::Write(archive, &picture.image(), 0);
    archive.DoFlush();
}

void readFile(const std::string& name) {
    XCArchiveFile archive(XCArchive::cnLoading, XCArchiveFile::cnCacheSize);
    archive.FileOpen(xcPathFromPosix(name.c_str()), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING,
                     FILE_ATTRIBUTE_NORMAL);
    XCVOffscreen::DeleteOffscreen(XCVOffscreen::Read(archive, nullptr));
}

void writeRaw(benchmark::State& state, int side, int step) {
    Picture picture(side, step);
    const TwoFiles files;
    ovwbench::Duel duel = duelOfBytes(picture, 0.8);
    duel.work = [&] { writeFile(files.ours, picture); };
    duel.limitName = "fwrite";
    duel.limit = [&] { writePlain(files.plain, picture.blocks()); };
    ovwbench::run(state, duel);
}

void readRaw(benchmark::State& state, int side, int step) {
    Picture picture(side, step);
    const TwoFiles files;
    writeFile(files.ours, picture);
    writePlain(files.plain, picture.blocks());
    std::vector<Bytes> blocks = picture.blocks();
    ovwbench::Duel duel = duelOfBytes(picture, 0.8);
    duel.work = [&] { readFile(files.ours); };
    duel.limitName = "fread";
    duel.limit = [&] {
        std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(files.plain.c_str(), "rb"), std::fclose);
        for (Bytes& block : blocks)
            if (std::fread(block.data(), 1, block.size(), file.get()) != block.size())
                return;
    };
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    struct Kind {
        const char* name;
        int side;
        int step;
    };
    for (const Kind& kind : {Kind{"dense 4096", 4096, 1}, Kind{"sparse 8192", 8192, 16}}) {
        const auto addOne = [&](const char* what, void (*body)(benchmark::State&, int, int)) {
            ovwbench::add(std::string("stream/") + what + ", " + kind.name,
                          [=](benchmark::State& state) { body(state, kind.side, kind.step); });
        };
        addOne("write compressed", writeCompressed);
        addOne("read compressed", readCompressed);
        addOne("write raw", writeRaw);
        addOne("read raw", readRaw);
    }
    return true;
}();

} // namespace
