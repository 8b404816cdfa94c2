#ifndef OVWPAINT_LIBRARYPROGRESS_H
#define OVWPAINT_LIBRARYPROGRESS_H

/// @file
/// The progress bar and the user's wish to stop as the library's operations ask for them.

#include "interrupt.h"
#include "progress.h"

#include "ovwcmn/xcprogress.h"

#include <cstdint>

namespace ovwpaint {

/// Throws Interrupted through the operation when it is asked after the user wished to stop.
class LibraryProgress final : public IXCProgress, public IXCAbort {
public:
    LibraryProgress(const char* activity, bool quiet) : m_activity(activity), m_bar(quiet) {}

    void Begin(std::uint32_t total) override { m_done = 0, m_total = total; }
    void Step(std::uint32_t count) override {
        m_done += count;
        m_bar.show(m_activity, m_done, m_total);
    }
    void End() override { m_bar.wipe(); }
    int IsAbort() override {
        throwIfInterrupted();
        return 0;
    }

private:
    const char* m_activity;
    Progress m_bar;
    std::uint64_t m_done = 0;
    std::uint64_t m_total = 0;
};

} // namespace ovwpaint

#endif // OVWPAINT_LIBRARYPROGRESS_H
