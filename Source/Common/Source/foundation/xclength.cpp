#include "ovwcmn/xclength.h"

#include "ovwcmn/vxmath.h"
#include "ovwcmn/xcstring.h"

#include <iterator>

namespace {

constexpr int cnOwnPixel = 0;
constexpr int cnFixedPixel = 9;
constexpr double cnFixedResolution = 600.0;
constexpr double cnMillimetres = 25.4; // an inch

/// A unit by its size: `scale` times the base unit of which `perInch` make an inch.
struct Unit {
    double scale;
    double perInch; // 0: the pixel, whose size is the length's own
    const char* shortName;
    const char* longName;
    int decimals;
};

constexpr Unit cnUnits[] = {
    {1, 0, "px", "pixels", 0},                 //
    {1, 2.54, "cm", "cm", 2},                  //
    {1, cnMillimetres, "mm", "mm", 2},         //
    {1, 1, "in", "inch", 3},                   //
    {1, 6, "pica", "pica", 2},                 //
    {1, 72, "pt", "pt", 2},                    //
    {0.25, cnMillimetres, "Q", "Q", 2},        //
    {0.3514, cnMillimetres, "pt", "pt", 0},    //
    {0.3759, cnMillimetres, "pt", "pt", 0},    //
    {1, cnFixedResolution, "px", "pixels", 1}, //
};
constexpr Unit cnUnknownUnit = {0, 0, "", "", 0};

bool isUnit(int unit) { return unit >= 0 && unit < static_cast<int>(std::size(cnUnits)); }

const Unit& unitOf(int unit) { return isUnit(unit) ? cnUnits[unit] : cnUnknownUnit; }

} // namespace

const double XCLength::s_dPixelFixResolution = cnFixedResolution;

void XCLength::Set(double value, int unit, double resolution) {
    m_length.value = value;
    if (unit != cnKeepUnit)
        m_length.unit = unit;
    if (resolution > 0)
        m_length.resolution = resolution;
}

bool XCLength::operator==(const XCLength& other) const {
    return m_length.value == other.m_length.value && m_length.unit == other.m_length.unit &&
           m_length.resolution == other.m_length.resolution;
}

XCLength& XCLength::operator*=(double factor) {
    m_length.value *= factor;
    return *this;
}

XCLength& XCLength::operator/=(double divisor) {
    m_length.value /= divisor;
    return *this;
}

double XCLength::GetAs(int unit) const {
    if (unit == m_length.unit)
        return m_length.value;
    const double sourcePerInch = unitsPerInch(m_length.unit), targetPerInch = unitsPerInch(unit);
    if (sourcePerInch == 0 || targetPerInch == 0)
        return 0;
    double inBase = m_length.value * unitOf(m_length.unit).scale;
    if (sourcePerInch != targetPerInch)
        inBase = inBase * targetPerInch / sourcePerInch;
    return inBase / unitOf(unit).scale;
}

int XCLength::GetAsPixel(double resolution) const { return vxDouble2Int(GetAsPixelD(resolution)); }

double XCLength::GetAsPixelD(double resolution) const {
    const double perInch = unitsPerInch(m_length.unit);
    return perInch == 0 ? 0 : m_length.value * unitOf(m_length.unit).scale * resolution / perInch;
}

int XCLength::GetAsPixelUsingPref(int unit, double resolution) const {
    return vxDouble2Int(GetAsPixelDUsingPref(unit, resolution));
}

double XCLength::GetAsPixelDUsingPref(int unit, double resolution) const {
    return unit == cnFixedPixel ? GetAs(cnFixedPixel) : GetAsPixelD(resolution);
}

double XCLength::unitsPerInch(int unit) const {
    if (unit != cnOwnPixel)
        return unitOf(unit).perInch;
    return m_length.resolution > 0 ? m_length.resolution : 0;
}

void XCLength::GetLengthStr(XCString& out, int unit, int asInteger, int withUnit, int longName) const {
    if (unit == cnOwnPixel)
        out.SetNumber(GetAsPixel(m_length.resolution), "%d");
    else if (asInteger)
        out.SetNumber(vxDouble2Int(GetAs(unit)), "%d");
    else {
        XCString format;
        format.Format("%%.%df", GetUnitSmall(unit));
        out.SetNumber(GetAs(unit), format);
    }
    if (withUnit) {
        XCString name;
        GetUnitStr(name, unit, longName);
        out += name;
    }
}

void XCLength::GetUnitStr(XCString& out, int unit, int longName) {
    out = longName ? unitOf(unit).longName : unitOf(unit).shortName;
}

int XCLength::GetUnitSmall(int unit) { return unitOf(unit).decimals; }
