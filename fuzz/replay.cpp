// replay TARGET FILE-OR-FOLDER...: runs the inputs through a target, as the tests do with seeds and findings.

#include "targets.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

struct Target {
    const char* name;
    void (*run)(ovw::fuzz::Input);
};

constexpr Target cnTargets[] = {
    {"archive", ovw::fuzz::archive},
    {"imageStream", ovw::fuzz::imageStream},
    {"packedImage", ovw::fuzz::packedImage},
    {"classicImage", ovw::fuzz::classicImage},
    {"packedFile", ovw::fuzz::packedFile},
    {"zipFile", ovw::fuzz::zipFile},
    {"preferenceFile", ovw::fuzz::preferenceFile},
    {"settingsKey", ovw::fuzz::settingsKey},
    {"pointFile", ovw::fuzz::pointFile},
    {"cipherFile", ovw::fuzz::cipherFile},
    {"documentHead", ovw::fuzz::documentHead},
    {"stringTable", ovw::fuzz::stringTable},
    {"pathText", ovw::fuzz::pathText},
    {"numberText", ovw::fuzz::numberText},
    {"inkDocument", ovw::fuzz::inkDocument},
    {"brushFile", ovw::fuzz::brushFile},
};

void replay(const Target& target, const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    target.run({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

} // namespace

int main(int count, char** arguments) {
    const char* const name = count > 1 ? arguments[1] : "";
    for (const Target& target : cnTargets)
        if (!std::strcmp(target.name, name)) {
            for (int i = 2; i < count; ++i)
                if (std::filesystem::is_directory(arguments[i]))
                    for (const auto& entry : std::filesystem::directory_iterator(arguments[i]))
                        replay(target, entry.path());
                else if (std::filesystem::exists(arguments[i]))
                    replay(target, arguments[i]);
            return 0;
        }
    std::fprintf(stderr, "replay TARGET FILE-OR-FOLDER...; targets:");
    for (const Target& target : cnTargets)
        std::fprintf(stderr, " %s", target.name);
    std::fprintf(stderr, "\n");
    return 2;
}
