// How paint meets pixels: spans through the fast mixer, chains of pixel mixers under a mask, and a tone curve.
// Leaves mix_pixels.ovwi behind: `ovwpaint convert mix_pixels.ovwi -o picture.png` shows it, a band for each way.
#include <ovwcmn/ovwcmn.h>

#include <cmath>
#include <cstdio>
#include <vector>

namespace {

constexpr int cnWidth = 640, cnBand = 40;

/// From dark red to light blue, with nothing in the last fifth.
void paintGround(XCVOffscreen& image) {
    for (int x = 0; x < cnWidth * 4 / 5; ++x) {
        const std::uint32_t level = static_cast<std::uint32_t>(x * 255 / (cnWidth * 4 / 5));
        const std::uint32_t colour = 0xFF000000 | level << 16 | level / 2 << 8 | (160 - level / 4);
        image.DrawSimpleLine(1, x, colour);
    }
}

void paintSpans(XCVOffscreen& image, int top, int composition) {
    // [spans]
    XCFastPixelMixer mixer;
    mixer.SetDstOffscreen(&image);          // locked for editing
    mixer.SetDrawCompositioin(composition); // XCFastPixelMixer::Normal, Erase, DarkenStep, ...
    mixer.SetColor(0xFF30D0F0);             // 0xAABBGGRR
    mixer.SetMixAlpha(0.5f);
    for (int left = 0; left < cnWidth; left += XCVOffscreen::cnBlockSize)
        for (int y = top; y < top + cnBand - 8; ++y) {
            mixer.MoveCursorToBlock(left, y); // a span lies in one block
            mixer.DoLineRow(left, left + XCVOffscreen::cnBlockSize - 1, y);
        }
    // [/spans]
}

void mixRows(XCVOffPixelMixer& mixer, XCVOffPixelMask* mask, int top) {
    for (int y = top; y < top + cnBand - 8; ++y)
        mixer.DoLineRow(0, cnWidth - 1, y, mask, nullptr, {0, 0});
}

void paintChain(XCVOffscreen& image, XCVOffscreen& selection, int top) {
    // [chain]
    XCPixelMixerDither dither; // hands a pixel on at full strength or not at all ...
    dither.SetMapInfo(&image);
    XCPixelMixerBlend blend; // ... to the rule behind it
    XCVOffPixelMixer mixer;
    mixer.SetDstOffscreen(&image);
    mixer.SetNode(&dither);
    mixer.PushNode(&blend);
    mixer.SetColor(XCComplexColor(std::uint32_t{0xFF30D0F0}));

    XCVOffPixelMask mask; // the ink of an 8-bit image scales the weight
    mask.SetMaskInfo(0, {.kind = 0, .image = &selection, .reserved = 0, .offsetX = 0, .offsetY = 0});
    // [/chain]
    mixRows(mixer, &mask, top);
}

void paintRule(XCVOffscreen& image, XCPixelMixer& rule, int top) {
    XCVOffPixelMixer mixer;
    mixer.SetDstOffscreen(&image);
    mixer.SetNode(&rule);
    mixer.SetColor(XCComplexColor(std::uint32_t{0xFF30D0F0}));
    mixer.SetAlpha(110);
    mixRows(mixer, nullptr, top);
}

void applyCurve(XCVOffscreen& image, int top) {
    // [curve]
    XCLookUpTable curve;
    curve.Create(1); // 256 entries of 8 bits, the identity
    for (int i = 0; i < 256; ++i)
        curve.Get32BitTable()[i] = static_cast<std::uint8_t>(std::lround(255 * std::pow(i / 255.0, 0.5)));
    curve.Reverse(0, 1); // then inverted
    const std::uint8_t* const table = curve.Get32BitTable();
    for (int y = top; y < top + cnBand - 8; ++y)
        for (int x = 0; x < cnWidth; ++x)
            if (std::uint8_t* const pixel = image.MoveCursor(x, y))
                for (int channel = 0; channel < 3; ++channel) // blue, green, red
                    pixel[channel] = table[pixel[channel]];
    // [/curve]
}

/// Ink that grows from left to right.
void paintSelection(XCVOffscreen& selection) {
    for (int x = 0; x < cnWidth; ++x)
        selection.DrawSimpleLine(1, x, static_cast<std::uint32_t>(x * 255 / cnWidth) << 24); // ink by its alpha
}

void save(XCVOffscreen& image) {
    XCArchiveFile archive(XCArchive::cnSaving | XCArchive::cnBigEndian, XCArchiveFile::cnCacheSize);
    archive.FileCreate(xcPathFromPosix("mix_pixels.ovwi"), 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL);
    XCVOffscreen::Write(archive, &image, 1);
    archive.DoFlush();
}

int bandsChanged(XCVOffscreen& image, XCVOffscreen& ground, int bands) {
    const XCVOffscreenAutoLock lock(&image, 0), groundLock(&ground, 0);
    int changed = 0;
    for (int band = 0; band < bands; ++band) {
        bool differs = false;
        for (int x = 0; x < cnWidth; ++x) {
            image.MoveCursor(x, band * cnBand + 4), ground.MoveCursor(x, band * cnBand + 4);
            differs = differs || image.Get32BitColor() != ground.Get32BitColor();
        }
        changed += differs;
    }
    return changed;
}

int work() {
    xcGetVirtualMemory()->Create(64 << 20, nullptr, 1);
    int failures = 0;
    {
        const int compositions[] = {XCFastPixelMixer::Normal, XCFastPixelMixer::Erase, XCFastPixelMixer::DarkenStep};
        XCPixelMixerWeightCopy copy;
        XCPixelMixerAddAndSubtract add, subtract(1);
        XCPixelMixerAlphaEdit fade;
        XCPixelMixer* const rules[] = {&copy, &add, &subtract, &fade};
        constexpr int cnBands = 3 + 4 + 2;

        XCVOffscreen32Bit image, ground;
        XCVOffscreen8Bit selection;
        for (XCVOffscreen* each : {static_cast<XCVOffscreen*>(&image), static_cast<XCVOffscreen*>(&ground),
                                   static_cast<XCVOffscreen*>(&selection)})
            each->Create(xcGetVirtualMemory(), cnWidth, cnBands * cnBand - 8, 96.0);
        {
            const XCVOffscreenAutoLock imageLock(&image, 1), groundLock(&ground, 1), selectionLock(&selection, 1);
            paintGround(image), paintGround(ground), paintSelection(selection);
            int top = 0;
            for (int composition : compositions)
                paintSpans(image, top, composition), top += cnBand;
            for (XCPixelMixer* rule : rules)
                paintRule(image, *rule, top), top += cnBand;
            paintChain(image, selection, top), top += cnBand;
            applyCurve(image, top);
        }
        const int changed = bandsChanged(image, ground, cnBands);
        std::printf("bands changed: %d of %d\n", changed, cnBands);
        failures += changed != cnBands;
        save(image);
    }
    xcGetVirtualMemory()->Destroy();
    return failures;
}

} // namespace

int main() {
    try {
        return work();
    } catch (const XCException& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
