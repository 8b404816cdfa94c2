#include "ovwcmn/xcvirtualmemory.h"

#include "support/testimage.h"

#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

namespace {

using namespace ovw::test;

constexpr int cnSize = 1500;

/// Paints and reads all over the image, as the seed says.
void paint(XCVOffscreen& image, unsigned seed, int steps) {
    std::mt19937 random(seed);
    for (int i = 0; i < steps; ++i) {
        const int x = int(random() % cnSize), y = int(random() % cnSize);
        XCVOffscreenAutoLock lock(&image, x, y, 1);
        for (int k = 0; k < 300 && image.GetCurrentAddress(); ++k, image.NextCursorX())
            image.Set32BitColor(image.Get32BitColor() * 5 + std::uint32_t(random()));
        if (i % 50 == 49)
            image.DestroyBlockByXY(x, y, 1);
        if (i % 70 == 69)
            image.UnloadAllBlock();
    }
}

std::vector<std::uint32_t> pixelsOf(XCVOffscreen& image) {
    std::vector<std::uint32_t> pixels;
    XCVOffscreenAutoLock lock(&image, 0, 0, 0);
    for (int y = 0; y < cnSize; ++y)
        for (int x = 0; x < cnSize; ++x) {
            image.MoveCursor(x, y);
            pixels.push_back(image.Get32BitColor());
        }
    return pixels;
}

// Blocks of both images push each other out to the swap file all the time.
TEST(XCVirtualMemoryThreads, PaintTheSamePixelsAsOneAfterTheOther) {
    constexpr int steps = 250, depths[] = {32, 8, 24};
    // A locked block keeps its pool of 1 MiB from eviction: three threads may hold three, and need room beside them.
    TestStore shared(4u << 20), alone(256u << 20);
    std::vector<std::unique_ptr<TestImage>> images, references;
    for (int depth : depths) {
        images.push_back(std::make_unique<TestImage>(shared, depth, cnSize, cnSize));
        references.push_back(std::make_unique<TestImage>(alone, depth, cnSize, cnSize));
    }
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < images.size(); ++i)
        threads.emplace_back([&, i] { paint(*images[i]->get(), unsigned(i), steps); });
    for (int i = 0; i < 1000; ++i) { // the statistics take no lock
        const XCVirtualMemory& vm = *shared.get();
        ASSERT_LE(vm.GetFreePhysicalMemorySize(), vm.GetPhysicalMemorySize());
        ASSERT_LE(vm.GetUsedDiskSize(), 1u << 30);
        ASSERT_LT(vm.GetUsedBlockCount(), 200u);
    }
    for (std::thread& thread : threads)
        thread.join();
    for (std::size_t i = 0; i < images.size(); ++i) {
        paint(*references[i]->get(), unsigned(i), steps);
        EXPECT_TRUE(pixelsOf(*images[i]->get()) == pixelsOf(*references[i]->get())) << depths[i] << " bits";
    }
}

TEST(XCVirtualMemoryThreads, StoresDoNotDisturbEachOther) {
    auto work = [](unsigned seed) {
        for (int round = 0; round < 3; ++round) {
            TestStore store(1u << 20);
            TestImage image(store, 16, cnSize, cnSize);
            paint(*image.get(), seed, 40);
        }
    };
    std::thread first(work, 1), second(work, 2);
    first.join();
    second.join();
}

} // namespace
