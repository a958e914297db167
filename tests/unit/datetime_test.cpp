// The date and time routines behind &SYSTEM, read against a fixed clock in UTC.
//
// Day numbers used below count from 1900-01-01 = day 1. The years 1900 to 1999 hold 100 * 365
// days plus 24 leap days (1904 ... 1996; 1900 is not a leap year), 36524 days in all, so
// 1999-12-31 is day 36524 and 2000-01-01 is day 36525; 2000-02-29 is 36525 + 31 + 28 = 36584.
#include <cstdlib>
#include <ctime>
#include <string>

#include "test_support.h"

namespace {

time_t g_tFixed = 0;
time_t FixedClock() { return g_tFixed; }

// 2023-11-14 22:13:20 UTC, a Tuesday.
constexpr time_t kNov14 = 1700000000;
// 2024-03-01 00:00:00 UTC: 2024-01-01 is 1704067200, plus 31 + 29 days.
constexpr time_t kMar1Leap = 1704067200 + 60 * 86400;
// 2025-03-01 00:00:00 UTC: 2025-01-01 is 1735689600, plus 31 + 28 days.
constexpr time_t kMar1AfterLeap = 1735689600 + 59 * 86400;
// 1900-03-01 00:00:00 UTC: 1900-01-01 is -2208988800, plus 31 + 28 days.
constexpr time_t kMar1In1900 = -2208988800LL + 59 * 86400;

class DateTime : public ::testing::Test {
protected:
    void SetUp() override {
        const char* tz = getenv("TZ");
        bHadTz = tz != nullptr;
        if (tz) sOldTz = tz;
        setenv("TZ", "UTC", 1);
        tzset();
        cStyle = kavro::Kavro->cDateStyle;
        iMode = kavro::Kavro->iYearMode;
        SetClock(FixedClock);
        g_tFixed = kNov14;
    }
    void TearDown() override {
        SetClock(nullptr);
        kavro::Kavro->cDateStyle = cStyle;
        kavro::Kavro->iYearMode = iMode;
        if (bHadTz)
            setenv("TZ", sOldTz.c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }
    void Use(char style, int mode) {
        kavro::Kavro->cDateStyle = style;
        kavro::Kavro->iYearMode = mode;
    }
    static std::string DateOf(int day) { return Date(day).str(); }

    char cStyle = 'Y';
    int iMode = 1;
    bool bHadTz = false;
    std::string sOldTz;
};

// ---- tables ------------------------------------------------------------------------------

TEST_F(DateTime, MonthLengths) {
    const int common[13] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const int leap[13] = {0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int m = 0; m < 13; ++m) {
        EXPECT_EQ(b_aiDays[0][m], common[m]) << m;
        EXPECT_EQ(b_aiDays[1][m], leap[m]) << m;
    }
}

TEST_F(DateTime, LeapYears) {
    EXPECT_FALSE(IsLeapYear(1900));
    EXPECT_TRUE(IsLeapYear(1904));
    EXPECT_TRUE(IsLeapYear(2000));
    EXPECT_FALSE(IsLeapYear(2023));
    EXPECT_TRUE(IsLeapYear(2024));
    EXPECT_FALSE(IsLeapYear(2100));
    EXPECT_TRUE(IsLeapYear(2400));
}

TEST_F(DateTime, WeekdayNames) {
    const char* english[7] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    const char* french[7] = {"Dimanche", "Lundi", "Mardi", "Mercredi", "Jeudi", "Vendredi", "Samedi"};
    for (int d = 0; d < 7; ++d) {
        EXPECT_STREQ(weekdays[d], english[d]) << d;
        EXPECT_STREQ(weekdays[7 + d], "") << d;
        EXPECT_STREQ(weekdays[14 + d], french[d]) << d;
    }
    for (int i = 21; i < 70; ++i) {
        ASSERT_NE(weekdays[i], nullptr) << i;
        EXPECT_STREQ(weekdays[i], "") << i;
    }
}

// ---- Date --------------------------------------------------------------------------------

TEST_F(DateTime, FirstDayEuropeanFourDigits) {
    Use('E', 1);
    EXPECT_EQ(DateOf(1), "01-01-1900");
}

TEST_F(DateTime, FirstDayAmericanTwoDigits) {
    Use('A', 2);
    EXPECT_EQ(DateOf(1), "01/01/00");
}

TEST_F(DateTime, FirstDayYearFirst) {
    Use('Y', 1);
    EXPECT_EQ(DateOf(1), "1900.01.01");
    Use('Y', 0);
    EXPECT_EQ(DateOf(1), "00.01.01");
}

TEST_F(DateTime, LastDayOf1900AndFirstOf1901) {
    Use('Y', 1);
    EXPECT_EQ(DateOf(365), "1900.12.31");
    EXPECT_EQ(DateOf(366), "1901.01.01");
    Use('E', 1);
    EXPECT_EQ(DateOf(365), "31-12-1900");
    EXPECT_EQ(DateOf(366), "01-01-1901");
    Use('A', 1);
    EXPECT_EQ(DateOf(365), "12/31/1900");
}

TEST_F(DateTime, MonthBoundaries) {
    Use('Y', 1);
    EXPECT_EQ(DateOf(31), "1900.01.31");
    EXPECT_EQ(DateOf(32), "1900.02.01");
    EXPECT_EQ(DateOf(59), "1900.02.28");  // 1900 has no 29 February
    EXPECT_EQ(DateOf(60), "1900.03.01");
}

TEST_F(DateTime, YearModesAround2000) {
    Use('Y', 1);
    EXPECT_EQ(DateOf(36524), "1999.12.31");
    EXPECT_EQ(DateOf(36525), "2000.01.01");
    Use('Y', 0);
    EXPECT_EQ(DateOf(36524), "99.12.31");
    EXPECT_EQ(DateOf(36525), "2000.01.01");
    Use('Y', 2);
    EXPECT_EQ(DateOf(36524), "99.12.31");
    EXPECT_EQ(DateOf(36525), "00.01.01");
    Use('E', 2);
    EXPECT_EQ(DateOf(36525), "01-01-00");
    Use('A', 0);
    EXPECT_EQ(DateOf(36524), "12/31/99");
    EXPECT_EQ(DateOf(36525), "01/01/2000");
}

TEST_F(DateTime, LeapDayOf2000) {
    Use('Y', 1);
    EXPECT_EQ(DateOf(36584), "2000.02.29");
    EXPECT_EQ(DateOf(36585), "2000.03.01");
}

TEST_F(DateTime, OtherYearModesPrintFourDigits) {
    Use('Y', 7);
    EXPECT_EQ(DateOf(1), "1900.01.01");
    EXPECT_EQ(DateOf(36525), "2000.01.01");
}

TEST_F(DateTime, OtherStylesAreYearFirst) {
    Use('X', 1);
    EXPECT_EQ(DateOf(366), "1901.01.01");
}

TEST_F(DateTime, TodayFromTheClock) {
    Use('Y', 1);
    EXPECT_EQ(DateOf(0), "2023.11.14");
    Use('A', 1);
    EXPECT_EQ(DateOf(0), "11/14/2023");
    Use('E', 2);
    EXPECT_EQ(DateOf(0), "14-11-23");
    Use('Y', 0);
    EXPECT_EQ(DateOf(0), "2023.11.14");
}

// ---- Time --------------------------------------------------------------------------------

TEST_F(DateTime, TimeOfSeconds) {
    EXPECT_EQ(Time(3661).str(), "01:01:01");
    EXPECT_EQ(Time(1).str(), "00:00:01");
    EXPECT_EQ(Time(59).str(), "00:00:59");
    EXPECT_EQ(Time(86399).str(), "23:59:59");
}

TEST_F(DateTime, TimeOfADayOrMoreIsMidnight) {
    EXPECT_EQ(Time(86400).str(), "00:00:00");
    EXPECT_EQ(Time(100000).str(), "00:00:00");
}

TEST_F(DateTime, TimeNowFromTheClock) { EXPECT_EQ(Time(0).str(), "22:13:20"); }

// ---- Strtime -----------------------------------------------------------------------------

TEST_F(DateTime, StrtimeOfOneSecondIsDayZero) { EXPECT_EQ(Strtime("%d %H:%M:%S", 1).str(), "00 00:00:01"); }

TEST_F(DateTime, StrtimeWholeDay) {
    // a remainder of exactly one day stays in day 0 as hour 24
    EXPECT_EQ(Strtime("%d %H:%M:%S", 86400).str(), "00 24:00:00");
    EXPECT_EQ(Strtime("%d %H:%M:%S", 86401).str(), "01 00:00:01");
    EXPECT_EQ(Strtime("%d %H:%M:%S", 2 * 86400 + 3723).str(), "02 01:02:03");
}

TEST_F(DateTime, StrtimeMonthsAndYears) {
    EXPECT_EQ(Strtime("%Y %m %d", 1).str(), "1900 01 00");
    EXPECT_EQ(Strtime("%Y %m %d", 31 * 86400).str(), "1900 01 30");
    EXPECT_EQ(Strtime("%Y %m %d %H:%M:%S", 31 * 86400 + 1).str(), "1900 02 00 00:00:01");
    EXPECT_EQ(Strtime("%Y %m %d", 31536000).str(), "1900 12 30");
    EXPECT_EQ(Strtime("%Y %m %d %H:%M:%S", 31536001).str(), "1901 01 00 00:00:01");
}

// ---- Tod ---------------------------------------------------------------------------------

TEST_F(DateTime, TodOfAnOrdinaryDate) {
    // 1900 ... 2022: 123 years, 30 of them leap years (1904 ... 2020)
    //   123 * 31536000 + 30 * 86400              = 3881520000
    // January to October of a common year: 304 days = 26265600
    // 13 days, 22 h, 13 min, 20 s              = 1123200 + 79200 + 780 + 20
    g_tFixed = kNov14;
    EXPECT_DOUBLE_EQ(Tod(), 3908988800.0);
}

TEST_F(DateTime, TodInALeapYearAfterFebruaryIsOneDayShort) {
    // 1900 ... 2023: 124 * 31536000 + 30 * 86400 = 3913056000; 2023 is a common year, so
    // January and February count 59 days (5097600) although 2024 has 29 February
    g_tFixed = kMar1Leap;
    EXPECT_DOUBLE_EQ(Tod(), 3918153600.0);
}

TEST_F(DateTime, TodInTheYearAfterALeapYearIsOneDayLong) {
    // 1900 ... 2024: 125 * 31536000 + 31 * 86400 = 3944678400; 2024 is a leap year, so
    // January and February count 60 days (5184000)
    g_tFixed = kMar1AfterLeap;
    EXPECT_DOUBLE_EQ(Tod(), 3949862400.0);
}

TEST_F(DateTime, TodIn1900UsesTheLeapRow) {
    // no year added; January and February taken from the leap row: 60 days
    g_tFixed = kMar1In1900;
    EXPECT_DOUBLE_EQ(Tod(), 5184000.0);
}

TEST_F(DateTime, TodBeforeMarchIsExact) {
    // 2024-01-31 12:00:00: 3913056000 + 30 * 86400 + 12 * 3600
    g_tFixed = 1704067200 + 30 * 86400 + 12 * 3600;
    EXPECT_DOUBLE_EQ(Tod(), 3915691200.0);
}

}  // namespace
