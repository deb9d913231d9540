// A pass over the text, which steps over whatever stands in brackets. The last word before the end of a
// declarator is its name: before `(` that of a function, before `=`, `:`, `,` or the end that of a variable.

#include <answers/facts/DeclarationText.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <utility>

#include <answers/facts/Escapes.h>

namespace ostraka::answers {

namespace {

struct KeyWord {
    std::string_view word;
    DeclarationKind kind;
};

constexpr KeyWord scopeWords[] = {
    {"class", DeclarationKind::Class},         {"interface", DeclarationKind::Class},
    {"struct", DeclarationKind::Struct},       {"exception", DeclarationKind::Struct},
    {"union", DeclarationKind::Union},         {"enum", DeclarationKind::Enum},
    {"namespace", DeclarationKind::Namespace}, {"module", DeclarationKind::Namespace},
};

// They are neither a type nor a name.
constexpr std::string_view modifiers[] = {
    "static", "virtual",   "inline",       "extern",        "explicit",  "mutable",    "register",
    "const",  "volatile",  "constexpr",    "consteval",     "constinit", "typedef",    "readonly",
    "oneway", "attribute", "thread_local", "__extension__", "__inline",  "__inline__", "class",
    "struct", "union",     "enum",         "interface"};
// Of those the ones that belong to the type.
constexpr std::string_view inTypes[] = {"const", "volatile", "class", "struct", "union", "enum"};
constexpr std::string_view notDeclaring[] = {
    "friend", "return", "goto", "delete", "throw", "case", "import", "public", "protected", "private",
    "if",     "else",   "for",  "while",  "do",    "try",  "catch",  "switch", "noexcept",  "default"};
// They stand behind the arguments of a function.
constexpr std::string_view behindArguments[] = {"const", "volatile", "noexcept", "override", "final",
                                                "try",   "throw",    "requires", "raises",   "context"};
// They and their parentheses tell nothing of what is declared.
constexpr std::string_view attributes[] = {"__attribute__", "__attribute", "__declspec",
                                           "alignas",       "_Alignas",    "__asm__"};
// With its parentheses each is a type.
constexpr std::string_view typesOfValues[] = {"decltype", "typeof", "__typeof__", "__typeof"};

constexpr std::string_view exportMark = "ExportedBy";

template <std::size_t count>
bool IsOneOf(std::string_view word, const std::string_view (&words)[count]) {
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

bool IsWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || (c & 0x80) != 0;
}

bool StartsName(char c) {
    return (IsWordCharacter(c) && std::isdigit(static_cast<unsigned char>(c)) == 0) || c == '~';
}

std::size_t SkipBlanks(std::string_view text, std::size_t at) {
    return std::min(text.find_first_not_of(' ', at), text.size());
}

std::string_view WordAt(std::string_view text, std::size_t at) {
    std::size_t past = at;
    if (past < text.size() && text[past] == '~') ++past;
    while (past < text.size() && IsWordCharacter(text[past])) ++past;
    return text.substr(std::min(at, text.size()), past - at);
}

// Past the quoted text that begins here.
std::size_t SkipQuoted(std::string_view text, std::size_t at) {
    const char quote = text[at];
    for (++at; at < text.size() && text[at] != quote; ++at)
        if (text[at] == '\\') ++at;
    return std::min(at + 1, text.size());
}

bool IsQuote(char c) {
    return c == '"' || c == '\'';
}

// Past the bracket that closes the one that stands here, whatever its kind, or the end.
std::size_t SkipBrackets(std::string_view text, std::size_t at) {
    int open = 0;
    while (at < text.size()) {
        const char c = text[at];
        if (IsQuote(c)) {
            at = SkipQuoted(text, at);
            continue;
        }
        ++at;
        if (c == '(' || c == '[' || c == '{') ++open;
        if (c == ')' || c == ']' || c == '}') --open;
        if (open == 0) break;
    }
    return at;
}

// Past a word and the brackets behind it.
std::size_t SkipCall(std::string_view text, std::size_t at) {
    at = SkipBlanks(text, at + WordAt(text, at).size());
    return at < text.size() && text[at] == '(' ? SkipBrackets(text, at) : at;
}

// Past the `>` that closes the `<` that stands here; 0 if there is none.
std::size_t SkipAngles(std::string_view text, std::size_t at) {
    int open = 0;
    while (at < text.size()) {
        const char c = text[at];
        if (IsQuote(c)) {
            at = SkipQuoted(text, at);
        } else if (c == '(' || c == '[' || c == '{') {
            at = SkipBrackets(text, at);
        } else {
            ++at;
            if (c == '<') ++open;
            if (c == '>' && --open == 0) return at;
        }
    }
    return 0;
}

// The first of these characters outside of brackets and quotes, or the end. A "::" is no ':'.
std::size_t FindOutside(std::string_view text, std::size_t at, std::string_view wanted) {
    while (at < text.size()) {
        const char c = text[at];
        if (text.substr(at, 2) == "::") {
            at += 2;
        } else if (wanted.find(c) != std::string_view::npos) {
            break;
        } else if (IsQuote(c)) {
            at = SkipQuoted(text, at);
        } else {
            at = c == '(' || c == '[' || c == '{' ? SkipBrackets(text, at) : at + 1;
        }
    }
    return std::min(at, text.size());
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = SkipBlanks(text, 0);
    return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

DeclaredName NameIn(std::string_view text, std::string_view scope, std::string_view name) {
    return {scope, name, static_cast<std::size_t>(name.data() - text.data()), {}, {}, 0};
}

// The characters that count in a type, in an order of their own.
std::string LettersOf(std::string_view type) {
    std::string letters(type);
    std::erase(letters, ' ');
    std::sort(letters.begin(), letters.end());
    return letters;
}

class DeclaratorReading {
public:
    // `types` is 1 where the type has been read already; `start` is what is known before.
    DeclaratorReading(std::string_view whole, std::size_t begin, int types, bool body,
                      DeclarationReading start)
        : text(whole), at(begin), words(types), hasBody(body), reading(std::move(start)) {}

    DeclarationReading Run() {
        while (at < text.size() && !reading.kind) Step();
        if (reading.kind) return std::move(reading);
        CloseName();
        if (!reading.names.empty()) reading.kind = DeclarationKind::Variable;
        return std::move(reading);
    }

private:
    void Step() {
        const char c = text[at];
        if (StartsName(c)) return TakeWord();
        if (text.substr(at, 2) == "::") {
            isQualified = !word.empty();
            at += 2;
        } else if (c == '(') {
            TakeParenthesis();
        } else if (c == '=' || c == ':') {
            at = FindOutside(text, at + 1, ",");
        } else if (c == ',') {
            CloseName();
            ++at;
        } else if (c == '<' && !word.empty() && hasAngles) {
            const std::size_t past = SkipAngles(text, at);
            hasAngles = past != 0;
            at = std::max(past, at + 1);
        } else if (IsQuote(c)) {
            at = SkipQuoted(text, at);
        } else if (c == '[' || c == '{') {
            if (c == '[') ++indexes;
            at = SkipBrackets(text, at);
        } else {
            if ((c == '*' || c == '&') && marksBegin == none && typeBegin != none) marksBegin = at;
            at += std::max<std::size_t>(WordAt(text, at).size(), 1); // a number is no name
        }
    }

    void TakeWord() {
        const std::string_view next = WordAt(text, at);
        if (next == "operator") return TakeOperator();
        if (IsOneOf(next, attributes)) {
            at = SkipBlanks(text, SkipCall(text, at));
            if (words == 0) reading.begin = at;
            return;
        }
        const bool isModifier = IsOneOf(next, modifiers);
        if (words == 0 && typeBegin == none && (!isModifier || IsOneOf(next, inTypes))) typeBegin = at;
        if (!isModifier) {
            if (!isQualified) {
                chainBegin = at;
                ++words;
            }
            scope = isQualified ? text.substr(chainBegin, wordPast - chainBegin) : std::string_view();
            word = next;
            wordPast = at + next.size();
            isQualified = false;
        }
        at = IsOneOf(next, typesOfValues) ? SkipCall(text, at) : at + std::max<std::size_t>(next.size(), 1);
    }

    // The name goes up to the arguments: `operator()`, `operator const char*`.
    void TakeOperator() {
        const std::size_t begin = at;
        std::size_t sign = SkipBlanks(text, at + std::string_view("operator").size());
        if (text.substr(sign, 1) == "(") sign = SkipBrackets(text, sign);
        at = std::min(text.find('(', sign), text.size());
        scope = isQualified ? text.substr(chainBegin, wordPast - chainBegin) : std::string_view();
        word = Trimmed(text.substr(begin, at - begin));
        reading.hasType = true;
        TakeFunction();
    }

    void TakeParenthesis() {
        const std::size_t past = SkipBrackets(text, at);
        if (TakePointer(past)) return;
        if (!word.empty() && IsMacroBefore(past)) {
            at = SkipBlanks(text, past);
            reading.begin = at;
            words = 0;
            word = {};
            typeBegin = marksBegin = none;
        } else if (word.empty() || (words >= 2 && !hasBody && HoldsValues(past))) {
            at = past;
        } else {
            reading.hasType = words >= 2;
            TakeFunction();
        }
    }

    // `(*name)(...)`, `(Ship::*name)(...)`, `(&name)[3]`.
    bool TakePointer(std::size_t past) {
        const bool hasMore = past < text.size() && (text[past] == '(' || text[past] == '[');
        if (words == 0 || (words > 1 && !hasMore)) return false;
        const std::size_t first = SkipBlanks(text, at + 1);
        std::size_t inner = first;
        while (inner < past && (IsWordCharacter(text[inner]) || text[inner] == ':')) ++inner;
        if (inner >= past || (inner > first && text[inner - 1] != ':')) return false;
        if (text[inner] != '*' && text[inner] != '&') return false;
        while (inner < past && !StartsName(text[inner])) ++inner;
        word = WordAt(text.substr(0, past), inner);
        scope = {};
        typeBegin = none; // stands around the name
        words = std::max(words, 2);
        at = inner + word.size();
        if (!word.empty() && text.substr(at, 1) == "(") { // a function that gives a pointer to one
            reading.hasType = true;
            TakeFunction();
            return true;
        }
        at = past;
        if (text.substr(at, 1) == "(") at = SkipBrackets(text, at);
        return true;
    }

    // A call of a macro in front of a declaration, which needs no `;`.
    bool IsMacroBefore(std::size_t past) const {
        const std::string_view next = WordAt(text, SkipBlanks(text, past));
        return words < 2 && scope.empty() && !next.empty() && StartsName(next.front()) &&
               !IsOneOf(next, behindArguments) && !IsOneOf(next, attributes);
    }

    // `Ship tug("Tug", 3)` declares a variable.
    bool HoldsValues(std::size_t past) const {
        const std::size_t first = SkipBlanks(text, at + 1);
        const char c = first < past ? text[first] : ')';
        return IsQuote(c) || std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '&' ||
               c == '*';
    }

    // A typedef of one is a type.
    void TakeFunction() {
        reading.kind = reading.isTypedef ? DeclarationKind::Variable : DeclarationKind::Function;
        reading.names = {NameIn(text, scope, word)};
        const std::size_t past = SkipBrackets(text, at);
        reading.arguments = text.substr(at, past - at);
        if (hasBody) reading.past = EndOfHead(past);
    }

    // Before the initialisers, and before a `try` that covers them and the body.
    std::size_t EndOfHead(std::size_t past) const {
        constexpr std::string_view tryWord = "try";
        const std::string_view behind = Trimmed(text.substr(past, FindOutside(text, past, ":") - past));
        const std::size_t rest = behind.size() - std::min(behind.size(), tryWord.size());
        const bool hasTry = behind.ends_with(tryWord) && (rest == 0 || !IsWordCharacter(behind[rest - 1]));
        const std::string_view kept = Trimmed(behind.substr(0, hasTry ? rest : behind.size()));
        return kept.empty() ? past : static_cast<std::size_t>(kept.data() - text.data()) + kept.size();
    }

    // A declaration needs a type before the first name.
    void CloseName() {
        if (!word.empty() && words >= 2) {
            reading.names.push_back(NameIn(text, scope, word));
            PutType(reading.names.back());
        }
        word = scope = {};
        isQualified = false;
        marksBegin = none;
        indexes = 0;
    }

    // Marks belong to one declarator, what stands before those of the first one to all.
    void PutType(DeclaredName& name) {
        if (typeBegin == none) return;
        const std::size_t begin = name.scope.empty() ? name.at : chainBegin;
        const std::size_t typePast = std::min(begin, marksBegin);
        if (reading.names.size() == 1) type = Trimmed(text.substr(typeBegin, typePast - typeBegin));
        name.type = type;
        name.marks = Trimmed(text.substr(typePast, begin - typePast));
        name.indexes = indexes;
    }

    static constexpr std::size_t none = std::string_view::npos;

    const std::string_view text;
    std::size_t at;
    int words; // read so far that are a type or a name, a qualified one being one
    const bool hasBody;
    bool hasAngles = true;    // until a `<` turns out to be no bracket
    bool isQualified = false; // a "::" stands between the last word and the next one
    std::size_t chainBegin = 0;
    std::size_t wordPast = 0;
    std::string_view word, scope; // what would be the name
    std::size_t typeBegin = none;
    std::string_view type;
    std::size_t marksBegin = none; // of this declarator
    int indexes = 0;
    DeclarationReading reading;
};

// What may stand before a declaration: a language, attributes, the parameters of a template, which belong to
// what is shown.
struct Prefixes {
    std::size_t shown = 0;
    std::size_t past = 0;
};

Prefixes ReadPrefixes(std::string_view text) {
    constexpr std::string_view templateWord = "template";
    Prefixes prefixes;
    bool isTemplate = false;
    for (std::size_t at = SkipBlanks(text, 0);; at = SkipBlanks(text, at)) {
        if (!isTemplate) prefixes.shown = at;
        prefixes.past = at;
        if (at < text.size() && text[at] == '"') {
            at = SkipQuoted(text, at);
        } else if (at < text.size() && text[at] == '[') {
            at = SkipBrackets(text, at);
        } else if (WordAt(text, at) == templateWord) {
            const std::size_t angle = SkipBlanks(text, at + templateWord.size());
            at = angle < text.size() && text[angle] == '<' ? SkipAngles(text, angle) : 0;
            if (at == 0) at = text.size(); // an instantiation
            isTemplate = true;
        } else {
            return prefixes;
        }
    }
}

// What stands before the body of a class or its bases, word for word: `API [[deprecated]] Berth<int>::Side
// final`. Attributes and arguments of templates are stepped over.
struct Head {
    bool isHead = false; // no function, no variable
    int names = 0;       // without export words of the dialect; each part of a qualified one counts
    std::string_view first, name;
    std::string_view scope; // what stands before the last "::"
};

class HeadReading {
public:
    explicit HeadReading(std::string_view behindKeyword)
        : text(Trimmed(behindKeyword.substr(0, FindOutside(behindKeyword, 0, ":")))) {}

    Head Run() {
        for (at = SkipBlanks(text, 0); at < text.size(); at = SkipBlanks(text, at))
            if (!Step()) return {};
        head.isHead = !isBehindBracket;
        return head;
    }

private:
    // False for what stands in no head.
    bool Step() {
        if (text.substr(at, 2) == "::") {
            isJoined = true;
            at += 2;
        } else if (text[at] == '(' || text[at] == '[') {
            isBehindBracket = true;
            at = SkipBrackets(text, at);
        } else if (text[at] == '<') {
            const std::size_t past = SkipAngles(text, at);
            at = past != 0 ? past : text.size();
        } else {
            return TakeWord();
        }
        return true;
    }

    bool TakeWord() {
        const std::string_view word = WordAt(text, at);
        if (word.empty() || !StartsName(word.front())) return false;
        if (isBehindBracket && IsOneOf(word, behindArguments)) return false;
        const std::size_t begin = at;
        at += word.size();
        if (word == "final" && !head.name.empty()) return true;
        isBehindBracket = false;
        const bool isAttribute = text.substr(SkipBlanks(text, at), 1) == "(";
        if (!isAttribute && !word.starts_with(exportMark)) TakeName(begin, word);
        isJoined = false;
        return true;
    }

    void TakeName(std::size_t begin, std::string_view word) {
        if (!isJoined) chainBegin = begin;
        if (head.names++ == 0) head.first = word;
        head.scope = isJoined ? text.substr(chainBegin, begin - 2 - chainBegin) : std::string_view();
        head.name = word;
    }

    const std::string_view text;
    std::size_t at = 0;
    std::size_t chainBegin = 0;   // where the parts begin that "::" joins
    bool isJoined = false;        // behind a "::"
    bool isBehindBracket = false; // a name has to follow, else it held the arguments of a function
    Head head;
};

// Whether a word is one that a project gives its exported classes: `SHIPS_API`.
bool IsUpper(std::string_view word) {
    return word.size() > 1 && std::all_of(word.begin(), word.end(), [](char c) {
               return std::isupper(static_cast<unsigned char>(c)) != 0 ||
                      std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '_';
           });
}

// `class ExportedByShips Ship`, `class SHIPS_API Ship`, but not the variable in `struct DIR folder`: behind a
// word in capitals stands a type if it begins with one.
bool IsForward(const Head& head) {
    if (!head.isHead || !head.scope.empty()) return false;
    return head.names == 1 || (head.names == 2 && IsUpper(head.first) &&
                               std::isupper(static_cast<unsigned char>(head.name.front())) != 0);
}

const KeyWord* KeywordOf(std::string_view word) {
    const auto* found = std::find_if(std::begin(scopeWords), std::end(scopeWords),
                                     [=](const KeyWord& row) { return row.word == word; });
    return found == std::end(scopeWords) ? nullptr : found;
}

// What stands behind the keyword: the head of a body, a name declared in advance, or no more than the type of
// a variable or a function.
void ReadNamedType(std::string_view text, std::size_t past, const KeyWord& keyword, bool hasBody,
                   DeclarationReading& reading) {
    if (keyword.kind == DeclarationKind::Enum)
        if (const std::string_view word = WordAt(text, SkipBlanks(text, past));
            word == "class" || word == "struct")
            past = SkipBlanks(text, past) + word.size();
    const Head head = HeadReading(text.substr(past)).Run();
    if (hasBody && head.isHead) {
        reading.kind = keyword.kind;
        reading.isPrivate = keyword.word == "class";
    } else if (!hasBody && !reading.isTypedef && keyword.kind != DeclarationKind::Namespace &&
               IsForward(head)) {
        reading.kind = DeclarationKind::Forward;
    }
    if (reading.kind && !head.name.empty()) reading.names = {NameIn(text, head.scope, head.name)};
}

// `using Depth = int`; other uses of the word declare nothing.
void ReadAlias(std::string_view text, std::size_t past, DeclarationReading& reading) {
    const std::size_t equals = FindOutside(text, past, "=");
    const std::size_t begin = SkipBlanks(text, past);
    const std::string_view name = WordAt(text, begin);
    if (equals == text.size() || name.empty()) return;
    const std::string_view behind = Trimmed(text.substr(begin + name.size(), equals - begin - name.size()));
    if (!behind.empty() && behind.front() != '[') return;
    reading.kind = DeclarationKind::Typedef;
    reading.isTypedef = true;
    reading.names = {NameIn(text, {}, name)};
}

} // namespace

DeclarationReading ReadDeclaration(std::string_view text, bool hasBody) {
    const Prefixes prefixes = ReadPrefixes(text);
    DeclarationReading reading;
    reading.begin = prefixes.shown;
    reading.past = text.size();
    if (prefixes.past == text.size()) {
        if (hasBody && text.starts_with('"')) reading.kind = DeclarationKind::Namespace;
        return reading;
    }
    std::size_t past = prefixes.past;
    std::string_view word = WordAt(text, past);
    while (IsOneOf(word, modifiers) && KeywordOf(word) == nullptr) {
        reading.isTypedef = reading.isTypedef || word == "typedef";
        past = SkipBlanks(text, past + word.size());
        word = WordAt(text, past);
    }
    if (word == "using") ReadAlias(text, past + word.size(), reading);
    if (word == "using" || IsOneOf(word, notDeclaring)) return reading;
    const std::size_t behind = SkipBlanks(text, past + word.size());
    if (hasBody && KeywordOf(word) == nullptr && KeywordOf(WordAt(text, behind)) != nullptr) {
        past = behind; // an export word, or the call of a macro without arguments
        word = WordAt(text, past);
    }
    if (const KeyWord* keyword = KeywordOf(word)) {
        ReadNamedType(text, past + word.size(), *keyword, hasBody, reading);
        if (reading.kind || keyword->kind == DeclarationKind::Namespace) return reading;
    }
    return DeclaratorReading(text, prefixes.past, 0, hasBody, std::move(reading)).Run();
}

bool BelongsBehindArguments(std::string_view text) {
    const std::string_view word = WordAt(text, 0);
    // A constant of its own may stand behind the call of a macro.
    const bool isConstant = word == "const" || word == "volatile";
    return text.starts_with('(') || text.starts_with(':') || text.starts_with('=') ||
           (!isConstant && IsOneOf(word, behindArguments));
}

std::string TypeOf(const DeclaredName& name) {
    std::string type(name.type);
    for (const char c : name.marks) {
        if (IsWordCharacter(c) && !type.empty() && (type.back() == '*' || type.back() == '&')) type += ' ';
        type += c;
    }
    return type.append(static_cast<std::size_t>(name.indexes), '*');
}

std::string AsWritten(std::string_view type, const DeclaredName& name) {
    const std::string written = TypeOf(name);
    return LettersOf(written) == LettersOf(type) ? written : std::string(type);
}

} // namespace ostraka::answers
