// Statements of bodies, as far as they declare: blocks, headers of loops and conditions, handlers, lambdas.
// And the small pieces that all readers of facts use.

#include <answers/facts/FactReader.h>
#include <ostraka/syntax/DialectWords.h>

namespace ostraka::answers {

namespace {

constexpr int widestAngles = 4000; // tokens between an angle bracket and its partner

bool IsStorageOrAlike(std::uint8_t keyword) {
    switch (keyword) {
    case Kw_static:
    case Kw_extern:
    case Kw_inline:
    case Kw___inline:
    case Kw_virtual:
    case Kw_explicit:
    case Kw_constexpr:
    case Kw_consteval:
    case Kw_constinit:
    case Kw_mutable:
    case Kw_register:
    case Kw_thread_local:
    case Kw_friend:
    case Kw_typedef:
    case Kw_export:
    case Kw___extension__:
    case Kw_typename: return true;
    default: return false;
    }
}

} // namespace

// A block that begins here, for whatever reason.
void FactReader::PassBlock() {
    if (WantsBodies()) return EnterBody(Place::Block, i, OpenScope(ScopeKind::Block, i, EndOfBody(i), -1));
    i = EndOfBody(i) + 1;
    statementBegins = true;
}

void FactReader::AtBlockStatement() {
    const Token& token = T(i);
    if (token.Is('{')) return PassBlock();
    if (token.kind != TokenKind::Word) {
        if (token.Is(ColonsMark) && Declaration(Mode::Statement)) return;
        statementBegins = false;
        return;
    }
    switch (token.code) {
    case Kw_if:
    case Kw_while:
    case Kw_switch:
    case Kw_catch:
    case Kw_for: {
        const int open = IsWord(i + 1) ? i + 2 : i + 1; // `if constexpr (`
        if (IsMark(open, '(') && T(open).partner > 0)
            return ControlStatement(open, token.code == Kw_for || token.code == Kw_catch ? Mode::ForInit
                                                                                         : Mode::Condition);
        ++i;
        return;
    }
    case Kw_else:
    case Kw_do:
    case Kw_try: ++i; return;
    default: break;
    }
    if (const int past = PastLabel(i); past > i) {
        Head head;
        head.first = i;
        if (token.IsName()) Add(FactKind::Label, TextAt(i), i, head);
        i = past;
        return;
    }
    if (IsMacroLoop()) return ControlStatement(i + 1, Mode::MacroLoop);
    if (!Declaration(Mode::Statement)) {
        statementBegins = false;
        if (!IsMark(i, ';') && !IsMark(i, '{') && !IsMark(i, '[')) ++i;
    }
}

// Behind `case Port:`, `default:` or `end:`; the same place where nothing of it stands.
int FactReader::PastLabel(int at) const {
    if ((IsName(at) || IsKey(at, Kw_default)) && IsMark(at + 1, ':')) return at + 2;
    if (!IsKey(at, Kw_case)) return at;
    while (at < contexts.back().past && !IsMark(at, ':') && !IsMark(at, ';') && !IsMark(at, '}'))
        at = IsMark(at, '(') ? PastBracket(at) : at + 1;
    return IsMark(at, ':') ? at + 1 : at;
}

// `EACH(Ship* ship, ships) {`: a macro that stands for a loop.
bool FactReader::IsMacroLoop() const {
    return IsName(i) && IsMark(i + 1, '(') && T(i + 1).partner > 0 && IsMark(T(i + 1).partner + 1, '{');
}

// The names that the parentheses declare hold to the end of the statement.
void FactReader::ControlStatement(int open, Mode mode) {
    const int past = PastStatement(i);
    const int block = OpenScope(ScopeKind::Block, open, std::max(past - 1, open), -1);
    Context context{Place::Block, past, scope};
    context.header = T(open).partner;
    contexts.push_back(context);
    scope = block;
    i = open + 1;
    declarationFirst = i;
    templateScope = -1;
    if (IsMark(i, ')')) return;
    statementBegins = false;
    if (!Declaration(mode)) i = open + 1;
}

// Behind the whole statement, with all that it leads. What lies in it ends where it ends.
int FactReader::PastStatement(int from) {
    const int bound = contexts.back().past;
    std::vector<int> starts;
    bool hasIf = false;
    bool hasDo = false;
    int at = from;
    while (at < bound) {
        if (const auto known = statementEnds.find(at); known != statementEnds.end()) {
            at = known->second;
            break;
        }
        starts.push_back(at);
        if (const int past = PastLabel(at); past > at) {
            at = past;
            continue;
        }
        const Token& token = T(at);
        const bool isMacroLoop = token.IsName() && IsMark(at + 1, '(') && T(at + 1).partner > 0 &&
                                 IsMark(T(at + 1).partner + 1, '{');
        if (token.kind == TokenKind::Word &&
            (token.code == Kw_if || token.code == Kw_while || token.code == Kw_for ||
             token.code == Kw_switch || token.code == Kw_catch || isMacroLoop)) {
            hasIf = hasIf || token.code == Kw_if;
            ++at;
            if (!IsMark(at, '(')) ++at;
            if (IsMark(at, '(')) at = PastBracket(at);
            continue;
        }
        if (token.IsKeyword(Kw_else) || token.IsKeyword(Kw_try) || token.IsKeyword(Kw_do)) {
            hasDo = hasDo || token.IsKeyword(Kw_do);
            ++at;
            continue;
        }
        at = std::min((token.Is('{') ? EndOfBody(at) : SemicolonFrom(at, bound)) + 1, bound);
        if (hasDo && IsKey(at, Kw_while)) at = std::min(SemicolonFrom(at, bound) + 1, bound);
        if (!(hasIf && IsKey(at, Kw_else)) && !IsKey(at, Kw_catch)) break;
    }
    at = std::min(at, bound);
    for (const int start : starts) statementEnds.emplace(start, at);
    return std::max(at, from + 1);
}

int FactReader::SemicolonFrom(int from, int bound) const {
    int at = from;
    while (at < bound && !IsMark(at, ';') && !IsMark(at, '}')) {
        const Token& token = T(at);
        at = token.Is('(') || token.Is('[') || token.Is('{') ? PastBracket(at) : at + 1;
    }
    return std::min(at, bound);
}

// Whether behind something that wasn't understood, macros without semicolons most likely, a statement begins.
bool FactReader::BeginsAnother() const {
    if (OpensHead(i)) return IsMark(i - 1, ')') && BeginsLine(i);
    const bool isLabel = IsKey(i, Kw_public) || IsKey(i, Kw_protected) || IsKey(i, Kw_private);
    return InClass() && isLabel && (IsMark(i + 1, ':') || (IsName(i + 1) && IsMark(i + 2, ':')));
}

void FactReader::WithinStatement() {
    const Token& token = T(i);
    if (token.kind != TokenKind::Mark) {
        statementBegins = !InBlock() && i > declarationFirst && BeginsAnother();
        if (!statementBegins) ++i;
        return;
    }
    switch (token.code) {
    case ';':
        statementBegins = true;
        ++i;
        return;
    case ')':
        if (i == contexts.back().header) statementBegins = true;
        ++i;
        return;
    case '{':
        if (InBlock() && WantsBodies()) return PassBlock();
        i = PastBracket(i);
        statementBegins = !IsMark(i, ';') && !IsMark(i, ',') && !IsMark(i, ')');
        return;
    case '[':
        if (WantsBodies() && InBlock() && IsLambda(i)) return LambdaAt(i);
        ++i;
        return;
    default: ++i;
    }
}

bool FactReader::IsLambda(int open) const {
    const int close = T(open).partner;
    if (close < 0 || IsMark(open + 1, '[')) return false;
    const Token& before = T(std::max(open - 1, 0));
    if (before.IsName() || before.Is(')') || before.Is(']') || before.kind == TokenKind::Text) return false;
    if (IsBuiltinType(open - 1) || before.IsKeyword(Kw_delete) || before.IsKeyword(Kw_operator) ||
        before.IsKeyword(Kw_this))
        return false;
    return IsMark(close + 1, '(') || IsMark(close + 1, '{') || IsMark(close + 1, '<') ||
           IsMark(close + 1, ArrowMark);
}

void FactReader::LambdaAt(int open) {
    const int close = T(open).partner;
    int at = close + 1;
    int angles = -1;
    if (IsMark(at, '<')) {
        angles = at;
        at = PastAngles(at);
        if (at < 0) {
            ++i;
            return;
        }
    }
    const int arguments = IsMark(at, '(') && T(at).partner > 0 ? at : -1;
    std::uint32_t flags = 0;
    std::pair<int, int> trailing(-1, -1);
    int body = arguments < 0 ? at : PastBracket(at);
    while (IsKey(body, Kw_mutable) || IsKey(body, Kw_constexpr)) ++body;
    body = FunctionTail(body, flags, trailing);
    if (!IsMark(body, '{') || body >= contexts.back().past) {
        ++i;
        return;
    }
    const int function = OpenScope(ScopeKind::Function, open, EndOfBody(body), -1);
    const int outer = scope;
    scope = function;
    declarationFirst = open;
    for (int capture = open + 1; capture < close; ++capture) {
        const bool begins = IsMark(capture - 1, '[') || IsMark(capture - 1, ',') || IsMark(capture - 1, '&');
        if (IsMark(capture, '(') || IsMark(capture, '{') || IsMark(capture, '[')) {
            capture = PastBracket(capture) - 1;
        } else if (begins && IsName(capture) && (IsMark(capture + 1, '=') || IsMark(capture + 1, '{'))) {
            Head head;
            head.first = capture;
            const int declared = Add(FactKind::Variable, TextAt(capture), capture, head);
            At(declared).type = "auto";
            At(declared).initial = capture + 2;
            At(declared).initialPast = PastInitial(capture + 2, close);
            At(declared).past = PastOf(capture);
        }
    }
    if (angles >= 0) TemplateParameters(angles + 1, PastAngles(angles) - 1, function);
    if (arguments >= 0) Parameters(arguments, function);
    scope = outer;
    EnterBody(Place::Block, body, function);
    contexts.back().isWithin = true;
}

// ---- Pieces

bool FactReader::ReadChain(int from, Chain& chain) const {
    int at = from;
    chain = Chain{};
    chain.first = chain.qualifierPast = at;
    if (IsMark(at, ColonsMark)) chain.qualifierPast = ++at;
    for (;;) {
        if (IsKey(at, Kw_template)) ++at;
        if (IsMark(at, '~') && IsName(at + 1)) {
            chain.isDestructor = true;
            chain.name = at + 1;
            chain.past = at + 2;
            if (IsMark(chain.past, '<'))
                if (const int angles = PastAngles(chain.past); angles > 0) chain.past = angles;
            return true;
        }
        if (IsKey(at, Kw_operator)) {
            chain.isOperator = true;
            chain.name = at;
            chain.past = PastOperator(at, chain.isConversion);
            return true;
        }
        if (!IsName(at)) return false;
        chain.name = at;
        chain.past = at + 1;
        if (IsMark(chain.past, '<'))
            if (const int angles = PastAngles(chain.past); angles > 0) chain.past = angles;
        const int next = chain.past + 1;
        if (!IsMark(chain.past, ColonsMark) ||
            !(IsName(next) || IsMark(next, '~') || IsKey(next, Kw_operator) || IsKey(next, Kw_template)))
            return true;
        chain.qualifierPast = at = next;
    }
}

int FactReader::PastOperator(int keyword, bool& isConversion) const {
    int at = keyword + 1;
    const Token& token = T(at);
    if ((token.Is('(') && IsMark(at + 1, ')')) || (token.Is('[') && IsMark(at + 1, ']'))) return at + 2;
    if (token.IsKeyword(Kw_new) || token.IsKeyword(Kw_delete)) {
        ++at;
        return IsMark(at, '[') && IsMark(at + 1, ']') ? at + 2 : at;
    }
    if (token.kind == TokenKind::Text) return IsName(at + 1) ? at + 2 : at + 1;
    if (token.kind == TokenKind::Mark && !token.Is(ColonsMark)) {
        while (at < tokens.Count() && T(at).kind == TokenKind::Mark && !IsMark(at, '(') && !IsMark(at, ';') &&
               !IsMark(at, '{'))
            ++at;
        return at;
    }
    if (token.IsKeyword(Kw_co_await)) return at + 1;
    isConversion = true;
    const int bound = std::min(tokens.Count(), keyword + widestAngles);
    while (at < bound && !IsMark(at, '(') && !IsMark(at, ';') && !IsMark(at, '{') && !IsMark(at, '}')) ++at;
    return at;
}

// Behind the bracket that closes a list of template arguments; -1 where it must be a comparison.
int FactReader::PastAngles(int open) const {
    if (noAngles.empty()) noAngles.resize(static_cast<std::size_t>(tokens.Count()) + 1);
    if (noAngles[static_cast<std::size_t>(open)]) return -1;
    std::vector<int> opened;
    const int bound = std::min(tokens.Count(), open + widestAngles);
    for (int at = open; at < bound; ++at) {
        const Token& token = T(at);
        if (token.kind == TokenKind::Text) break;
        if (token.kind == TokenKind::Word) {
            const std::uint8_t word = token.code;
            if (word == Kw_return || word == Kw_if || word == Kw_else || word == Kw_new ||
                word == Kw_delete || word == Kw_throw || word == Kw_this)
                break;
            continue;
        }
        if (token.kind != TokenKind::Mark) continue;
        if (token.code == '<') {
            opened.push_back(at);
        } else if (token.code == '>') {
            opened.pop_back();
            if (opened.empty()) return at + 1;
        } else if (token.code == '(' || token.code == '[') {
            if (token.partner < 0) break;
            at = token.partner;
        } else if (token.code == AndAndMark) {
            if (!IsMark(at + 1, ',') && !IsMark(at + 1, '>') && !IsMark(at + 1, EllipsisMark)) break;
        } else if (token.code != ',' && token.code != '*' && token.code != '&' && token.code != ColonsMark &&
                   token.code != EllipsisMark && token.code != '=' && token.code != '-' &&
                   token.code != '+' && token.code != '!' && token.code != '/' && token.code != '%' &&
                   token.code != '~') {
            break;
        }
    }
    for (const int angle : opened) noAngles[static_cast<std::size_t>(angle)] = true;
    return -1;
}

int FactReader::PastAttributes(int from) const {
    int at = from;
    for (;;) {
        if (IsMark(at, '[') && IsMark(at + 1, '[') && T(at).partner > 0) {
            at = T(at).partner + 1;
        } else if ((IsKey(at, Kw___attribute__) || IsKey(at, Kw___declspec) || IsKey(at, Kw_alignas)) &&
                   IsMark(at + 1, '(') && T(at + 1).partner > 0) {
            at = T(at + 1).partner + 1;
        } else {
            return at;
        }
    }
}

// Behind the partner of a bracket; where it has none, behind itself.
int FactReader::PastBracket(int open) const {
    const int partner = T(open).partner;
    return partner > open ? partner + 1 : open + 1;
}

int FactReader::EndOfBody(int open) const {
    const int last = LastIn(contexts.back());
    return T(open).partner < 0 ? last : std::min(T(open).partner, last);
}

int FactReader::LastIn(const Context& around) const {
    return around.isBraced || &around == &contexts.front() ? around.past : around.past - 1;
}

bool FactReader::BeginsLine(int at) const {
    return at == 0 || facts.PlaceOf(OffsetAt(at)).line > facts.PlaceOf(OffsetAt(at - 1)).line;
}

// The blanks before the line that holds the token.
std::uint32_t FactReader::IndentAt(int at) const {
    const auto line = static_cast<std::size_t>(facts.PlaceOf(OffsetAt(at)).line);
    std::uint32_t blanks = facts.lines[line - 1];
    while (blanks < OffsetAt(at) && !TokenList::IsWordCharacter(tokens.Source()[blanks])) ++blanks;
    return blanks - facts.lines[line - 1];
}

// Behind `Ship::*` and its like: where a pointer to a member has its name.
int FactReader::PastMemberMarks(int from) const {
    Chain chain;
    if (!(IsName(from) || IsMark(from, ColonsMark)) || !ReadChain(from, chain)) return from;
    return IsMark(chain.past, ColonsMark) && IsMark(chain.past + 1, '*') ? chain.past + 2 : from;
}

// Whether a word before a head begins one in the next token.
bool FactReader::OpensHead(int at) const {
    if (!IsWord(at)) return false;
    switch (T(at).code) {
    case Kw_class:
    case Kw_struct:
    case Kw_union:
    case Kw_enum:
    case Kw_namespace:
    case Kw_typedef:
    case Kw_template: return true;
    default: return false;
    }
}

// Whether words before this one can't belong to a type, since it begins something else.
bool FactReader::EndsMacros(int at) const {
    if (OpensHead(at)) return true;
    return IsKey(at, Kw_using) ||
           ((IsKey(at, Kw_public) || IsKey(at, Kw_protected) || IsKey(at, Kw_private)) &&
            !IsMark(at - 1, ','));
}

// Capitals, digits and underscores alone.
bool FactReader::IsMacroLike(std::string_view word) {
    return word.size() > 1 && std::all_of(word.begin(), word.end(), [](char c) {
               return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
           });
}

// Behind `LIST(Ship)`, a macro's call that may stand for a type; -1 where it isn't such a one.
int FactReader::PastTypeMacro(int at) const {
    if (!IsName(at) || !IsMacroLike(TextAt(at)) || !IsMark(at + 1, '(')) return -1;
    const bool isPointer = IsMark(at + 2, '*') || IsMark(at + 2, '&') || IsMark(at + 2, ')');
    return isPointer || T(at + 1).partner < 0 ? -1 : T(at + 1).partner + 1;
}

// Behind the type that a macro stands for, where a name is declared with it: `LIST(Ship) all;`.
int FactReader::PastMacroAndName(int at) const {
    const int past = PastTypeMacro(at);
    if (past < 0) return -1;
    int name = past;
    while (IsMark(name, '*') || IsMark(name, '&') || IsKey(name, Kw_const)) ++name;
    if (!IsName(name) || BeginsLine(name)) return -1;
    const bool isFunction = IsMark(name + 1, '(') && (name > past || detail::IsTypedListWord(TextAt(at)));
    const bool ends = IsMark(name + 1, ';') || IsMark(name + 1, ',') || IsMark(name + 1, '=') ||
                      IsMark(name + 1, '[') || IsMark(name + 1, ColonsMark);
    return isFunction || ends ? past : -1;
}

// ---- What is kept

// The tokens as one text, with the blanks that a reader expects.
std::string_view FactReader::Join(int first, int past, bool dropsStorage) {
    std::string text;
    for (int at = PastAttributes(first); at < past; at = PastAttributes(at + 1)) {
        const Token& token = T(at);
        if (dropsStorage && token.kind == TokenKind::Word && IsStorageOrAlike(token.code)) continue;
        if (!text.empty()) {
            const char last = text.back();
            const bool isWord = token.kind != TokenKind::Mark;
            if (isWord && (TokenList::IsWordCharacter(last) || last == '*' || last == '&' || last == '>' ||
                           last == ','))
                text += ' ';
        }
        text += tokens.TextOf(token);
    }
    return facts.texts.Keep(text);
}

std::string_view FactReader::TypeText(const Head& head, int marksFirst, int marksPast, int arrays) {
    std::string text;
    const auto isConst = [this](int from, int past) {
        for (int at = from; at < past; ++at)
            if (IsKey(at, Kw_const)) return true;
        return false;
    };
    if (head.typeFirst >= 0) {
        const int typePast = head.marksFirst < 0 ? marksFirst : std::min(marksFirst, head.marksFirst);
        if (isConst(head.first, head.typeFirst) || isConst(head.typePast, typePast)) text = "const ";
        text += Join(head.typeFirst, head.typePast, true);
    } else if (head.typeOf >= 0) {
        text = At(head.typeOf).name;
    }
    for (int at = marksFirst; at < marksPast; ++at) {
        if (IsName(at) && !IsMark(at + 1, ColonsMark)) continue;
        if (IsWord(at)) text += ' ';
        text += TextAt(at);
    }
    for (int index = 0; index < arrays; ++index) text += "[]";
    return facts.texts.Keep(text);
}

std::string_view FactReader::KeepChainName(const Chain& chain) {
    const int past =
        IsMark(chain.qualifierPast - 1, ColonsMark) ? chain.qualifierPast - 1 : chain.qualifierPast;
    return Join(chain.first, std::max(past, chain.first));
}

int FactReader::Add(FactKind kind, std::string_view name, int nameToken, const Head& head) {
    Declared declared;
    declared.kind = kind;
    declared.access =
        kind == FactKind::Argument || kind == FactKind::TemplateParameter ? Access::None : AccessHere();
    declared.flags = head.flags;
    declared.scope = scope;
    declared.typeOf = head.typeOf;
    declared.at = OffsetAt(nameToken);
    declared.begin = OffsetAt(kind == FactKind::Argument || kind == FactKind::TemplateParameter ||
                                      kind == FactKind::Enumerator
                                  ? head.first
                                  : declarationFirst);
    declared.past = PastOf(nameToken);
    declared.name = facts.texts.Keep(name);
    facts.declared.push_back(declared);
    return static_cast<int>(facts.declared.size()) - 1;
}

int FactReader::OpenScope(ScopeKind kind, int beginToken, int pastToken, int declaration) {
    Scope opened;
    opened.kind = kind;
    opened.parent = scope;
    opened.declaration = declaration;
    opened.begin = OffsetAt(beginToken);
    opened.past = PastOf(std::max(beginToken, std::min(pastToken, LastIn(contexts.back()))));
    const Scope& around = facts.scopes[static_cast<std::size_t>(scope)];
    if (around.kind != ScopeKind::Template) // a head gets its end behind what it is the head of
        opened.past = std::max(std::min(opened.past, around.past), opened.begin);
    opened.firstDeclared = static_cast<std::int32_t>(facts.declared.size());
    facts.scopes.push_back(opened);
    const int index = static_cast<int>(facts.scopes.size()) - 1;
    if (declaration >= 0) At(declaration).body = index;
    return index;
}

std::string_view FactReader::ClassAround() const {
    int at = scope;
    while (at >= 0 && facts.scopes[static_cast<std::size_t>(at)].kind == ScopeKind::Template)
        at = facts.scopes[static_cast<std::size_t>(at)].parent;
    if (at < 0) return {};
    const int declaration = facts.scopes[static_cast<std::size_t>(at)].declaration;
    return declaration >= 0 ? facts.declared[static_cast<std::size_t>(declaration)].name : std::string_view();
}

} // namespace ostraka::answers
