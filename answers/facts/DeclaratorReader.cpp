// Declarators: what stands behind a type, its names one by one with what each adds to the type, and for
// functions what follows their arguments.

#include <answers/facts/FactReader.h>

namespace ostraka::answers {

namespace {

bool IsStorage(std::uint8_t keyword) {
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

// Words that may stand before a type, or behind its mark.
bool IsConstOrAlike(std::uint8_t keyword) {
    return keyword == Kw_const || keyword == Kw_volatile || keyword == Kw___restrict ||
           keyword == Kw_restrict;
}

} // namespace

bool FactReader::IsBuiltinType(int at) const {
    if (!IsWord(at)) return false;
    switch (T(at).code) {
    case Kw_auto:
    case Kw_bool:
    case Kw_char:
    case Kw_char8_t:
    case Kw_char16_t:
    case Kw_char32_t:
    case Kw_double:
    case Kw_float:
    case Kw_int:
    case Kw_long:
    case Kw_short:
    case Kw_signed:
    case Kw_unsigned:
    case Kw_void:
    case Kw_wchar_t: return true;
    default: return false;
    }
}

// From the first token of what may be a type.
bool FactReader::DeclarationFrom(Head head, int from, Mode mode) {
    int at = from;
    const int bound = contexts.back().past;
    while (at < bound) {
        at = PastAttributes(at);
        const Token& token = T(at);
        const bool isMacroAlone = head.words == 1 && IsMacroLike(TextAt(at - 1)) && IsMacroLike(TextAt(at)) &&
                                  IsMark(at + 1, '(') && BeginsLine(at);
        if (head.words > 0 && !head.builtin && !InBlock() && (EndsMacros(at) || isMacroAlone)) {
            // The words before are no type.
            i = at;
            statementBegins = true;
            return true;
        }
        if (token.kind == TokenKind::Word && IsStorage(token.code)) {
            if (token.code == Kw_static) head.flags |= IsStatic;
            if (token.code == Kw_extern) head.flags |= IsExtern;
            if (token.code == Kw_virtual) head.flags |= IsVirtual;
            if (token.code == Kw_friend) head.flags |= IsFriend;
            if (token.code == Kw_constexpr) head.flags |= IsConstExpr;
            if (token.code == Kw_typedef) head.isTypedef = true;
            ++at;
            continue;
        }
        if (token.kind == TokenKind::Word && IsConstOrAlike(token.code)) {
            ++at;
            continue;
        }
        if (token.kind == TokenKind::Word && (token.code == Kw_class || token.code == Kw_struct ||
                                              token.code == Kw_union || token.code == Kw_enum)) {
            ++at; // `const struct stat* status`
            continue;
        }
        if (IsBuiltinType(at)) {
            if (!head.builtin) head.typeFirst = at;
            head.builtin = true;
            head.typePast = at + 1;
            ++head.words;
            ++at;
            continue;
        }
        if (token.IsKeyword(Kw_decltype) && IsMark(at + 1, '(')) {
            head.typeFirst = at;
            head.typePast = at = PastBracket(at + 1);
            ++head.words;
            continue;
        }
        if (dialect == Dialect::Idl && token.Is('[')) {
            at = PastBracket(at);
            continue;
        }
        if (!token.IsName() && !token.Is(ColonsMark)) break;
        if (dialect == Dialect::Idl && head.words == 0 &&
            (TextAt(at) == "attribute" || TextAt(at) == "readonly" || TextAt(at) == "oneway")) {
            ++at;
            continue;
        }
        if (head.words > 0 && PastMemberMarks(at) > at) break;
        Chain chain;
        if (!ReadChain(at, chain)) return false;
        if (chain.isOperator || chain.isDestructor) break;
        const Token& behind = T(PastAttributes(chain.past));
        const bool anotherWord = behind.kind == TokenKind::Word || behind.Is(ColonsMark);
        if (head.words == 0 && behind.Is('(') && PastMacroAndName(at) > 0) {
            head.typeFirst = at;
            head.typePast = at = PastMacroAndName(at);
            ++head.words;
            break;
        }
        if (head.words == 0 && behind.Is('(')) {
            // `WORD(x) int f()`: a macro before the type. A name that is nothing but a word and arguments is
            // told by what follows them.
            const int past = PastBracket(chain.past);
            if (HoldsDeclarator(chain.past, head.isTypedef)) {
                head.typeFirst = at;
                head.typePast = chain.past;
                ++head.words;
                at = chain.past;
                break;
            }
            if (InBlock() || mode != Mode::Statement) return false;
            if (IsMark(past, ArrowMark)) { // `List(T*) -> List<T>;` guides deductions and declares nothing
                i = SemicolonFrom(past, bound) + 1;
                statementBegins = true;
                return true;
            }
            return MacroStatement(chain, chain.past) ||
                   FunctionDeclarator(head, chain, 0, chain.past, mode) ||
                   (i = past, statementBegins = true, true);
        }
        if (head.words > 0 && behind.Is('(') && mode == Mode::Statement && !InBlock()) {
            if (HoldsDeclarator(chain.past, head.isTypedef)) { // `typedef API Ship (CALL *Make)(int)`
                head.typeFirst = at;
                head.typePast = at = chain.past;
                break;
            }
            if (IsMacroLike(TextAt(chain.name)) &&
                PastMacroAndName(chain.name) > 0) { // `Ship ALIGNED(16) all[2]`
                at = PastBracket(chain.past);
                continue;
            }
        }
        if (head.words > 0 && !anotherWord && !behind.Is('*') && !behind.Is('&') && !behind.Is(AndAndMark))
            break;
        if (head.words > 0 && head.builtin && !anotherWord) break;
        if (head.words > 0 && (behind.Is('*') || behind.Is('&') || behind.Is(AndAndMark)) && InBlock() &&
            mode != Mode::ForInit && head.builtin)
            break;
        if (!head.builtin) {
            head.typeFirst = at;
            head.typePast = chain.past;
        }
        ++head.words;
        at = chain.past;
    }
    if (IsMark(at, '[') && head.words > 0) return StructuredBinding(head, at, mode);
    const bool isOperatorName =
        IsKey(at, Kw_operator) || IsMark(at, '~') || IsMark(at, ColonsMark) || IsName(at);
    if (head.words == 0 && head.typeOf < 0 && !(isOperatorName && !InBlock())) return false;
    if (IsMark(at, ':') && InClass() && head.words > 0) { // an unnamed bit field
        i = SemicolonFrom(at, bound) + 1;
        return true;
    }
    return Declarators(head, at, mode);
}

bool FactReader::StructuredBinding(const Head& head, int open, Mode mode) {
    if (!IsKey(head.typeFirst, Kw_auto) || T(open).partner < 0) return false;
    const int close = T(open).partner;
    if (!IsMark(close + 1, '=') && !IsMark(close + 1, ':') && !IsMark(close + 1, '{') &&
        !IsMark(close + 1, '('))
        return false;
    const bool isRange = mode == Mode::ForInit && IsMark(close + 1, ':');
    for (int at = open + 1; at < close; ++at) {
        if (!IsName(at)) continue;
        Head each = head;
        each.flags |= isRange ? IsBinding | IsRangeElement : IsBinding;
        const int declared = Add(FactKind::Variable, TextAt(at), at, each);
        At(declared).past = PastOf(close);
        At(declared).type = "auto";
        if (!WantsBodies()) continue;
        At(declared).initial = IsMark(close + 1, '{') || IsMark(close + 1, '(') ? close + 1 : close + 2;
        At(declared).initialPast =
            isRange ? contexts.back().header : PastInitial(close + 2, contexts.back().past);
    }
    i = close + 1;
    statementBegins = false;
    return true;
}

// Whether the parentheses hold a name that is declared, and arguments stand behind them: `(*call)(int)`,
// `(WINAPI *call)(int)`. A type's name may also stand behind a word that holds the mark: `(APIENTRYP
// Call)(int)`.
bool FactReader::HoldsDeclarator(int open, bool isTypedef) const {
    int at = open + 1;
    while (IsName(at) && (IsName(at + 1) || IsMark(at + 1, '*'))) ++at;
    const bool hasWord = at > open + 1;
    bool hasMark = false;
    for (; IsMark(at, '*') || IsKey(at, Kw_const); ++at) hasMark = true;
    return (hasMark || (hasWord && isTypedef)) && IsName(at) && IsMark(at + 1, ')') && IsMark(at + 2, '(');
}

// `at` stands at the marks before the first name.
bool FactReader::Declarators(Head& head, int from, Mode mode) {
    const int bound = contexts.back().past;
    head.marksFirst = from;
    bool first = true;
    for (int at = from;;) {
        const int marksFirst = at;
        bool referencesValue = false;
        for (; at < bound; ++at) {
            if (IsMark(at, '*') || IsMark(at, '&') || IsMark(at, EllipsisMark) || IsMark(at, '^')) continue;
            if (IsMark(at, AndAndMark)) {
                referencesValue = true;
                continue;
            }
            if (IsWord(at) && IsConstOrAlike(T(at).code)) continue;
            if (const int past = PastMemberMarks(at); past > at) {
                at = past - 1;
                continue;
            }
            if (at > marksFirst && IsName(at) && IsName(at + 1)) continue; // a macro behind the mark
            break;
        }
        const int marksPast = at;
        if (IsMark(at, '[') && first && at > marksFirst) return StructuredBinding(head, at, mode);
        int outerOpen = -1; // of `(*name)(int)`
        int innerMarks = 0;
        if (IsMark(at, '(')) {
            int inner = at + 1;
            while (IsName(inner) && !IsMark(inner + 1, ')') && !IsMark(inner + 1, '(')) {
                if (IsMark(inner + 1, ColonsMark)) ++inner;
                ++inner;
            }
            for (; IsMark(inner, '*') || IsMark(inner, '&') || IsMark(inner, AndAndMark) ||
                   IsMark(inner, '^') || (IsWord(inner) && IsConstOrAlike(T(inner).code));
                 ++inner)
                ++innerMarks;
            if (innerMarks == 0 && !(IsName(inner) && IsMark(inner + 1, ')') && !InBlock())) return !first;
            if (!IsName(inner)) return !first;
            outerOpen = at;
            at = inner;
        }
        Chain chain;
        if (!ReadChain(at, chain)) return !first;
        int behind = chain.past;
        if (outerOpen >= 0 && innerMarks > 0 && IsMark(behind, '(') && T(outerOpen).partner > behind)
            return FunctionInside(head, chain, outerOpen, mode) || !first;
        const int closing = outerOpen >= 0 ? PastBracket(outerOpen) : -1;
        if (outerOpen >= 0) {
            while (IsMark(behind, '[')) behind = PastBracket(behind);
            if (behind != closing - 1) return !first;
            behind = closing;
            if (IsMark(behind, '(')) {
                std::uint32_t flags = 0;
                std::pair<int, int> trailing(-1, -1);
                behind = FunctionTail(PastBracket(behind), flags, trailing);
            }
        } else if (IsMark(behind, '(')) {
            const bool isVariable =
                mode != Mode::Statement || (InBlock() && (head.typeOf >= 0 || !head.isTypedef)) ||
                (!InClass() && LooksLikeValues(behind) && !chain.isOperator && !head.isTypedef);
            const bool declaresLocally =
                InBlock() && mode == Mode::Statement && IsParameterList(behind, true);
            if (!isVariable || declaresLocally) {
                if (FunctionDeclarator(head, chain, marksPast - marksFirst, behind, mode)) {
                    return true;
                }
                return !first;
            }
            if (chain.isOperator) return false;
            behind = PastBracket(behind);
        }
        if (chain.isOperator || chain.isDestructor) return !first;
        int arrays = 0;
        while (IsMark(behind, '[')) {
            behind = PastBracket(behind);
            ++arrays;
        }
        behind = PastAttributes(behind);
        const bool isBitField = IsMark(behind, ':') && mode == Mode::Statement && !InBlock();
        const bool isRange = IsMark(behind, ':') && mode == Mode::ForInit;
        const bool ends = IsMark(behind, ';') || IsMark(behind, ',') || IsMark(behind, '=') ||
                          IsMark(behind, '{') || (IsMark(behind, ')') && mode != Mode::Statement) ||
                          isBitField || isRange;
        if (!ends && behind < bound) return !first;
        if (first && mode == Mode::Condition &&
            !(IsMark(behind, '=') || IsMark(behind, '{') || IsMark(behind - 1, ')')))
            return false;
        if (first && referencesValue && InBlock() && !IsMark(behind, '=') && !isRange && !IsMark(behind, '('))
            return false;
        const bool isValueChain = chain.qualifierPast > chain.first;
        if (isValueChain && InBlock()) return !first;
        if (first && IsMark(behind, '{') && mode == Mode::Statement && !InBlock()) {
            const int past = PastBracket(behind);
            if (!IsMark(past, ';') && !IsMark(past, ',')) return false;
        }
        Head named = head;
        if (isRange) named.flags |= IsRangeElement;
        const int declared = Add(head.isTypedef ? FactKind::Typedef : FactKind::Variable, TextAt(chain.name),
                                 chain.name, named);
        if (isValueChain) At(declared).qualifier = KeepChainName(chain);
        At(declared).access = AccessHere();
        if (outerOpen >= 0) {
            joined.assign(TypeText(head, marksFirst, marksPast, 0));
            joined += "(*)";
            joined += std::string(Join(closing, behind));
            At(declared).type = facts.texts.Keep(joined);
        } else {
            At(declared).type = TypeText(head, marksFirst, marksPast, arrays);
        }
        int past = behind;
        if (isBitField) past = PastInitial(behind + 1, bound);
        if (isBitField && IsMark(past, '=')) behind = past;
        if (IsMark(behind, '=') || (IsMark(behind, '{') && !isRange) || isRange) {
            const bool isBrace = IsMark(behind, '{');
            const int begin = isBrace ? behind : behind + 1;
            const int header = contexts.back().header;
            past = isRange && header > begin ? header : PastInitial(begin, bound);
            if (WantsBodies()) {
                At(declared).initial = begin;
                At(declared).initialPast = past;
            }
        } else if (IsMark(behind - 1, ')') && outerOpen < 0 && WantsBodies()) {
            At(declared).initial = T(behind - 1).partner;
            At(declared).initialPast = behind;
        }
        if (isRange || (InBlock() && WantsBodies() && (past > behind || IsMark(behind - 1, ')')))) {
            // What it is initialised with may hold lambdas: the walk goes on there.
            At(declared).past = PastOf(isRange ? behind : std::max(past, behind) - 1);
            if (isRange || !IsMark(past, ',') || mode == Mode::Condition || mode == Mode::MacroLoop) {
                i = IsMark(behind - 1, ')') && outerOpen < 0 && !isRange ? T(behind - 1).partner + 1 : behind;
                if (IsMark(i, '=')) ++i;
                statementBegins = false;
                return true;
            }
        }
        At(declared).past = PastOf(std::max(past, behind));
        at = std::max(past, behind);
        first = false;
        if (mode == Mode::Condition || mode == Mode::MacroLoop)
            break; // `EACH(Ship* ship, ships)` declares one
        if (!IsMark(at, ',')) {
            i = at;
            break;
        }
        i = ++at;
        (void)innerMarks;
    }
    if (IsMark(i, ';') && mode == Mode::Statement) {
        ++i;
        statementBegins = true;
    } else {
        statementBegins = false;
    }
    return true;
}

// Behind an initialiser that begins here: at the comma or the semicolon.
int FactReader::PastInitial(int from, int bound) const {
    int at = from;
    while (at < bound) {
        const Token& token = T(at);
        if (token.Is(';') || token.Is(',') || token.Is('}') || token.Is(')')) break;
        if (token.Is('{') && token.partner < 0) return bound;
        if (token.Is('(') || token.Is('[') || token.Is('{')) {
            at = PastBracket(at);
            continue;
        }
        if (token.Is('<')) {
            const int past = PastAngles(at);
            if (past > 0 && (IsMark(past, '(') || IsMark(past, ColonsMark) || IsMark(past, '{'))) {
                at = past;
                continue;
            }
        }
        ++at;
    }
    return at;
}

// ---- Functions

// Whether a name with parentheses at the begin of a statement is a macro's call, which is then stepped over.
bool FactReader::MacroStatement(const Chain& chain, int open) {
    if (chain.isOperator || chain.isDestructor || chain.qualifierPast > chain.first) return false;
    if (T(open).partner < 0) return false;
    const std::string_view name = TextAt(chain.name);
    const int past = PastBracket(open);
    if (InClass() && name == ClassAround()) return false;
    const bool isBody = IsMark(past, '{');
    if (OpensHead(open + 1) && !IsKey(open + 1, Kw_template)) { // `PACK(struct Ship { int length; });`
        i = open + 1;
        statementBegins = true;
        return true;
    }
    const bool isConversionMacro = IsMark(past, '(') && IsName(open + 1) && IsMark(open + 2, ')');
    if (isConversionMacro) { // `METHOD(Name)(int x)`
        Chain inner;
        inner.first = inner.qualifierPast = inner.name = open + 1;
        inner.past = open + 2;
        Head head;
        head.first = declarationFirst;
        if (FunctionDeclarator(head, inner, 0, past, Mode::Statement)) return true;
    }
    if (TypedByMacro(open, Mode::Statement)) return true;
    const bool hasParameters = T(open).partner == open + 1 || IsParameterList(open, true);
    if (!InClass() && isBody && hasParameters) return false; // `main() {`
    facts.calls.push_back({facts.texts.Keep(name), Join(open + 1, past - 1), OffsetAt(chain.name), scope});
    if (isBody && WantsBodies()) {
        const int function = OpenScope(ScopeKind::Function, open, EndOfBody(past), -1);
        EnterBody(Place::Block, past, function);
        return true;
    }
    i = isBody ? EndOfBody(past) + 1 : past;
    if (IsMark(i, ';')) ++i;
    statementBegins = true;
    return true;
}

// `API(int) Moor(Ship* ship);`: what is in the first parentheses is the type.
bool FactReader::TypedByMacro(int open, Mode mode) {
    const int name = PastBracket(open);
    if (!IsName(name) || !IsMark(name + 1, '(') || BeginsLine(name) || T(open).partner == open + 1)
        return false;
    const int past = PastBracket(name + 1);
    if (!IsMark(past, ';') && !IsMark(past, '{')) return false;
    Head head;
    head.first = declarationFirst;
    head.typeFirst = open + 1;
    head.typePast = name - 1;
    head.words = 1;
    Chain chain;
    return ReadChain(name, chain) && FunctionDeclarator(head, chain, 0, chain.past, mode);
}

// Whether the arguments are values, as of a variable's constructor.
bool FactReader::LooksLikeValues(int open) const {
    const int close = T(open).partner;
    if (close < 0 || close == open + 1) return false;
    if (IsParameterList(open)) return false;
    return true;
}

// Whether what stands in the parentheses can be the parameters of a function: each a type, with a name or
// none. A strict look wants to see that one is.
bool FactReader::IsParameterList(int open, bool strict) const {
    const int close = T(open).partner;
    if (close < 0) return false;
    int words = 0;
    for (int at = open + 1; at < close; ++at) {
        const Token& token = T(at);
        if (token.kind == TokenKind::Number || token.kind == TokenKind::Text) return false;
        if (token.kind == TokenKind::Word) {
            if (IsBuiltinType(at) || IsConstOrAlike(token.code) || token.code == Kw_struct ||
                token.code == Kw_class || token.code == Kw_enum || token.code == Kw_typename)
                return true;
            if (token.code == Kw_this || token.code == Kw_new || token.code == Kw_true ||
                token.code == Kw_false || token.code == Kw_nullptr || token.code == Kw_sizeof ||
                token.code == Kw_static_cast)
                return false;
            if (++words >= 2 && T(at - 1).kind == TokenKind::Word) return true;
            if (const int past = PastTypeMacro(at); past > 0 && past < close && !IsMark(past, ','))
                at = past - 1;
            continue;
        }
        switch (token.code) {
        case ColonsMark: break;
        case '<': {
            const int past = PastAngles(at);
            if (past < 0) return false;
            at = past - 1;
            break;
        }
        case '*':
        case '&':
        case AndAndMark:
            if (words == 0) return false;
            if (IsMark(at + 1, ',') || at + 1 == close || IsMark(at + 1, '*') || IsMark(at + 1, '&'))
                return true;
            break;
        case '=': return words >= 2;
        case ',': words = 0; break;
        case EllipsisMark: return true;
        case '[': at = PastBracket(at) - 1; break;
        case '(': return words > 0 && (IsMark(at + 1, '*') || IsMark(at + 1, '&'));
        default: return false;
        }
    }
    return !strict; // `f()`, `f(Ship)`: the language takes these for types where it can
}

// `void (*Find(int depth))(char)`, which returns a pointer to a function.
bool FactReader::FunctionInside(Head& head, const Chain& chain, int outerOpen, Mode mode) {
    const int returned = PastBracket(outerOpen);
    if (!IsMark(returned, '(') || PastBracket(chain.past) != returned - 1) return false;
    const std::size_t declared = facts.declared.size();
    const int tail = PastBracket(returned);
    if (!FunctionDeclarator(head, chain, 0, chain.past, mode, tail)) return false;
    joined.assign(TypeText(head, outerOpen, outerOpen, 0)).append("(*)").append(Join(returned, tail));
    if (declared < facts.declared.size()) facts.declared[declared].type = facts.texts.Keep(joined);
    return true;
}

// What follows the arguments begins behind them, or at `tail`.
bool FactReader::FunctionDeclarator(Head& head, const Chain& chain, int pointers, int open, Mode mode,
                                    int tail) {
    if (T(open).partner < 0 || mode != Mode::Statement) return false;
    std::pair<int, int> trailing(-1, -1);
    std::uint32_t flags = head.flags;
    const int close = tail < 0 ? PastBracket(open) : tail;
    int at = FunctionTail(close, flags, trailing);
    int kAndR = -1;
    if (!IsMark(at, ';') && !IsMark(at, '{') && !IsMark(at, ':') && !IsMark(at, ',') && !IsMark(at, '=')) {
        kAndR = InClass() || InBlock() ? -1 : FindKAndRBody(close);
        if (kAndR < 0 && !InBlock() && IsWord(at) && BeginsLine(at)) { // macros, and then something else
            i = at;
            statementBegins = true;
            return true;
        }
        if (kAndR < 0) return false;
        at = kAndR;
    }
    if (InBlock() && !IsMark(at, ';') && !IsMark(at, ',')) return false;
    if (IsMark(at, '=') && !IsKey(at + 1, Kw_default) && !IsKey(at + 1, Kw_delete) &&
        T(at + 1).kind != TokenKind::Number)
        return false;
    const bool isQualified = chain.qualifierPast > chain.first;
    const std::string_view name = TextAt(chain.name);
    const bool isConstructor = // with a macro before it, or none
        InClass() && !isQualified && !chain.isOperator && !chain.isDestructor && name == ClassAround();
    const bool hasType = (head.words > 0 || head.typeOf >= 0) && !isConstructor;
    if (chain.isDestructor) flags |= IsDestructor;
    if (chain.isOperator) flags |= IsOperator;
    if (chain.isConversion) flags |= IsConversion;
    if (isConstructor || (!hasType && !chain.isOperator && !chain.isDestructor && !InClass() && isQualified))
        flags |= IsConstructor;
    Head function = head;
    function.flags = flags;
    const int declared =
        Add(head.isTypedef ? FactKind::Typedef : FactKind::Function, {}, chain.name, function);
    if (chain.isOperator || chain.isDestructor) {
        joined.clear();
        joined += chain.isDestructor ? "~" : "operator ";
        joined += chain.isDestructor ? std::string(TextAt(chain.name))
                                     : std::string(Join(chain.name + 1, chain.past));
        At(declared).name = facts.texts.Keep(joined);
    } else {
        At(declared).name = facts.texts.Keep(name);
    }
    if (isQualified) At(declared).qualifier = KeepChainName(chain);
    At(declared).access = AccessHere();
    if (hasType) At(declared).type = TypeText(head, chain.first - pointers, chain.first, 0);
    if (chain.isConversion) At(declared).type = Join(chain.name + 1, chain.past);
    if (trailing.first >= 0) At(declared).type = Join(trailing.first, trailing.second);
    int bodyOpen = -1;
    int past = at;
    if (IsMark(at, '{')) {
        bodyOpen = at;
    } else if (IsMark(at, ':')) {
        bodyOpen = PastInitialisers(at);
        if (!IsMark(bodyOpen, '{')) bodyOpen = -1;
        past = bodyOpen < 0 ? SemicolonFrom(at, contexts.back().past) : bodyOpen;
    } else if (IsMark(at, '=')) {
        past = SemicolonFrom(at, contexts.back().past);
        if (IsKey(at + 1, Kw_default)) At(declared).flags |= IsDefaulted;
        if (IsKey(at + 1, Kw_delete)) At(declared).flags |= IsDeleted;
        if (T(at + 1).kind == TokenKind::Number) At(declared).flags |= IsPure;
    }
    int bodyPast = past;
    if (bodyOpen >= 0) {
        bodyPast = EndOfBody(bodyOpen);
        At(declared).flags |= HasBody;
    }
    const int functionScope =
        OpenScope(ScopeKind::Function, open, bodyOpen >= 0 ? bodyPast : std::max(close - 1, past), declared);
    At(declared).body = functionScope;
    At(declared).past = PastOf(bodyPast);
    const int outer = scope;
    Parameters(open, functionScope);
    if (kAndR >= 0) KAndRBody(close, kAndR);
    scope = outer;
    if (bodyOpen >= 0) {
        if (WantsBodies()) {
            EnterBody(Place::Block, bodyOpen, functionScope);
        } else {
            i = bodyPast + 1;
            statementBegins = true;
        }
        return true;
    }
    i = past;
    if (IsMark(i, ',')) { // `int f(), g;`
        Head next = head;
        const int before = ++i;
        if (!Declarators(next, before, mode)) i = SemicolonFrom(before, contexts.back().past) + 1;
        return true;
    }
    ++i;
    statementBegins = true;
    return true;
}

// Behind what may follow a function's arguments.
int FactReader::FunctionTail(int from, std::uint32_t& flags, std::pair<int, int>& trailing) {
    const int bound = contexts.back().past;
    int at = from;
    while (at < bound) {
        at = PastAttributes(at);
        const Token& token = T(at);
        if (token.Is('&') || token.Is(AndAndMark)) {
            ++at;
        } else if (token.Is(ArrowMark)) {
            trailing.first = ++at;
            while (at < bound && !IsMark(at, '{') && !IsMark(at, ';') && !IsMark(at, '=') &&
                   !IsMark(at, ',')) {
                const int angles = IsMark(at, '<') ? PastAngles(at) : -1;
                at = angles > 0 ? angles : IsMark(at, '(') || IsMark(at, '[') ? PastBracket(at) : at + 1;
            }
            trailing.second = at;
        } else if (token.kind == TokenKind::Word) {
            if (token.code == Kw_const) flags |= IsConstMethod;
            if (token.code == Kw_override) flags |= IsOverride;
            const bool known = token.code == Kw_const || token.code == Kw_volatile ||
                               token.code == Kw_override || token.code == Kw_final ||
                               token.code == Kw_noexcept || token.code == Kw_throw || token.code == Kw_try ||
                               token.code == Kw_requires || token.IsName();
            if (!known || (token.IsName() && BelongsToNext(at))) break;
            ++at;
            if (token.code == Kw_requires) {
                while (at < bound && !IsMark(at, '{') && !IsMark(at, ';'))
                    at = IsMark(at, '(') ? PastBracket(at) : at + 1;
            }
            if (IsMark(at, '(')) at = PastBracket(at);
        } else {
            break;
        }
    }
    return at;
}

// Whether a word behind arguments begins the next declaration, since those were a macro's: its line begins
// where the statement's did, and it is a type.
bool FactReader::BelongsToNext(int at) const {
    if (InBlock() || !BeginsLine(at)) return false;
    if (IndentAt(at) > IndentAt(declarationFirst)) return false;
    return IsWord(at + 1) || IsMark(at + 1, '*') || IsMark(at + 1, '&') || IsMark(at + 1, ColonsMark);
}

// From the colon before a constructor's initialisers to its body.
int FactReader::PastInitialisers(int colon) const {
    const int bound = contexts.back().past;
    int at = colon + 1;
    while (at < bound) {
        Chain chain;
        if (!(IsName(at) || IsMark(at, ColonsMark)) || !ReadChain(at, chain)) break;
        at = chain.past;
        if (!IsMark(at, '(') && !IsMark(at, '{')) break;
        at = PastBracket(at);
        if (IsMark(at, EllipsisMark)) ++at;
        if (!IsMark(at, ',')) break;
        ++at;
    }
    while (at < bound && !IsMark(at, '{') && !IsMark(at, ';'))
        at = IsMark(at, '(') ? PastBracket(at) : at + 1;
    return at;
}

// `int f(a, b) int a; char* b; {`: where the brace stands; -1 where it isn't so.
int FactReader::FindKAndRBody(int from) const {
    if (!IsWord(from)) return -1;
    constexpr int longest = 400;
    for (int at = from; at < from + longest; ++at) {
        const Token& token = T(at);
        if (token.Is('{')) return IsMark(at - 1, ';') ? at : -1;
        const bool fits = token.kind == TokenKind::Word || token.Is('*') || token.Is(',') || token.Is(';') ||
                          token.Is('[') || token.Is(']') || token.Is('(') || token.Is(')') ||
                          token.kind == TokenKind::Number;
        if (!fits || token.code == Kw_class || token.code == Kw_namespace || token.code == Kw_template)
            return -1;
        if (token.Is(';') && IsMark(at + 1, '}')) return -1;
    }
    return -1;
}

// Gives the arguments the types that stand before the body.
void FactReader::KAndRBody(int from, int body) {
    int typeFirst = from;
    for (int at = from; at < body; ++at) {
        if (IsMark(at, ';')) {
            typeFirst = at + 1;
            continue;
        }
        if (!IsName(at) || at == typeFirst) continue;
        if (!IsMark(at + 1, ';') && !IsMark(at + 1, ',') && !IsMark(at + 1, '[')) continue;
        int typePast = typeFirst; // where the first name of the list stands, and its marks
        while (typePast < at && !IsMark(typePast + 1, ',') && !IsMark(typePast + 1, '[')) ++typePast;
        while (typePast > typeFirst && IsMark(typePast - 1, '*')) --typePast;
        int marks = at;
        while (marks > typePast && IsMark(marks - 1, '*')) --marks;
        const std::string_view name = TextAt(at);
        for (auto each = facts.declared.rbegin(); each != facts.declared.rend(); ++each) {
            if (each->kind != FactKind::Argument) break;
            const std::string_view shown = each->name.empty() ? each->type : each->name;
            if (shown != name) continue;
            each->name = shown;
            joined.assign(Join(typeFirst, typePast)).append(static_cast<std::size_t>(at - marks), '*');
            each->type = facts.texts.Keep(joined);
            break;
        }
    }
}

void FactReader::Parameters(int open, int functionScope) {
    const int close = T(open).partner;
    const int outer = scope;
    scope = functionScope;
    int begin = open + 1;
    for (int at = open + 1; at <= close; ++at) {
        if (at < close) {
            if (IsMark(at, '(') || IsMark(at, '[') || IsMark(at, '{')) {
                at = PastBracket(at) - 1;
                continue;
            }
            if (IsMark(at, '<')) {
                const int past = PastAngles(at);
                if (past > 0 && past <= close) at = past - 1;
                continue;
            }
            if (!IsMark(at, ',')) continue;
        }
        if (at > begin) Parameter(begin, at, functionScope);
        begin = at + 1;
    }
    scope = outer;
}

void FactReader::Parameter(int first, int past, int functionScope) {
    Head head;
    head.first = first;
    if (IsMark(first, EllipsisMark)) {
        if (const int owner = facts.scopes[static_cast<std::size_t>(functionScope)].declaration; owner >= 0)
            At(owner).flags |= IsVariadic;
        return;
    }
    int at = PastAttributes(first);
    if (dialect == Dialect::Idl) {
        if (IsMark(at, '[')) at = PastBracket(at);
        if (TextAt(at) == "in" || TextAt(at) == "out" || TextAt(at) == "inout") ++at;
    }
    int words = 0;
    int name = -1;
    bool isPack = false;
    const int typeFirst = at;
    int typePast = past;
    int end = past; // before a default
    int inner = -1; // of `(*name)(int)`
    for (; at < past; ++at) {
        at = PastAttributes(at);
        if (at >= past) break;
        if (IsMark(at, '=')) {
            end = at;
            break;
        }
        if (IsMark(at, EllipsisMark)) isPack = true;
        if (const int macro = words == 0 ? PastTypeMacro(at) : -1; macro > 0 && macro <= past) {
            ++words;
            at = macro - 1;
            continue;
        }
        if (IsMark(at, '(') && words > 0 && inner < 0) {
            int in = at + 1;
            while (in < past && (IsName(in) || IsMark(in, ColonsMark)) && !IsMark(in + 1, ')')) ++in;
            while (IsMark(in, '*') || IsMark(in, '&') || IsMark(in, AndAndMark) || IsKey(in, Kw_const)) ++in;
            if (IsName(in) && in > at + 1) name = in;
            inner = at;
            at = PastBracket(at) - 1;
            continue;
        }
        if (IsMark(at, '[')) {
            at = PastBracket(at) - 1;
            continue;
        }
        if (IsBuiltinType(at)) {
            ++words;
            continue;
        }
        if (IsKey(at, Kw_decltype) && IsMark(at + 1, '(')) {
            ++words;
            at = PastBracket(at + 1) - 1;
            continue;
        }
        Chain chain;
        if ((IsName(at) || IsMark(at, ColonsMark)) && ReadChain(at, chain)) {
            if (words > 0 && chain.qualifierPast == chain.first && inner < 0) name = chain.name;
            ++words;
            at = std::min(chain.past, past) - 1;
        }
    }
    if (name >= 0 && inner < 0) {
        typePast = name;
    } else {
        typePast = end;
    }
    const int declared = Add(FactKind::Argument, name >= 0 ? TextAt(name) : std::string_view(),
                             name >= 0 ? name : first, head);
    Declared& argument = At(declared);
    argument.past = PastOf(past - 1);
    if (end < past) {
        argument.flags |= HasDefault;
        argument.initial = WantsBodies() ? end + 1 : -1;
        argument.initialPast = past;
    }
    if (isPack) argument.flags |= IsPack;
    if (inner >= 0 && name >= 0) {
        joined.assign(Join(typeFirst, inner, true));
        joined += "(*)";
        joined += std::string(Join(PastBracket(inner), end));
        argument.type = facts.texts.Keep(joined);
    } else {
        argument.type = Join(typeFirst, typePast, true);
        if (name >= 0 && IsMark(name + 1, '[')) {
            joined.assign(argument.type);
            joined += "*";
            argument.type = facts.texts.Keep(joined);
        }
    }
    if (past - typeFirst == 1 && IsKey(typeFirst, Kw_void)) facts.declared.pop_back();
}

} // namespace ostraka::answers
