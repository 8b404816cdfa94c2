#ifndef OVWCMN_OVWDEFS_H
#define OVWCMN_OVWDEFS_H

/// @file
/// The export macro and the version of the library.

#define OVWCMN_VERSION_MAJOR 0
#define OVWCMN_VERSION_MINOR 1
#define OVWCMN_VERSION_PATCH 0

#if defined(__GNUC__)
/// Marks what an application may link to; everything else stays hidden inside the shared library.
#define OVWCMN_API __attribute__((visibility("default")))
#else
#define OVWCMN_API
#endif

#endif // OVWCMN_OVWDEFS_H
