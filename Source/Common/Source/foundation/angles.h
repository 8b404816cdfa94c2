#ifndef OVW_FOUNDATION_ANGLES_H
#define OVW_FOUNDATION_ANGLES_H

namespace ovw {

inline constexpr double cnRadiansPerDegree = 0.017453292519943295;

} // namespace ovw

#endif // OVW_FOUNDATION_ANGLES_H
