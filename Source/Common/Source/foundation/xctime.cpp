#include "ovwcmn/xctime.h"

#include "Platform/clock.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcstring.h"

#include <iterator>
#include <limits>

namespace platform = ovw::platform;
using ovw::foundation::cnCodeTime;

namespace {

constexpr int cnFirstYear = 1900; // of a tm record
constexpr int cnMonths = 12;
constexpr int cnFebruary = 2;
constexpr int cnDaysOfMonth[cnMonths] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

constexpr const char* cnStyles[] = {"%X", "%y/%m/%d", "%Y/%m/%d", "%y/%m/%d %X", "%Y/%m/%d %X"};

bool isLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

// Counted from 0; the month must be 1 to 12.
int dayOfYear(const SYSTEMTIME& time) {
    int days = time.wDay - 1;
    for (int month = 1; month < time.wMonth; ++month)
        days += cnDaysOfMonth[month - 1] + (month == cnFebruary && isLeapYear(time.wYear));
    return days;
}

void store(std::uint16_t* out, int value) {
    if (out)
        *out = static_cast<std::uint16_t>(value);
}

} // namespace

XCTime::~XCTime() = default;

void XCTime::Clear() {
    m_time = cnNoTime;
    m_local = {};
    m_utc = {};
}

void XCTime::set(std::int64_t time) {
    using Limits = std::numeric_limits<std::int32_t>;
    Clear();
    if (time == cnNoTime)
        return;
    std::tm local = {};
    std::tm utc = {};
    if (time < Limits::min() || time > Limits::max() || !platform::utcCalendar(time, utc) ||
        !platform::localCalendar(time, local))
        xcThrowError(cnCodeTime);
    m_time = static_cast<std::int32_t>(time);
    m_local = local;
    m_utc = utc;
}

void XCTime::GetTime() { set(platform::wallSeconds()); }

void XCTime::MakeTime(const std::tm& local) {
    std::int64_t seconds = cnNoTime;
    const bool isTime = platform::secondsFromLocal(local, seconds);
    Clear();
    if (!isTime)
        xcThrowError(cnCodeTime);
    set(seconds);
}

std::int32_t XCTime::operator=(const std::int32_t& time) {
    set(time);
    return m_time;
}

XCTime XCTime::operator=(const XCTime& other) {
    set(other.m_time);
    return *this;
}

std::tm XCTime::operator=(const std::tm& local) {
    MakeTime(local);
    return m_local;
}

SYSTEMTIME XCTime::operator=(const SYSTEMTIME& local) {
    if (local.wMonth < 1 || local.wMonth > cnMonths) {
        Clear();
        xcThrowError(cnCodeTime);
    }
    std::tm time = {};
    time.tm_sec = local.wSecond;
    time.tm_min = local.wMinute;
    time.tm_hour = local.wHour;
    time.tm_mday = local.wDay;
    time.tm_mon = local.wMonth - 1;
    time.tm_year = local.wYear - cnFirstYear;
    time.tm_wday = local.wDayOfWeek;
    time.tm_yday = dayOfYear(local);
    time.tm_isdst = 0;
    MakeTime(time);
    return local;
}

XCTime::operator SYSTEMTIME() const {
    SYSTEMTIME time = {};
    store(&time.wDayOfWeek, m_local.tm_wday);
    GetTimeElements(*this, &time.wYear, &time.wMonth, &time.wDay, &time.wHour, &time.wMinute, &time.wSecond,
                    &time.wMilliseconds);
    return time;
}

int XCTime::FormatTime(char* buffer, int size, int style) const { return FormatTime(buffer, size, m_local, style); }

int XCTime::FormatTime(char* buffer, int size, const std::tm& time, int style) {
    if (!buffer || size < 1)
        return 0;
    buffer[0] = '\0';
    if (style < 0 || style >= static_cast<int>(std::size(cnStyles)))
        return 0;
    const std::size_t written = std::strftime(buffer, static_cast<std::size_t>(size), cnStyles[style], &time);
    if (written == 0)
        buffer[0] = '\0'; // what did not fit has no terminator
    return static_cast<int>(written);
}

void XCTime::GetTimeElements(const XCTime& time, std::uint16_t* year, std::uint16_t* month, std::uint16_t* day,
                             std::uint16_t* hour, std::uint16_t* minute, std::uint16_t* second,
                             std::uint16_t* millisecond) {
    const std::tm& local = time.m_local;
    store(year, local.tm_year + cnFirstYear);
    store(month, local.tm_mon + 1);
    store(day, local.tm_mday);
    store(hour, local.tm_hour);
    store(minute, local.tm_min);
    store(second, local.tm_sec);
    store(millisecond, 0);
}

void XCTime::GetTimeFormatedString(const XCTime& time, XCString& out) {
    const std::tm& local = time.m_local;
    out.Format("%04d/%02d/%02d %02d:%02d", local.tm_year + cnFirstYear, local.tm_mon + 1, local.tm_mday, local.tm_hour,
               local.tm_min);
}

std::uint32_t XCTime::StartElapsedTime() { return static_cast<std::uint32_t>(platform::monotonicMilliseconds()); }
