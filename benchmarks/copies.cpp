// Copies, other resolutions and quarter turns of a whole layer, beside memcpy of the pixels that are read (enlarging:
// of those that are written).

#include "canvas.h"
#include "duel.h"

#include <memory>
#include <string>

namespace {

constexpr int cnSide = 4096;

struct Target {
    Target(XCVirtualMemory& store, int side) { image.Create(&store, side, side, 72.0); }
    XCVOffscreen32Bit image;
};

/// change(source, destination), where the destination exists before.
template <class Change>
void resample(benchmark::State& state, int toSide, double aim, const Change& change) {
    ovwbench::Canvas canvas(cnSide);
    Target target(canvas.store(), toSide);
    const int counted = std::max(cnSide, toSide);
    ovwbench::PlainMemory plain(static_cast<std::size_t>(counted) * static_cast<std::size_t>(counted) * 4);
    change(canvas.image(), target.image);
    ovwbench::Duel duel;
    duel.unit = "Mpixel";
    duel.amount = static_cast<double>(counted) * counted / 1e6;
    duel.work = [&] { change(canvas.image(), target.image); };
    duel.limitName = "memcpy";
    duel.limit = [&] { plain.copy(); };
    duel.aim = aim;
    ovwbench::run(state, duel);
}

void addCopy(const std::string& name, int offset, double aim) {
    ovwbench::add("copy/" + name, [=](benchmark::State& state) {
        resample(state, cnSide, aim, [=](XCVOffscreen& from, XCVOffscreen& to) {
            to.Copy(offset, offset, cnSide, cnSide, &from, 0, 0, 0);
        });
    });
}

void addChange(const std::string& name, int toSide, CHANGE_RESOLUTION_MODE mode, double aim) {
    ovwbench::add("resolution/" + name, [=](benchmark::State& state) {
        resample(state, toSide, aim, [=](XCVOffscreen& from, XCVOffscreen& to) {
            to.ChangeResolution2(0, 0, toSide, toSide, &from, 0, 0, cnSide, cnSide, mode, 0);
        });
    });
}

void turn(benchmark::State& state, int angle, int flipX, int flipY, double aim) {
    ovwbench::Canvas canvas(cnSide);
    ovwbench::PlainMemory plain(static_cast<std::size_t>(cnSide) * cnSide * 4);
    ovwbench::Duel duel;
    duel.unit = "Mpixel";
    duel.amount = canvas.megapixels();
    duel.work = [&] {
        XCPoint shift;
        XCVOffscreen::DeleteOffscreen(canvas.image().CreateAndRotateOffscreen(angle, flipX, flipY, shift));
    };
    duel.limitName = "memcpy";
    duel.limit = [&] { plain.copy(); };
    duel.aim = aim;
    ovwbench::run(state, duel);
}

void addTurn(const std::string& name, int angle, int flipX, int flipY, double aim) {
    ovwbench::add("turn/" + name, [=](benchmark::State& state) { turn(state, angle, flipX, flipY, aim); });
}

const bool s_added = [] {
    addCopy("whole", 0, 0.80);
    addCopy("by blocks", 256, 0.80);
    addCopy("unaligned", 3, 0.5);
    addChange("half", cnSide / 2, CHANGE_RESOLUTION_HIGH, 0.25);
    addChange("quarter", cnSide / 4, CHANGE_RESOLUTION_HIGH, 0.25);
    addChange("0.37 by area", cnSide * 37 / 100, CHANGE_RESOLUTION_HIGH, 0.06);
    addChange("0.37 by whole pixels", cnSide * 37 / 100, CHANGE_RESOLUTION_LOW, 0.0);
    addChange("double", cnSide * 2, CHANGE_RESOLUTION_LOW, 0.57);
    addTurn("90", 90, 0, 0, 0.30);
    addTurn("180", 180, 0, 0, 0.40);
    addTurn("mirror", 0, 1, 0, 0.40);
    addTurn("upside down", 0, 0, 1, 0.50);
    return true;
}();

} // namespace
