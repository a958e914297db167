// kvcheck's command line.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "codes.h"

struct Options {
    bool bJson = false;
    bool bWerror = false;
    bool bNoWarnings = false;
    bool bOnlyListed = false;         // --warn was given: only aOnly's warnings are reported
    std::set<std::string> aOnly;      // --warn
    std::set<std::string> aExcluded;  // --no-warn
    std::vector<std::string> aFiles;

    // Whether a finding with this message is reported.
    bool Reports(const MessageRow& r) const;
};

enum class Parsed { Check, Done, Wrong };

// Reads the command line into o. Prints the usage or version text (Done) or what is wrong
// (Wrong) itself.
Parsed ParseOptions(int argc, char** argv, Options* o);
