#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"

#include "support/tempfolder.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <string>

namespace {

using namespace ovw::test;

constexpr int cnSize = 30000;                // pixels
constexpr std::uint32_t cnBudget = 64 << 20; // bytes
constexpr long cnPeakLimit = 160 << 10;      // KiB of resident memory
constexpr int cnHalfBand = 200;              // pixels to both sides of a diagonal

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool cnCountsMemory = false; // the sanitizers' own memory would count
#else
constexpr bool cnCountsMemory = true;
#endif

std::uint32_t colourAt(int x, int y) {
    return (std::uint32_t(x) * 2654435761u ^ std::uint32_t(y) * 40503u) | 0x01000000;
}

bool isPainted(int x, int y) { return std::abs(x - y) <= cnHalfBand || std::abs(x + y - (cnSize - 1)) <= cnHalfBand; }

/// Calls visit(first, last + 1) for the painted runs of a row.
template <class Visit>
void forRuns(int y, Visit visit) {
    for (int centre : {y, cnSize - 1 - y})
        visit(std::max(centre - cnHalfBand, 0), std::min(centre + cnHalfBand + 1, cnSize));
}

void paintRow(XCVOffscreen& image, int y) {
    forRuns(y, [&](int left, int right) {
        image.MoveCursor(left, y);
        for (int x = left; x < right; ++x, image.NextCursorX())
            image.Set32BitColor(colourAt(x, y));
    });
}

/// "" or what is wrong with the block: one that holds paint must exist and hold all of its pixels, no other may exist.
std::string checkBlock(XCVOffscreen& image, const XCRect& block) {
    const bool exists = image.MoveCursor(block.left, block.top) != nullptr;
    bool hasPaint = false;
    const std::uint8_t* base = image.GetBaseAddress();
    for (int y = block.top; y < block.bottom; ++y)
        for (int x = block.left; x < block.right; ++x) {
            const std::uint32_t expected = isPainted(x, y) ? colourAt(x, y) : 0x00FFFFFF;
            hasPaint |= isPainted(x, y);
            if (exists && storedPixel(base, image.GetBlockRowBytes(), 32, x & 255, y & 255) != expected)
                return "pixel " + std::to_string(x) + ", " + std::to_string(y);
        }
    return hasPaint == exists ? "" : "block at " + std::to_string(block.left) + ", " + std::to_string(block.top);
}

long peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == "VmHWM:") {
            long kilobytes = 0;
            status >> kilobytes;
            return kilobytes;
        }
    return 0;
}

/// The whole work, in a process of its own. "" or what went wrong.
std::string paintAndCheck(XCFilePath folder) {
    std::ofstream("/proc/self/clear_refs") << "5"; // the peak counts from here
    XCVirtualMemory vm;
    vm.Create(cnBudget, &folder, 0);
    XCVOffscreen32Bit image;
    image.Create(&vm, cnSize, cnSize, 1);
    XCVOffscreenAutoLock lock(&image, 1);
    // Corner to corner and back, so that blocks come in again for their other pixels.
    for (int y = 0; y < cnSize; y += 2)
        paintRow(image, y);
    for (int y = cnSize - 1; y >= 0; y -= 2)
        paintRow(image, y);
    if (vm.GetUsedDiskSize() < cnBudget)
        return "hardly anything was swapped";
    XCVOffscreenEditLock noEdit(&image);
    for (int i = 0; i < image.GetBlockCount(nullptr, nullptr); ++i) {
        XCRect block = image.GetBlockRect(i);
        block.right = std::min<int>(block.right, cnSize);
        block.bottom = std::min<int>(block.bottom, cnSize);
        const std::string fault = checkBlock(image, block);
        if (!fault.empty())
            return fault;
    }
    if (cnCountsMemory && peakMemory() >= cnPeakLimit)
        return "peak of " + std::to_string(peakMemory()) + " KiB";
    return "";
}

// Two bands from corner to corner: some 900 of the canvas' 13,924 blocks, or 240 MB under a budget of 64.
TEST(HugeCanvas, IsPaintedCornerToCornerWithinItsBudget) {
    TempFolder folder;
    const pid_t pid = fork();
    if (pid == 0) {
        std::string fault;
        try {
            fault = paintAndCheck(folder.path());
        } catch (const std::exception& error) {
            fault = error.what();
        }
        std::fprintf(stderr, "%s%s", fault.c_str(), fault.empty() ? "" : "\n");
        _exit(fault.empty() ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(folder.names().empty());
}

} // namespace
