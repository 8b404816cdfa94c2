// Archives, packed folders, settings and paths, each beside the plainest means that memory or the system offers.

#include "duel.h"

#include <ovwcmn/xcarchivemem.h>
#include <ovwcmn/xcarray.h>
#include <ovwcmn/xcfilecompression.h>
#include <ovwcmn/xcfilepath.h>
#include <ovwcmn/xcpreferencefile.h>
#include <ovwcmn/xcstring.h>
#include <ovwcmn/xcunzip.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// A folder for one workload.
class Folder {
public:
    Folder() {
        std::string pattern = (fs::temp_directory_path() / "ovwbench-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("cannot create " + pattern);
        m_path = pattern;
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string posix(const std::string& name) const { return (m_path / name).string(); }
    XCFilePath path(const std::string& name) const { return xcPathFromPosix(posix(name).c_str()); }
    void remove(const std::string& name) const { fs::remove_all(m_path / name); }
    void renew(const std::string& name) const {
        remove(name);
        fs::create_directory(m_path / name);
    }

private:
    fs::path m_path;
};

ovwbench::Duel duelOf(const char* unit, double amount, const char* limitName, double aim = 0.0) {
    ovwbench::Duel duel;
    duel.unit = unit;
    duel.amount = amount;
    duel.limitName = limitName;
    duel.aim = aim;
    return duel;
}

// ---- Archives -------------------------------------------------------------------------------------------------------

constexpr int cnValues = 100000;

void startAgain(XCArchiveMem& archive) { archive.SetMode(XCArchive::cnSaving | XCArchive::cnBigEndian); }

void writeInts(benchmark::State& state) {
    XCArchiveMem archive(XCArchive::cnSaving, 0);
    std::vector<std::uint32_t> plain(cnValues);
    ovwbench::Duel duel = duelOf("Mint", cnValues / 1e6, "swapped into a vector");
    duel.work = [&] {
        startAgain(archive);
        for (std::int32_t i = 0; i < cnValues; ++i)
            archive << i;
    };
    duel.limit = [&] {
        for (std::uint32_t i = 0; i < cnValues; ++i)
            plain[i] = __builtin_bswap32(i);
    };
    ovwbench::run(state, duel);
}

void writeStrings(benchmark::State& state) {
    XCArchiveMem archive(XCArchive::cnSaving, 0);
    const XCString text("a layer of foliage");
    std::string plain;
    ovwbench::Duel duel = duelOf("Mstring", cnValues / 1e6, "appended to a string");
    duel.items = cnValues;
    duel.work = [&] {
        startAgain(archive);
        for (int i = 0; i < cnValues; ++i)
            archive << text;
    };
    duel.limit = [&] {
        plain.clear();
        for (int i = 0; i < cnValues; ++i) {
            plain.append(2, '\0');
            plain.append(text.GetStr(), static_cast<std::size_t>(text.GetLength()));
        }
    };
    ovwbench::run(state, duel);
}

void writeBlocks(benchmark::State& state) {
    constexpr std::uint32_t blockBytes = 262144, blocks = 64;
    XCArchiveMem archive(XCArchive::cnSaving, 0);
    const std::vector<std::uint8_t> block(blockBytes, 7);
    std::vector<std::uint8_t> plain(std::size_t{blockBytes} * blocks);
    ovwbench::Duel duel = duelOf("MB", blockBytes * blocks / 1e6, "memcpy", 0.8);
    duel.work = [&] {
        startAgain(archive);
        for (std::uint32_t i = 0; i < blocks; ++i)
            archive.Write(block.data(), blockBytes);
    };
    duel.limit = [&] {
        for (std::uint32_t i = 0; i < blocks; ++i)
            std::memcpy(&plain[std::size_t{i} * blockBytes], block.data(), blockBytes);
    };
    ovwbench::run(state, duel);
}

// ---- Packed folders -------------------------------------------------------------------------------------------------

/// Files that compress about as well as drawings do.
std::size_t writeTree(const Folder& folder, int files, std::size_t fileBytes) {
    fs::create_directory(folder.posix("tree"));
    std::string bytes(fileBytes, '\0');
    std::uint32_t seed = 1;
    for (int i = 0; i < files; ++i) {
        for (char& byte : bytes) {
            seed = seed * 1103515245 + 12345;
            byte = static_cast<char>(seed >> 28);
        }
        const std::string parent = "tree/" + std::to_string(i % 20);
        fs::create_directory(folder.posix(parent));
        std::ofstream(folder.posix(parent + '/' + std::to_string(i)), std::ios::binary) << bytes;
    }
    return bytes.size() * static_cast<std::size_t>(files);
}

bool hasTool(const std::string& tool) { return std::system(("command -v " + tool + " > /dev/null").c_str()) == 0; }

void shell(const Folder& folder, const std::string& command) {
    if (std::system(("cd " + folder.posix("") + " && " + command).c_str()) != 0)
        throw std::runtime_error(command + " failed");
}

void pack(const Folder& folder) {
    XCFilePath tree = folder.path("tree");
    XCTArray<XCFilePath*> items;
    items.PushBack(&tree);
    XCFileCompression().Compress(folder.path("packed"), items);
}

struct Tool {
    const char *name, *pack, *unpack;
};
constexpr Tool cnTar = {"tar", "tar czf other tree", "tar xzf other -C theirs"};
constexpr Tool cnZip = {"zip", "zip -qr other.zip tree", "unzip -q other.zip -d theirs"};

struct Tree {
    const char* name;
    int files;
    std::size_t fileBytes;
};

void packTree(benchmark::State& state, const Tree& tree, const Tool& tool) {
    const Folder folder;
    const std::size_t bytes = writeTree(folder, tree.files, tree.fileBytes);
    ovwbench::Duel duel = duelOf("MB", static_cast<double>(bytes) / 1e6, tool.name, 1.0);
    duel.work = [&] { pack(folder); };
    duel.limit = [&] {
        folder.remove("other.zip");
        shell(folder, tool.pack);
    };
    ovwbench::run(state, duel);
}

/// `extract` fills the folder "ours", the tool "theirs".
void unpackTree(benchmark::State& state, const Tree& tree, const Tool& tool, void (*extract)(const Folder&)) {
    const Folder folder;
    const std::size_t bytes = writeTree(folder, tree.files, tree.fileBytes);
    pack(folder);
    shell(folder, tool.pack);
    ovwbench::Duel duel = duelOf("MB", static_cast<double>(bytes) / 1e6, tool.name, 1.0);
    duel.restore = [&] { folder.renew("ours"); };
    duel.work = [&] { extract(folder); };
    duel.limit = [&] {
        folder.renew("theirs");
        shell(folder, tool.unpack);
    };
    ovwbench::run(state, duel);
}

void unpack(const Folder& folder) { XCFileCompression().Decompress(folder.path("ours"), folder.path("packed")); }

void unzip(const Folder& folder) { xcUnzip(folder.path("other.zip"), folder.path("ours")); }

// ---- Settings and paths ---------------------------------------------------------------------------------------------

constexpr int cnLabels = 10000;

std::vector<std::string> labels() {
    std::vector<std::string> result;
    for (int i = 0; i < cnLabels; ++i)
        result.push_back("tool." + std::to_string(i));
    return result;
}

void writeSettings(const Folder& folder, const std::vector<std::string>& names, std::size_t step) {
    XCPreferenceFile file;
    file.OpenPreferenceFile(1, folder.path("settings"));
    for (std::size_t i = 0; i < names.size(); i += step)
        file.SetPreferenceFile(names[i].c_str(), static_cast<std::int32_t>(i));
    file.ClosePreferenceFile();
}

std::map<std::string, int> mapOf(const std::vector<std::string>& names) {
    std::map<std::string, int> map;
    for (const std::string& name : names)
        map[name] = static_cast<int>(map.size());
    return map;
}

void settingsWritten(benchmark::State& state, bool merged) {
    const Folder folder;
    const std::vector<std::string> names = labels();
    ovwbench::Duel duel = duelOf("klabel", cnLabels / 1e3, "a map filled");
    duel.restore = [&] {
        folder.remove("settings");
        if (merged)
            writeSettings(folder, names, 1);
    };
    duel.work = [&] { writeSettings(folder, names, merged ? 2 : 1); };
    duel.limit = [&] { mapOf(names); };
    ovwbench::run(state, duel);
}

void settingsRead(benchmark::State& state) {
    const Folder folder;
    const std::vector<std::string> names = labels();
    writeSettings(folder, names, 1);
    ovwbench::Duel duel = duelOf("klabel", cnLabels / 1e3, "a map filled");
    duel.work = [&] {
        XCPreferenceFile file;
        file.OpenPreferenceFile(0, folder.path("settings"));
        std::int32_t value = 0;
        for (const std::string& name : names)
            file.GetPreferenceFile(name.c_str(), value);
    };
    duel.limit = [&] { mapOf(names); };
    ovwbench::run(state, duel);
}

void paths(benchmark::State& state) {
    constexpr int rounds = 1000;
    const XCFilePath base("C:\\pictures\\2024\\summer"), target("C:\\pictures\\2023\\winter\\sea.png");
    const fs::path plainBase("/pictures/2024/summer"), plainTarget("/pictures/2023/winter/sea.png");
    ovwbench::Duel duel = duelOf("kround", rounds / 1e3, "std::filesystem::path");
    duel.work = [&] {
        for (int i = 0; i < rounds; ++i) {
            XCString relative;
            XCFilePath back, folder;
            XCFilePath::MakeRelativePath(relative, base, target);
            back.RemakePath(relative, base);
            back.GetFolderPath(folder);
            folder += "sky.png";
        }
    };
    duel.limit = [&] {
        for (int i = 0; i < rounds; ++i) {
            const fs::path relative = plainTarget.lexically_relative(plainBase);
            const fs::path back = (plainBase / relative).lexically_normal();
            fs::path folder = back.parent_path();
            folder /= "sky.png";
        }
    };
    ovwbench::run(state, duel);
}

void addTrees() {
    static constexpr Tree trees[] = {{"2000 small files", 2000, 2000}, {"one large file", 1, 16000000}};
    for (const Tool& tool : {cnTar, cnZip}) {
        if (!hasTool(tool.name) || (tool.name == cnZip.name && !hasTool("unzip")))
            continue;
        for (const Tree& tree : trees) {
            const std::string name = std::string(", ") + tree.name + ", beside " + tool.name;
            ovwbench::add("files/pack" + name, [=](benchmark::State& state) { packTree(state, tree, tool); });
            ovwbench::add("files/unpack" + name,
                          [=](benchmark::State& state) { unpackTree(state, tree, tool, unpack); });
            if (tool.name == cnZip.name)
                ovwbench::add("files/unzip" + name,
                              [=](benchmark::State& state) { unpackTree(state, tree, tool, unzip); });
        }
    }
}

const bool s_added = [] {
    ovwbench::add("files/archive, ints", writeInts);
    ovwbench::add("files/archive, strings", writeStrings);
    ovwbench::add("files/archive, blocks", writeBlocks);
    addTrees();
    ovwbench::add("files/settings, written", [](benchmark::State& state) { settingsWritten(state, false); });
    ovwbench::add("files/settings, half merged", [](benchmark::State& state) { settingsWritten(state, true); });
    ovwbench::add("files/settings, read", settingsRead);
    ovwbench::add("files/paths, there and back", paths);
    return true;
}();

} // namespace
