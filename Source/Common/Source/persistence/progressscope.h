#ifndef OVW_PERSISTENCE_PROGRESSSCOPE_H
#define OVW_PERSISTENCE_PROGRESSSCOPE_H

#include "ovwcmn/xcprogress.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace ovw::persistence {

/// Tells a progress bar (null: none) the beginning, and the end however it comes.
class ProgressScope {
public:
    ProgressScope(IXCProgress* progress, std::int64_t total) : m_progress(progress) {
        constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
        if (m_progress)
            m_progress->Begin(static_cast<std::uint32_t>(std::clamp<std::int64_t>(total, 0, most)));
    }
    ~ProgressScope() {
        if (m_progress)
            m_progress->End();
    }
    ProgressScope(const ProgressScope&) = delete;
    ProgressScope& operator=(const ProgressScope&) = delete;

    void step(std::uint32_t count) {
        if (m_progress)
            m_progress->Step(count);
    }

private:
    IXCProgress* m_progress;
};

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_PROGRESSSCOPE_H
