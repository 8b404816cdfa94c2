#ifndef OVW_PLATFORM_SHELL_H
#define OVW_PLATFORM_SHELL_H

/// @file
/// The running program and the user's folders, as paths of the system. Throws nothing but std::bad_alloc. Thread-safe.

#include <string>

namespace ovw::platform {

/// Full path of the running program's file; "" when the system does not tell.
std::string executablePath();

/// The user's documents folder: what the desktop's list of user folders names, else the home folder; "" without a home.
std::string documentsFolder();

} // namespace ovw::platform

#endif // OVW_PLATFORM_SHELL_H
