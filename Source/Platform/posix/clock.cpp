#include "Platform/clock.h"

#include <chrono>

#include <time.h>

namespace ovw::platform {

std::int64_t wallSeconds() { return static_cast<std::int64_t>(::time(nullptr)); }

bool localCalendar(std::int64_t seconds, std::tm& out) {
    out = {};
    const std::time_t time = seconds;
    // The reentrant conversion need not look at the time zone by itself.
    ::tzset();
    return ::localtime_r(&time, &out) != nullptr;
}

bool utcCalendar(std::int64_t seconds, std::tm& out) {
    out = {};
    const std::time_t time = seconds;
    return ::gmtime_r(&time, &out) != nullptr;
}

bool secondsFromLocal(std::tm local, std::int64_t& seconds) {
    const std::time_t time = ::mktime(&local);
    seconds = time;
    return time != static_cast<std::time_t>(-1);
}

std::uint64_t monotonicMilliseconds() {
    using namespace std::chrono;
    return static_cast<std::uint64_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

} // namespace ovw::platform
