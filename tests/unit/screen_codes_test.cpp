// Screen-code names: the byte each name of the code tables yields.
#include <cctype>
#include <string>
#include <vector>

#include "screen_codes.h"
#include "test_support.h"

namespace {

std::string Byte(int code) { return std::string(1, static_cast<char>(code)); }

std::string CrtOf(const char* name) { return Crt(name).str(); }

struct Row {
    const char* pszName;  // the name written in full, or a pattern's fixed part
    int iCode;
};

// The screen code table, one name for each row.
const std::vector<Row> kCrtRows = {
    {"BEL", 0x07},  {"BOF", 0x1e},  {"BON", 0x1d},  {"C", 0x0c},   {"CR", 0x0d},  {"DC", 0x14},  {"DL", 0x12},
    {"D", 0x0a},    {"EOL", 0x17},  {"EOS", 0x18},  {"ESC", 0x1b}, {"EU", 0x1c},  {"FOF", 0x03}, {"FON", 0x02},
    {"GOF", 0x85},  {"GON", 0x84},  {"HOF", 0x05},  {"HON", 0x04}, {"H", 0x01},   {"IC", 0x13},  {"IL", 0x11},
    {"KOF", 0x15},  {"KON", 0x19},  {"L", 0x08},    {"MOF", 0x81}, {"MON", 0x80}, {"NL", 0x80},  {"POF", 0x05},
    {"PON", 0x04},  {"RVOF", 0x0f}, {"RVON", 0x0e}, {"R", 0x06},   {"SOF", 0x83}, {"SON", 0x82}, {"TAB", 0x09},
    {"ULOF", 0x16}, {"ULON", 0x0b}, {"U", 0x1a},
};

// The line-drawing table, one name for each row but "DL", which the screen code table answers.
const std::vector<Row> kLineRows = {
    {"DDI", 0xb7},  {"DFWI", 0xb3}, {"DHOR", 0xb8}, {"DI", 0xa8},   {"DLI", 0xb4},   {"DLLC", 0xb2}, {"DLRC", 0xb1},
    {"DRI", 0xb5},  {"DUI", 0xb6},  {"DULC", 0xaf}, {"DURC", 0xb0}, {"DVER.", 0xb9}, {"FWI", 0xa4},  {"HOR", 0xa9},
    {"LI", 0xa5},   {"LLC", 0xa3},  {"LRC", 0xa2},  {"RI", 0xa6},   {"RLLC", 0xae},  {"RLRC", 0xad}, {"RULC", 0xab},
    {"RURC", 0xac}, {"UI", 0xa7},   {"ULC", 0xa0},  {"URC", 0xa1},  {"VER", 0xaa},
};

std::string Lower(const char* name) {
    std::string s(name);
    for (char& c : s) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    return s;
}

size_t Rows(const CrtCode* table) {
    size_t n = 0;
    while (table[n].pszName) ++n;
    return n;
}

TEST(ScreenCodes, TableSizes) {
    EXPECT_EQ(Rows(aCrt), 38u);
    EXPECT_EQ(Rows(aLine), 27u);
}

TEST(ScreenCodes, EveryScreenCodeRowByName) {
    for (const Row& r : kCrtRows) EXPECT_EQ(CrtOf(r.pszName), Byte(r.iCode)) << r.pszName;
}

TEST(ScreenCodes, EveryLineDrawingRowByName) {
    for (const Row& r : kLineRows) EXPECT_EQ(CrtOf(r.pszName), Byte(r.iCode)) << r.pszName;
}

TEST(ScreenCodes, EveryRowOfTheTablesMatchesItsOwnName) {
    // each row's own name or pattern text, searched in its own table
    for (const CrtCode* row = aCrt; row->pszName; ++row) {
        CBString name(row->pszName);
        EXPECT_EQ(_code2val(name, aCrt).str(), Byte(row->iCode)) << row->pszName;
    }
    for (const CrtCode* row = aLine; row->pszName; ++row) {
        CBString name(row->pszName);
        EXPECT_EQ(_code2val(name, aLine).str(), Byte(row->iCode)) << row->pszName;
    }
}

TEST(ScreenCodes, LowerCaseNames) {
    for (const Row& r : kCrtRows) EXPECT_EQ(CrtOf(Lower(r.pszName).c_str()), Byte(r.iCode)) << r.pszName;
    for (const Row& r : kLineRows) EXPECT_EQ(CrtOf(Lower(r.pszName).c_str()), Byte(r.iCode)) << r.pszName;
    EXPECT_EQ(CrtOf("Bell"), Byte(0x07));
    EXPECT_EQ(CrtOf("cLeAr"), Byte(0x0c));
    EXPECT_EQ(CrtOf("dvertical."), Byte(0xb9));
}

TEST(ScreenCodes, SpelledOutNames) {
    const std::vector<Row> spelled = {
        {"BELL", 0x07},  {"CL", 0x0c},       {"CLS", 0x0c},        {"CLR", 0x0c},        {"CLEAR", 0x0c},
        {"DN", 0x0a},    {"DOWN", 0x0a},     {"HM", 0x01},         {"HOME", 0x01},       {"LF", 0x08},
        {"LFT", 0x08},   {"LEFT", 0x08},     {"RT", 0x06},         {"RGT", 0x06},        {"RIGHT", 0x06},
        {"UP", 0x1a},    {"BOFF", 0x1e},     {"FOFF", 0x03},       {"GOFF", 0x85},       {"HOFF", 0x05},
        {"KOFF", 0x15},  {"MOFF", 0x81},     {"POFF", 0x05},       {"RVOFF", 0x0f},      {"SOFF", 0x83},
        {"ULOFF", 0x16}, {"HORIZ", 0xa9},    {"HORIZONTAL", 0xa9}, {"DHORIZ", 0xb8},     {"DHORIZONTAL", 0xb8},
        {"VERT", 0xaa},  {"VERTICAL", 0xaa}, {"DVERT.", 0xb9},     {"DVERTICAL.", 0xb9},
    };
    for (const Row& r : spelled) EXPECT_EQ(CrtOf(r.pszName), Byte(r.iCode)) << r.pszName;
}

TEST(ScreenCodes, DeleteLineComesFromTheScreenCodeTable) {
    EXPECT_EQ(CrtOf("DL"), Byte(0x12));
    EXPECT_EQ(CrtOf("dl"), Byte(0x12));
}

TEST(ScreenCodes, LineDrawingAfterTheScreenCodeTableFails) {
    EXPECT_EQ(CrtOf("ULC"), Byte(0xa0));
    CBString ulc("ULC");
    EXPECT_EQ(_code2val(ulc, aCrt).str(), "");
    EXPECT_EQ(_code2val(ulc, aLine).str(), Byte(0xa0));
}

TEST(ScreenCodes, NamesThatLookLikeShortenings) {
    EXPECT_EQ(CrtOf("CR"), Byte(0x0d));
    EXPECT_EQ(CrtOf("RI"), Byte(0xa6));
    EXPECT_EQ(CrtOf("HOR"), Byte(0xa9));
    EXPECT_EQ(CrtOf("LI"), Byte(0xa5));
    EXPECT_EQ(CrtOf("UI"), Byte(0xa7));
    EXPECT_EQ(CrtOf("DI"), Byte(0xa8));
    EXPECT_EQ(CrtOf("HOME"), Byte(0x01));
    EXPECT_EQ(CrtOf("HON"), Byte(0x04));
}

TEST(ScreenCodes, SharedCodes) {
    EXPECT_EQ(CrtOf("MON"), CrtOf("NL"));
    EXPECT_EQ(CrtOf("HOFF"), CrtOf("POFF"));
    EXPECT_EQ(CrtOf("HON"), CrtOf("PON"));
}

TEST(ScreenCodes, UnknownNamesGiveNothing) {
    EXPECT_EQ(CrtOf("ALPHA"), "");
    EXPECT_EQ(CrtOf("A"), "");
    EXPECT_EQ(CrtOf("ZZ"), "");
    EXPECT_EQ(CrtOf("XYZ"), "");
    EXPECT_EQ(CrtOf("DVER"), "");
    EXPECT_EQ(CrtOf("BE"), "");
    EXPECT_EQ(CrtOf("BELLS"), "");
    EXPECT_EQ(CrtOf("TABS"), "");
    EXPECT_EQ(CrtOf("ULCX"), "");
    EXPECT_EQ(CrtOf("1"), "");
}

TEST(ScreenCodes, EmptyOrNullNameGivesNothing) {
    EXPECT_EQ(CrtOf(""), "");
    EXPECT_EQ(CrtOf(nullptr), "");
}

TEST(ScreenCodes, SearchStopsAtTheFirstGreaterFirstCharacter) {
    // rows out of order: the search gives up at "B" before it reaches "A"
    const CrtCode unsorted[] = {{"B", 1}, {"A", 2}, {nullptr, 0}};
    CBString a("A");
    EXPECT_EQ(_code2val(a, unsorted).str(), "");
    CBString b("B");
    EXPECT_EQ(_code2val(b, unsorted).str(), Byte(1));
    // a name whose first character is greater passes over the row
    const CrtCode sorted[] = {{"A", 1}, {"B", 2}, {nullptr, 0}};
    EXPECT_EQ(_code2val(b, sorted).str(), Byte(2));
    CBString c("C");
    EXPECT_EQ(_code2val(c, sorted).str(), "");
}

TEST(ScreenCodes, FirstMatchingRowWins) {
    const CrtCode twice[] = {{"X", 1}, {"X", 2}, {nullptr, 0}};
    CBString x("X");
    EXPECT_EQ(_code2val(x, twice).str(), Byte(1));
}

}  // namespace
