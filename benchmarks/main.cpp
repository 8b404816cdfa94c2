// ovwbench: what the library does a second, beside what memory and the system allow. --help lists the options; the
// usual one is --benchmark_filter=REGEX.

#include "table.h"

#include <benchmark/benchmark.h>
#include <ovwcmn/xcvirtualmemory.h>

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    _CREATEVMPARAM param{};
    xcCreateVirtualMemory(&param); // holds the caches of strokes
    ovwbench::Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    xcDestroyVirtualMemory();
    return 0;
}
