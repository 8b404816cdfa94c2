#include "ovwcmn/xctime.h"

#include "ovwcmn/xcstring.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ctime>
#include <limits>
#include <string>

namespace {

using ovw::test::errorOf;
using ovw::test::TimeZoneScope;

constexpr int cnTimeError = 0x20010009;
constexpr std::int32_t cnGreatest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t cnLeast = std::numeric_limits<std::int32_t>::min();
constexpr const char* cnUtc = "UTC0";
constexpr const char* cnTokyo = "JST-9";
constexpr const char* cnBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";

SYSTEMTIME calendar(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return {std::uint16_t(year),   std::uint16_t(month),  0,  std::uint16_t(day), std::uint16_t(hour),
            std::uint16_t(minute), std::uint16_t(second), 999};
}

std::string shown(const XCTime& time) {
    XCString text;
    XCTime::GetTimeFormatedString(time, text);
    return text.GetStr();
}

void expectCleared(const XCTime& time) {
    EXPECT_EQ(time.IsValid(), 0);
    EXPECT_TRUE(time == -1);
    const std::tm local = time;
    std::tm utc;
    time.GetUTCTime(utc);
    for (const std::tm& calendarForm : {local, utc}) {
        EXPECT_EQ(calendarForm.tm_year, 0);
        EXPECT_EQ(calendarForm.tm_mday, 0);
        EXPECT_EQ(calendarForm.tm_isdst, 0);
    }
}

TEST(XCTime, FollowsTheLocalTimeZone) {
    const TimeZoneScope zone(cnTokyo);
    XCTime time;
    time = calendar(2009, 1, 5, 7, 8, 9);
    EXPECT_EQ(std::int32_t(time), 1231106889); // 2009-01-04 22:08:09 UTC
    EXPECT_EQ(shown(time), "2009/01/05 07:08");
    const std::tm local = time;
    EXPECT_EQ(local.tm_wday, 1);
    EXPECT_EQ(local.tm_yday, 4);
    std::tm utc;
    time.GetUTCTime(utc);
    EXPECT_EQ(utc.tm_mday, 4);
    EXPECT_EQ(utc.tm_hour, 22);
    const SYSTEMTIME back = time;
    EXPECT_EQ(back.wYear, 2009);
    EXPECT_EQ(back.wMonth, 1);
    EXPECT_EQ(back.wDay, 5);
    EXPECT_EQ(back.wDayOfWeek, 1);
    EXPECT_EQ(back.wHour, 7);
    EXPECT_EQ(back.wSecond, 9);
    EXPECT_EQ(back.wMilliseconds, 0);
    std::uint16_t month = 0, millisecond = 77;
    XCTime::GetTimeElements(time, nullptr, &month, nullptr, nullptr, nullptr, nullptr, &millisecond);
    EXPECT_EQ(month, 1);
    EXPECT_EQ(millisecond, 0);
}

TEST(XCTime, CalendarTimesAreStandardTimeAlsoInSummer) {
    const TimeZoneScope zone(cnBerlin);
    XCTime time;
    time = calendar(2024, 7, 1, 12);
    EXPECT_EQ(std::int32_t(time), 1719831600); // 11:00 UTC
    EXPECT_EQ(shown(time), "2024/07/01 13:00");
    time = calendar(2024, 1, 1, 12);
    EXPECT_EQ(shown(time), "2024/01/01 12:00");
    // A tm says itself which it is.
    std::tm summer{};
    summer.tm_year = 124;
    summer.tm_mon = 6;
    summer.tm_mday = 1;
    summer.tm_hour = 12;
    summer.tm_isdst = 1;
    const std::tm local = time = summer;
    EXPECT_EQ(std::int32_t(time), 1719828000);
    EXPECT_EQ(local.tm_hour, 12);
    EXPECT_EQ(local.tm_yday, 182);
    // Fields out of range are carried over.
    summer.tm_mday = 32;
    time.MakeTime(summer);
    EXPECT_EQ(shown(time), "2024/08/01 12:00");
}

TEST(XCTime, CountsTheDaysOfLeapYears) {
    const TimeZoneScope zone(cnUtc);
    const struct {
        int year, month, day, dayOfYear;
    } cases[] = {{2024, 3, 1, 60}, {2023, 3, 1, 59}, {2000, 12, 31, 365}, {2001, 12, 31, 364}, {2024, 2, 29, 59}};
    for (const auto& c : cases) {
        XCTime time;
        time = calendar(c.year, c.month, c.day);
        EXPECT_EQ(std::tm(time).tm_yday, c.dayOfYear) << c.year;
    }
}

TEST(XCTime, ReachesAsFarAs32Bits) {
    const TimeZoneScope zone(cnUtc);
    const struct {
        SYSTEMTIME given;
        bool isValid;
        std::int32_t seconds;
    } cases[] = {
        {calendar(2038, 1, 19, 3, 14, 7), true, cnGreatest},
        {calendar(2038, 1, 19, 3, 14, 8), false, 0},
        {calendar(1901, 12, 13, 20, 45, 52), true, cnLeast},
        {calendar(1901, 12, 13, 20, 45, 51), false, 0},
        {calendar(2100, 3, 1), false, 0},
        {calendar(65535, 12, 31), false, 0},
        {calendar(1969, 12, 31, 23, 59, 58), true, -2},
        {calendar(1969, 12, 31, 23, 59, 59), false, 0}, // the second that means "no time"
        {calendar(1970, 1, 1), true, 0},
        {calendar(2024, 0, 1), false, 0},
        {calendar(2024, 13, 1), false, 0},
        {calendar(2024, 65535, 1), false, 0},
        {calendar(0, 0, 0), false, 0},
    };
    for (const auto& c : cases) {
        XCTime time;
        time = 1000;
        EXPECT_EQ(errorOf([&] { time = c.given; }), c.isValid ? 0 : cnTimeError) << c.given.wYear;
        if (c.isValid)
            EXPECT_EQ(std::int32_t(time), c.seconds);
        else
            expectCleared(time);
    }
    std::tm far{};
    far.tm_year = cnGreatest;
    XCTime time;
    time = 1000;
    EXPECT_EQ(errorOf([&] { time.MakeTime(far); }), cnTimeError);
    expectCleared(time);
}

TEST(XCTime, SecondsAreTakenAndNoTimeClears) {
    const TimeZoneScope zone(cnTokyo);
    XCTime time;
    expectCleared(time);
    EXPECT_EQ(shown(time), "1900/01/00 00:00");
    EXPECT_EQ(time = 0, 0);
    EXPECT_EQ(shown(time), "1970/01/01 09:00");
    EXPECT_EQ(time = cnLeast, cnLeast);
    EXPECT_EQ(std::tm(time).tm_year, 1);
    XCTime other;
    other = time;
    EXPECT_TRUE(other == cnLeast);
    EXPECT_TRUE(other == time);
    EXPECT_EQ(time = -1, -1);
    expectCleared(time);
    other = time;
    expectCleared(other);
    const std::time_t before = std::time(nullptr);
    time.GetTime();
    EXPECT_GE(std::int32_t(time), before);
    EXPECT_LE(std::int32_t(time), std::time(nullptr));
}

TEST(XCTime, FormatsInStyles) {
    const TimeZoneScope zone(cnUtc);
    XCTime time;
    time = calendar(2009, 1, 5, 7, 8, 9);
    const char* const styles[] = {"07:08:09", "09/01/05", "2009/01/05", "09/01/05 07:08:09", "2009/01/05 07:08:09"};
    for (int style = 0; style < 5; ++style) {
        char buffer[64];
        EXPECT_EQ(time.FormatTime(buffer, 64, style), int(std::strlen(styles[style])));
        EXPECT_STREQ(buffer, styles[style]);
        EXPECT_EQ(XCTime::FormatTime(buffer, 64, std::tm(time), style), int(std::strlen(styles[style])));
    }
    char buffer[64];
    for (const int style : {-1, 5})
        EXPECT_EQ(time.FormatTime(buffer, 64, style), 0);
    EXPECT_EQ(time.FormatTime(buffer, 8, 0), 0);
    EXPECT_EQ(time.FormatTime(buffer, 0, 0), 0);
    EXPECT_EQ(time.FormatTime(buffer, -1, 0), 0);
    EXPECT_EQ(XCTime().FormatTime(buffer, 64, 4), 19); // a cleared time is no day at all
}

TEST(XCTime, ElapsedTimeSurvivesAWrap) {
    constexpr std::uint32_t cnLongAgo = 0xFFFF0000;
    const std::uint32_t now = XCTime::StartElapsedTime();
    const std::uint32_t elapsed = XCTime::GetElapsedTime(now - cnLongAgo);
    EXPECT_GE(elapsed, cnLongAgo);
    EXPECT_LE(elapsed - cnLongAgo, XCTime::StartElapsedTime() - now);
    std::uint32_t low = 0;
    XCTime::SetElapsedTime(low, 0x123456789ABCDEF0);
    EXPECT_EQ(low, 0x9ABCDEF0u);
}

} // namespace
