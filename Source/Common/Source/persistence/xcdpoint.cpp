#include "ovwcmn/xcdpoint.h"

#include "ovwcmn/detail/toint.h"
#include "ovwcmn/xcarchivefile.h"
#include "ovwcmn/xcexception.h"
#include "persistence/replacingfile.h"

#include <algorithm>

namespace {

constexpr int cnAll = -1;
constexpr std::uint32_t cnCountBytes = 4;
constexpr std::uint32_t cnPointBytes = 16;
constexpr std::uint32_t cnExtensionBytes = 8;

/// Wraps, as the geometry types do.
std::int32_t sum(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

template <class Points>
void removeAt(Points& points, int index) {
    std::copy(points.begin() + index + 1, points.end(), points.begin() + index);
}

} // namespace

XCDPoint::~XCDPoint() = default;

void XCDPoint::AddPoint(const tagPOINTD& point) {
    if (m_count < cnMaxPoints)
        SetPoint(point, m_count++);
}

void XCDPoint::AddPoint(const tagPOINT& point) {
    if (m_count < cnMaxPoints)
        SetPoint(point, m_count++);
}

void XCDPoint::SetPoint(const tagPOINTD& point, int index) {
    if (!holds(index))
        return;
    const auto i = static_cast<std::size_t>(index);
    m_real[i] = point;
    m_whole[i] = {ovw::truncateToInt(point.x * m_resolution), ovw::truncateToInt(point.y * m_resolution)};
}

void XCDPoint::SetPoint(const tagPOINT& point, int index) {
    if (holds(index))
        m_whole[static_cast<std::size_t>(index)] = point;
}

void XCDPoint::GetPoint(tagPOINTD& point, int index) const {
    if (holds(index))
        point = m_real[static_cast<std::size_t>(index)];
}

void XCDPoint::GetPoint(tagPOINT& point, int index) const {
    if (holds(index))
        point = m_whole[static_cast<std::size_t>(index)];
}

void XCDPoint::RemovePoint(int index) {
    if (m_count == 0 || index < cnAll)
        return;
    if (index == cnAll) {
        m_count = 0;
        return;
    }
    if (index < cnMaxPoints - 1) {
        removeAt(m_real, index);
        removeAt(m_whole, index);
    }
    --m_count;
}

void XCDPoint::Offset(const tagPOINTD& distance, int index) {
    const int first = index == cnAll ? 0 : index, last = index == cnAll ? m_count : index + 1;
    for (int i = std::max(first, 0); i < std::min(last, cnMaxPoints); ++i) {
        const tagPOINTD& point = m_real[static_cast<std::size_t>(i)];
        SetPoint(tagPOINTD{point.x + distance.x, point.y + distance.y}, i);
    }
}

void XCDPoint::Offset(const tagPOINT& distance, int index) {
    const int first = index == cnAll ? 0 : index, last = index == cnAll ? m_count : index + 1;
    for (int i = std::max(first, 0); i < std::min(last, cnMaxPoints); ++i) {
        tagPOINT& point = m_whole[static_cast<std::size_t>(i)];
        point = {sum(point.x, distance.x), sum(point.y, distance.y)};
    }
}

void XCDPoint::Serialize(XCArchive& archive, int withType) {
    if (archive.IsSaving())
        return save(archive, withType);
    XCDPoint loaded(*this);
    loaded.load(archive, withType);
    *this = loaded;
}

void XCDPoint::save(XCArchive& archive, int withType) const {
    if (withType)
        archive << cnFileType;
    archive << m_count;
    for (int i = 0; i < m_count; ++i)
        archive << m_real[static_cast<std::size_t>(i)].x << m_real[static_cast<std::size_t>(i)].y;
    archive << m_angle;
}

void XCDPoint::load(XCArchive& archive, int withType) {
    if (withType) {
        archive.RequireRemaining(sizeof cnFileType);
        std::uint32_t type = 0;
        archive >> type;
        if (type != cnFileType)
            xcThrowError(ovw::foundation::cnCodeFileFormat);
    }
    archive.RequireRemaining(cnCountBytes);
    std::int32_t count = 0;
    archive >> count;
    if (count < 0)
        xcThrowError(ovw::foundation::cnCodeFileFormat);
    archive.RequireRemaining(std::uint64_t{cnPointBytes} * static_cast<std::uint32_t>(count) + sizeof m_angle);
    RemovePoint(cnAll);
    for (; count > 0; --count) {
        tagPOINTD point;
        archive >> point.x >> point.y;
        AddPoint(point);
    }
    archive >> m_angle;
}

void XCDPoint::SerializeEx(XCArchive& archive) {
    archive.BeginSection();
    if (archive.IsSaving()) {
        archive << m_opacity << m_color;
    } else {
        if (archive.GetSectionSize() < cnExtensionBytes)
            xcThrowError(ovw::foundation::cnCodeFileFormat);
        std::int32_t opacity = 0;
        std::uint32_t color = 0;
        archive >> opacity >> color;
        m_opacity = opacity;
        m_color = color;
    }
    archive.EndSection();
}

void XCDPoint::Open(const XCFilePath& path) {
    XCArchiveFile archive;
    archive.FileOpen(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
    XCDPoint loaded(*this);
    loaded.Serialize(archive, 1);
    loaded.m_opacity = cnDefaultOpacity;
    loaded.m_color = cnDefaultColor;
    if (archive.GetPosition() < archive.GetLength())
        loaded.SerializeEx(archive);
    *this = loaded;
}

void XCDPoint::Save(const XCFilePath& path, std::uint32_t creator) {
    ovw::persistence::replaceByArchive(path, "tmp", creator, cnFileType, XCArchive::cnBigEndian,
                                       [this](XCArchive& archive) {
                                           Serialize(archive, 1);
                                           SerializeEx(archive);
                                       });
}
