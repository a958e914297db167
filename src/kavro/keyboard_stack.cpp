// The keyboard type-ahead stack: text stacked by the script, read by line input as if typed and
// handed to the next command as its standard input.
#include "kavro.h"

namespace kavro {

namespace {
std::string g_sStack;  // live contents
std::string g_sSaved;  // snapshot taken by t_StackSave
}  // namespace

bool t_bStackShow = false;

void t_StackWrite(const char* text) {
    if (text) g_sStack += text;
}
void t_StackWrite(const CBString& text) { g_sStack += text.str(); }

void t_StackClear() {
    g_sStack.clear();
    g_sSaved.clear();
}

void t_StackSave() { g_sSaved = g_sStack; }

void t_StackLoad() {
    if (g_sStack.empty()) g_sStack = g_sSaved;
}

bool t_StackReady(bool /*bLine*/) { return !g_sStack.empty(); }

// Takes the next line (without its line feed); with autoCount > 0 at most that many characters,
// the rest staying stacked. *pbComplete tells whether a line feed ended what was taken.
CBString t_StackRead(int autoCount, bool* pbComplete, bool bRemove) {
    size_t nl = g_sStack.find('\n');
    size_t len = nl == std::string::npos ? g_sStack.size() : nl;
    bool complete = nl != std::string::npos;
    if (autoCount > 0 && len > static_cast<size_t>(autoCount)) {
        len = static_cast<size_t>(autoCount);
        complete = false;
    }
    CBString line(g_sStack.data(), len);
    if (bRemove) g_sStack.erase(0, complete ? len + 1 : len);
    if (pbComplete) *pbComplete = complete;
    return line;
}

void t_StackDump() { TermPrintf("<stack \"%s\">\r", g_sStack.c_str()); }

const std::string& t_StackText() { return g_sStack; }

}  // namespace kavro
