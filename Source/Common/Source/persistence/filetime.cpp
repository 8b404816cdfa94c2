#include "persistence/filetime.h"

#include "Utility/vxfile.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfile.h"
#include "ovwcmn/xctime.h"

#include <limits>

namespace ovw::persistence {

void setTime(XCTime& out, const platform::FileTime& time) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (time.seconds < Limits::min() || time.seconds > Limits::max())
        xcThrowError(foundation::cnCodeTime);
    out = static_cast<std::int32_t>(time.seconds);
}

void setLastWrite(const XCFile& file, std::int64_t seconds) {
    const auto handle = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(static_cast<void*>(file)));
    platform::FileInformation information;
    if (!vxGetFileInformation(handle, information))
        return;
    information.times.lastWrite = {seconds, 0};
    vxSetFileTimes(handle, information.times);
}

FILETIME toFileTime(const platform::FileTime& time) {
    constexpr std::int64_t secondsFrom1601To1970 = 11644473600;
    constexpr std::int64_t stepsPerSecond = 10'000'000;
    constexpr std::int32_t nanosecondsPerStep = 100;
    constexpr std::int64_t maxSeconds = std::numeric_limits<std::int64_t>::max() / stepsPerSecond - 1;
    const std::int64_t seconds = time.seconds + secondsFrom1601To1970;
    if (time.seconds < -secondsFrom1601To1970 || seconds > maxSeconds)
        return {};
    const auto steps = static_cast<std::uint64_t>(seconds * stepsPerSecond + time.nanoseconds / nanosecondsPerStep);
    return {static_cast<std::uint32_t>(steps), static_cast<std::uint32_t>(steps >> 32)};
}

} // namespace ovw::persistence
