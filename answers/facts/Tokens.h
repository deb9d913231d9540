#pragma once

// The tokens of one file, from its bytes alone: what stands in comments, directives and branches that can't
// hold is left out, brackets know their partners. It takes what a compiler takes, byte order marks, digit
// separators and raw strings among it, and costs one pass.
//
// Of the branches of a conditional the first counts, and each further one that could stand beside it: where a
// branch opens a bracket that it doesn't close, or ends within a statement, the others are its replacements
// and are passed over. `#if 0` and what only another language sees never count.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ostraka::answers {

enum class TokenKind : std::uint8_t { Mark, Word, Number, Text, End };

// Marks of one character are that character, so that a token's code is compared with '{'.
enum MarkCode : std::uint8_t {
    ColonsMark = 128, // ::
    ArrowMark,        // ->
    EllipsisMark,     // ...
    AndAndMark,       // &&
    OrOrMark,         // ||
    CompareMark,      // == != <= >= <=>
    AssignMark,       // += and its like
    ShiftMark,        // <<
    StepMark,         // ++ and --
    MemberPointerMark // ->* and .*
};

// The words that a reader of declarations takes for more than a name.
enum Keyword : std::uint8_t {
    NoKeyword,
#define OSTRAKA_KEYWORD(name) Kw_##name,
#include <answers/facts/Keywords.inc>
#undef OSTRAKA_KEYWORD
};

struct Token {
    std::uint32_t begin = 0;
    std::uint32_t size = 0;
    std::int32_t partner = -1; // of a bracket: the index of the other one; -1 where there is none
    TokenKind kind = TokenKind::End;
    std::uint8_t code = 0; // of a mark its MarkCode, of a word its Keyword

    bool Is(std::uint8_t mark) const { return kind == TokenKind::Mark && code == mark; }
    bool IsKeyword(Keyword keyword) const { return kind == TokenKind::Word && code == keyword; }
    bool IsName() const { return kind == TokenKind::Word && code == NoKeyword; }
};

struct IncludeFact {
    std::string_view name; // in the text
    std::uint32_t at = 0;
    char delimiter = '"';
};

struct MacroFact {
    std::string_view name;
    std::string_view arguments; // with the parentheses; empty where it takes none
    std::string_view value;     // to the end of the definition, as it stands
    std::uint32_t at = 0;       // of the name
    std::uint32_t past = 0;     // behind the definition
};

// What can't be read, and costs only itself.
enum class LexicalFault : std::uint8_t {
    Literal, // without its end
    Comment,
    Bracket, // without its partner
    Head,    // of a statement outside of bodies that isn't told what it declares
};

struct FaultAt {
    LexicalFault fault;
    std::uint32_t at;
};

class TokenList {
public:
    // The text stays the caller's and must outlive the list. Words that fit `dropped` aren't in it, see
    // TAPLexicalSettings.
    explicit TokenList(std::string_view source, const std::vector<std::string>& dropped = {});

    // The last one is an End, behind the text.
    const std::vector<Token>& All() const { return tokens; }
    int Count() const { return static_cast<int>(tokens.size()) - 1; }
    const Token& operator[](int i) const { return tokens[static_cast<std::size_t>(i)]; }
    std::string_view TextOf(const Token& token) const { return source.substr(token.begin, token.size); }
    std::string_view TextOf(int i) const { return TextOf((*this)[i]); }
    std::string_view Source() const { return source; }

    const std::vector<IncludeFact>& Includes() const { return includes; }
    const std::vector<MacroFact>& Macros() const { return macros; }
    const std::vector<FaultAt>& Faults() const { return faults; }

    // The index of the token that holds the byte or ends before it; -1 where none does.
    int At(std::uint32_t offset) const;

    // Whether the byte may stand in a name.
    static bool IsWordCharacter(char c);

private:
    friend class Scanner;

    void Drop(const std::vector<std::string>& words);

    std::string_view source;
    std::vector<Token> tokens;
    std::vector<IncludeFact> includes;
    std::vector<MacroFact> macros;
    std::vector<FaultAt> faults;
};

} // namespace ostraka::answers
