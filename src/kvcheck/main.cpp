// kvcheck: checks job-control scripts without running them.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "checker.h"
#include "options.h"
#include "source.h"

namespace {

using Found = std::pair<const std::string*, Finding>;

// Checks one script and adds what is reported to found; false when it cannot be read.
bool CheckScript(const std::string& path, const Options& o, std::vector<Found>* found) {
    std::string bytes;
    if (!ReadScript(path, &bytes)) {
        fprintf(stderr, "kvcheck: %s: %s\n", path.c_str(), strerror(errno));
        return false;
    }
    Script script = SplitScript(bytes);
    Report report;
    Checker(script, &report).Run();
    report.Sort();
    for (const Finding& f : report.Findings())
        if (o.Reports(f.Row())) found->emplace_back(&path, f);
    return true;
}

void Print(const std::vector<Found>& found, bool json) {
    if (!json) {
        for (const Found& f : found) PrintText(stdout, *f.first, f.second);
        return;
    }
    if (found.empty()) {
        puts("[]");
        return;
    }
    puts("[");
    for (size_t i = 0; i < found.size(); ++i) {
        PrintJson(stdout, *found[i].first, found[i].second);
        puts(i + 1 < found.size() ? "," : "");
    }
    puts("]");
}

int Status(const std::vector<Found>& found, bool werror) {
    for (const Found& f : found)
        if (f.second.Row().eSeverity == Severity::Error || werror) return 1;
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    Options o;
    switch (ParseOptions(argc, argv, &o)) {
        case Parsed::Done: return 0;
        case Parsed::Wrong: return 2;
        case Parsed::Check: break;
    }
    std::vector<Found> found;
    bool unreadable = false;
    for (const std::string& path : o.aFiles)
        if (!CheckScript(path, o, &found)) unreadable = true;
    Print(found, o.bJson);
    return unreadable ? 2 : Status(found, o.bWerror);
}
