#ifndef OVW_UTILITY_HOOKS_H
#define OVW_UTILITY_HOOKS_H

/// @file
/// The application's procedures as the rest of the library calls them.

#include "ovwcmn/ovwhooks.h"

namespace ovw::utility {

/// The hooks in effect; every member can be called.
const VXHOOKS& hooks();

} // namespace ovw::utility

#endif // OVW_UTILITY_HOOKS_H
