#include "imagefile.h"

#include "failure.h"
#include "imageedits.h"
#include "interrupt.h"
#include "naming.h"
#include "picture.h"
#include "pngexport.h"
#include "pngimport.h"

#include "ovwcmn/xcarchivefile.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xcprogress.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace ovwpaint {

namespace {

/// A stream into a file that appears whole or not at all.
class StreamWriter final : public XCArchive {
public:
    StreamWriter(OutputFile& file, Progress& progress) : m_file(file), m_progress(progress) {
        Init(cnSaving | cnBigEndian, XCArchiveFile::cnCacheSize);
    }

protected:
    std::uint32_t WriteSelf(const void* bytes, std::uint32_t size) override {
        throwIfInterrupted();
        m_file.write(bytes, size);
        m_progress.showAmount("writing", GetLength());
        return size;
    }
    std::uint32_t ReadSelf(void*, std::uint32_t) override { return 0; }
    std::uint32_t SeekSelf(int offset, std::uint32_t origin) override {
        const bool isRelative = origin == 1;
        const std::int64_t distance = isRelative ? offset : static_cast<std::uint32_t>(offset);
        return static_cast<std::uint32_t>(m_file.seek(distance, isRelative));
    }

private:
    OutputFile& m_file;
    Progress& m_progress;
};

/// Shows how far an archive is read whenever the library asks whether to stop.
class ReadingPulse final : public IXCAbort {
public:
    ReadingPulse(const XCArchive& archive, Progress& progress) : m_archive(archive), m_progress(progress) {}
    int IsAbort() override {
        throwIfInterrupted();
        m_progress.show("reading", m_archive.GetPosition(), m_archive.GetLength());
        return 0;
    }

private:
    const XCArchive& m_archive;
    Progress& m_progress;
};

/// Runs `read(archive)` on a stream; what the library finds wrong with it becomes a failure that names the file.
template <class Read>
auto readStream(const std::string& path, Read read) {
    constexpr int cnCodeParameter = 0x20010008; // ends early
    constexpr int cnCodeContents = 0x2001000B;
    try {
        XCArchiveFile archive(XCArchive::cnLoading | XCArchive::cnBigEndian, XCArchiveFile::cnCacheSize);
        archive.FileOpen(xcPathFromPosix(path.c_str()), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
        return read(archive);
    } catch (const XCException& error) {
        const int code = error.GetErrorCode();
        if (code == cnCodeParameter || code == cnCodeContents)
            throw Failure(path + ": neither a PNG picture nor an image stream, or damaged");
        throw Failure(path + ": " + error.what());
    }
}

Image readStreamImage(const std::string& path, Progress& progress) {
    return readStream(path, [&](XCArchive& archive) {
        ReadingPulse pulse(archive, progress);
        Image image(XCVOffscreen::Read(archive, &pulse));
        if (image->GetWidth() == 0 || image->GetHeight() == 0)
            throw Failure(path + ": the image has no pixels");
        return image;
    });
}

} // namespace

ImageForm formOfFile(const std::string& path) {
    constexpr std::array<char, 8> cnPngSignature = {'\x89', 'P', 'N', 'G', '\r', '\n', '\x1A', '\n'};
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw Failure(path + ": no regular file");
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw Failure(path + ": " + (errno != 0 ? std::strerror(errno) : "cannot be opened"));
    std::array<char, 8> start = {};
    file.read(start.data(), start.size());
    return start == cnPngSignature ? ImageForm::png : ImageForm::stream;
}

ImageForm formByName(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return extension == ".png" ? ImageForm::png : ImageForm::stream;
}

ImageHeader readImageHeader(const std::string& path) {
    if (formOfFile(path) == ImageForm::png) {
        const PngReader picture(path);
        return {picture.width(), picture.height(), picture.storedDepth(), cnResolution};
    }
    return readStream(path, [](XCArchive& archive) {
        ImageHeader header;
        XCVOffscreen::ReadHeader(&header.width, &header.height, &header.depth, &header.resolution, archive);
        return header;
    });
}

Image loadImage(const std::string& path, Progress& progress) {
    if (formOfFile(path) == ImageForm::stream)
        return readStreamImage(path, progress);
    PngReader picture(path);
    return readImage(picture, picture.storedDepth(), &progress);
}

void saveImage(Canvas& canvas, int depth, ImageForm form, bool compress, OutputFile& file, Progress& progress) {
    if (form == ImageForm::png) {
        writePng(canvas, depth, file, progress);
        return;
    }
    const Image converted = canvas.depth() == depth ? nullptr : withDepth(canvas.image(), depth);
    StreamWriter archive(file, progress);
    XCVOffscreen::Write(archive, converted ? converted.get() : &canvas.image(), compress);
    archive.DoFlush();
}

void saveImage(Image image, const std::string& name, OutputFile& file, Progress& progress) {
    const int depth = image->GetDepth();
    Canvas canvas(std::move(image), cnTransparent, false);
    saveImage(canvas, depth, formByName(name), true, file, progress);
}

} // namespace ovwpaint
