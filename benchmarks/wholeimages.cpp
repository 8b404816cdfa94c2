// Tones, extents and freeing of unused blocks; and a table over sparsity: the same operations on images of one size of
// which ever fewer blocks are painted. Its figures count painted pixels, so that equal figures are costs that grow with
// what is painted.

#include "canvas.h"
#include "duel.h"
#include "sparsecanvas.h"

#include <ovwcmn/xcarchivemem.h>

#include <cstring>
#include <string>

namespace {

using ovwbench::SparseCanvas;

ovwbench::Duel duelOf(SparseCanvas& canvas, SparseCanvas::Block& buffer) {
    ovwbench::Duel duel;
    duel.unit = "Mpixel";
    duel.amount = canvas.megapixels();
    duel.limitName = "memcpy of painted";
    duel.limit = [&] {
        for (std::size_t i = 0; i < canvas.blocks().size(); i++)
            std::memcpy(&buffer[i * SparseCanvas::cnBlockBytes], canvas.blocks()[i].data(), SparseCanvas::cnBlockBytes);
    };
    return duel;
}

/// What an operation does with a sparse canvas and an image of the same size, of a depth that it asks for.
struct Operation {
    const char* name;
    int targetDepth; ///< 0: none
    void (*run)(XCVOffscreen& source, XCVOffscreen* target);
    double aim;
};

void copyAll(XCVOffscreen& source, XCVOffscreen* target) { target->CopyAll(&source); }
void halve(XCVOffscreen& source, XCVOffscreen* target) { target->ChangeResolutionHalfAll(&source); }
void makeGrey(XCVOffscreen& source, XCVOffscreen* target) {
    target->Grayish(0, 0, source.GetWidth(), source.GetHeight(), &source, 0, 0, 0);
}
void makeMono(XCVOffscreen& source, XCVOffscreen* target) {
    target->Monochromic(0, 0, source.GetWidth(), source.GetHeight(), &source, 0, 0, 0, 1);
}
void turn(XCVOffscreen& source, XCVOffscreen*) {
    XCPoint shift;
    XCVOffscreen::DeleteOffscreen(source.CreateAndRotateOffscreen(90, 0, 0, shift));
}
void findExtent(XCVOffscreen& source, XCVOffscreen*) {
    tagRECT extent;
    source.GetExtentRect(extent, nullptr, 0);
}
void optimise(XCVOffscreen& source, XCVOffscreen*) { source.Optimize(); }
void writeRaw(XCVOffscreen& source, XCVOffscreen*) {
    XCArchiveMem archive(static_cast<int>(XCArchive::cnSaving | XCArchive::cnBigEndian), 0);
    XCVOffscreen::Write(archive, &source, 0);
}

constexpr Operation cnOperations[] = {
    {"copy", 32, copyAll, 0.0},       {"half", 32, halve, 0.0},
    {"turn", 0, turn, 0.0},           {"grey 8 bit", 8, makeGrey, 0.0},
    {"mono 1 bit", 1, makeMono, 0.0}, {"extent", 0, findExtent, 0.0},
    {"optimise", 0, optimise, 0.0},   {"write in memory", 0, writeRaw, 0.0},
};

void run(benchmark::State& state, const Operation& operation, int side, int step) {
    SparseCanvas canvas(side, step);
    SparseCanvas::Block buffer(canvas.blocks().size() * SparseCanvas::cnBlockBytes, 1);
    XCVOffscreen* const target = operation.targetDepth ? XCVOffscreen::CreateOffscreen(operation.targetDepth) : nullptr;
    if (target)
        target->Create(xcGetVirtualMemory(), side, side, 72.0);
    ovwbench::Duel duel = duelOf(canvas, buffer);
    duel.work = [&] { operation.run(canvas.image(), target); };
    duel.aim = operation.aim;
    ovwbench::run(state, duel);
    if (target)
        XCVOffscreen::DeleteOffscreen(target);
}

const bool s_added = [] {
    for (const Operation& operation : cnOperations)
        for (int step : {1, 16, 256})
            ovwbench::add("sparsity/" + std::string(operation.name) + ", 1 of " + std::to_string(step),
                          [&operation, step](benchmark::State& state) { run(state, operation, 8192, step); });
    return true;
}();

} // namespace
