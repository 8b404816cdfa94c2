#ifndef OVWCMN_XCTIME_H
#define OVWCMN_XCTIME_H

/// @file
/// Calendar time and elapsed time.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

#include <cstdint>
#include <ctime>

class XCString;

/// A time as 32-bit seconds since 1970-01-01 00:00 UTC (up to January 2038), with its local and UTC calendar forms
/// always beside it. -1 is "no time": then the calendar forms are zero. Whatever cannot be converted clears the time
/// and throws 0x20010009. One object belongs to one thread at a time.
class OVWCMN_API XCTime {
public:
    static constexpr std::int32_t cnNoTime = -1; ///< no time

    XCTime() = default;
    XCTime(const XCTime&) = default;
    virtual ~XCTime();

    /// No time.
    void Clear();
    /// 0 for "no time".
    int IsValid() const { return m_time != cnNoTime; }
    /// Takes the current time.
    void GetTime();
    /// Takes a local calendar time; fields out of their ranges are carried over.
    void MakeTime(const std::tm& local);

    /// @{ Takes seconds, a time, or a local calendar time as MakeTime does; returns what was assigned.
    std::int32_t operator=(const std::int32_t& time);
    XCTime operator=(const XCTime& other);
    std::tm operator=(const std::tm& local);
    /// @}
    /// Reads it as local standard time, also in summer; milliseconds are dropped.
    SYSTEMTIME operator=(const SYSTEMTIME& local);

    /// @{ Seconds since 1970; the local or the UTC calendar form.
    operator std::int32_t() const { return m_time; }
    operator std::tm() const { return m_local; }
    operator SYSTEMTIME() const;
    void GetUTCTime(std::tm& out) const { out = m_utc; }
    /// @}
    /// @{ By seconds.
    bool operator==(const std::int32_t& time) const { return m_time == time; }
    bool operator!=(const std::int32_t& time) const { return m_time != time; }
    bool operator==(const XCTime& other) const { return m_time == other.m_time; }
    /// @}

    /// Writes the local time in a style: 0 "%X", 1 "%y/%m/%d", 2 "%Y/%m/%d", 3 "%y/%m/%d %X", 4 "%Y/%m/%d %X" (formats
    /// of strftime). Characters written; 0 for another style or when they do not fit.
    int FormatTime(char* buffer, int size, int style) const;
    static int FormatTime(char* buffer, int size, const std::tm& time, int style); ///< The same for a calendar time.

    /// The local time in pieces; null pointers are skipped, the milliseconds are always 0.
    static void GetTimeElements(const XCTime& time, std::uint16_t* year, std::uint16_t* month, std::uint16_t* day,
                                std::uint16_t* hour, std::uint16_t* minute, std::uint16_t* second,
                                std::uint16_t* millisecond);
    /// "2009/01/05 07:08"
    static void GetTimeFormatedString(const XCTime& time, XCString& out);

    /// @name Elapsed time in milliseconds, on a counter that wraps after 49 days
    /// @{
    static std::uint32_t StartElapsedTime(); ///< Milliseconds.
    static std::uint32_t GetElapsedTime(std::uint32_t start) { return StartElapsedTime() - start; }
    static int IsZeroElapsedTime(std::uint32_t time) { return time == 0; }
    static void SetElapsedTime(std::uint32_t& time, std::uint64_t value) { time = static_cast<std::uint32_t>(value); }
    /// @}

private:
    void set(std::int64_t time);

    std::int32_t m_time = cnNoTime;
    std::tm m_local = {};
    std::tm m_utc = {};
};

#endif // OVWCMN_XCTIME_H
