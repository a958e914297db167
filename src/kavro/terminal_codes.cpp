// The screen codes' meaning on a terminal (ansi mode).
#include "terminal_codes.h"

namespace kavro {

namespace {
constexpr TermAction Cap = TermAction::Capability;
constexpr TermAction On = TermAction::AttrOn;
constexpr TermAction Off = TermAction::AttrOff;
constexpr TermAction Box = TermAction::Box;
constexpr TermAction Drop = TermAction::Drop;
}  // namespace

const TermCode aTermCodes[] = {
    {0x01, Cap, "home", 0, nullptr, nullptr},                   // H, HOME
    {0x02, On, nullptr, kAttrDim, nullptr, nullptr},            // FON  faint on
    {0x03, Off, nullptr, kAttrDim, nullptr, nullptr},           // FOFF faint off
    {0x04, On, nullptr, kAttrBold, nullptr, nullptr},           // HON, PON  highlight on
    {0x05, Off, nullptr, kAttrBold, nullptr, nullptr},          // HOFF, POFF
    {0x06, Cap, "cuf1", 0, nullptr, nullptr},                   // R, RIGHT
    {0x07, Cap, "bel", 0, nullptr, nullptr},                    // BEL, BELL
    {0x08, Cap, "cub1", 0, nullptr, nullptr},                   // L, LEFT
    {0x09, TermAction::Text, nullptr, 0, nullptr, nullptr},     // TAB
    {0x0a, Cap, "cud1", 0, nullptr, nullptr},                   // D, DOWN
    {0x0b, On, nullptr, kAttrUnderline, nullptr, nullptr},      // ULON
    {0x0c, Cap, "clear", 0, nullptr, nullptr},                  // C, CLEAR
    {0x0d, TermAction::Newline, nullptr, 0, nullptr, nullptr},  // CR: ends the line
    {0x0e, On, nullptr, kAttrReverse, nullptr, nullptr},        // RVON
    {0x0f, Off, nullptr, kAttrReverse, nullptr, nullptr},       // RVOFF
    {0x11, Cap, "il1", 0, nullptr, nullptr},                    // IL insert line
    {0x12, Cap, "dl1", 0, nullptr, nullptr},                    // DL delete line
    {0x13, Cap, "ich1", 0, nullptr, nullptr},                   // IC insert character
    {0x14, Cap, "dch1", 0, nullptr, nullptr},                   // DC delete character
    {0x15, Drop, nullptr, 0, nullptr, nullptr},                 // KOFF
    {0x16, Off, nullptr, kAttrUnderline, nullptr, nullptr},     // ULOFF
    {0x17, Cap, "el", 0, nullptr, nullptr},                     // EOL erase to end of line
    {0x18, Cap, "ed", 0, nullptr, nullptr},                     // EOS erase to end of screen
    {0x19, Drop, nullptr, 0, nullptr, nullptr},                 // KON
    {0x1a, Cap, "cuu1", 0, nullptr, nullptr},                   // U, UP
    {0x1b, TermAction::Text, nullptr, 0, nullptr, nullptr},     // ESC passes to the terminal
    {0x1c, Drop, nullptr, 0, nullptr, nullptr},                 // EU
    {0x1d, On, nullptr, kAttrBlink, nullptr, nullptr},          // BON
    {0x1e, Off, nullptr, kAttrBlink, nullptr, nullptr},         // BOFF
    {0x80, TermAction::Newline, nullptr, 0, nullptr, nullptr},  // NL, MON
    {0x81, Drop, nullptr, 0, nullptr, nullptr},                 // MOFF
    {0x82, On, nullptr, kAttrStandout, nullptr, nullptr},       // SON
    {0x83, Off, nullptr, kAttrStandout, nullptr, nullptr},      // SOFF
    {0x84, Drop, nullptr, 0, nullptr, nullptr},                 // GON
    {0x85, Drop, nullptr, 0, nullptr, nullptr},                 // GOFF
    {0xa0, Box, nullptr, 0, "\u250c", "+"},                     // ULC
    {0xa1, Box, nullptr, 0, "\u2510", "+"},                     // URC
    {0xa2, Box, nullptr, 0, "\u2518", "+"},                     // LRC
    {0xa3, Box, nullptr, 0, "\u2514", "+"},                     // LLC
    {0xa4, Box, nullptr, 0, "\u253c", "+"},                     // FWI
    {0xa5, Box, nullptr, 0, "\u251c", "+"},                     // LI
    {0xa6, Box, nullptr, 0, "\u2524", "+"},                     // RI
    {0xa7, Box, nullptr, 0, "\u252c", "+"},                     // UI
    {0xa8, Box, nullptr, 0, "\u2534", "+"},                     // DI
    {0xa9, Box, nullptr, 0, "\u2500", "-"},                     // HOR
    {0xaa, Box, nullptr, 0, "\u2502", "|"},                     // VER
    {0xab, Box, nullptr, 0, "\u256d", "+"},                     // RULC
    {0xac, Box, nullptr, 0, "\u256e", "+"},                     // RURC
    {0xad, Box, nullptr, 0, "\u256f", "+"},                     // RLRC
    {0xae, Box, nullptr, 0, "\u2570", "+"},                     // RLLC
    {0xaf, Box, nullptr, 0, "\u2554", "+"},                     // DULC
    {0xb0, Box, nullptr, 0, "\u2557", "+"},                     // DURC
    {0xb1, Box, nullptr, 0, "\u255d", "+"},                     // DLRC
    {0xb2, Box, nullptr, 0, "\u255a", "+"},                     // DLLC
    {0xb3, Box, nullptr, 0, "\u256c", "+"},                     // DFWI
    {0xb4, Box, nullptr, 0, "\u2560", "+"},                     // DLI
    {0xb5, Box, nullptr, 0, "\u2563", "+"},                     // DRI
    {0xb6, Box, nullptr, 0, "\u2566", "+"},                     // DUI
    {0xb7, Box, nullptr, 0, "\u2569", "+"},                     // DDI
    {0xb8, Box, nullptr, 0, "\u2550", "="},                     // DHOR
    {0xb9, Box, nullptr, 0, "\u2551", "|"},                     // DVER
};

const size_t nTermCodes = sizeof aTermCodes / sizeof aTermCodes[0];

const TermCode* FindTermCode(unsigned char code) {
    // The table is sorted by code byte.
    size_t lo = 0, hi = nTermCodes;
    while (lo < hi) {
        size_t mid = (lo + hi) / 2;
        if (aTermCodes[mid].bCode < code)
            lo = mid + 1;
        else
            hi = mid;
    }
    return (lo < nTermCodes && aTermCodes[lo].bCode == code) ? &aTermCodes[lo] : nullptr;
}

}  // namespace kavro
