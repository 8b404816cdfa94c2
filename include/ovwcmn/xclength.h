#ifndef OVWCMN_XCLENGTH_H
#define OVWCMN_XCLENGTH_H

/// @file
/// Lengths with their units.

#include "ovwcmn/ovwdefs.h"

#include <cstdint>

class XCArchive;
class XCPreferenceFile;
class XCRegKey;
class XCString;

/// A length as it is stored.
struct _VXLENGTH {
    double value;      ///< in the unit
    std::int32_t unit; ///< 0 to 9, -1 unset
    double resolution; ///< pixels an inch, 0 when unset
};

/// A length in one of ten units, with the resolution that gives pixels a size: 0 pixel at the length's own resolution
/// (size 0 without one), 1 cm, 2 mm, 3 inch, 4 pica, 5 point, 6 Q, 7 point of 0.3514 mm, 8 point of 0.3759 mm, 9 pixel
/// at s_dPixelFixResolution; -1 unset. Conversions that make no sense give 0. A value type, laid out as _VXLENGTH;
/// only what reads or writes streams, files and texts throws.
class OVWCMN_API XCLength {
public:
    static const double s_dPixelFixResolution; ///< 600 pixels an inch
    static constexpr int cnKeepUnit = -2;      ///< for Set

    XCLength() = default;
    /// @{ Value, unit and resolution; 0 is no resolution.
    XCLength(double value, int unit) { Set(value, unit, 0); }
    XCLength(double value, int unit, double resolution) { Set(value, unit, resolution); }
    XCLength(const _VXLENGTH& length) : m_length(length) {}
    XCLength& operator=(const _VXLENGTH& length) { return *this = XCLength(length); }
    operator _VXLENGTH() const { return m_length; }
    /// @}

    /// cnKeepUnit keeps the unit, a resolution that is not above 0 keeps the resolution.
    void Set(double value, int unit, double resolution);
    double GetData() const { return m_length.value; }            ///< the value in its own unit
    int GetUnit() const { return m_length.unit; }                ///< as the head of the class says; -1 unset
    void SetUnit(int unit) { m_length.unit = unit; }             ///< the value stays as it is
    double GetResolution() const { return m_length.resolution; } ///< pixels an inch, 0 when unset

    /// Equal in value, unit and resolution, to the bit of the doubles' values.
    bool operator==(const XCLength& other) const;
    bool operator!=(const XCLength& other) const { return !(*this == other); } ///< in value, unit or resolution
    /// @{ As between lengths.
    bool operator==(const _VXLENGTH& other) const { return *this == XCLength(other); }
    bool operator!=(const _VXLENGTH& other) const { return *this != XCLength(other); }
    /// @}
    /// @{ Of the value; unit and resolution stay.
    XCLength& operator*=(double factor);
    XCLength& operator/=(double divisor);
    XCLength operator*(double factor) const { return XCLength(*this) *= factor; }
    XCLength operator/(double divisor) const { return XCLength(*this) /= divisor; }
    /// @}

    /// The value in another unit. Pixels of unit 0 are those of this length's resolution.
    double GetAs(int unit) const;
    /// The length in pixels at a resolution, to the nearest.
    int GetAsPixel(double resolution) const;
    double GetAsPixelD(double resolution) const; ///< The same unrounded.
    /// The same, but for unit 9 in pixels at the fixed resolution.
    int GetAsPixelUsingPref(int unit, double resolution) const;
    double GetAsPixelDUsingPref(int unit, double resolution) const; ///< The same unrounded.

    /// The length for people, in a unit: with the decimals of GetUnitSmall or none, followed by the unit's name if
    /// asked.
    void GetLengthStr(XCString& out, int unit, int asInteger, int withUnit, int longName) const;
    /// @{ The unit's name, short ("cm") or long.
    void GetUnitStr(XCString& out, int longName) const { GetUnitStr(out, m_length.unit, longName); }
    static void GetUnitStr(XCString& out, int unit, int longName);
    /// @}
    /// Decimals shown.
    static int GetUnitSmall(int unit);

    /// Value, unit (32 bits) and resolution. What is read goes through Set.
    void WriteArchive(XCArchive& archive) const;
    void ReadArchive(XCArchive& archive); ///< As WriteArchive.

    /// @name Settings
    /// Three entries: `name` + "Data", "Res" and "Unit". A resolution above 0 is written, or taken, instead of the
    /// length's own. Reading gives 1 when all were found; what was found before a missing one is kept.
    /// @{
    /// Numbers in a printf format for one double; null is "%4.3lf".
    /// As the group says; see Set for what is read.
    void WritePreference(XCPreferenceFile& file, const char* name, double resolution, const char* format) const;
    int ReadPreference(XCPreferenceFile& file, const char* name, double resolution); ///< 1 when all three were found.
    void WritePreference(XCRegKey& key, const char* name, double resolution) const;
    int ReadPreference(XCRegKey& key, const char* name, double resolution); ///< 1 when all three were found.
    /// @}

    void Dump() const {} ///< nothing: kept for callers

private:
    /// 0 for what has no size.
    double unitsPerInch(int unit) const;

    _VXLENGTH m_length = {0, -1, 0};
};

/// @{ As WriteArchive and ReadArchive.
OVWCMN_API XCArchive& operator<<(XCArchive& archive, const XCLength& length);
OVWCMN_API XCArchive& operator>>(XCArchive& archive, XCLength& length);
/// @}

#endif // OVWCMN_XCLENGTH_H
