// The line editor: keyboard line input with its editing keys, or a line from the keyboard stack.
#include "line_editor.h"

#include <climits>
#include <string>
#include <vector>

#include "kavro.h"

namespace {

constexpr int kKeyBackspace = 8;
constexpr int kKeyDelete = 127;
constexpr int kKeyCancel = 24;
constexpr int kKeyIgnored = 26;
constexpr int kEnter = 13;

// The input case mode applies to typed keys only.
int ApplyCaseMode(int c) {
    switch (kavro::Kavro->cCaseMode) {
        case 'U': return kavro::t_toupper(c);
        case 'L':
            if (kavro::t_islower(c)) return kavro::t_toupper(c);
            if (kavro::t_isupper(c)) return kavro::t_tolower(c);
            return c;
        default: return c;
    }
}

// The text typed so far, a character at a time: a character typed on the terminal may take
// several bytes, and erasing takes it away whole.
struct Input {
    std::string sText;
    std::vector<unsigned char> aLengths;

    bool Empty() const { return aLengths.empty(); }
    size_t Characters() const { return aLengths.size(); }
    void Add(const char* bytes, size_t n) {
        sText.append(bytes, n);
        aLengths.push_back(static_cast<unsigned char>(n));
    }
    void RemoveLast() {
        sText.resize(sText.size() - aLengths.back());
        aLengths.pop_back();
    }
};

struct Cursor {
    int iRow;
    int iCol;
    int iWidth;

    void Back() {
        if (iCol == 0 && iWidth > 0) {
            --iRow;
            iCol = iWidth - 1;
        } else if (iCol > 0) {
            --iCol;
        }
    }
    void Forward() {
        if (iCol < INT_MAX) ++iCol;
        if (iWidth > 0 && iCol >= iWidth) {
            iCol = 0;
            ++iRow;
        }
    }
};

}  // namespace

void Read(char* buffer, unsigned long size, int autoCount) {
    kavro::TermWin w = kavro::TermGetWin();
    int win = (w.iKind == 2 && w.iActive == 1) ? kavro::TermGetActive() : 252;
    Cursor start{w.iRow, w.iCol, w.iWidth};
    Cursor at = start;
    Input input;
    buffer[0] = '\0';
    int shape = kavro::TermSetCursor(2);

    if (kavro::t_StackReady(true)) {
        bool complete = false;
        CBString line = kavro::t_StackRead(autoCount, &complete, true);
        input.sText = line.str();
        if (kavro::t_bStackShow) kavro::TermWrite(line.data(), static_cast<size_t>(line.length()));
    } else {
        for (;;) {
            int key = kavro::TermConvIn(kavro::TermGetUnicode());
            if (key == kKeyBackspace || key == kKeyDelete) {
                if (!input.Empty()) {
                    input.RemoveLast();
                    at.Back();
                    kavro::TermMvwaddch(win, at.iRow, at.iCol, ' ');
                    kavro::TermMoveInput(at.iRow, at.iCol);
                } else if (key == kKeyBackspace) {
                    kavro::TermPut(kEnter);
                    break;
                }
            } else if (key == kKeyCancel) {
                if (input.Empty()) {
                    kavro::TermPut(kEnter);
                    break;
                }
                while (!input.Empty()) {
                    input.RemoveLast();
                    at.Back();
                    kavro::TermMvwaddch(win, at.iRow, at.iCol, ' ');
                    kavro::TermMoveInput(at.iRow, at.iCol);
                }
                at = start;
                kavro::TermMoveInput(at.iRow, at.iCol);
            } else if (key == kKeyIgnored) {
            } else if (key < 32 && key != 0) {
                // Enter, any other control key, and the end of input.
                kavro::TermPut(kEnter);
                break;
            } else {
                size_t length = 0;
                const char* text = kavro::TermKeyText(&length);
                if (length > 1) {
                    // A character of several bytes: kept as typed, and echoed in one column.
                    if (input.sText.size() + length <= size - 1) {
                        input.Add(text, length);
                        kavro::TermMvwaddch(win, at.iRow, at.iCol, static_cast<unsigned char>(text[0]));
                        kavro::TermWrite(text + 1, length - 1);
                        at.Forward();
                        if (autoCount != 0 && input.Characters() == static_cast<size_t>(autoCount)) break;
                    }
                } else if (input.sText.size() < size - 1) {
                    int c = kavro::TermIsInteractive() ? ApplyCaseMode(key) : key;
                    char byte = static_cast<char>(c);
                    input.Add(&byte, 1);
                    kavro::TermMvwaddch(win, at.iRow, at.iCol, c);
                    at.Forward();
                    if (autoCount != 0 && input.Characters() == static_cast<size_t>(autoCount)) break;
                }
            }
            kavro::TermUpdate();
        }
    }

    kavro::TermSetCursor(shape);
    kavro::TermUpdate();
    size_t n = input.sText.size() < size - 1 ? input.sText.size() : size - 1;
    input.sText.copy(buffer, n);
    buffer[n] = '\0';
}
