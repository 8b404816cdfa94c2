#ifndef OVWCMN_OVWDEFS_H
#define OVWCMN_OVWDEFS_H

/// @file
/// The export macro and the version of the library.

/// @{ The version of the library, by semantic versioning.
#define OVWCMN_VERSION_MAJOR 0
#define OVWCMN_VERSION_MINOR 1
#define OVWCMN_VERSION_PATCH 0
/// @}

#if defined(__GNUC__)
/// Marks what an application may link to; everything else stays hidden inside the shared library.
#define OVWCMN_API __attribute__((visibility("default")))
#else
#define OVWCMN_API
#endif

#if defined(__GNUC__)
/// Marks a type whose objects may overlay fields of another type (the corners of a rectangle as points).
#define OVWCMN_MAY_ALIAS __attribute__((may_alias))
#else
#define OVWCMN_MAY_ALIAS
#endif

#endif // OVWCMN_OVWDEFS_H
