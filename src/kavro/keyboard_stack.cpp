// The keyboard type-ahead stack: text stacked by the script, read by line input as if typed and
// handed to the next command as its standard input.
#include "kavro.h"

namespace kavro {

namespace {
std::string sStack;  // live contents
std::string sSaved;  // snapshot taken by t_StackSave
}  // namespace

bool t_bStackShow = false;

void t_StackWrite(const char* text) {
    if (text) sStack += text;
}
void t_StackWrite(const CBString& text) { sStack += text.str(); }

void t_StackClear() {
    sStack.clear();
    sSaved.clear();
}

void t_StackSave() { sSaved = sStack; }

void t_StackLoad() {
    if (sStack.empty()) sStack = sSaved;
}

bool t_StackReady(bool /*bLine*/) { return !sStack.empty(); }

// Takes the next line (without its line feed); with autoCount > 0 at most that many characters,
// the rest staying stacked. *pbComplete tells whether a line feed ended what was taken.
CBString t_StackRead(int autoCount, bool* pbComplete, bool bRemove) {
    size_t nl = sStack.find('\n');
    size_t len = nl == std::string::npos ? sStack.size() : nl;
    bool complete = nl != std::string::npos;
    if (autoCount > 0 && len > static_cast<size_t>(autoCount)) {
        len = static_cast<size_t>(autoCount);
        complete = false;
    }
    CBString line(sStack.data(), len);
    if (bRemove) sStack.erase(0, complete ? len + 1 : len);
    if (pbComplete) *pbComplete = complete;
    return line;
}

void t_StackDump() { TermPrintf("<stack \"%s\">\r", sStack.c_str()); }

const std::string& StackContents() { return sStack; }

}  // namespace kavro
