#ifndef OVWBENCH_ALLOCATIONS_H
#define OVWBENCH_ALLOCATIONS_H

#include <cstdint>

namespace ovwbench {

/// Heap allocations that this process has made so far, the library's and the C++ runtime's included.
std::uint64_t allocationCount();

} // namespace ovwbench

#endif // OVWBENCH_ALLOCATIONS_H
