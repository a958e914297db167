// The screen-code tables: names of terminal control codes and of line-drawing characters.
#pragma once

#include "cbstring.h"

struct CrtCode {
    const char* pszName;  // upper-case name or pattern
    int iCode;            // the one byte written
};

extern const CrtCode aCrt[];
extern const CrtCode aLine[];

CBString _code2val(CBString& name, const CrtCode* table);
CBString Crt(const char* name);
