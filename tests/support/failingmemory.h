#ifndef OVW_TESTS_SUPPORT_FAILINGMEMORY_H
#define OVW_TESTS_SUPPORT_FAILINGMEMORY_H

#include "support/scopes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>

/// @file
/// Allocations that fail when a test wants it. It replaces the operators of the whole program and of the library in it:
/// one source of a program includes it.

namespace ovw::test {

inline constexpr long cnNever = -1;
inline thread_local long t_allocationsLeft = cnNever; ///< 0: the next one fails, once

inline void* allocate(std::size_t size, std::size_t alignment) {
    if (t_allocationsLeft != cnNever && t_allocationsLeft-- == 0)
        throw std::bad_alloc();
    void* const memory = std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment + alignment);
    return memory ? memory : throw std::bad_alloc();
}

/// Lets each allocation of an operation fail in turn, each time after `prepare`. The operation may do without the
/// memory, else it throws error 8.
inline void failEachAllocation(const char* name, const std::function<void()>& prepare,
                               const std::function<void()>& operation) {
    constexpr int noMemory = 8;
    for (long allocations = 0; allocations < 1000; ++allocations) {
        prepare();
        int error = 0;
        EXPECT_NO_THROW(error = errorOf([&] {
                            t_allocationsLeft = allocations;
                            operation();
                        }))
            << name << ", allocation " << allocations;
        const bool isDone = t_allocationsLeft != cnNever;
        t_allocationsLeft = cnNever;
        EXPECT_TRUE(error == 0 || error == noMemory) << name << ", allocation " << allocations << ": " << error;
        if (isDone)
            return;
    }
    FAIL() << name << " never ends";
}

} // namespace ovw::test

void* operator new(std::size_t size) { return ovw::test::allocate(size, alignof(std::max_align_t)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    return ovw::test::allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

#endif // OVW_TESTS_SUPPORT_FAILINGMEMORY_H
