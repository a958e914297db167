// The date and time routines behind &SYSTEM, read against a fixed clock in UTC.
//
// Day numbers used below count from 1900-01-01 = day 1. The years 1900 to 1999 hold 100 * 365
// days plus 24 leap days (1904 ... 1996; 1900 is not a leap year), 36524 days in all, so
// 1999-12-31 is day 36524 and 2000-01-01 is day 36525; 2000-02-29 is 36525 + 31 + 28 = 36584.
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "test_support.h"

namespace {

time_t tFixed = 0;
time_t FixedClock() { return tFixed; }

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
        tFixed = kNov14;
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

// The calendar is counted in closed form; it must give what taking off one year, then one month
// at a time gives, wherever that loop ends without its int year overflowing. The loop below is
// that reference, step by step.
std::string StrtimeByLoop(const char* format, long t) {
    int year = 1900;
    for (;;) {
        long len = IsLeapYear(year) ? 31622400 : 31536000;
        if (t - len > 0) {
            t -= len;
            ++year;
        } else {
            break;
        }
    }
    int leap = IsLeapYear(year) ? 1 : 0;
    int month = 0;
    for (int m = 1; m < 12; ++m) {
        long len = b_aiDays[leap][m] * 86400L;
        if (t > len) {
            t -= len;
            ++month;
        } else {
            break;
        }
    }
    long day = 0;
    while (t > 86400) {
        t -= 86400;
        ++day;
    }
    long hours = t / 3600;
    long minutes = (t - hours * 3600) / 60;
    long seconds = t - hours * 3600 - minutes * 60;
    struct tm tmv;
    memset(&tmv, 0, sizeof tmv);
    tmv.tm_year = year - 1900;
    tmv.tm_mon = month;
    tmv.tm_mday = static_cast<int>(day);
    tmv.tm_hour = static_cast<int>(hours);
    tmv.tm_min = static_cast<int>(minutes);
    tmv.tm_sec = static_cast<int>(seconds);
    char buffer[100];
    size_t n = strftime(buffer, sizeof buffer, format, &tmv);
    return std::string(buffer, n);
}

constexpr const char* kEveryField = "%Y|%m|%d|%H|%M|%S";

// Seconds from 1900 to the start of `year`.
long SecondsBefore(int year) {
    long total = 0;
    for (int y = 1900; y < year; ++y) total += IsLeapYear(y) ? 31622400 : 31536000;
    return total;
}

void ExpectAsLoop(long t) {
    EXPECT_EQ(Strtime(kEveryField, t).str(), StrtimeByLoop(kEveryField, t)) << "seconds " << t;
}

TEST_F(DateTime, StrtimeAsTheLoopAroundEveryNewYearTo2500) {
    // Both ends of every year, with the leap years 1904, 2000, 2400 and the common 1900, 2100.
    for (int year = 1900; year <= 2500; ++year) {
        long start = SecondsBefore(year);
        for (long d : {-86401L, -86400L, -3601L, -1L, 0L, 1L, 86399L, 86400L, 86401L}) ExpectAsLoop(start + d);
    }
}

TEST_F(DateTime, StrtimeAsTheLoopAtMonthEndsOfLeapAndCommonYears) {
    for (int year : {1900, 1901, 1904, 1999, 2000, 2001, 2004, 2023, 2024, 2100, 2400}) {
        long at = SecondsBefore(year);
        int leap = IsLeapYear(year) ? 1 : 0;
        for (int m = 1; m <= 12; ++m) {
            at += b_aiDays[leap][m] * 86400L;
            for (long d : {-86400L, -1L, 0L, 1L, 86400L}) ExpectAsLoop(at + d);
        }
    }
}

TEST_F(DateTime, StrtimeAsTheLoopOnWholeDays) {
    for (long day = 0; day < 3 * 366; ++day) ExpectAsLoop(day * 86400);
    for (long day = 0; day < 3000000; day += 997) ExpectAsLoop(day * 86400);
}

TEST_F(DateTime, StrtimeAsTheLoopForNothingOrLess) {
    // No year is taken off: the negative rest goes into the time of day as it is.
    for (long t : {0L, -1L, -59L, -60L, -3599L, -3600L, -86400L, -86401L, -31622400L, -4000000000L,
                   LONG_MIN + 31622400L, LONG_MIN + 31622401L})
        ExpectAsLoop(t);
}

TEST_F(DateTime, StrtimeAsTheLoopOverScatteredValues) {
    // A fixed sequence, spread over the first ten thousand years and a few far beyond.
    uint64_t x = 88172645463325252ULL;
    for (int i = 0; i < 3000; ++i) {
        x ^= x << 13;
        x ^= x >> 7;
        x ^= x << 17;
        ExpectAsLoop(static_cast<long>(x % 320000000000ULL));
    }
    for (long t : {1000000000000L, 3155695200000L, 10000000000000L, 31556952000000L}) ExpectAsLoop(t);
}

TEST_F(DateTime, StrtimeBeyondTheLoopsReach) {
    // Beyond the loop's reach the same arithmetic goes on in 64 bits, and the count of years
    // from 1900 is stored as the tm record's int takes it (modulo 2^32).
    //
    // The largest long, 9223372036854775807 s: its last second lies in day 106751991167300
    // counted from 1900-01-01 as day 0, which is day 106751991276507 from 1601-01-01 (1601 to
    // 1900: 109207 days): 730692562 cycles of 400 years (146097 days) and 45993 days, that is
    // 1 century (36524 days), 6 blocks of four years (1461 days), 1 year (365 days) and 338
    // days. The year is 1601 + 292277024800 + 100 + 24 + 1 = 292277026526, a common year, and
    // 338 days and 55807 s of it are left: January to November take 334 days, leaving day 04
    // (counted from 0) of December at 15:30:07. Its count from 1900, 292277024626, is
    // 219248498 modulo 2^32, so %Y shows 219250398.
    EXPECT_EQ(Strtime("%Y %m %d %H:%M:%S", LONG_MAX).str(), "219250398 12 04 15:30:07");
    // 10^17 s: day 1157407407407, 7922185 cycles and 54669 days: 1 century, 12 blocks, 1 year
    // and 248 days: year 3168875750 (common), whose count from 1900, 3168873850, is
    // -1126093446 as an int (%Y adds 1900). 248 days: January to August take 243, leaving day
    // 05 of September; the time of day is 10^17 mod 86400 = 35200 s = 09:46:40.
    EXPECT_EQ(Strtime("%Y %m %d %H:%M:%S", 100000000000000000L).str(), "-1126091546 09 05 09:46:40");
}

// ---- Tod ---------------------------------------------------------------------------------

TEST_F(DateTime, TodOfAnOrdinaryDate) {
    // 1900 ... 2022: 123 years, 30 of them leap years (1904 ... 2020)
    //   123 * 31536000 + 30 * 86400              = 3881520000
    // January to October of a common year: 304 days = 26265600
    // 13 days, 22 h, 13 min, 20 s              = 1123200 + 79200 + 780 + 20
    tFixed = kNov14;
    EXPECT_DOUBLE_EQ(Tod(), 3908988800.0);
}

TEST_F(DateTime, TodInALeapYearAfterFebruaryIsOneDayShort) {
    // 1900 ... 2023: 124 * 31536000 + 30 * 86400 = 3913056000; 2023 is a common year, so
    // January and February count 59 days (5097600) although 2024 has 29 February
    tFixed = kMar1Leap;
    EXPECT_DOUBLE_EQ(Tod(), 3918153600.0);
}

TEST_F(DateTime, TodInTheYearAfterALeapYearIsOneDayLong) {
    // 1900 ... 2024: 125 * 31536000 + 31 * 86400 = 3944678400; 2024 is a leap year, so
    // January and February count 60 days (5184000)
    tFixed = kMar1AfterLeap;
    EXPECT_DOUBLE_EQ(Tod(), 3949862400.0);
}

TEST_F(DateTime, TodIn1900UsesTheLeapRow) {
    // no year added; January and February taken from the leap row: 60 days
    tFixed = kMar1In1900;
    EXPECT_DOUBLE_EQ(Tod(), 5184000.0);
}

TEST_F(DateTime, TodBeforeMarchIsExact) {
    // 2024-01-31 12:00:00: 3913056000 + 30 * 86400 + 12 * 3600
    tFixed = 1704067200 + 30 * 86400 + 12 * 3600;
    EXPECT_DOUBLE_EQ(Tod(), 3915691200.0);
}

}  // namespace
