#include "Platform/memory.h"
#include "foundation/nomemory.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "vimage/storelocks.h"

#include <algorithm>
#include <atomic>

namespace {

constexpr std::uint64_t cnMaxBudget = 0x7FFFFFFF;

std::atomic<int> s_nMinPercent{20};
std::atomic<int> s_nMaxPercent{80};
std::atomic<int> s_nDefaultPercent{50};

bool s_isCreated = false; // guarded by the library-wide section

/// Deletes the swap file when the process ends. The store itself stays, for images that are destroyed later still.
struct ClosesAtExit {
    ~ClosesAtExit() { xcDestroyVirtualMemory(); }
};

} // namespace

XCVirtualMemory* xcGetVirtualMemory() {
    static XCVirtualMemory& s_store = *ovw::foundation::orNoMemory([] { return new XCVirtualMemory; });
    static const ClosesAtExit s_closer;
    return &s_store;
}

void xcCreateVirtualMemory(_CREATEVMPARAM* param) {
    XCCriticalSectionAutoLeave lock(&ovw::vimage::librarySection());
    if (s_isCreated)
        return;
    const _CREATEVMPARAM settings = param ? *param : _CREATEVMPARAM{};
    const std::uint64_t budget = xcGetAllocateMemorySize(settings.mode, settings.percent);
    xcGetVirtualMemory()->Create(static_cast<std::uint32_t>(budget), settings.folder, 1);
    s_isCreated = true;
}

void xcDestroyVirtualMemory() {
    XCCriticalSectionAutoLeave lock(&ovw::vimage::librarySection());
    if (!s_isCreated)
        return;
    xcGetVirtualMemory()->Destroy();
    s_isCreated = false;
}

std::uint64_t xcGetAllocateMemorySize(int mode, int percent) {
    const std::uint64_t total = ovw::platform::totalPhysicalMemory();
    std::uint64_t result = 0;
    if (mode == 0) {
        const auto share = static_cast<std::uint64_t>(std::max(s_nDefaultPercent.load(), 0));
        result = total * share / 100;
    } else if (mode == 1) {
        const int clamped = std::max(std::min(percent, s_nMaxPercent.load()), s_nMinPercent.load());
        result = total / 100 * static_cast<std::uint64_t>(std::max(clamped, 0));
    }
    return std::min(result, cnMaxBudget);
}

int xcGetMinVMAllocationPercent() { return s_nMinPercent; }
int xcGetMaxVMAllocationPercent() { return s_nMaxPercent; }
int xcGetDefaultVMAllocationPercent() { return s_nDefaultPercent; }
void xcSetMinVMAllocationPercent(int percent) { s_nMinPercent = percent; }
void xcSetMaxVMAllocationPercent(int percent) { s_nMaxPercent = percent; }
void xcSetDefaultVMAllocationPercent(int percent) { s_nDefaultPercent = percent; }
