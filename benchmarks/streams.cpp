// Images as streams: compressed in memory beside a codec alone on the same blocks, raw in files beside plain file I/O.

#include "duel.h"
#include "sparsecanvas.h"

#include <ovwcmn/xcarchivefile.h>
#include <ovwcmn/xcarchivemem.h>
#include <ovwcmn/xcfilepath.h>

#include <cstdio>
#include <filesystem>
#include <libdeflate.h>
#include <memory>
#include <string>
#include <vector>
#include <zlib.h>

namespace {

using Picture = ovwbench::SparseCanvas;
using Bytes = Picture::Block;
constexpr std::size_t cnBlockBytes = Picture::cnBlockBytes;

ovwbench::Duel duelOfBytes(const Picture& picture, double aim) {
    ovwbench::Duel duel;
    duel.unit = "MB";
    duel.amount = picture.megabytes();
    duel.items = static_cast<double>(picture.blocks().size());
    duel.aim = aim;
    return duel;
}

/// A library that deflates and inflates whole blocks. What `deflate` leaves is cut to its size.
class Codec {
public:
    explicit Codec(const char* name) : m_name(name) {}
    virtual ~Codec() = default;
    const char* name() const { return m_name; }
    virtual void deflate(const Bytes& block, Bytes& out) = 0;
    virtual void inflate(const Bytes& stream, Bytes& block) = 0;

private:
    const char* m_name;
};

class Zlib : public Codec {
public:
    Zlib() : Codec("zlib alone") {}
    void deflate(const Bytes& block, Bytes& out) override {
        out.resize(compressBound(cnBlockBytes));
        uLongf size = out.size();
        compress(out.data(), &size, block.data(), block.size());
        out.resize(size);
    }
    void inflate(const Bytes& stream, Bytes& block) override {
        uLongf size = block.size();
        uncompress(block.data(), &size, stream.data(), stream.size());
    }
};

/// At the level that stands for zlib's default.
class Libdeflate : public Codec {
public:
    Libdeflate() : Codec("libdeflate alone") {}
    ~Libdeflate() override {
        libdeflate_free_compressor(m_compressor);
        libdeflate_free_decompressor(m_decompressor);
    }
    Libdeflate(const Libdeflate&) = delete;
    Libdeflate& operator=(const Libdeflate&) = delete;
    void deflate(const Bytes& block, Bytes& out) override {
        out.resize(libdeflate_zlib_compress_bound(m_compressor, block.size()));
        out.resize(libdeflate_zlib_compress(m_compressor, block.data(), block.size(), out.data(), out.size()));
    }
    void inflate(const Bytes& stream, Bytes& block) override {
        libdeflate_zlib_decompress(m_decompressor, stream.data(), stream.size(), block.data(), block.size(), nullptr);
    }

private:
    libdeflate_compressor* m_compressor = libdeflate_alloc_compressor(6);
    libdeflate_decompressor* m_decompressor = libdeflate_alloc_decompressor();
};

void writeInMemory(XCArchiveMem& archive, Picture& picture, int compress) {
    archive.MemFree();
    archive.SetMode(static_cast<int>(XCArchive::cnSaving | XCArchive::cnBigEndian));
    XCVOffscreen::Write(archive, &picture.image(), compress);
}

void readInMemory(XCArchiveMem& archive) {
    archive.SetMode(static_cast<int>(XCArchive::cnLoading | XCArchive::cnBigEndian));
    XCVOffscreen::DeleteOffscreen(XCVOffscreen::Read(archive, nullptr));
}

template <class Alone>
void writeCompressed(benchmark::State& state, int side, int step, double aim) {
    Picture picture(side, step);
    XCArchiveMem archive(XCArchive::cnSaving, 0);
    Alone codec;
    Bytes stream;
    ovwbench::Duel duel = duelOfBytes(picture, aim);
    duel.work = [&] { writeInMemory(archive, picture, 1); };
    duel.limitName = codec.name();
    duel.limit = [&] {
        for (const Bytes& block : picture.blocks())
            codec.deflate(block, stream);
    };
    ovwbench::run(state, duel);
}

template <class Alone>
void readCompressed(benchmark::State& state, int side, int step, double aim) {
    Picture picture(side, step);
    XCArchiveMem archive(XCArchive::cnSaving, 0);
    writeInMemory(archive, picture, 1);
    Alone codec;
    std::vector<Bytes> streams(picture.blocks().size());
    for (std::size_t i = 0; i < streams.size(); i++)
        codec.deflate(picture.blocks()[i], streams[i]);
    Bytes block(cnBlockBytes);
    ovwbench::Duel duel = duelOfBytes(picture, aim);
    duel.work = [&] { readInMemory(archive); };
    duel.limitName = codec.name();
    duel.limit = [&] {
        for (const Bytes& stream : streams)
            codec.inflate(stream, block);
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

void writeRaw(benchmark::State& state, int side, int step, double aim) {
    Picture picture(side, step);
    const TwoFiles files;
    ovwbench::Duel duel = duelOfBytes(picture, aim);
    duel.work = [&] { writeFile(files.ours, picture); };
    duel.limitName = "fwrite";
    duel.limit = [&] { writePlain(files.plain, picture.blocks()); };
    ovwbench::run(state, duel);
}

void readRaw(benchmark::State& state, int side, int step, double aim) {
    Picture picture(side, step);
    const TwoFiles files;
    writeFile(files.ours, picture);
    writePlain(files.plain, picture.blocks());
    std::vector<Bytes> blocks = picture.blocks();
    ovwbench::Duel duel = duelOfBytes(picture, aim);
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
    for (const Kind& kind : {Kind{"dense 8192", 8192, 1}, Kind{"sparse 8192", 8192, 16}}) {
        const auto addOne = [&](const char* what, void (*body)(benchmark::State&, int, int, double), double aim) {
            ovwbench::add(std::string("stream/") + what + ", " + kind.name,
                          [=](benchmark::State& state) { body(state, kind.side, kind.step, aim); });
        };
        addOne("write compressed", writeCompressed<Libdeflate>, 0.9);
        addOne("read compressed", readCompressed<Libdeflate>, 0.9);
        if (kind.step > 1) { // zlib takes its time
            addOne("write as zlib", writeCompressed<Zlib>, 0.95);
            addOne("read as zlib", readCompressed<Zlib>, 0.95);
        }
        addOne("write raw", writeRaw, 0.8);
        addOne("read raw", readRaw, 0.8);
    }
    return true;
}();

} // namespace
