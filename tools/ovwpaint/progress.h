#ifndef OVWPAINT_PROGRESS_H
#define OVWPAINT_PROGRESS_H

/// @file
/// A bar on standard error for work that takes long enough to wait for.

#include <chrono>
#include <cstdint>
#include <string>

namespace ovwpaint {

/// Shows itself only when standard error is a terminal, and only after half a second; wipes itself at the end.
class Progress {
public:
    explicit Progress(bool quiet);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Tells how far the work is. Cheap: at most ten times a second something is printed.
    void show(const char* activity, std::uint64_t done, std::uint64_t total);
    /// The same for work whose end is not known.
    void showAmount(const char* activity, std::uint64_t bytes);
    void wipe();

private:
    using Clock = std::chrono::steady_clock;

    bool isDue();

    const bool m_enabled;
    bool m_visible = false;
    Clock::time_point m_due;
};

} // namespace ovwpaint

#endif // OVWPAINT_PROGRESS_H
