#ifndef OVW_PLATFORM_POSIX_TRASH_H
#define OVW_PLATFORM_POSIX_TRASH_H

#include <string>

namespace ovw::platform {

/// Moves a file or folder into the user's trash in the layout that freedesktop.org describes (version 1.0): the home
/// trash, or .Trash-UID at the top of another volume. 0 or the system code; the file is untouched on failure.
int moveFileToTrash(const std::string& posix);

} // namespace ovw::platform

#endif // OVW_PLATFORM_POSIX_TRASH_H
