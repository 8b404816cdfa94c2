#include "Platform/systemerror.h"

#include <cerrno>

namespace ovw::platform {

namespace {

constexpr int cnGeneralFailure = 31;

/// A code that no errno value maps to. Where several values share a code, the first row has the text.
constexpr int cnNoErrno = -1;

struct ErrorRow {
    int error;
    int code;
    const char* text;
};

constexpr ErrorRow cnErrorRows[] = {
    {0, 0, "The operation completed successfully."},
    {cnNoErrno, 1, "Incorrect function."},
    {ENOENT, cnErrorFileNotFound, "The system cannot find the file specified."},
    {ENOTDIR, cnErrorPathNotFound, "The system cannot find the path specified."},
    {EMFILE, 4, "The system cannot open the file: too many files are open."},
    {ENFILE, 4, nullptr},
    {EACCES, cnErrorAccessDenied, "Access is denied."},
    {EPERM, cnErrorAccessDenied, nullptr},
    {EISDIR, cnErrorAccessDenied, nullptr},
    {EBADF, cnErrorInvalidHandle, "The handle is invalid."},
    {ENOMEM, cnErrorNotEnoughMemory, "Not enough memory is available to complete this operation."},
    {EXDEV, cnErrorNotSameDevice, "The file cannot be moved to a different disk drive."},
    {cnNoErrno, cnErrorNoMoreFiles, "There are no more files."},
    {EROFS, 19, "The medium is write-protected."},
    {ENODEV, 20, "The system cannot find the device specified."},
    {ENXIO, 21, "The device is not ready."},
    {ENOMEDIUM, 21, nullptr},
    {ESPIPE, 25, "The device cannot seek to the position asked for."},
    {cnNoErrno, 29, "The system cannot write to the device specified."},
    {cnNoErrno, cnErrorReadFault, "The system cannot read from the device specified."},
    {cnNoErrno, cnGeneralFailure, "A device attached to the system is not functioning."},
    {ETXTBSY, cnErrorSharingViolation, "The file is being used by another process."},
    {EBUSY, cnErrorSharingViolation, nullptr},
    {EWOULDBLOCK, 33, "Another process has locked a part of the file."},
    {ENOLCK, 36, "Too many files are open for sharing."},
    {cnNoErrno, 38, "The end of the file has been reached."},
    {ENOSPC, cnErrorDiskFull, "The disk is full."},
    {EDQUOT, cnErrorDiskFull, nullptr},
    {ENOTSUP, cnErrorNotSupported, "The request is not supported."},
    {ENOSYS, cnErrorNotSupported, nullptr},
    {EHOSTUNREACH, 53, "The network path was not found."},
    {EHOSTDOWN, 53, nullptr},
    {ESTALE, 59, "An unexpected network error occurred."},
    {EEXIST, cnErrorFileExists, "The file exists."},
    {EINVAL, cnErrorInvalidParameter, "The parameter is incorrect."},
    {EFAULT, cnErrorInvalidParameter, nullptr},
    {EPIPE, 109, "The pipe has been ended."},
    {cnNoErrno, 111, "The file name is too long."},
    {cnNoErrno, cnErrorVolumeFull, "There is not enough space on the disk."},
    {EILSEQ, cnErrorInvalidName, "The name of the file, folder or volume is incorrect."},
    {cnNoErrno, 126, "The module specified could not be found."},
    {cnNoErrno, cnErrorNegativeSeek, "A position before the beginning of the file was asked for."},
    {ENOTEMPTY, 145, "The folder is not empty."},
    {cnNoErrno, cnErrorAlreadyExists, "The file or folder exists already."},
    {ENAMETOOLONG, cnErrorFileNameTooLong, "The file name or the extension is too long."},
    {EFBIG, 223, "The file is larger than the limit allows."},
    {cnNoErrno, 267, "The name of the folder is invalid."},
    {EIO, 1117, "The request could not be carried out because of a device input or output error."},
    {ECANCELED, 1223, "The operation was cancelled by the user."},
    {EOVERFLOW, 534, "A number is too large for its type."},
    {ETIMEDOUT, 1460, "The operation took longer than the time allowed for it."},
    {ELOOP, 1921, "The name of the file cannot be resolved: too many links follow each other."},
};

} // namespace

int systemErrorFromErrno(int error) {
    for (const ErrorRow& row : cnErrorRows)
        if (row.error == error && error >= 0)
            return row.code;
    return cnGeneralFailure;
}

const char* systemErrorText(int code) {
    for (const ErrorRow& row : cnErrorRows)
        if (row.code == code && row.text)
            return row.text;
    return "";
}

} // namespace ovw::platform
