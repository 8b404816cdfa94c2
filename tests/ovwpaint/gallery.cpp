#include "gallery/ground.h"
#include "gallery/sheets.h"
#include "interrupt.h"
#include "painting.h"
#include "pngwrite.h"

namespace ovwpaint::test {

namespace {

using gallery::Ground;

TEST_F(OvwPaint, PaintsTheGallery) {
    const std::string folder = m_folder.path("new/gallery");
    const Outcome result = runWith({"gallery", "-o", folder, "--quiet"});
    EXPECT_EQ(result.code, cnExitDone) << result.errors;
    for (const gallery::SheetKind& sheet : gallery::sheetKinds()) {
        const Picture picture = readPng(folder + "/" + sheet.name + ".png");
        EXPECT_GT(picture.countOther(picture.at(0, 0)), 10000u) << sheet.name;
    }
    const Picture rotation = readPng(folder + "/rotation.png");
    runWith({"gallery", "-o", m_folder.path("one"), "--only", "rotation"});
    EXPECT_EQ(readPng(m_folder.path("one/rotation.png")).pixels, rotation.pixels) << "alone as among the others";
}

TEST_F(OvwPaint, PaintsTheGalleryOverAPicture) {
    const std::string photo = writePng(m_folder.path("p.png"), 20, 300, [](int x, int) {
        return x < 10 ? packColour(10, 20, 30) : packColour(200, 220, 240);
    });
    EXPECT_EQ(runWith({"gallery", "-o", m_folder.path("g"), "--only", "clone", "--photo", photo}).code, cnExitDone);
    const Picture picture = readPng(m_folder.path("g/clone.png"));
    EXPECT_EQ(picture.at(11, 11), packColour(10, 20, 30));
    EXPECT_EQ(picture.at(258, 11), packColour(200, 220, 240)) << "enlarged without holes";
    const Ground small = gallery::photograph(photo, 2, 2);
    EXPECT_EQ(small(1, 1), packColour(200, 220, 240));
}

TEST_F(OvwPaint, LeavesNoHalfGallery) {
    const std::string folder = m_folder.path("g");
    EXPECT_EQ(runWith({"gallery", "-o", folder, "--only", "blur", "--photo", m_strokes}).code, cnExitFailure);
    EXPECT_TRUE(std::filesystem::is_empty(folder));
    EXPECT_EQ(runWith({"gallery", "-o", m_strokes}).code, cnExitFailure) << "a file, no folder";
    EXPECT_EQ(runWith({"gallery", "-o", folder, "--only", "moons"}).code, cnExitUsage);
    EXPECT_EQ(runWith({"gallery"}).code, cnExitUsage);
    *interruptFlag() = 1;
    EXPECT_EQ(runWith({"gallery", "-o", folder}).code, cnExitInterrupted);
    *interruptFlag() = 0;
    EXPECT_TRUE(std::filesystem::is_empty(folder));
}

} // namespace

} // namespace ovwpaint::test
