// &ESC channel switch: both words are checked, and nothing else happens.
#include <strings.h>

#include "diagnostics.h"
#include "kavro.h"
#include "statements.h"
#include "variables.h"

void ParseEsc(Parser* p) {
    GetNextToken(p);
    CBString channel = Expand(p->sToken);
    if (strcasecmp(channel, "O") != 0 && strcasecmp(channel, "P") != 0 && strcasecmp(channel, "W") != 0)
        SYNTAX_ERROR(Src::Kvexec, At::EscChannel);
    GetNextToken(p);
    p->sToken = Expand(p->sToken);
    if (strcasecmp(p->sToken, "ON") != 0 && strcasecmp(p->sToken, "OFF") != 0) SYNTAX_ERROR(Src::Kvexec, At::EscSwitch);
    p->pPos = kavro::strend(p->pPos);
}
