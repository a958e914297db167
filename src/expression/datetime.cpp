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
time_t (*g_pfnClock)() = nullptr;
constexpr long kLeapYearSeconds = 31622400;
constexpr long kYearSeconds = 31536000;
}  // namespace

void SetClock(time_t (*clock)()) { g_pfnClock = clock; }

time_t Now() { return g_pfnClock ? g_pfnClock() : time(nullptr); }

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

// The day of the month is counted from 0: the first day of a month gives day 0.
CBString Strtime(const char* format, long t) {
    int year = 1900;
    for (;;) {
        long len = IsLeapYear(year) ? kLeapYearSeconds : kYearSeconds;
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
    if (t > 86400) {
        day = (t - 1) / 86400;
        t -= day * 86400;
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
