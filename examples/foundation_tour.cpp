// The ground that everything stands on: texts, numbers and lengths, matrices and colours, errors and alerts, threads.
// Leaves foundation_tour.ovwi behind: `ovwpaint convert foundation_tour.ovwi -o picture.png` shows it.
#include <ovwcmn/ovwcmn.h>

#include <cstdio>
#include <string>

namespace {

int failures = 0;

void check(bool condition, const char* what) {
    std::printf("%-60s %s\n", what, condition ? "yes" : "NO");
    failures += !condition;
}

void texts() {
    // [texts]
    vxSetCodePage(932); // texts are in one code page of the process; 65001 (UTF-8) until it is set
    XCString name("\x83\x5C\x83\x74\x83\x67.psd"); // the second byte of the first character is a "\"
    const int backslash = name.Find("\\");         // never found inside a character
    XCWideString wide;
    name.ConvertAnsiToWide(wide);
    vxSetCodePage(65001);
    XCString utf8;
    wide.ConvertWideToAnsi(utf8);

    XCNumber sheet(12);
    sheet.AddSuffix("Z");
    sheet.IncrementSuffix(1); // 12AA
    XCString label;
    sheet.GetNumber(label, "%03d");
    const XCLength margin(25.4, 2); // millimetres
    // [/texts]
    check(backslash == -1 && wide.GetLength() == 7, "a text in code page 932, by characters");
    check(utf8 == "\u30BD\u30D5\u30C8.psd", "the same in UTF-8");
    check(label == "012AA" && margin.GetAsPixel(600.0) == 600, "a sheet number and a length");
}

void fan(XCVOffscreen& image) {
    // [fan]
    const XCPointD centre(160.0, 160.0);
    for (int i = 0; i < 36; ++i) {
        XCMatrix2D matrix; // what comes later acts after what is there
        matrix.Scale(1.0, 0.2 + i / 60.0);
        matrix.Transfer(90.0, 0.0);
        matrix.Rotate(10.0 * i, XCPointD(0.0, 0.0)); // degrees, clockwise on screen
        matrix.Transfer(centre);

        const XCRgbColor colour(XCHsvColor(65535, static_cast<std::uint16_t>(i * 65535 / 36), 45000, 60000));
        XCPolyVertex leaf;
        for (const XCPointD& corner : {XCPointD(-60, 0), XCPointD(0, -30), XCPointD(60, 0), XCPointD(0, 30)}) {
            const XCPointD placed = matrix.MultiplyPoint(corner);
            leaf.Add(placed.x, placed.y);
        }
        XCPolygon(static_cast<std::uint32_t>(colour), nullptr).DrawPolygonAA(nullptr, &image, &leaf, nullptr);
    }
    // [/fan]
}

std::string s_shown;

int showBox(HWND, const char* text, const char*, std::uint32_t, int) {
    s_shown = text;
    return IDOK;
}

void errors() {
    // [errors]
    VXHOOKS hooks = {};
    hooks.messageBox = showBox; // the application's own; without it boxes go to standard error
    xcSetHooks(&hooks);
    try {
        XCFile file;
        file.Open(xcPathFromPosix("no/such/file"), GENERIC_READ, 0, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
    } catch (XCException& error) { // the one type that is thrown; derives from std::exception
        std::printf("%s:%d: code %d, %s\n", error.GetFile(), error.GetLine(), error.GetErrorCode(), error.what());
        error.doAlert(); // shows the message, once
    }
    xcSetHooks(nullptr);
    // [/errors]
    check(!s_shown.empty(), "a missing file tells why");
}

// [threads]
class Adder : public XCThread {
public:
    Adder(XCCriticalSection& section, int& sum) : m_section(section), m_sum(sum) {}

protected:
    std::uint32_t RunThread(void*) override {
        for (int i = 0; i < 1000; ++i) {
            const XCCriticalSectionAutoLeave inside(&m_section);
            ++m_sum;
        }
        return 0;
    }

private:
    XCCriticalSection& m_section;
    int& m_sum;
};

int addWithTwo() {
    XCCriticalSection section;
    section.Initialize(); // until then it does nothing
    int sum = 0;
    Adder first(section, sum), second(section, sum);
    first.CreateThread(nullptr), second.CreateThread(nullptr);
    first.WaitForSignal(), second.WaitForSignal();
    return sum;
}
// [/threads]

void save(XCVOffscreen& image) {
    XCArchiveFile archive(XCArchive::cnSaving | XCArchive::cnBigEndian, XCArchiveFile::cnCacheSize);
    archive.FileCreate(xcPathFromPosix("foundation_tour.ovwi"), 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL);
    XCVOffscreen::Write(archive, &image, 1);
    archive.DoFlush();
}

void work() {
    texts();
    errors();
    check(addWithTwo() == 2000, "two threads, one sum");
    xcGetVirtualMemory()->Create(64 << 20, nullptr, 1);
    {
        XCVOffscreen32Bit image;
        image.Create(xcGetVirtualMemory(), 320, 320, 96.0);
        image.RectFill(image.GetRect(), 0, 0xFFFFFFFF, 0);
        {
            const XCVOffscreenAutoLock lock(&image, 1);
            fan(image);
        }
        save(image);
        const XCVOffscreenAutoLock lock(&image, 250, 160, 0); // on the first leaf
        check(image.Get32BitColor() != 0xFFFFFFFF, "a fan of leaves in all hues");
    }
    xcGetVirtualMemory()->Destroy();
}

} // namespace

int main() {
    try {
        work();
        return failures;
    } catch (const XCException& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
