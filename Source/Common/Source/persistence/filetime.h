#ifndef OVW_PERSISTENCE_FILETIME_H
#define OVW_PERSISTENCE_FILETIME_H

#include "Platform/file.h"
#include "ovwcmn/wintypes.h"

#include <cstdint>

class XCFile;
class XCTime;

namespace ovw::persistence {

/// From the seconds directly: a way through local calendar time would be an hour off in summer. Throws 0x20010009 when
/// 32 bits do not hold the time.
void setTime(XCTime& out, const platform::FileTime& time);

/// Gives an open file a time of the last write, in seconds since 1970. A volume that keeps no times is left alone.
void setLastWrite(const XCFile& file, std::int64_t seconds);

/// 0 for times before 1601.
FILETIME toFileTime(const platform::FileTime& time);

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_FILETIME_H
