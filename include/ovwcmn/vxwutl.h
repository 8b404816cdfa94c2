#ifndef OVWCMN_VXWUTL_H
#define OVWCMN_VXWUTL_H

/// @file
/// The utility library: movable and fixed memory, text in the current code page, string tables, abort requests.
/// Nothing here throws: failures are answered by value, with a Windows error code in vxGetLastError().

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

#include <cstdint>

struct VXHANDLE__;
/// A movable block. The handle is the address of the block's first byte; null means none. The block moves only in
/// vxReAlloc, and the handle with it.
using VXHANDLE = VXHANDLE__*;

/// @name Movable blocks
/// Blocks begin at a multiple of 64 bytes and are zero when new, also in the part that vxReAlloc adds. `flags` is kept
/// for callers that pass 0 or 1 and changes nothing. `status` may be null; it is written on failure only (8: no
/// memory). One block belongs to one thread at a time, except that any number of threads may lock, read and unlock it
/// together.
/// @{
OVWCMN_API VXHANDLE vxAlloc(std::uint32_t size, std::uint32_t flags, int* status);
/// Keeps the contents up to the smaller size. On failure null, and the block stays as it was. A null handle is a new
/// block.
OVWCMN_API VXHANDLE vxReAlloc(VXHANDLE handle, std::uint32_t size, std::uint32_t flags, int* status);
/// The block's address; null (error 6) for a null handle. Locks nest.
OVWCMN_API void* vxLock(VXHANDLE handle);
/// Undoes one lock; harmless when there is none.
OVWCMN_API void vxUnlock(VXHANDLE handle);
/// Locks not yet undone.
OVWCMN_API int vxGetLockCount(VXHANDLE handle);
/// Releases the block whatever its locks; null is allowed.
OVWCMN_API void vxFree(VXHANDLE handle);
/// Bytes, 0 for null.
OVWCMN_API std::uint32_t vxGetHandleSize(VXHANDLE handle);
/// @}

/// @name Fixed blocks
/// As movable blocks, without locks.
/// @{
/// As vxAlloc.
OVWCMN_API void* vxAllocPtr(std::uint32_t size, std::uint32_t flags, int* status);
/// As vxReAlloc.
OVWCMN_API void* vxReAllocPtr(void* pointer, std::uint32_t size, std::uint32_t flags, int* status);
/// As vxFree.
OVWCMN_API void vxFreePtr(void* pointer);
/// As vxGetHandleSize.
OVWCMN_API std::uint32_t vxGetPtrSize(void* pointer);
/// @}

/// The Windows error code of the calling thread's last failure; a success leaves it alone.
OVWCMN_API int vxGetLastError();
OVWCMN_API void vxSetLastError(int code); ///< For code that fails in the library's stead.

/// @name Code page and language
/// Multibyte text everywhere in the library is in one code page of the process: 65001 (UTF-8) until it is set.
/// Set it at start-up, before other threads run.
/// @{
/// 65001, 932, 936, 949, 950, 874, 1250 to 1258; 0 and nothing changed for a page that this machine cannot convert.
OVWCMN_API int vxSetCodePage(std::uint32_t codePage);
OVWCMN_API std::uint32_t vxGetCodePage(); ///< The page in effect.
/// Language of the library's messages: 1033 (English), 1041 (Japanese), 0 to follow the user's locale (the default).
OVWCMN_API void vxSetLanguage(std::uint32_t language);
/// The language in effect: 1041 or 1033.
OVWCMN_API std::uint32_t vxGetLanguage();
/// @}

/// 1 when the byte at `index` is the second byte of a double-byte character, or any byte but the first of a UTF-8
/// character. 0 for null, a negative index and the terminator; a lead byte before the terminator stands alone.
/// The index must not lie beyond the terminator.
OVWCMN_API int vxIsDoubleByteCheckEx(const char* text, int index);
/// 1 when the text has at least one character and all are the digits 0 to 9.
OVWCMN_API int vxIsOnlyNumberString(const char* text);

/// The library's own module, whose string table vxLoadString reads; a null module is the executable.
OVWCMN_API HINSTANCE vxGetLibraryModule();
/// Text `id` of a module's string table, in the current code page, cut to `size` - 1 bytes but not inside a character;
/// empty when there is none. Returns the text's length. `selector` is passed on to the executable's hook (ovwhooks.h).
OVWCMN_API int vxLoadString(HINSTANCE module, std::uint32_t id, std::uint32_t selector, char* buffer, int size);

/// @name Abort requests
/// Long operations ask whether the user wants to stop. The application installs the answers; without them both are 0.
/// @{
using VXABORTPROC = int (*)(); ///< 0 to go on, else to stop.
/// The two procedures are process-wide and may be null; they are called from whatever thread runs the operation.
OVWCMN_API void vxSetAbortProc(VXABORTPROC abort, VXABORTPROC abortEx);
OVWCMN_API int vxAbort();   ///< The first procedure's answer, 0 without one.
OVWCMN_API int vxAbortEx(); ///< The second procedure's answer, 0 without one: asked by those who may ask again later.
/// @}

#endif // OVWCMN_VXWUTL_H
