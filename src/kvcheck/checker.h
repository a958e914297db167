// The checker: takes the lines of a script as kvexec's line dispatch would, without running
// anything, and reports what kvexec will reject (errors) and what will not do what it seems to
// (warnings). Blocks are followed as a run from the top to the bottom of the script would meet
// them, without jumps: a branch whose condition is not known is taken, one whose condition is a
// number is taken or skipped as kvexec would, and the lines after an unconditional jump are
// reached only through a label or a skip.
#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "keywords.h"
#include "report.h"
#include "source.h"
#include "tokens.h"

class Checker {
public:
    Checker(const Script& script, Report* report) : pScript(&script), pReport(report) {}
    void Run();

private:
    // How a line is being taken: whether the block rules apply (not for the line &ERROR keeps,
    // which runs wherever a command fails) and whether it is the action of a one-line &IF.
    struct Context {
        bool bBlocks;
        bool bAction;
    };

    // A statement where a statement stands: its word and the tokens after it.
    struct Statement {
        size_t uiPiece;
        Token word;
        Tokens aRest;  // ends with the End token
        Context ctx;

        StatementWord Word() const { return static_cast<StatementWord>(word.iWord); }
    };

    enum class Block {
        If,
        Else,
        For,
        While,
        Until,
        Text,
        ElseAfterEndif,  // an &ELSE branch that an &ENDIF did not end: the next &IFEND ends it
        ElseifLeft,      // the entry a taken &ELSEIF branch leaves when it skips the rest
    };
    struct Entry {
        Block eBlock;
        int iLine;
        int iColumn;
        StatementWord eWord;   // the statement that opened it
        bool bTaken = false;   // an &IF or &ELSEIF branch known to run: the next branch is skipped
        bool bElseif = false;  // the branch taken is an &ELSEIF's: its entry stays after the skip
    };

    // What kvexec skips reads only the first word of each line.
    enum class Skip {
        None,
        Branch,  // to &ELSE or &ELSEIF (taken) or &IFEND or &ENDIF (the block ends)
        Rest,    // to &IFEND or &ENDIF (the block ends)
    };

    // ---- Findings (checker.cpp)
    const Piece& PieceAt(size_t piece) const { return pScript->aPieces[piece]; }
    void Add(size_t piece, size_t offset, Message m, std::initializer_list<std::string> args = {});
    void Add(const Statement& s, const Token& t, Message m, std::initializer_list<std::string> args = {}) {
        Add(s.uiPiece, t.uiStart, m, args);
    }
    // A finding of the block rules: none on lines reached only by a jump.
    void Note(const Statement& s, Message m, std::initializer_list<std::string> args = {}) {
        if (!bDead) Add(s, s.word, m, args);
    }

    // ---- Line dispatch (checker.cpp)
    void TakePiece(size_t piece);
    void TakeLine(size_t piece, size_t from, Context ctx);
    void TakeWordLine(size_t piece, size_t at);
    void TakeLabel(size_t piece, size_t at, size_t colon);
    void TakeAmpersandLine(size_t piece, size_t at, Context ctx);
    void TakeAssignment(size_t piece, size_t from);
    void CheckAssignedWord(size_t piece, size_t at, const std::string& word);

    // ---- Command lines (commands.cpp)
    struct CommandText;
    void TakeCommand(size_t piece, size_t at, const Token* variable);
    void CheckMisspelt(size_t piece, const Token& variable);
    void CheckSemicolon(size_t piece, const CommandText& c);
    void CheckLowerCased(size_t piece, const CommandText& c);
    void CheckAmpersands(size_t piece, const CommandText& c);

    // ---- Statements (statements.cpp)
    void TakeStatement(size_t piece, const Token& word, Context ctx);
    void TakeAction(size_t piece, size_t at, Context ctx);
    void Nothing(const Statement&) {}
    void OpenIf(const Statement& s, int known);
    bool EndsTakenBranch(const Statement& s);
    bool GluedIfCloser(const Statement& s);
    void ParseIf(const Statement& s);
    void ParseElseif(const Statement& s);
    void ParseElse(const Statement& s);
    void ParseEndif(const Statement& s);
    void ParseIfend(const Statement& s);
    void ParseFor(const Statement& s);
    void ParseNext(const Statement& s);
    void ParseWhile(const Statement& s);
    void ParseUntil(const Statement& s);
    void ParseWend(const Statement& s);
    void ParseLoop(const Statement& s);
    void ParseBreak(const Statement& s);
    void ParseContinue(const Statement& s);
    void ParseGoto(const Statement& s);
    void ParseCall(const Statement& s);
    void ParseReturn(const Statement& s);
    void ParseQuit(const Statement& s);
    void ParseEnd(const Statement& s);
    void ParseBegtype(const Statement& s);
    void ParseError(const Statement& s);
    void ParseSleep(const Statement& s);
    void ParseShift(const Statement& s);
    void ParseRead(const Statement& s);
    void ParseType(const Statement& s);
    void ParseExpression(const Statement& s);
    bool NegativeCount(const Statement& s) const;
    void Jumps(const Statement& s);

    // ---- Conditions and expressions (expressions.cpp)
    // Scans the condition of &IF, &ELSEIF, &WHILE, &UNTIL; reports KV105, KV106, KV112 and the
    // expression findings. Returns the index of the end token, or npos when the scan stopped.
    size_t ScanCondition(const Statement& s, Message missing);
    // 1 or 0 when the condition is a number alone (true unless its 16 bits are 0), else -1.
    static int KnownCondition(const Tokens& t, size_t end);
    void CheckForHead(const Statement& s);
    void CheckExpression(size_t piece, const Tokens& t, size_t from, size_t to);
    void CheckInteger(size_t piece, const Tokens& t, size_t at, size_t from);

    // ---- Blocks (blocks.cpp)
    std::vector<Entry>& Stack() { return bDead ? aDeadStack : aStack; }
    const std::vector<Entry>& Stack() const { return bDead ? aDeadStack : aStack; }
    void Push(const Statement& s, Block b);
    bool TopIs(Block b) const { return !Stack().empty() && Stack().back().eBlock == b; }
    bool TopIsIf() const { return TopIs(Block::If) || TopIs(Block::Else); }
    bool TopIsLingering() const { return TopIs(Block::ElseAfterEndif) || TopIs(Block::ElseifLeft); }
    void DropLingering();
    const Entry* Innermost(bool (*match)(Block)) const;
    static bool IsLoop(Block b) { return b == Block::For || b == Block::While || b == Block::Until; }
    // Whether the statement is its line's first word, which is how kvexec's block handlers
    // recognise a closer.
    bool Closes(const Statement& s) const;
    void NoPending(const Statement& s, const char* what) { Note(s, Message::NoPending, {Name(s), what}); }
    static const char* Name(const Statement& s) { return kStatementWords.Name(s.word.iWord); }
    bool CloseLeftEntry();
    void CloseLoop(const Statement& s, Block loop, const char* what);
    void LoopControl(const Statement& s, Message inLoop);
    void OpenLoop(const Statement& s, Block loop, const char* closer);
    void EndOfFile();

    // ---- Skips and lines reached only by a jump (blocks.cpp)
    void StartSkip(Skip skip) {
        eSkip = skip;
        iNestedSkip = 0;
    }
    void SkipPiece(size_t piece);
    void EndSkip();
    bool EndsDeadRun(size_t piece);
    static bool IsLabelLine(const std::string& text);  // (checker.cpp)

    // ---- Labels (labels.cpp)
    void IndexLabels();
    // The target of &GOTO or &CALL, or false when it is not looked at (it is computed).
    static bool Target(const Token& t, std::string* target);
    const std::vector<size_t>* LabelLines(const std::string& target) const;

    const Script* pScript;
    Report* pReport;
    std::vector<Entry> aStack;
    std::unordered_map<std::string, std::vector<size_t>> aLabels;  // pieces by folded first word
    bool bCallSeen = false;
    std::vector<std::pair<size_t, size_t>> aReturns;  // &RETURN with nothing open: piece, offset

    Skip eSkip = Skip::None;
    int iNestedSkip = 0;            // nested &IF blocks a skip passes over whole, up to their &IFEND
    bool bJumped = false;           // the line just taken ends in an unconditional jump
    bool bDead = false;             // the lines taken are reached only by a jump
    std::vector<Entry> aDeadStack;  // what those lines open
};
