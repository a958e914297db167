// Labels: every line whose first word ends in ":", wherever it lies.
#include "checker.h"

namespace {

// A first word folded as strcasecmp compares it in the C locale.
std::string Folded(const std::string& word) {
    std::string out = word;
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

}  // namespace

void Checker::IndexLabels() {
    for (size_t i = 0; i < pScript->aPieces.size(); ++i) {
        const std::string& text = PieceAt(i).sText;
        size_t end = 0;
        while (end < text.size() && !IsBlank(text[end])) ++end;
        if (end > 0 && text[end - 1] == ':') aLabels[Folded(text.substr(0, end))].push_back(i);
    }
}

// kvexec expands the target before it searches; a computed target is not looked at, nor a quoted
// one.
bool Checker::Target(const Token& t, std::string* target) {
    if (t.sText.find('&') != std::string::npos || t.eKind == Kind::Quoted) return false;
    *target = t.sText;
    return true;
}

const std::vector<size_t>* Checker::LabelLines(const std::string& target) const {
    auto found = aLabels.find(Folded(target + ":"));
    return found == aLabels.end() ? nullptr : &found->second;
}
