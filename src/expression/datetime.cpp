// Date and time routines. Time values count seconds from 1900-01-01 00:00:00 local time.
#include <cstdio>
#include <cstring>
#include <ctime>

#include "expression.h"
#include "kavro.h"

const int b_aiDays[2][13] = {
    {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
    {0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
};

// Ten language slots of seven names, Sunday first; a slot without names gives empty texts.
const char* const weekdays[70] = {
    "Sunday",   "Monday", "Tuesday", "Wednesday", "Thursday", "Friday",   "Saturday", "", "", "", "", "", "", "",
    "Dimanche", "Lundi",  "Mardi",   "Mercredi",  "Jeudi",    "Vendredi", "Samedi",   "", "", "", "", "", "", "",
    "",         "",       "",        "",          "",         "",         "",         "", "", "", "", "", "", "",
    "",         "",       "",        "",          "",         "",         "",         "", "", "", "", "", "", "",
    "",         "",       "",        "",          "",         "",         "",         "", "", "", "", "", "", "",
};

namespace {
time_t (*pfnClock)() = nullptr;
constexpr long kLeapYearSeconds = 31622400;
constexpr long kYearSeconds = 31536000;
}  // namespace

void SetClock(time_t (*clock)()) { pfnClock = clock; }

time_t Now() { return pfnClock ? pfnClock() : time(nullptr); }

struct tm LocalNow() {
    time_t now = Now();
    struct tm t;
    localtime_r(&now, &t);
    return t;
}

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

// The month lengths come from the previous year's row: in a leap year the count is a day short
// from March on, and a day long in the year after.
double Tod() {
    struct tm t = LocalNow();
    int year = t.tm_year + 1900;
    double total = 0.0;
    int leap = 1;
    for (int y = 1900; y < year; ++y) {
        leap = IsLeapYear(y) ? 1 : 0;
        total += leap ? kLeapYearSeconds : kYearSeconds;
    }
    for (int m = 1; m <= t.tm_mon; ++m) total += 86400.0 * b_aiDays[leap][m];
    total += (t.tm_mday - 1) * 86400.0 + t.tm_hour * 3600.0 + t.tm_min * 60.0 + t.tm_sec;
    return total;
}

namespace {

long long LeapYear(long long year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 1 : 0; }

// Days from 1 January of the year 1 to 1 January of `year` (a year from 1 on).
long long DaysBeforeYear(long long year) {
    long long y = year - 1;
    return 365 * y + y / 4 - y / 100 + y / 400;
}

// The year in which day `day` lies, counting days from 1 January 1900 (day 0); in constant time,
// from the 146097 days of 400 years, then corrected by the exact count.
long long YearOfDay(long long day) {
    const long long base = DaysBeforeYear(1900);
    long long year = 1900 + day * 400 / 146097;
    while (year > 1900 && DaysBeforeYear(year) - base > day) --year;
    while (DaysBeforeYear(year + 1) - base <= day) ++year;
    return year;
}

}  // namespace

// The day of the month is counted from 0: the first day of a month gives day 0.
//
// Whole years are taken off while more than a year is left, so a count of exactly a year's length
// stays in that year: the year is the one holding second t - 1, found by calendar arithmetic for
// any t. The year stored is the count of years from 1900, as the tm record's int takes it (beyond
// its range, modulo 2^32).
CBString Strtime(const char* format, long t) {
    long long rest = t;
    long long year = 1900;
    if (rest > 0) {
        year = YearOfDay((rest - 1) / 86400);
        rest -= (DaysBeforeYear(year) - DaysBeforeYear(1900)) * 86400;
    }
    long long leap = LeapYear(year);
    int month = 0;
    for (int m = 1; m < 12; ++m) {
        long long len = b_aiDays[leap][m] * 86400LL;
        if (rest > len) {
            rest -= len;
            ++month;
        } else {
            break;
        }
    }
    long long day = 0;
    if (rest > 86400) {
        day = (rest - 1) / 86400;
        rest -= day * 86400;
    }
    long long hours = rest / 3600;
    long long minutes = (rest - hours * 3600) / 60;
    long long seconds = rest - hours * 3600 - minutes * 60;

    struct tm tmv;
    memset(&tmv, 0, sizeof tmv);
    tmv.tm_year = static_cast<int>(year - 1900);
    tmv.tm_mon = month;
    tmv.tm_mday = static_cast<int>(day);
    tmv.tm_hour = static_cast<int>(hours);
    tmv.tm_min = static_cast<int>(minutes);
    tmv.tm_sec = static_cast<int>(seconds);
    char buffer[100];
    size_t n = strftime(buffer, sizeof buffer, format, &tmv);
    return CBString(buffer, n);
}

CBString Date(int day) {
    int year, month, mday;
    if (day == 0) {
        struct tm t = LocalNow();
        year = t.tm_year + 1900;
        month = t.tm_mon + 1;
        mday = t.tm_mday;
    } else {
        year = 1900;
        while (day - (IsLeapYear(year) ? 366 : 365) >= 1) {
            day -= IsLeapYear(year) ? 366 : 365;
            ++year;
        }
        int leap = IsLeapYear(year) ? 1 : 0;
        month = 1;
        while (month < 12 && day > b_aiDays[leap][month]) {
            day -= b_aiDays[leap][month];
            ++month;
        }
        mday = day;
    }

    int mode = kavro::Kavro->iYearMode;
    int shown = year, width = 4;
    if (mode == 2 || (mode == 0 && year < 2000)) {
        shown = year < 2000 ? year - 1900 : year - 2000;
        width = 2;
    }
    if (width == 4 && shown >= 10000) shown = 9999;

    // Eleven characters: a longer date is cut, as the fixed-size buffer always did.
    char buffer[11];
#pragma GCC diagnostic push
#ifndef __clang__
#pragma GCC diagnostic ignored "-Wformat-truncation"
#endif
    switch (kavro::Kavro->cDateStyle) {
        case 'A': snprintf(buffer, sizeof buffer, "%02d/%02d/%0*d", month, mday, width, shown); break;
        case 'E': snprintf(buffer, sizeof buffer, "%02d-%02d-%0*d", mday, month, width, shown); break;
        default: snprintf(buffer, sizeof buffer, "%0*d.%02d.%02d", width, shown, month, mday); break;
    }
#pragma GCC diagnostic pop
    return buffer;
}

CBString Time(int seconds) {
    if (seconds >= 86400) return "00:00:00";
    int h, m, s;
    if (seconds == 0) {
        struct tm t = LocalNow();
        h = t.tm_hour;
        m = t.tm_min;
        s = t.tm_sec;
    } else {
        h = seconds / 3600;
        m = seconds % 3600 / 60;
        s = seconds % 60;
    }
    char buffer[32];
    snprintf(buffer, sizeof buffer, "%02d:%02d:%02d", h, m, s);
    return buffer;
}
