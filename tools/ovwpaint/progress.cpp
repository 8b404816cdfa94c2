#include "progress.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

namespace ovwpaint {

namespace {

constexpr std::chrono::milliseconds cnFirstShown{500};
constexpr std::chrono::milliseconds cnBetween{100};
constexpr std::size_t cnBarWidth = 40;

} // namespace

Progress::Progress(bool quiet) : m_enabled(!quiet && isatty(STDERR_FILENO) == 1), m_due(Clock::now() + cnFirstShown) {}

Progress::~Progress() { wipe(); }

bool Progress::isDue() {
    if (!m_enabled || Clock::now() < m_due)
        return false;
    m_due = Clock::now() + cnBetween;
    m_visible = true;
    return true;
}

void Progress::showAmount(const char* activity, std::uint64_t bytes) {
    constexpr double cnMiB = 1 << 20;
    if (!isDue())
        return;
    std::fprintf(stderr, "\r%-8s %.1f MiB\033[K", activity, static_cast<double>(bytes) / cnMiB);
    std::fflush(stderr);
}

void Progress::show(const char* activity, std::uint64_t done, std::uint64_t total) {
    if (total == 0 || !isDue())
        return;
    const double share = static_cast<double>(std::min(done, total)) / static_cast<double>(total);
    std::string bar(cnBarWidth, '.');
    std::fill_n(bar.begin(), static_cast<std::size_t>(share * cnBarWidth), '#');
    std::fprintf(stderr, "\r%-8s [%s] %3d %%\033[K", activity, bar.c_str(), static_cast<int>(share * 100.0));
    std::fflush(stderr);
}

void Progress::wipe() {
    if (!m_visible)
        return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    m_visible = false;
}

} // namespace ovwpaint
