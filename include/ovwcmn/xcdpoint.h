#ifndef OVWCMN_XCDPOINT_H
#define OVWCMN_XCDPOINT_H

/// @file
/// Small sets of points in files of their own.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

#include <array>
#include <cstdint>

class XCArchive;
class XCFilePath;

/// Up to ten points in real coordinates, each mirrored in whole ones (real x resolution, truncated; clamped to the
/// range of an int), with an angle, an opacity, a packed colour and the resolution. What takes a whole point changes
/// the whole coordinates alone; indices outside 0 to 9 do nothing. A value type; only streams and files throw.
class OVWCMN_API XCDPoint {
public:
    static constexpr int cnMaxPoints = 10;                    ///< points of a set
    static constexpr std::uint32_t cnFileType = 0x57445046;   ///< "WDPF"
    static constexpr int cnDefaultOpacity = 100;              ///< percent
    static constexpr std::uint32_t cnDefaultColor = 0x969696; ///< 0x00BBGGRR

    XCDPoint() = default;
    XCDPoint(const XCDPoint&) = default;
    explicit XCDPoint(const XCDPoint* other) : XCDPoint(*other) {} ///< a copy of *other, not null
    XCDPoint& operator=(const XCDPoint&) = default;
    virtual ~XCDPoint();

    /// @{ Points in use, angle in degrees, opacity in percent, colour 0xAABBGGRR; kept as they are given.
    int GetCount() const { return m_count; }
    int GetAngle() const { return m_angle; }
    void SetAngle(int angle) { m_angle = angle; }
    int GetOpacity() const { return m_opacity; }
    void SetOpacity(int opacity) { m_opacity = opacity; }
    std::uint32_t GetColor() const { return m_color; }
    void SetColor(std::uint32_t color) { m_color = color; }
    /// @}
    /// The whole coordinates of the points stay as they are.
    void SetResolution(double resolution) { m_resolution = resolution; }

    /// Nothing when the set is full.
    void AddPoint(const tagPOINTD& point);
    void AddPoint(const tagPOINT& point); ///< Nothing when the set is full.
    /// @{ A point by its index.
    void SetPoint(const tagPOINTD& point, int index);
    void SetPoint(const tagPOINT& point, int index);
    void GetPoint(tagPOINTD& point, int index) const;
    void GetPoint(tagPOINT& point, int index) const;
    /// @}
    /// -1 empties the set; 9 and more take away the last point.
    void RemovePoint(int index);
    /// Moves one point, or with -1 every point in use.
    void Offset(const tagPOINTD& distance, int index);
    void Offset(const tagPOINT& distance, int index); ///< The same for the whole coordinates alone.

    /// The file type (if asked for), the real points and the angle. Loading replaces all points, or throws (0x2001000B:
    /// another type or an impossible count, 0x20010008: too short) and changes nothing; points beyond ten are dropped.
    void Serialize(XCArchive& archive, int withType);
    /// Opacity and colour, as a section. As Serialize.
    void SerializeEx(XCArchive& archive);
    /// Files without the section have the default opacity and colour. A file that cannot be read changes nothing.
    void Open(const XCFilePath& path);
    /// Replaces the file in one step.
    void Save(const XCFilePath& path, std::uint32_t creator);

private:
    static bool holds(int index) { return index >= 0 && index < cnMaxPoints; }
    void save(XCArchive& archive, int withType) const;
    void load(XCArchive& archive, int withType);

    std::array<tagPOINTD, cnMaxPoints> m_real = {};
    std::array<tagPOINT, cnMaxPoints> m_whole = {};
    int m_count = 0;
    int m_angle = 5;
    int m_opacity = cnDefaultOpacity;
    std::uint32_t m_color = cnDefaultColor;
    double m_resolution = 90.0;
};

#endif // OVWCMN_XCDPOINT_H
