// The tokens of a script line as kvexec's tokenizer cuts them, sorted into the kinds the checker's
// rules speak of.
#pragma once

#include <string>
#include <vector>

enum class Kind {
    End,         // the end of the line, or a ";" (the rest is a comment)
    Statement,   // a statement word: "&" and one of the statements, nothing more
    Function,    // a function word
    Variable,    // any other "&" word longer than one byte
    Logical,     // "&" alone, "|", "^", "%"
    Arithmetic,  // "+", "-", "*", "/"
    Comparator,  // "=", "==", "<>", "!=", ">", "<", ">=", "<="
    Integer,     // digits only
    Float,       // digits, ".", digits
    Quoted,      // starts with a double quote
    Word,        // starts with a letter or one of "./:_": a bare string
    Open,        // "("
    Close,       // ")"
    Comma,
    OpenIndex,   // "["
    CloseIndex,  // "]"
    Other,
};

struct Token {
    Kind eKind;
    size_t uiStart;  // offset of the first byte in the text the token was cut from
    std::string sText;
    int iWord = -1;  // for a statement or function word: its row among those words

    bool Is(const char* text) const { return sText == text; }
    // A value where one is expected: a literal, a string, a variable or a bare word.
    bool IsOperand() const;
    bool IsOperator() const { return eKind == Kind::Arithmetic || eKind == Kind::Comparator || eKind == Kind::Logical; }
};

using Tokens = std::vector<Token>;

// The tokens of text from offset `from` on, ending with the End token.
Tokens Tokenize(const std::string& text, size_t from);
// The first token of text at offset `from`, or the End token.
Token NextToken(const std::string& text, size_t from);

// Byte classes of the C locale, as kvexec's reader and tokenizer see them.
bool IsBlank(char c);  // white space, as isspace
bool IsAlnum(char c);
bool IsLetter(char c);
