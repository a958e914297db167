// The line editor: keyboard line input with its editing keys, or a line from the keyboard stack.
#include "line_editor.h"

#include <string>

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
        ++iCol;
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
    std::string input;
    buffer[0] = '\0';
    int shape = kavro::TermSetCursor(2);

    if (kavro::t_StackReady(true)) {
        bool complete = false;
        CBString line = kavro::t_StackRead(autoCount, &complete, true);
        input = line.str();
        if (kavro::t_bStackShow) kavro::TermWrite(line.data(), static_cast<size_t>(line.length()));
    } else {
        for (;;) {
            int key = kavro::TermConvIn(kavro::TermGetUnicode());
            if (key == kKeyBackspace || key == kKeyDelete) {
                if (!input.empty()) {
                    input.pop_back();
                    at.Back();
                    kavro::TermMvwaddch(win, at.iRow, at.iCol, ' ');
                    kavro::TermMoveInput(at.iRow, at.iCol);
                } else if (key == kKeyBackspace) {
                    kavro::TermPut(kEnter);
                    break;
                }
            } else if (key == kKeyCancel) {
                if (input.empty()) {
                    kavro::TermPut(kEnter);
                    break;
                }
                while (!input.empty()) {
                    input.pop_back();
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
            } else if (input.size() < size - 1) {
                int c = kavro::TermIsInteractive() ? ApplyCaseMode(key) : key;
                input += static_cast<char>(c);
                kavro::TermMvwaddch(win, at.iRow, at.iCol, c);
                at.Forward();
                if (autoCount != 0 && input.size() == static_cast<size_t>(autoCount)) break;
            }
            kavro::TermUpdate();
        }
    }

    kavro::TermSetCursor(shape);
    kavro::TermUpdate();
    size_t n = input.size() < size - 1 ? input.size() : size - 1;
    input.copy(buffer, n);
    buffer[n] = '\0';
}
