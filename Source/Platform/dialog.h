#ifndef OVW_PLATFORM_DIALOG_H
#define OVW_PLATFORM_DIALOG_H

/// @file
/// Messages to the user on a machine without a display. Never throws.

namespace ovw::platform {

/// Writes "title: text" and a line break to standard error, in one piece. Both are UTF-8 and not null. May block as
/// long as standard error does; failures are ignored.
void showMessage(const char* title, const char* text);

} // namespace ovw::platform

#endif // OVW_PLATFORM_DIALOG_H
