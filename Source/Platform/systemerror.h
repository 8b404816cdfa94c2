#ifndef OVW_PLATFORM_SYSTEMERROR_H
#define OVW_PLATFORM_SYSTEMERROR_H

/// @file
/// Failures of the operating system as Windows system codes, the form in which the whole library reports them.

namespace ovw::platform {

inline constexpr int cnErrorFileNotFound = 2;
inline constexpr int cnErrorPathNotFound = 3;
inline constexpr int cnErrorAccessDenied = 5;
inline constexpr int cnErrorInvalidHandle = 6;
inline constexpr int cnErrorNotEnoughMemory = 8;
inline constexpr int cnErrorNotSameDevice = 17;
inline constexpr int cnErrorNoMoreFiles = 18;
inline constexpr int cnErrorReadFault = 30;
inline constexpr int cnErrorSharingViolation = 32;
inline constexpr int cnErrorDiskFull = 39;
inline constexpr int cnErrorNotSupported = 50;
inline constexpr int cnErrorFileExists = 80;
inline constexpr int cnErrorInvalidParameter = 87;
inline constexpr int cnErrorVolumeFull = 112;
inline constexpr int cnErrorInvalidName = 123;
inline constexpr int cnErrorNegativeSeek = 131;
inline constexpr int cnErrorAlreadyExists = 183;
inline constexpr int cnErrorFileNameTooLong = 206;

/// The Windows system code of an errno value: 0 for 0, 31 (general failure) for a value without a counterpart.
int systemErrorFromErrno(int error);

/// The English text of a Windows system code, "" when the table does not hold it. Never null; static storage.
const char* systemErrorText(int code);

} // namespace ovw::platform

#endif // OVW_PLATFORM_SYSTEMERROR_H
