// Archives and what is read through them.

#include "support.h"

#include "ovwcmn/xcdocument.h"
#include "ovwcmn/xcdpoint.h"
#include "ovwcmn/xclength.h"
#include "ovwcmn/xcnumber.h"
#include "ovwcmn/xcstring.h"
#include "ovwcmn/xctime.h"

namespace ovw::fuzz {

namespace {

template <class Value>
void read(XCArchive& archive) {
    Value value{};
    archive >> value;
}

void readText(XCArchive& archive) {
    XCString text;
    archive.ReadMKString(text);
}

void readSectionBytes(XCArchive& archive) {
    XCHandle block;
    archive.ReadSectionData(block);
}

using Step = void (*)(XCArchive&);
constexpr Step cnSteps[] = {
    read<std::uint8_t>,
    read<std::uint32_t>,
    read<double>,
    read<_GUID>,
    read<tagVXRGBCOLOR16>,
    read<XCString>,
    read<XCWideString>,
    read<XCTime>,
    read<XCNumber>,
    read<XCLength>,
    readText,
    readSectionBytes,
    [](XCArchive& archive) { archive.BeginSection(); },
    [](XCArchive& archive) { archive.EndSection(); },
    [](XCArchive& archive) { archive.SeekSection(); },
    [](XCArchive& archive) { archive.Seek(-5, 1); },
};

} // namespace

/// The first byte counts the steps that follow it, then comes the stream.
void archive(Input input) {
    const std::size_t count = std::min<std::size_t>(takeByte(input), input.size());
    const Input steps = input.first(count);
    mayThrow([&] {
        InputArchive archive(input.subspan(count), count & 1 ? XCArchive::cnLittleEndian : XCArchive::cnBigEndian);
        for (const std::uint8_t step : steps)
            cnSteps[step % std::size(cnSteps)](archive.get());
    });
}

void documentHead(Input input) {
    mayThrow([&] {
        struct Document : XCDocument {
            Document() : XCDocument(0, 0x544F4C46, 0x0100) {}
            void Serialize(XCArchive& archive) override { ReadVersionInfo(archive); }
        } document;
        const InputFile file(input);
        XCFilePath path = file.path();
        document.OnOpenDocument(path);
    });
}

void pointFile(Input input) {
    mayThrow([&] {
        const InputFile file(input);
        XCDPoint points;
        points.Open(file.path());
    });
}

} // namespace ovw::fuzz
