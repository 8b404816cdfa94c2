#ifndef OVW_PLATFORM_CLOCK_H
#define OVW_PLATFORM_CLOCK_H

/// @file
/// Wall time and elapsed time. Thread-safe, never throws.

#include <cstdint>
#include <ctime>

namespace ovw::platform {

/// Seconds since 1970-01-01 00:00 UTC.
std::int64_t wallSeconds();

/// The calendar form of a count of seconds in the local time zone or in UTC. False, and `out` zeroed, for a time whose
/// year does not fit.
bool localCalendar(std::int64_t seconds, std::tm& out);
bool utcCalendar(std::int64_t seconds, std::tm& out);

/// The seconds of a local calendar time, fields out of their ranges carried over as std::mktime does. False when it has
/// none; 1969-12-31 23:59:59 UTC counts as having none.
bool secondsFromLocal(std::tm local, std::int64_t& seconds);

/// Milliseconds since some moment before the program began; never goes back.
std::uint64_t monotonicMilliseconds();

} // namespace ovw::platform

#endif // OVW_PLATFORM_CLOCK_H
