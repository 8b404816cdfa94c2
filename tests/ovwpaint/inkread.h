#ifndef OVWPAINT_TEST_INKREAD_H
#define OVWPAINT_TEST_INKREAD_H

/// @file
/// InkML from text, for the tests of ovwpaint.

#include "failure.h"
#include "inkdocument.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace ovwpaint::test {

/// A folder that goes away with its files.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "ovwpaintXXXXXX").string();
        m_path = mkdtemp(name.data());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path(const std::string& name) const { return (m_path / name).string(); }
    std::string write(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }
    std::size_t fileCount() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(m_path), std::filesystem::directory_iterator()));
    }

private:
    std::filesystem::path m_path;
};

inline std::string fileText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

using Strokes = std::vector<std::vector<PenSample>>;

/// Every sample of every painted trace.
inline Strokes readInk(const std::string& xml) {
    const TemporaryFolder folder;
    InkDocument document(folder.write("test.inkml", xml));
    document.survey();
    Strokes strokes;
    for (const Trace& trace : document.traces()) {
        strokes.emplace_back();
        TraceDecoder decoder = document.decode(trace);
        for (PenSample sample; decoder.next(sample);)
            strokes.back().push_back(sample);
    }
    return strokes;
}

/// The message of the failure that reading causes, without the folder; "" when it reads.
inline std::string failureOf(const std::string& xml) {
    try {
        readInk(xml);
    } catch (const Failure& failure) {
        const std::string message = failure.what();
        return message.substr(std::min(message.find("test.inkml"), message.size()));
    }
    return "";
}

/// A file whose one context has these channel elements.
inline std::string inkWith(const std::string& channels, const std::string& traces, const std::string& properties = "") {
    return "<ink xmlns=\"http://www.w3.org/2003/InkML\"><definitions><context xml:id=\"c\"><inkSource xml:id=\"s\">"
           "<traceFormat>" +
           channels + "</traceFormat><channelProperties>" + properties +
           "</channelProperties></inkSource></context></definitions>" + traces + "</ink>";
}

} // namespace ovwpaint::test

#endif // OVWPAINT_TEST_INKREAD_H
