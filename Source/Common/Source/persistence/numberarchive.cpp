// How sheet numbers and lengths are kept in archives and settings.

#include "ovwcmn/xcarchive.h"
#include "ovwcmn/xclength.h"
#include "ovwcmn/xcnumber.h"
#include "ovwcmn/xcpreferencefile.h"
#include "ovwcmn/xcregkey.h"
#include "ovwcmn/xcstring.h"

namespace {

constexpr std::uint32_t cnNumberBytes = 8;
constexpr std::uint32_t cnLengthBytes = 20;
constexpr char cnDefaultFormat[] = "%4.3lf";

XCString entry(const char* name, const char* suffix) {
    XCString label = name;
    label += suffix;
    return label;
}

} // namespace

XCArchive& operator<<(XCArchive& archive, const _VXNUMBER& number) {
    archive << number.number;
    archive.Write(number.suffix, sizeof number.suffix);
    return archive;
}

XCArchive& operator>>(XCArchive& archive, _VXNUMBER& number) {
    archive.RequireRemaining(cnNumberBytes);
    archive >> number.number;
    archive.Read(number.suffix, sizeof number.suffix);
    number.suffix[sizeof number.suffix - 1] = '\0';
    return archive;
}

XCArchive& operator<<(XCArchive& archive, const XCNumber& number) {
    number.WriteArchive(archive);
    return archive;
}

XCArchive& operator>>(XCArchive& archive, XCNumber& number) {
    number.ReadArchive(archive);
    return archive;
}

void XCNumber::WriteArchive(XCArchive& archive) const { archive << m_number; }

void XCNumber::ReadArchive(XCArchive& archive) { archive >> m_number; }

XCArchive& operator<<(XCArchive& archive, const XCLength& length) {
    length.WriteArchive(archive);
    return archive;
}

XCArchive& operator>>(XCArchive& archive, XCLength& length) {
    length.ReadArchive(archive);
    return archive;
}

void XCLength::WriteArchive(XCArchive& archive) const {
    archive << m_length.value << m_length.unit << m_length.resolution;
}

void XCLength::ReadArchive(XCArchive& archive) {
    archive.RequireRemaining(cnLengthBytes);
    _VXLENGTH read;
    archive >> read.value >> read.unit >> read.resolution;
    Set(read.value, read.unit, read.resolution);
}

void XCLength::WritePreference(XCPreferenceFile& file, const char* name, double resolution, const char* format) const {
    const char* const form = format ? format : cnDefaultFormat;
    file.SetPreferenceFile(entry(name, "Data"), m_length.value, form);
    file.SetPreferenceFile(entry(name, "Res"), resolution > 0 ? resolution : m_length.resolution, form);
    file.SetPreferenceFile(entry(name, "Unit"), m_length.unit);
}

int XCLength::ReadPreference(XCPreferenceFile& file, const char* name, double resolution) {
    if (!file.GetPreferenceFile(entry(name, "Data"), m_length.value))
        return 0;
    if (resolution > 0)
        m_length.resolution = resolution;
    else if (!file.GetPreferenceFile(entry(name, "Res"), m_length.resolution))
        return 0;
    return file.GetPreferenceFile(entry(name, "Unit"), m_length.unit);
}

void XCLength::WritePreference(XCRegKey& key, const char* name, double resolution) const {
    key.SetValue(m_length.value, entry(name, "Data"), 0);
    key.SetValue(resolution > 0 ? resolution : m_length.resolution, entry(name, "Res"), 0);
    key.SetValue(m_length.unit, entry(name, "Unit"));
}

int XCLength::ReadPreference(XCRegKey& key, const char* name, double resolution) {
    if (!key.GetValue(m_length.value, entry(name, "Data"), 0))
        return 0;
    if (resolution > 0)
        m_length.resolution = resolution;
    else if (!key.GetValue(m_length.resolution, entry(name, "Res"), 0))
        return 0;
    return key.GetValue(m_length.unit, entry(name, "Unit"));
}
