#ifndef OVWCMN_XCLOOKUPTABLE_H
#define OVWCMN_XCLOOKUPTABLE_H

/// @file
/// Tone curves.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xchandle.h"

#include <cstdint>

/// A tone curve: each 8-bit or 16-bit channel value is mapped to another. Owns its table.
/// Throws XCException (8) when memory runs out. Curves that threads share must not change meanwhile.
class OVWCMN_API XCLookUpTable : public XCPointer {
public:
    /// No table.
    XCLookUpTable() = default;
    /// @{ A copy has a table of its own.
    XCLookUpTable(const XCLookUpTable& src);
    XCLookUpTable& operator=(const XCLookUpTable& src);
    /// @}

    /// Makes an identity table: type 1 has 256 entries of 8 bits, type 2 has 65536 of 16 bits. Any other type has the
    /// memory of type 1, which no getter hands out.
    void Create(int type);
    void Destroy(); ///< no table
    /// Makes the table the identity.
    void Init();
    /// The table of 8-bit entries, for 32-bit pixels; null unless the type is 1.
    std::uint8_t* Get32BitTable() const;
    /// The table of 16-bit entries, for 64-bit pixels; null unless the type is 2.
    std::uint16_t* Get64BitTable() const;
    /// mirror turns the table end for end, invert complements its entries.
    void Reverse(int mirror, int invert);
    using XCPointer::Copy; ///< block from block
    /// Takes over the type and the entries of src.
    void Copy(const XCLookUpTable& src);
    /// This curve first, then the other. Takes over the other's type (from the identity) when they differ.
    void Merge(XCLookUpTable& other);
    /// The first curve, then the second.
    void Merge(XCLookUpTable& first, XCLookUpTable& second);

private:
    bool hasEntries() const;

    int m_type = 0;
};

#endif // OVWCMN_XCLOOKUPTABLE_H
