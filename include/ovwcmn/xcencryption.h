#ifndef OVWCMN_XCENCRYPTION_H
#define OVWCMN_XCENCRYPTION_H

/// @file
/// Enciphered files.

#include "ovwcmn/ovwdefs.h"

#include <cstdint>

class IXCAbort;
class IXCProgress;
class XCFile;
class XCFilePath;
class XCString;

/// Enciphers and deciphers files with FEAL-NX (128 rounds, 128-bit key, each block of 8 bytes by itself): a format to
/// be read, not a protection by today's measure. The key is a text of at most 63 characters, of which the first 32 are
/// taken as hexadecimal digits (others as their low four bits, missing ones as 0). The output grows beside `out` and
/// replaces it when it is whole, so `in` and `out` may be the same. File errors throw the system's code, a longer key
/// text 0x20010008. Operations may run in several threads; one object belongs to one thread at a time.
class OVWCMN_API XCEncryption {
public:
    XCEncryption() = default;
    XCEncryption(const XCEncryption&) = default;
    XCEncryption& operator=(const XCEncryption&) = default;
    virtual ~XCEncryption();

    /// A new random key text of 8 hexadecimal digits.
    static void MakeEncKey(XCString& key);

    /// @name Files
    /// 1, or 0 when the abort query stopped it: then `out` is left cut off (or as it was, when it is `in`). The output
    /// is the input padded with zeros to a multiple of 8 bytes; deciphering leaves the padding. Of the chunks of
    /// 51200 bytes only the first `limit` are enciphered or deciphered (0: all).
    /// @{
    /// From file to file.
    int Encrypt(const char* key, const XCFilePath& in, const XCFilePath& out, std::uint32_t limit = 0);
    int Decrypt(const char* key, const XCFilePath& in, const XCFilePath& out, std::uint32_t limit = 0);
    /// Deciphers at most `size` bytes to `buffer`.
    int Decrypt(const char* key, char* buffer, int size, const XCFilePath& in);
    /// The key text stands, in plain, before the enciphered data. Reading throws 0x20010008 when the file ends within
    /// it, 0x2001000B when it is too long.
    int EncryptWithKey(const char* key, const XCFilePath& in, const XCFilePath& out);
    int DecryptWithKey(const XCFilePath& in, const XCFilePath& out);  ///< With the key that the file begins with.
    int DecryptWithKey(char* buffer, int size, const XCFilePath& in); ///< The same to `buffer`.
    /// @}

protected:
    /// @name The cipher of the process
    /// There is one key and one schedule: another thread may set them between two calls, which the operations above
    /// take care of.
    /// @{
    void KeySet(const char* text); ///< Makes the 128-bit key of a key text.
    /// The schedule of the key set, for enciphering or (0) deciphering.
    void MakeKey(int encrypt);
    /// One block of 8 bytes; `in` and `out` may be the same.
    void Feal(const unsigned char* in, unsigned char* out);
    static int HexCode(char character); ///< the low four bits of a digit, 0 to 15
    /// From the positions of the files on, with the schedule as it is now. 1, or 0 when stopped.
    int Ecb(XCFile& in, XCFile& out, std::uint32_t limit);
    /// @}

    IXCProgress* m_progress = nullptr; ///< told the bytes done; may be null
    IXCAbort* m_abort = nullptr;       ///< asked before each chunk; may be null
};

#endif // OVWCMN_XCENCRYPTION_H
