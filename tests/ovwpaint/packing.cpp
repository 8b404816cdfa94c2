#include "painting.h"

#include <filesystem>

namespace ovwpaint::test {

namespace {

namespace fs = std::filesystem;

/// A stored entry "a/b" with the contents "zipped", and the directory of the archive.
std::string smallZip() {
    using namespace std::string_literals;
    const std::string name = "a/b", contents = "zipped";
    const std::string sizes = "\x06\0\0\0\x06\0\0\0\x03\0\0\0"s;                        // packed, whole, name, extra
    const std::string common = "\x14\0\0\0\0\0\0\0\0\0\x57\x68\xC2\xE2"s.append(sizes); // CRC-32 of the contents
    const std::string local = "PK\x03\x04"s.append(common).append(name).append(contents);
    const std::string entry = "PK\x01\x02\x14\0"s.append(common).append(14, '\0').append(name);
    return local + entry + "PK\x05\x06\0\0\0\0\x01\0\x01\0"s + static_cast<char>(entry.size()) + "\0\0\0"s +
           static_cast<char>(local.size()) + "\0\0\0\0\0"s;
}

class OvwPaintPacking : public testing::Test {
protected:
    OvwPaintPacking() {
        fs::create_directories(m_folder.path("in/deep"));
        m_folder.write("in/deep/file", "packed");
        m_folder.write("single", "alone");
    }

    int run(std::vector<std::string> arguments) {
        const Outcome outcome = runWith(std::move(arguments));
        m_errors = outcome.errors;
        return outcome.code;
    }

    TemporaryFolder m_folder;
    std::string m_errors;
};

TEST_F(OvwPaintPacking, UnpacksWhatItPacked) {
    const std::string packed = m_folder.path("packed"), out = m_folder.path("new/out");
    ASSERT_EQ(run({"pack", "-o", packed, m_folder.path("in"), m_folder.path("single"), "--quiet"}), cnExitDone)
        << m_errors;
    ASSERT_EQ(run({"unpack", packed, "-o", out, "--quiet"}), cnExitDone) << m_errors;
    EXPECT_EQ(fileText(out + "/in/deep/file") + fileText(out + "/single"), "packedalone");
    EXPECT_EQ(run({"pack", "-o", packed, m_folder.path("missing")}), cnExitFailure);
    EXPECT_NE(m_errors.find("missing: no such file"), std::string::npos) << m_errors;
    EXPECT_EQ(run({"unpack", m_folder.path("single"), "-o", out}), cnExitFailure) << "no packed file";
    EXPECT_EQ(run({"unpack", packed, "-o", m_folder.path("single")}), cnExitFailure) << "no folder";
}

TEST_F(OvwPaintPacking, ExtractsZipArchives) {
    const std::string archive = m_folder.write("small.zip", smallZip()), out = m_folder.path("out");
    ASSERT_EQ(run({"unzip", archive, "-o", out, "--quiet"}), cnExitDone) << m_errors;
    EXPECT_EQ(fileText(out + "/a/b"), "zipped");
    EXPECT_EQ(run({"unzip", m_folder.path("single"), "-o", out}), cnExitFailure);
    EXPECT_EQ(m_errors.find('\n'), m_errors.size() - 1) << "one line: " << m_errors;
}

} // namespace

} // namespace ovwpaint::test
