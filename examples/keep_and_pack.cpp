// What an application keeps: archives with sections, settings, packed folders, enciphered and obfuscated files.
// Leaves keep_and_pack.ovwi behind: `ovwpaint convert keep_and_pack.ovwi -o picture.png` shows the bytes of a plain, an
// enciphered and an obfuscated file.
#include <ovwcmn/ovwcmn.h>

#include <cstdio>
#include <vector>

namespace {

constexpr int cnSide = 160;

int failures = 0;

void check(bool condition, const char* what) {
    std::printf("%-60s %s\n", what, condition ? "yes" : "NO");
    failures += !condition;
}

XCFilePath below(const XCFilePath& folder, const char* name) {
    XCFilePath path = folder;
    path += name;
    return path;
}

void archive(const XCFilePath& path) {
    // [archive]
    XCArchiveFile saving(XCArchive::cnSaving | XCArchive::cnLittleEndian, XCArchiveFile::cnCacheSize);
    saving.FileCreate(path, 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL);
    saving.BeginSection(); // its length stands in front of it
    saving << std::uint16_t{2} << XCString("brushes") << 0.5;
    saving.EndSection();
    saving << XCString("behind the section");
    saving.DoFlush(); // closing writes nothing
    saving.FileClose();

    XCArchiveFile loading(XCArchive::cnLoading | XCArchive::cnLittleEndian, XCArchiveFile::cnCacheSize);
    loading.FileOpen(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
    std::uint16_t version = 0;
    XCString name, behind;
    loading.BeginSection();
    loading >> version >> name; // an older reader: it does not know of the number
    loading.EndSection();       // skips the rest
    loading >> behind;
    // [/archive]
    check(version == 2 && name == "brushes" && behind == "behind the section", "an archive with a section");
}

void settings(const XCFilePath& folder) {
    // [settings]
    XCPreferenceFile file; // labels and values in one file
    file.OpenPreferenceFile(1, below(folder, "program.pref"));
    file.SetPreferenceFile("size", 40);
    file.SetPreferenceFile("margin", XCLength(10, 2));
    file.ClosePreferenceFile(); // replaces the file in one step; labels not set again are kept

    XCRegKey key; // or keys of folders
    key.Open(folder, "Settings\\Window", XCRegKey::cnWrite);
    key.SetValue(tagRECT{0, 0, 1280, 800}, "place");
    key.Close();

    std::int32_t size = 0;
    file.OpenPreferenceFile(0, below(folder, "program.pref"));
    file.GetPreferenceFile("size", size); // 0 and the value left alone where there is none
    file.ClosePreferenceFile();
    tagRECT place = {};
    key.Open(folder, "Settings\\Window", XCRegKey::cnRead);
    key.GetValue(place, "place");
    // [/settings]
    check(size == 40 && place.right == 1280, "settings in a file and in a key");
}

void pack(const XCFilePath& folder) {
    // [pack]
    XCFilePath settings = below(folder, "Settings"), preferences = below(folder, "program.pref");
    XCTArray<XCFilePath*> items;
    items.PushBack(&settings);
    items.PushBack(&preferences);
    XCFileCompression packer;
    packer.Compress(below(folder, "packed"), items);

    const XCFilePath unpacked = below(folder, "unpacked");
    unpacked.CreateFolder();
    packer.Decompress(unpacked, below(folder, "packed")); // never writes outside the folder
    // [/pack]
    check(below(unpacked, "Settings\\Window").IsFolder() && below(unpacked, "program.pref").IsExistence(),
          "a folder and a file, packed and unpacked");
}

std::vector<std::uint8_t> bytesOf(const XCFilePath& path) {
    XCFile file;
    file.Open(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(file.GetLength()));
    file.Read(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    return bytes;
}

void write(const XCFilePath& path, const std::vector<std::uint8_t>& bytes) {
    XCFile file;
    file.Create(path, 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL);
    file.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

void hide(const XCFilePath& folder, const XCFilePath& plain) {
    // [hide]
    XCEncryption cipher; // FEAL-NX, each 8 bytes by themselves: what is equal stays equal
    cipher.Encrypt("0123456789ABCDEF", plain, below(folder, "cipher"));
    cipher.Decrypt("0123456789ABCDEF", below(folder, "cipher"), below(folder, "deciphered"));

    const XCFilePath hidden = below(folder, "hidden");
    XCFilePath::CopyFileA(hidden, plain, 0);
    XCObfuscation obfuscation; // moves the bits of the first 5 KiB about
    obfuscation.SetObfuscationTableNo(3);
    obfuscation.EncodeObfuscationFile(hidden);
    // [/hide]
    check(bytesOf(below(folder, "deciphered")) == bytesOf(plain) && bytesOf(below(folder, "cipher")) != bytesOf(plain),
          "a file enciphered and deciphered");
    check(bytesOf(hidden) != bytesOf(plain), "a file obfuscated");
}

/// A disc on stripes, a byte a pixel.
std::vector<std::uint8_t> picture() {
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < cnSide; ++y)
        for (int x = 0; x < cnSide; ++x) {
            const int dx = x - cnSide / 2, dy = y - cnSide / 2;
            const bool isInside = dx * dx + dy * dy < 60 * 60;
            bytes.push_back(isInside ? 200 : y / 16 % 2 ? 60 : 20);
        }
    return bytes;
}

void show(XCVOffscreen& image, int left, const std::vector<std::uint8_t>& bytes) {
    const XCVOffscreenAutoLock lock(&image, 1);
    for (int y = 0; y < cnSide; ++y)
        for (int x = 0; x < cnSide; ++x)
            if (image.MoveCursor(left + x, y))
                image.Set8BitColor(bytes[static_cast<std::size_t>(y * cnSide + x)]);
}

void save(XCVOffscreen& image) {
    XCArchiveFile file(XCArchive::cnSaving | XCArchive::cnBigEndian, XCArchiveFile::cnCacheSize);
    file.FileCreate(xcPathFromPosix("keep_and_pack.ovwi"), 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS,
                    FILE_ATTRIBUTE_NORMAL);
    XCVOffscreen::Write(file, &image, 1);
    file.DoFlush();
}

void work(const XCFilePath& folder) {
    archive(below(folder, "archive"));
    settings(folder);
    pack(folder);
    const XCFilePath plain = below(folder, "plain");
    write(plain, picture());
    hide(folder, plain);

    xcGetVirtualMemory()->Create(64 << 20, nullptr, 1);
    {
        XCVOffscreen8Bit image;
        image.Create(xcGetVirtualMemory(), 3 * cnSide + 20, cnSide, 96.0);
        int left = 0;
        for (const char* name : {"plain", "cipher", "hidden"})
            show(image, left, bytesOf(below(folder, name))), left += cnSide + 10;
        save(image);
    }
    xcGetVirtualMemory()->Destroy();
}

} // namespace

int main() {
    try {
        const XCFilePath folder = xcPathFromPosix("keep_and_pack.files");
        folder.Delete(0);
        folder.CreateFolder();
        work(folder);
        folder.Delete(0);
        return failures;
    } catch (const XCException& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
