// File and device lookup, and the caller's identity.
#include <sys/stat.h>
#include <unistd.h>

#include "kavro.h"

namespace kavro {

int t_Device(const char* name) {
    struct stat st;
    if (stat(name, &st) == 0) {
        if (S_ISCHR(st.st_mode)) return 3;
        if (S_ISBLK(st.st_mode)) return 4;
    }
    return 2;
}

int t_Locate(CFileInfo& info, const char* name) {
    struct stat st;
    if (lstat(name, &st) != 0) return 2;
    if (S_ISLNK(st.st_mode)) {
        struct stat target;
        if (stat(name, &target) != 0) {
            info.iKind = 128;
            info.iOwner = static_cast<int>(st.st_uid);
            info.llSize = st.st_size;
            return 0;
        }
        st = target;
    }
    if (S_ISREG(st.st_mode))
        info.iKind = 2;
    else if (S_ISDIR(st.st_mode))
        info.iKind = 8;
    else if (S_ISCHR(st.st_mode) || S_ISBLK(st.st_mode))
        info.iKind = 16;
    else if (S_ISFIFO(st.st_mode))
        info.iKind = 64;
    else if (S_ISSOCK(st.st_mode))
        info.iKind = 512;
    else
        info.iKind = 0;
    info.iOwner = static_cast<int>(st.st_uid);
    info.llSize = st.st_size;
    return 0;
}

int c_getuid() { return static_cast<int>(getuid()); }
int c_getpid() { return static_cast<int>(getpid()); }

}  // namespace kavro
