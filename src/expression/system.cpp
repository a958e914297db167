// &SYSTEM: facts about the running system, chosen by a keyword taken literally.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>

#include "expression.h"
#include "kavro.h"
#include "keywords.h"
#include "variables.h"

namespace {

void Account(Parser* p) { PushString(p, kavro::AccountName()); }

void Cwd(Parser* p) {
    const char* pwd = getenv("PWD");
    PushString(p, pwd ? pwd : "");
}

void DateKeyword(Parser* p) { PushString(p, Date(0)); }

void Day(Parser* p) { PushInteger(p, LocalNow().tm_wday); }

// Seconds for FTIME from a double: truncated toward zero. Not a number counts as 0, and a value
// beyond the range of a long as the nearest end of that range.
long FtimeSeconds(double d) {
    const double limit = std::ldexp(1.0, std::numeric_limits<long>::digits);
    if (std::isnan(d)) return 0;
    if (d >= limit) return std::numeric_limits<long>::max();
    if (d < -limit) return std::numeric_limits<long>::min();
    return static_cast<long>(d);
}

// FTIME format seconds: the two arguments after the keyword.
void Ftime(Parser* p) {
    GetNextToken(p);
    CBString format = TextArgument(p);
    Const seconds;
    Eval(p, &seconds, false);
    long t = 0;
    switch (seconds.eType) {
        case VarFloat: t = FtimeSeconds(seconds.dValue); break;
        case VarString: t = FtimeSeconds(strtod(seconds.sValue, nullptr)); break;
        case VarInteger: t = seconds.iValue; break;
        default: t = 0; break;
    }
    PushString(p, Strtime(format, t));
}

// "PORT" gives the process id as "PID" does.
void Pid(Parser* p) { PushInteger(p, kavro::c_getpid()); }

void Priv(Parser* p) {
    const char* v = getenv("b_privlev");
    long level = v ? strtol(v, nullptr, 10) : 0;
    PushInteger(p, static_cast<int>(level > 9 ? 9 : level));
}

void Serial(Parser* p) {
    CBString s;
    s.format("%u-%u", kavro::Kavro->uiSerial1, kavro::Kavro->uiSerial2);
    PushString(p, s);
}

void Tasks(Parser* p) {
    const char* v = getenv("b_maxpid");
    PushInteger(p, v ? static_cast<int>(strtol(v, nullptr, 10)) : 64);
}

void TimeKeyword(Parser* p) { PushString(p, Time(0)); }

void TodKeyword(Parser* p) { PushDouble(p, Tod()); }

void Today(Parser* p) {
    struct tm t = LocalNow();
    char buffer[20];
    size_t n = strftime(buffer, sizeof buffer, "%j %B %Y", &t);
    PushString(p, CBString(buffer, n));
}

void Uid(Parser* p) { PushInteger(p, kavro::c_getuid()); }

void Users(Parser* p) { PushInteger(p, 255); }

void Weekday(Parser* p) {
    int lang = kavro::getintenv("b_lang");
    int slot = (lang >= 0 && lang <= 9) ? lang : 0;
    PushString(p, weekdays[slot * 7 + LocalNow().tm_wday]);
}

// In the order of the &SYSTEM words.
void (*const apfnSystemKeywords[])(Parser*) = {
    Account, Cwd,   DateKeyword, Day,        Ftime, Pid, Pid /* PORT */, Priv,
    Serial,  Tasks, TimeKeyword, TodKeyword, Today, Uid, Users,          Weekday,
};
static_assert(sizeof apfnSystemKeywords / sizeof *apfnSystemKeywords == static_cast<size_t>(SystemWord::Count),
              "one handler per &SYSTEM word");

}  // namespace

// An unknown keyword pushes nothing and reports nothing.
void ParseSystem(Parser* p, Const* /*result*/) {
    GetNextToken(p);
    p->sToken = Expand(p->sToken);
    p->sToken.toupper();
    int word = FindSystemWord(p->sToken);
    if (word >= 0) apfnSystemKeywords[word](p);
}
