// Terminal output in its three modes: raw passes bytes through, text keeps only text and line
// ends, ansi turns screen codes into the terminal's own sequences.
//
// The ansi expectations are the xterm-256color entries of the terminfo database:
//   clear=\E[H\E[2J  home=\E[H  cuf1=\E[C  cub1=^H  cud1=\n  cuu1=\E[A  bel=^G
//   el=\E[K  ed=\E[J  il1=\E[L  dl1=\E[M  dch1=\E[P  cup=\E[%i%p1%d;%p2%dH
//   sgr=%?%p9%t\E(0%e\E(B%;\E[0%?%p6%t;1%;%?%p5%t;2%;%?%p2%t;4%;%?%p1%p3%|%t;7%;%?%p4%t;5%;%?%p7%t;8%;m
// so sgr with nothing on is "\E(B\E[0m", with bold (p6) "\E(B\E[0;1m", and so on.
#include <climits>
#include <clocale>
#include <cstdlib>
#include <string>

#include "terminal_codes.h"
#include "test_support.h"

namespace {

const std::string kClear = "\x1b[H\x1b[2J";
const std::string kHome = "\x1b[H";
const std::string kSgrNone = "\x1b(B\x1b[0m";
const std::string kSgrBold = "\x1b(B\x1b[0;1m";
const std::string kSgrDim = "\x1b(B\x1b[0;2m";
const std::string kSgrUnderline = "\x1b(B\x1b[0;4m";
const std::string kSgrBoldUnderline = "\x1b(B\x1b[0;1;4m";
const std::string kSgrReverse = "\x1b(B\x1b[0;7m";
const std::string kSgrBlink = "\x1b(B\x1b[0;5m";

class KavroOutput : public ::testing::Test {
protected:
    void SetUp() override {
        const char* term = getenv("TERM");
        bHadTerm = term != nullptr;
        if (term) sOldTerm = term;
    }

    void TearDown() override {
        kavro::TermFlush();
        kavro::TermSetMode(kavro::TermMode::Raw);
        setlocale(LC_CTYPE, "C");
        if (bHadTerm)
            setenv("TERM", sOldTerm.c_str(), 1);
        else
            unsetenv("TERM");
    }

    // Switches to ansi mode on an xterm-256color terminal with the given character-type locale.
    void UseAnsi(const char* locale) { UseAnsiOn("xterm-256color", locale); }

    // The same on another terminal; no name at all leaves the terminfo database unused.
    void UseAnsiOn(const char* term, const char* locale) {
        if (term)
            setenv("TERM", term, 1);
        else
            unsetenv("TERM");
        ASSERT_NE(setlocale(LC_CTYPE, locale), nullptr) << locale;
        kavro::TermSetMode(kavro::TermMode::Ansi);
        ctx.output.clear();
    }

    // What the terminal received since the last call.
    std::string Take() {
        std::string s = ctx.Output();
        ctx.output.clear();
        return s;
    }

    std::string Write(const std::string& bytes) {
        kavro::TermWrite(bytes.data(), bytes.size());
        return Take();
    }

    kvtest::Context ctx;
    bool bHadTerm = false;
    std::string sOldTerm;
};

// ---- raw ---------------------------------------------------------------------------------

TEST_F(KavroOutput, RawPassesEveryByte) {
    EXPECT_EQ(kavro::TermGetMode(), kavro::TermMode::Raw);
    EXPECT_EQ(Write("a\rb"), "a\rb");
    EXPECT_EQ(Write("\x80"), "\x80");
    EXPECT_EQ(Write("\xa0\xa9\xaa\xb9"), "\xa0\xa9\xaa\xb9");
    EXPECT_EQ(Write("\x0c\x01\x04x\x05\x07"), "\x0c\x01\x04x\x05\x07");
    EXPECT_EQ(Write("caf\xc3\xa9\r"), "caf\xc3\xa9\r");
}

TEST_F(KavroOutput, RawEveryByteValue) {
    std::string all;
    for (int c = 1; c < 256; ++c) all.push_back(static_cast<char>(c));
    EXPECT_EQ(Write(all), all);
}

TEST_F(KavroOutput, RawPrintfPutAndZeroTerminatedWrite) {
    kavro::TermPrintf("%d|%s\r", 42, "x");
    kavro::TermPut(0x80);
    kavro::TermPut('\r');
    kavro::TermWrite("\xa0 end");
    EXPECT_EQ(Take(), "42|x\r\x80\r\xa0 end");
}

TEST_F(KavroOutput, RawMoveIsAnsiCursorPositionCountedFromOne) {
    kavro::TermMove(5, 10);
    EXPECT_EQ(Take(), "\x1b[6;11H");
    kavro::TermMove(0, 0);
    EXPECT_EQ(Take(), "\x1b[1;1H");
}

TEST_F(KavroOutput, OutputWaitsForFlush) {
    kavro::TermWrite("held");
    EXPECT_EQ(ctx.output, "");
    kavro::TermFlush();
    EXPECT_EQ(ctx.output, "held");
}

// ---- text --------------------------------------------------------------------------------

TEST_F(KavroOutput, TextTurnsCarriageReturnIntoLineFeed) {
    kavro::TermSetMode(kavro::TermMode::Text);
    EXPECT_EQ(kavro::TermGetMode(), kavro::TermMode::Text);
    EXPECT_EQ(Write("one\rtwo\r"), "one\ntwo\n");
}

TEST_F(KavroOutput, TextDropsScreenCodes) {
    kavro::TermSetMode(kavro::TermMode::Text);
    EXPECT_EQ(Write("a\x0c"
                    "b\x01"
                    "c\x04"
                    "d\x05"
                    "e\x07"
                    "f"),
              "abcdef");
    EXPECT_EQ(Write("\xa0\xa9\xa9\xa1"), "");
    EXPECT_EQ(Write("x\x0e"
                    "y\x0f"
                    "z\x12\x17\x18"),
              "xyz");
}

TEST_F(KavroOutput, TextKeepsUtf8Text) {
    kavro::TermSetMode(kavro::TermMode::Text);
    EXPECT_EQ(Write("caf\xc3\xa9\r"), "caf\xc3\xa9\n");
    EXPECT_EQ(Write("\xe2\x82\xac 5"), "\xe2\x82\xac 5");
}

TEST_F(KavroOutput, TextKeepsLineFeedAndTab) {
    kavro::TermSetMode(kavro::TermMode::Text);
    EXPECT_EQ(Write("a\nb\tc"), "a\nb\tc");
}

TEST_F(KavroOutput, TextEndsTheLineAtTheNewLineCode) {
    kavro::TermSetMode(kavro::TermMode::Text);
    EXPECT_EQ(Write("a\x80"
                    "b"),
              "a\nb");
}

TEST_F(KavroOutput, TextMoveWritesNothing) {
    kavro::TermSetMode(kavro::TermMode::Text);
    kavro::TermMove(5, 10);
    EXPECT_EQ(Take(), "");
}

// ---- ansi --------------------------------------------------------------------------------

TEST_F(KavroOutput, AnsiCarriageReturnEndsTheLine) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(kavro::TermGetMode(), kavro::TermMode::Ansi);
    EXPECT_EQ(Write("a\rb"), "a\r\nb");
    EXPECT_EQ(Write("\r"), "\r\n");
}

TEST_F(KavroOutput, AnsiPlainTextUtf8TabAndEscapePassUnchanged) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("Hello, world"), "Hello, world");
    EXPECT_EQ(Write("caf\xc3\xa9"), "caf\xc3\xa9");
    EXPECT_EQ(Write("a\tb"), "a\tb");
    EXPECT_EQ(Write("\x1b[2J"), "\x1b[2J");
}

TEST_F(KavroOutput, AnsiClearAndHome) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("\x0c"), kClear);
    EXPECT_EQ(Write("\x01"), kHome);
    EXPECT_EQ(Write("x\x0cy"), "x" + kClear + "y");
}

TEST_F(KavroOutput, AnsiCursorCodes) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("\x06"), "\x1b[C");  // right
    EXPECT_EQ(Write("\x08"), "\b");      // left
    EXPECT_EQ(Write("\x1a"), "\x1b[A");  // up
    EXPECT_EQ(Write("\x0a"), "\n");      // down
}

TEST_F(KavroOutput, AnsiEditingCodes) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("\x17"), "\x1b[K");  // erase to end of line
    EXPECT_EQ(Write("\x18"), "\x1b[J");  // erase to end of screen
    EXPECT_EQ(Write("\x11"), "\x1b[L");  // insert line
    EXPECT_EQ(Write("\x12"), "\x1b[M");  // delete line
    EXPECT_EQ(Write("\x14"), "\x1b[P");  // delete character
    EXPECT_EQ(Write("\x07"), "\a");      // bell
    // This terminal inserts a character only with the counted form.
    EXPECT_EQ(Write("\x13"), "\x1b[1@");
}

TEST_F(KavroOutput, AnsiDropsKeyboardAndGraphicsCodes) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("a\x15"
                    "b\x19"
                    "c\x1c"
                    "d\x81"
                    "e\x84"
                    "f\x85"
                    "g"),
              "abcdefg");
}

// A lead byte of UTF-8 followed by no continuation byte is passed on as it is.
TEST_F(KavroOutput, AnsiStrayLeadBytePassesOn) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("\xc3"
                    "A"),
              "\xc3"
              "A");
    EXPECT_EQ(Write("\xe2\x82"
                    "\r"),
              "\xe2\x82\r\n");
}

// Without a terminal description only backspace, bell and line feed have a sequence of their own.
TEST_F(KavroOutput, AnsiWithoutTerminfo) {
    UseAnsiOn(nullptr, "C.UTF-8");
    EXPECT_EQ(Write("a\x08"
                    "b\x07"
                    "c\x0a"
                    "d"),
              "a\bb\ac\nd");
    EXPECT_EQ(Write("\x0c\x01\x06\x1a\x17"), "");
    EXPECT_EQ(Write("\x04x\x05"), "x");
    kavro::TermCarriageReturn();
    EXPECT_EQ(Take(), "\r");
}

TEST_F(KavroOutput, RawCarriageReturn) {
    kavro::TermCarriageReturn();
    EXPECT_EQ(Take(), "\r");
}

// A terminal without "sgr" gets "sgr0" and then one sequence for each attribute that is on:
// mach-color has sgr0=\E[0m smso=\E[7m smul=\E[4m rev=\E[7m blink=\E[5m dim=\E[2m bold=\E[1m.
TEST_F(KavroOutput, AnsiAttributesWithoutSgr) {
    UseAnsiOn("mach-color", "C.UTF-8");
    EXPECT_EQ(Write("\x04"), "\x1b[0m\x1b[1m");
    EXPECT_EQ(Write("\x82\x0b\x0e\x1d\x02"),
              "\x1b[0m\x1b[7m\x1b[1m"
              "\x1b[0m\x1b[7m\x1b[4m\x1b[1m"
              "\x1b[0m\x1b[7m\x1b[4m\x1b[7m\x1b[1m"
              "\x1b[0m\x1b[7m\x1b[4m\x1b[7m\x1b[5m\x1b[1m"
              "\x1b[0m\x1b[7m\x1b[4m\x1b[7m\x1b[5m\x1b[2m\x1b[1m");
    EXPECT_EQ(Write("\x05\x83\x16\x0f\x1e\x03"),
              "\x1b[0m\x1b[7m\x1b[4m\x1b[7m\x1b[5m\x1b[2m"
              "\x1b[0m\x1b[4m\x1b[7m\x1b[5m\x1b[2m"
              "\x1b[0m\x1b[7m\x1b[5m\x1b[2m"
              "\x1b[0m\x1b[5m\x1b[2m"
              "\x1b[0m\x1b[2m"
              "\x1b[0m");
}

TEST_F(KavroOutput, AnsiBoldOnAndOff) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("\x04x\x05"), kSgrBold + "x" + kSgrNone);
}

TEST_F(KavroOutput, AnsiEachAttribute) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("\x0b"
                    "u\x16"),
              kSgrUnderline + "u" + kSgrNone);
    EXPECT_EQ(Write("\x0e"
                    "r\x0f"),
              kSgrReverse + "r" + kSgrNone);
    EXPECT_EQ(Write("\x1d"
                    "b\x1e"),
              kSgrBlink + "b" + kSgrNone);
    EXPECT_EQ(Write("\x02"
                    "f\x03"),
              kSgrDim + "f" + kSgrNone);
    // standout is shown as reverse video by this terminal
    EXPECT_EQ(Write("\x82s\x83"), kSgrReverse + "s" + kSgrNone);
}

TEST_F(KavroOutput, AnsiAttributesCombine) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("\x04"
                    "a\x0b"
                    "b\x05"
                    "c\x16"
                    "d"),
              kSgrBold + "a" + kSgrBoldUnderline + "b" + kSgrUnderline + "c" + kSgrNone + "d");
}

TEST_F(KavroOutput, AnsiNewLineCode) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("a\x80"
                    "b"),
              "a\r\nb");
}

TEST_F(KavroOutput, AnsiBoxCodesAsUnicodeInUtf8Locale) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("\xa0"), "\u250c");  // upper left corner
    EXPECT_EQ(Write("\xa1"), "\u2510");  // upper right corner
    EXPECT_EQ(Write("\xa2"), "\u2518");  // lower right corner
    EXPECT_EQ(Write("\xa3"), "\u2514");  // lower left corner
    EXPECT_EQ(Write("\xa4"), "\u253c");  // four-way intersection
    EXPECT_EQ(Write("\xa5"), "\u251c");  // left intersection
    EXPECT_EQ(Write("\xa6"), "\u2524");  // right intersection
    EXPECT_EQ(Write("\xa7"), "\u252c");  // upper intersection
    EXPECT_EQ(Write("\xa8"), "\u2534");  // lower intersection
    EXPECT_EQ(Write("\xa9"), "\u2500");  // horizontal
    EXPECT_EQ(Write("\xaa"), "\u2502");  // vertical
    EXPECT_EQ(Write("\xaf"), "\u2554");  // double upper left corner
    EXPECT_EQ(Write("\xb0"), "\u2557");  // double upper right corner
    EXPECT_EQ(Write("\xb1"), "\u255d");  // double lower right corner
    EXPECT_EQ(Write("\xb2"), "\u255a");  // double lower left corner
    EXPECT_EQ(Write("\xb3"), "\u256c");  // double four-way intersection
    EXPECT_EQ(Write("\xb8"), "\u2550");  // double horizontal
    EXPECT_EQ(Write("\xb9"), "\u2551");  // double vertical
    EXPECT_EQ(Write("\xa0\xa9\xa9\xa1"), "\u250c\u2500\u2500\u2510");
}

TEST_F(KavroOutput, AnsiEveryBoxCodeFollowsTheCodeTable) {
    UseAnsi("C.UTF-8");
    for (int c = 0xa0; c <= 0xb9; ++c) {
        const kavro::TermCode* code = kavro::FindTermCode(static_cast<unsigned char>(c));
        ASSERT_NE(code, nullptr) << std::hex << c;
        ASSERT_EQ(code->eAction, kavro::TermAction::Box) << std::hex << c;
        EXPECT_EQ(Write(std::string(1, static_cast<char>(c))), code->pszUnicode) << std::hex << c;
    }
}

TEST_F(KavroOutput, AnsiBoxCodesAsAsciiOutsideUtf8) {
    UseAnsi("C");
    EXPECT_EQ(Write("\xa0\xa9\xa9\xa1\r"), "+--+\r\n");
    EXPECT_EQ(Write("\xaa  \xaa\r"), "|  |\r\n");
    EXPECT_EQ(Write("\xa3\xa9\xa9\xa2"), "+--+");
    EXPECT_EQ(Write("\xa4\xa5\xa6\xa7\xa8"), "+++++");
    EXPECT_EQ(Write("\xaf\xb0\xb1\xb2"), "++++");
}

TEST_F(KavroOutput, AnsiMoveUsesCursorAddress) {
    UseAnsi("C.UTF-8");
    kavro::TermMove(5, 10);
    EXPECT_EQ(Take(), "\x1b[6;11H");
    kavro::TermMove(0, 0);
    EXPECT_EQ(Take(), "\x1b[1;1H");
    kavro::TermMove(23, 79);
    EXPECT_EQ(Take(), "\x1b[24;80H");
}

TEST_F(KavroOutput, BackToRawAfterAnsi) {
    UseAnsi("C.UTF-8");
    EXPECT_EQ(Write("\r"), "\r\n");
    kavro::TermSetMode(kavro::TermMode::Raw);
    EXPECT_EQ(Write("\r\x0c\xa0"), "\r\x0c\xa0");
}

// ---- the cursor column --------------------------------------------------------------------

// More than 2^31 columns of output without a line end: the column stops at the largest int.
TEST_F(KavroOutput, ColumnStopsAtTheLargestInt) {
    kavro::TermMove(0, INT_MAX - 2);
    EXPECT_EQ(Take(), "\x1b[1;2147483646H");
    Write("abcdef");
    EXPECT_EQ(kavro::TermColumn(), INT_MAX);
    Write("\t\x06\xc3\xa9");
    EXPECT_EQ(kavro::TermColumn(), INT_MAX);
    kavro::TermMoveRelative(0, 5);
    EXPECT_EQ(kavro::TermColumn(), INT_MAX);
    Take();
    Write("\r");
    EXPECT_EQ(kavro::TermColumn(), 0);
}

TEST_F(KavroOutput, TabJustBelowTheLargestIntStopsThere) {
    kavro::TermMove(0, INT_MAX - 3);
    Write("\t");
    EXPECT_EQ(kavro::TermColumn(), INT_MAX);
    Write("\r");
}

TEST_F(KavroOutput, MoveToTheLastColumnOfAll) {
    kavro::TermMove(INT_MAX, INT_MAX);
    EXPECT_EQ(Take(), "\x1b[2147483648;2147483648H");
    Write("\r");
}

}  // namespace
