// Ordering and printing the findings.
#include "report.h"

#include <algorithm>
#include <cstring>

void Report::Sort() {
    std::stable_sort(aFindings.begin(), aFindings.end(), [](const Finding& a, const Finding& b) {
        if (a.iLine != b.iLine) return a.iLine < b.iLine;
        if (a.iColumn != b.iColumn) return a.iColumn < b.iColumn;
        return strcmp(a.Row().pszCode, b.Row().pszCode) < 0;
    });
}

namespace {

const char* SeverityName(Severity s) { return s == Severity::Error ? "error" : "warning"; }

}  // namespace

void PrintText(FILE* out, const std::string& file, const Finding& f) {
    fprintf(out, "%s:%d:%d: %s: %s [%s]\n", file.c_str(), f.iLine, f.iColumn, SeverityName(f.Row().eSeverity),
            f.sMessage.c_str(), f.Row().pszCode);
}

void PrintJson(FILE* out, const std::string& file, const Finding& f) {
    fprintf(out, "{\"file\":%s,\"line\":%d,\"column\":%d,\"severity\":\"%s\",\"code\":\"%s\",\"message\":%s}",
            JsonString(file).c_str(), f.iLine, f.iColumn, SeverityName(f.Row().eSeverity), f.Row().pszCode,
            JsonString(f.sMessage).c_str());
}

std::string JsonString(const std::string& s) {
    std::string out = "\"";
    for (char c : s) {
        unsigned char u = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (u < 0x20 || u == 0x7f) {
            char escaped[8];
            snprintf(escaped, sizeof escaped, "\\u%04x", u);
            out += escaped;
        } else {
            out += c;
        }
    }
    return out + "\"";
}
