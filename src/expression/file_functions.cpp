// &EXIST and &FILESIZE.
#include <sys/stat.h>

#include "expression.h"
#include "kavro.h"
#include "variables.h"

void ParseExist(Parser* p, Const* /*result*/) {
    GetNextToken(p);
    CBString name = TextArgument(p);
    int device = kavro::t_Device(name);
    if (device == 3 || device == 4 || device == 5) {
        PushInteger(p, 16);
        return;
    }
    if (device != 2) {
        PushInteger(p, 0);
        return;
    }
    kavro::CFileInfo info;
    if (kavro::t_Locate(info, name) == 2) {
        PushInteger(p, 0);
        return;
    }
    int flags = 0;
    if (info.iOwner == 0 && kavro::c_getuid() != 0) flags = 256;
    switch (info.iKind) {
        case 2: PushInteger(p, flags + 4); break;
        case 8: PushInteger(p, flags + 8); break;
        case 16: PushInteger(p, flags + 16); break;
        case 64: PushInteger(p, flags + 64); break;
        case 128: PushInteger(p, flags + 128); break;
        case 512:
            // A socket pushes its flags and then 0: the expression sees 0, and the extra entry
            // stays below it.
            PushInteger(p, flags + 512);
            PushInteger(p, 0);
            break;
        default: PushInteger(p, 0); break;
    }
}

void ParseFilesize(Parser* p, Const* /*result*/) {
    GetNextToken(p);
    CBString name = TextArgument(p);
    struct stat st;
    long long size = stat(name, &st) == 0 ? static_cast<long long>(st.st_size) : 0;
    PushInteger(p, static_cast<int>(size & 0xffff));
}
