// A walk over the tokens with a stack of what is open. At the begin of a statement the reader looks whether
// it declares something; what it doesn't take for a declaration it steps through token by token, so that
// lambdas and blocks in it are met, and nothing in it costs more than a look.
//
// A name is told by what stands around it, since nobody knows here which words are types: `a b` declares b,
// of several words in a row the last is the name and the one before it the type; `a * b;` declares too, since
// nothing else would be worth a statement.

#include <answers/facts/FactReader.h>

namespace ostraka::answers {

namespace {

bool EndsWithoutCase(std::string_view path, std::string_view ending) {
    if (path.size() < ending.size()) return false;
    path.remove_prefix(path.size() - ending.size());
    return std::equal(path.begin(), path.end(), ending.begin(),
                      [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

// Storage and the like, which belong to no type.
bool IsSpecifier(std::uint8_t keyword) {
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

std::uint32_t FlagOf(std::uint8_t keyword) {
    switch (keyword) {
    case Kw_static: return IsStatic;
    case Kw_extern: return IsExtern;
    case Kw_virtual: return IsVirtual;
    case Kw_friend: return IsFriend;
    case Kw_constexpr: return IsConstExpr;
    default: return 0;
    }
}

bool IsQualifier(std::uint8_t keyword) {
    return keyword == Kw_const || keyword == Kw_volatile || keyword == Kw___restrict ||
           keyword == Kw_restrict;
}

} // namespace

Dialect DialectOf(std::string_view path) {
    return EndsWithoutCase(path, ".idl") || EndsWithoutCase(path, ".odl") ? Dialect::Idl : Dialect::Cpp;
}

FileFacts ReadFacts(const TokenList& tokens, Depth depth, Dialect dialect) {
    return FactReader(tokens, depth, dialect).Run();
}

FactReader::FactReader(const TokenList& theTokens, Depth howDeep, Dialect theDialect)
    : tokens(theTokens), depth(howDeep), dialect(theDialect) {}

FileFacts FactReader::Run() {
    const std::string_view source = tokens.Source();
    facts.lines.push_back(0);
    for (std::size_t at = source.find('\n'); at != source.npos; at = source.find('\n', at + 1))
        facts.lines.push_back(static_cast<std::uint32_t>(at + 1));
    facts.scopes.push_back({ScopeKind::File, -1, -1, 0, static_cast<std::uint32_t>(source.size()) + 1});
    contexts.push_back({Place::Namespace, tokens.Count(), 0});
    for (const IncludeFact& include : tokens.Includes())
        facts.includes.push_back({facts.texts.Keep(include.name), include.at, include.delimiter});
    constexpr std::size_t longestValue = 400;
    for (const MacroFact& macro : tokens.Macros())
        facts.macros.push_back({facts.texts.Keep(macro.name), facts.texts.Keep(macro.arguments),
                                facts.texts.Keep(macro.value.substr(0, longestValue)), macro.at, macro.past});
    facts.faults = tokens.Faults();
    WalkToEnd();
    return std::move(facts);
}

void FactReader::WalkToEnd() {
    while (i < tokens.Count()) {
        CloseContexts();
        if (i >= tokens.Count()) break;
        if (!statementBegins) {
            WithinStatement();
            continue;
        }
        const int before = i;
        const std::size_t depthBefore = contexts.size();
        AtStatement();
        // Whatever couldn't be read, the walk goes on.
        if (i <= before && statementBegins && contexts.size() <= depthBefore) {
            i = before;
            statementBegins = false;
        }
    }
    i = tokens.Count();
    CloseContexts();
}

void FactReader::CloseContexts() {
    while (contexts.size() > 1 && i >= contexts.back().past) {
        const Context closed = contexts.back();
        contexts.pop_back();
        scope = closed.scope;
        if (closed.isBraced) i = closed.past + 1;
        statementBegins = !closed.isWithin;
        if (closed.declaratorsFollow) AfterBody(closed);
    }
}

// Without a partner of its own a body goes as far as what it stands in.
void FactReader::EnterBody(Place place, int open, int bodyScope, int declaration) {
    Context context{place, T(open).partner, scope};
    context.isBraced = context.past >= 0 && context.past == EndOfBody(open);
    if (!context.isBraced) context.past = contexts.back().past;
    context.declaration = declaration;
    contexts.push_back(context);
    scope = bodyScope;
    i = open + 1;
    statementBegins = true;
}

void FactReader::AtStatement() {
    const Token& token = T(i);
    declarationFirst = i;
    templateScope = -1;
    if (token.Is(';') || token.Is('}') || token.Is(')') || token.Is(']')) {
        ++i;
        return;
    }
    if (InBlock()) return AtBlockStatement();
    if (token.Is('{')) return PassBlock();
    if (token.Is('[') && !IsMark(i + 1, '[')) { // attributes of IDL
        i = PastBracket(i);
        return;
    }
    if (dialect == Dialect::Idl && InClass() && IdlStatement()) return;
    if (InClass() && (token.code == Kw_public || token.code == Kw_protected || token.code == Kw_private) &&
        token.kind == TokenKind::Word) {
        contexts.back().access = token.code == Kw_public      ? Access::Public
                                 : token.code == Kw_protected ? Access::Protected
                                                              : Access::Private;
        while (!IsMark(i, ':') && !IsMark(i, ';') && !IsMark(i, '}') && i < contexts.back().past) ++i;
        ++i;
        return;
    }
    if (InClass() && token.IsName() && IsMark(i + 1, ':')) { // `signals:`
        contexts.back().access = Access::Public;
        i += 2;
        return;
    }
    if (token.IsName() && (IsMark(i + 1, ';') || i + 1 >= contexts.back().past)) { // `DECLARE_CLASS;`
        facts.calls.push_back({facts.texts.Keep(TextAt(i)), {}, OffsetAt(i), scope});
        i = std::min(i + 2, contexts.back().past);
        return;
    }
    if (dialect == Dialect::Idl && TextAt(i) == "import" && T(i + 1).kind == TokenKind::Text) {
        Import();
        return;
    }
    if (Declaration(Mode::Statement)) return;
    statementBegins = false;
    if (!IsKey(i, Kw_static_assert) && !IsKey(i, Kw_asm) && !token.Is('#') && TextAt(i) != "catch")
        facts.faults.push_back({LexicalFault::Head, token.begin});
}

// `import "IShip.idl";` is an include.
void FactReader::Import() {
    std::string_view name = TextAt(i + 1);
    if (name.starts_with('"')) name.remove_prefix(1);
    if (name.ends_with('"')) name.remove_suffix(1);
    if (!name.empty()) facts.includes.push_back({facts.texts.Keep(name), OffsetAt(i + 1) + 1, '"'});
    i += 2;
    if (IsMark(i, ';')) ++i;
}

// What stands before the members of a union, and of a value one by one: `case 1:`, `private long depth;`.
bool FactReader::IdlStatement() {
    const bool isCase = IsKey(i, Kw_case);
    if (isCase || (IsKey(i, Kw_default) && IsMark(i + 1, ':'))) {
        while (!IsMark(i, ':') && !IsMark(i, ';') && !IsMark(i, '}') && i < contexts.back().past) ++i;
        ++i;
        return true;
    }
    if ((!IsKey(i, Kw_public) && !IsKey(i, Kw_private)) || IsMark(i + 1, ':')) return false;
    const std::size_t context = contexts.size() - 1;
    const Access usual = contexts[context].access;
    contexts[context].access = IsKey(i, Kw_public) ? Access::Public : Access::Private;
    ++i;
    if (!Declaration(Mode::Statement)) statementBegins = false;
    contexts[context].access = usual;
    return true;
}

bool FactReader::Declaration(Mode mode) {
    const int before = i;
    Head head;
    head.first = i;
    int at = PastAttributes(i);
    for (; IsWord(at); at = PastAttributes(at + 1)) {
        if (IsName(at) && OpensHead(at + 1)) continue; // a macro before it
        if (IsName(at) && IsMark(at + 1, '(') && OpensHead(at + 2) &&
            IsMark(at + 3, ')')) { // `ALIGNED(class) Ship {`
            at += 2;
            break;
        }
        if (!IsSpecifier(T(at).code) && !(IsQualifier(T(at).code) && OpensHead(at + 1))) break;
        if (T(at).code == Kw_extern && T(at + 1).kind == TokenKind::Text) {
            i = at;
            LinkageOrExtern();
            return true;
        }
        head.flags |= FlagOf(T(at).code);
        if (T(at).code == Kw_typedef) head.isTypedef = true;
    }
    i = at;
    const Token& token = T(at);
    if (token.kind == TokenKind::Word) {
        switch (token.code) {
        case Kw_namespace: NamespaceDeclaration(); return true;
        case Kw_using: UsingDeclaration(); return true;
        case Kw_template:
            if (templateScope >= 0) return false;
            TemplateDeclaration();
            return true;
        case Kw_enum: EnumDeclaration(head); return true;
        case Kw_class:
        case Kw_struct:
        case Kw_union:
            if (ClassDeclaration(head)) return true;
            i = before;
            return false;
        case Kw_static_assert:
        case Kw_asm:
        case Kw_concept:
            if (token.code == Kw_concept && IsName(at + 1))
                Add(FactKind::Concept, TextAt(at + 1), at + 1, head);
            return false;
        default: break;
        }
    }
    if (dialect == Dialect::Idl && token.kind == TokenKind::Word && !InBlock()) {
        const std::string_view word = TextAt(at);
        if (word == "module" || word == "library") {
            NamespaceDeclaration();
            return true;
        }
        if (word == "interface" || word == "dispinterface" || word == "valuetype" || word == "exception" ||
            word == "coclass" || word == "abstract" || word == "local" || word == "custom") {
            while (TextAt(i) == "abstract" || TextAt(i) == "local" || TextAt(i) == "custom") ++i;
            if (ClassDeclaration(head)) return true;
            i = before;
            return false;
        }
    } else if (token.IsName() && !InBlock() && IsName(at + 1) && TextAt(at) == "interface" &&
               (IsMark(at + 2, '{') || IsMark(at + 2, ':') || IsMark(at + 2, ';')) &&
               ClassDeclaration(head)) {
        return true;
    }
    if (DeclarationFrom(head, at, mode)) return true;
    i = before;
    return false;
}

// ---- Scopes with names

void FactReader::NamespaceDeclaration() {
    const int keyword = i++;
    Head head;
    head.first = declarationFirst;
    if (keyword > 0 && IsKey(keyword - 1, Kw_inline)) head.flags |= IsInline;
    i = PastAttributes(i);
    // `namespace A::B {`; a macro may stand before the brace.
    struct Part {
        int token;
        bool isInline;
    };
    std::vector<Part> names;
    while (i < contexts.back().past && !IsMark(i, '{') && !IsMark(i, ';') && !IsMark(i, '=') &&
           !IsMark(i, '}')) {
        const bool isInline = IsKey(i, Kw_inline);
        if (isInline) ++i;
        if (IsName(i) && (names.empty() || IsMark(i - 1, ColonsMark) || isInline))
            names.push_back({i, isInline});
        i = IsMark(i, '(') ? PastBracket(i) : PastAttributes(i + 1);
    }
    if (IsMark(i, '=') && !names.empty()) {
        const int end = SemicolonFrom(i, contexts.back().past);
        const int alias = Add(FactKind::NamespaceAlias, TextAt(names[0].token), names[0].token, head);
        At(alias).type = Join(i + 1, end);
        At(alias).past = PastOf(end);
        i = end + 1;
        return;
    }
    if (!IsMark(i, '{')) {
        statementBegins = false;
        return;
    }
    const int open = i;
    const int past = EndOfBody(open);
    const int outer = scope;
    if (names.empty()) names.push_back({-1, false});
    for (const Part& part : names) {
        Head each = head;
        if (part.isInline) each.flags |= IsInline;
        if (part.token < 0) each.flags |= IsUnnamed;
        const int token = part.token < 0 ? keyword : part.token;
        const int declared =
            Add(FactKind::Namespace, part.token < 0 ? std::string_view() : TextAt(token), token, each);
        At(declared).past = PastOf(past);
        At(declared).flags |= HasBody;
        scope = OpenScope(ScopeKind::Namespace, open, past, declared);
    }
    const int inner = scope;
    scope = outer;
    EnterBody(Place::Namespace, open, inner);
}

void FactReader::UsingDeclaration() {
    const int keyword = i;
    const int end = SemicolonFrom(i, contexts.back().past);
    Head head;
    head.first = declarationFirst;
    ++i;
    if (IsKey(i, Kw_namespace)) {
        facts.usings.push_back({scope, OffsetAt(i + 1), Join(i + 1, end), true});
    } else if (IsName(i) && (IsMark(PastAttributes(i + 1), '='))) {
        const int alias = Add(FactKind::Typedef, TextAt(i), i, head);
        At(alias).type = Join(PastAttributes(i + 1) + 1, end, true);
        At(alias).past = PastOf(end);
        if (templateScope >= 0) At(alias).body = templateScope;
    } else {
        for (int first = i; first < end;) {
            int past = first;
            while (past < end && !IsMark(past, ',')) ++past;
            const bool skips = IsKey(first, Kw_typename) || IsKey(first, Kw_enum);
            facts.usings.push_back({scope, OffsetAt(first), Join(first + (skips ? 1 : 0), past), false});
            first = past + 1;
        }
    }
    i = std::max(end, keyword) + 1;
}

void FactReader::LinkageOrExtern() {
    i += 2;
    if (IsMark(i, '{')) {
        EnterBody(CurrentPlace(), i, scope);
    }
    statementBegins = true;
}

// Heads in a row are scopes in each other, of one declaration.
void FactReader::TemplateDeclaration() {
    if (!IsMark(i + 1, '<')) { // an explicit instantiation
        ++i;
        i = SemicolonFrom(i, contexts.back().past);
        return;
    }
    const int outer = scope;
    const auto firstOpened = static_cast<int>(facts.scopes.size());
    bool isSpecial = false;
    for (; IsKey(i, Kw_template) && IsMark(i + 1, '<'); PastRequires()) {
        const int past = PastAngles(i + 1);
        if (past < 0) break;
        scope = OpenScope(ScopeKind::Template, i + 1, i + 1, -1);
        TemplateParameters(i + 2, past - 1, scope);
        isSpecial = isSpecial || past == i + 3;
        i = past;
    }
    if (scope == outer) {
        ++i;
        statementBegins = false;
        return;
    }
    const int opened = templateScope = scope;
    const std::size_t depthBefore = contexts.size();
    const std::size_t declaredBefore = facts.declared.size();
    const int begin = i;
    const bool taken = Declaration(Mode::Statement);
    const int closing = std::min(contexts.size() > depthBefore ? contexts[depthBefore].past : i,
                                 LastIn(contexts[depthBefore - 1]));
    std::uint32_t past = PastOf(std::max(closing, begin));
    for (std::size_t each = static_cast<std::size_t>(opened) + 1; each < facts.scopes.size(); ++each)
        past = std::max(past, facts.scopes[each].past); // arguments that no bracket closes
    if (facts.scopes[static_cast<std::size_t>(outer)].kind != ScopeKind::Template)
        past = std::min(past, facts.scopes[static_cast<std::size_t>(outer)].past);
    for (int each = firstOpened; each <= opened; ++each)
        facts.scopes[static_cast<std::size_t>(each)].past = past;
    if (contexts.size() > depthBefore) {
        contexts[depthBefore].scope = outer;
    } else {
        scope = outer;
    }
    for (std::size_t d = declaredBefore; d < facts.declared.size(); ++d) {
        Declared& each = facts.declared[d];
        if (each.scope != opened) continue;
        each.scope = outer;
        each.flags |= isSpecial ? IsSpecialization | IsTemplate : IsTemplate;
    }
    templateScope = -1;
    if (!taken) statementBegins = false;
}

// To what may begin a declaration.
void FactReader::PastRequires() {
    if (!IsKey(i, Kw_requires)) return;
    ++i;
    while (i < contexts.back().past && !IsMark(i, ';') && !IsMark(i, '{')) {
        if (IsMark(i, '(')) {
            i = PastBracket(i);
        } else if (IsName(i) || IsMark(i, '!')) {
            Chain chain;
            if (IsMark(i, '!')) ++i;
            if (!ReadChain(i, chain)) break;
            i = chain.past;
        } else {
            break;
        }
        if (!IsMark(i, AndAndMark) && !IsMark(i, OrOrMark)) break;
        ++i;
    }
}

void FactReader::TemplateParameters(int first, int past, int paramScope) {
    int depthOfAngles = 0;
    int begin = first;
    for (int at = first; at <= past; ++at) {
        if (at < past) {
            if (IsMark(at, '(') || IsMark(at, '[') || IsMark(at, '{')) {
                at = PastBracket(at) - 1;
                continue;
            }
            if (IsMark(at, '<')) ++depthOfAngles;
            if (IsMark(at, '>') && depthOfAngles > 0) --depthOfAngles;
            if (depthOfAngles > 0 || !IsMark(at, ',')) continue;
        }
        if (at == begin) { // `template <>`
            begin = at + 1;
            continue;
        }
        int end = begin; // of the name and what stands before it
        int angles = 0;
        for (; end < at; ++end) {
            if (IsMark(end, '<')) ++angles;
            if (IsMark(end, '>')) --angles;
            if (IsMark(end, '=') && angles == 0) break;
        }
        const bool named = end - begin >= 2 && IsName(end - 1) && !IsMark(end - 2, ColonsMark);
        Head head;
        head.first = begin;
        const int outer = scope;
        scope = paramScope;
        const int declared = Add(FactKind::TemplateParameter, named ? TextAt(end - 1) : std::string_view(),
                                 named ? end - 1 : begin, head);
        scope = outer;
        Declared& parameter = At(declared);
        parameter.type = Join(begin, named ? end - 1 : end);
        parameter.past = PastOf(at - 1);
        if (end < at) {
            parameter.flags |= HasDefault;
        }
        if (IsMark(end - 2, EllipsisMark)) parameter.flags |= IsPack;
        begin = at + 1;
    }
}

void FactReader::EnumDeclaration(Head head) {
    const int keyword = i++;
    const bool scoped = IsKey(i, Kw_class) || IsKey(i, Kw_struct);
    if (scoped) ++i;
    int name = -1;
    int words = 0;
    Chain chain;
    for (i = PastAttributes(i); IsName(i) || IsMark(i, ColonsMark); i = PastAttributes(i)) {
        if (!ReadChain(i, chain)) break;
        name = chain.name;
        i = chain.past;
        ++words;
    }
    int at = i;
    if (IsMark(at, ':'))
        while (at < contexts.back().past && !IsMark(at, '{') && !IsMark(at, ';')) ++at;
    if (scoped) head.flags |= IsScopedEnum;
    if (!IsMark(at, '{')) {
        const bool isVariable = words > 1 && !scoped && at == i; // `enum Side side;`
        if (name >= 0 && IsMark(at, ';') && !isVariable) {
            head.flags |= IsForward;
            const int declared = Add(FactKind::Enum, TextAt(name), name, head);
            At(declared).past = PastOf(at);
            i = at + 1;
            return;
        }
        i = keyword + 1;
        if (!DeclarationFrom(head, i, Mode::Statement)) statementBegins = false;
        return;
    }
    head.flags |= HasBody;
    if (name < 0) head.flags |= IsUnnamed;
    const int past = EndOfBody(at);
    const int declared =
        Add(FactKind::Enum, name < 0 ? std::string_view() : TextAt(name), name < 0 ? keyword : name, head);
    At(declared).past = PastOf(past);
    if (name >= 0 && chain.qualifierPast > chain.first) At(declared).qualifier = KeepChainName(chain);
    const int opened = OpenScope(ScopeKind::Enum, at, past, declared);
    const int outer = scope;
    scope = opened;
    for (int each = at + 1; each < past;) {
        each = PastAttributes(each);
        int end = each;
        for (; end < past && !IsMark(end, ','); ++end)
            if (IsMark(end, '(') || IsMark(end, '{') || IsMark(end, '[')) end = PastBracket(end) - 1;
        if (IsName(each)) {
            Head plain;
            plain.first = each;
            const int enumerator = Add(FactKind::Enumerator, TextAt(each), each, plain);
            At(enumerator).past = PastOf(end - 1);
            At(enumerator).typeOf = declared;
            At(enumerator).access = AccessHere();
        }
        each = end + 1;
    }
    scope = outer;
    i = past + 1;
    Context closed{CurrentPlace(), past, scope};
    closed.declaration = declared;
    closed.isTypedef = head.isTypedef;
    closed.flags = head.flags & (IsStatic | IsExtern);
    AfterBody(closed);
}

// Behind the arguments of a template, which in a head can be nothing else: `<T, enable_if_t<a && b>>`; -1
// where they don't end before the body.
int FactReader::PastArgumentsOfHead(int open) const {
    int angles = 0;
    for (int at = open; at < contexts.back().past; ++at) {
        const Token& token = T(at);
        if (token.Is('{') || token.Is(';') || token.Is('}')) return -1;
        if (token.Is('(') || token.Is('[')) at = PastBracket(at) - 1;
        if (token.Is('<')) ++angles;
        if (token.Is('>') && --angles == 0) return at + 1;
    }
    return -1;
}

// The name of a class is the last word before what ends its head, so that any words may stand before it.
bool FactReader::ClassDeclaration(Head head) {
    const int keyword = i;
    const std::string_view key = TextAt(keyword);
    FactKind kind = FactKind::Class;
    if (key == "struct") kind = FactKind::Struct;
    if (key == "union") kind = FactKind::Union;
    if (key == "interface" || key == "dispinterface") kind = FactKind::Interface;
    if (key == "exception") kind = FactKind::Exception;
    Chain chain;
    Chain before;
    int words = 0;
    int at = PastAttributes(IsMark(keyword + 1, ')') ? keyword + 2 : keyword + 1);
    for (; IsName(at) || IsMark(at, ColonsMark);) {
        if (IsKey(at, Kw_final) && words > 0) {
            ++at;
            break;
        }
        if (dialect == Dialect::Idl && TextAt(at) == "supports") break;
        Chain next;
        if (!ReadChain(at, next)) break;
        if (IsMark(next.past, '<')) next.past = std::max(next.past, PastArgumentsOfHead(next.past));
        if (IsMark(next.past, '(') && !IsMark(next.past + 1, '*')) { // a macro with arguments
            const int behind = PastBracket(next.past);
            if (!IsName(behind) && !IsMark(behind, '{') && !IsMark(behind, ':')) break;
            if (words > 0 && !IsName(behind)) break;
            at = PastAttributes(behind);
            if (!IsName(at)) break;
            continue;
        }
        before = chain;
        chain = next;
        ++words;
        at = PastAttributes(next.past);
    }
    // `class Ship FINAL {`: a macro behind the name rather than before it.
    const bool isTrailing = words > 1 && chain.past == chain.name + 1 && IsMacroLike(TextAt(chain.name)) &&
                            !IsMacroLike(TextAt(before.name));
    if (isTrailing && !IsMark(at, ';')) chain = before;
    if (IsKey(at, Kw_final)) ++at;
    if (dialect == Dialect::Idl && kind == FactKind::Union && TextAt(at) == "switch")
        at = PastBracket(at + 1);
    if (dialect == Dialect::Idl && words > 0 && TextAt(chain.name) == "switch" && IsMark(at, '(')) {
        chain = before;
        at = PastBracket(at);
    }
    const bool opensBody = IsMark(at, '{');
    const bool hasBases = IsMark(at, ':') || (dialect == Dialect::Idl && TextAt(at) == "supports");
    if (key == "valuetype" && words == 2 && IsMark(at, ';')) { // `valuetype Depths sequence<long>;`
        const int declared = Add(FactKind::Typedef, TextAt(before.name), before.name, head);
        At(declared).type = Join(chain.first, chain.past);
        At(declared).past = PastOf(at);
        i = at + 1;
        return true;
    }
    int open = at;
    if (hasBases) {
        for (open = at + 1; open < contexts.back().past; ++open) {
            if (IsMark(open, '{') || IsMark(open, ';') || IsMark(open, '}')) break;
            if (IsMark(open, '(')) open = PastBracket(open) - 1;
        }
        if (!IsMark(open, '{')) return false; // a bit field of such a type
    }
    if (opensBody || (hasBases && IsMark(open, '{'))) {
        const int past = EndOfBody(open);
        head.flags |= HasBody;
        if (words == 0) head.flags |= IsUnnamed;
        const int name = words == 0 ? keyword : chain.name;
        const int declared = Add(kind, words == 0 ? std::string_view() : TextAt(name), name, head);
        At(declared).past = PastOf(past);
        if (words > 0) {
            if (chain.qualifierPast > chain.first) At(declared).qualifier = KeepChainName(chain);
            if (chain.past > chain.name + 1) At(declared).flags |= IsSpecialization;
        }
        const bool isPrivate = kind == FactKind::Class && dialect == Dialect::Cpp;
        const Access usual = isPrivate ? Access::Private : Access::Public;
        if (hasBases) {
            At(declared).firstBase = static_cast<std::int32_t>(facts.bases.size());
            At(declared).bases = ReadBases(at + 1, open, usual);
        } else if (key == "coclass") {
            At(declared).firstBase = static_cast<std::int32_t>(facts.bases.size());
            At(declared).bases = ReadCoclass(open + 1, past);
        }
        const int opened = OpenScope(ScopeKind::Class, open, past, declared);
        const bool isTypedef = head.isTypedef;
        EnterBody(Place::Class, open, opened, declared);
        Context& context = contexts.back();
        context.access = usual;
        context.isTypedef = isTypedef;
        context.flags = head.flags & (IsStatic | IsExtern);
        context.declaratorsFollow = true;
        return true;
    }
    if (words == 0) return false;
    if (dialect == Dialect::Idl && InClass() && kind == FactKind::Interface) { // named in a coclass
        i = std::min(at + 1, contexts.back().past);
        return true;
    }
    const bool isForward = (IsMark(at, ';') || at == tokens.Count()) && !head.isTypedef &&
                           (words == 1 || kind == FactKind::Class || IsMacroLike(TextAt(before.name)));
    if (isForward) {
        head.flags |= IsForward;
        if ((head.flags & IsFriend) != 0) { // names a class and declares nothing here
            i = at + 1;
            return true;
        }
        const int declared = Add(kind, TextAt(chain.name), chain.name, head);
        At(declared).past = PastOf(at);
        if (chain.qualifierPast > chain.first) At(declared).qualifier = KeepChainName(chain);
        i = at + 1;
        return true;
    }
    return DeclarationFrom(head, PastAttributes(keyword + 1), Mode::Statement);
}

// What a class of IDL implements stands in its body: `[default] interface IShip;`.
int FactReader::ReadCoclass(int first, int past) {
    int count = 0;
    for (int at = first; at < past && !IsMark(at, '{'); ++at) {
        if ((TextAt(at) != "interface" && TextAt(at) != "dispinterface") || !IsName(at + 1) ||
            !IsMark(at + 2, ';'))
            continue;
        facts.bases.push_back({Join(at + 1, at + 2), Access::Public, false, OffsetAt(at + 1)});
        ++count;
    }
    return count;
}

int FactReader::ReadBases(int from, int past, Access usual) {
    const bool isIdl = dialect == Dialect::Idl;
    int count = 0;
    for (int at = from; at < past;) {
        Base base;
        base.access = usual;
        Chain chain;
        bool found = false;
        for (; at < past && !IsMark(at, ',') && !(isIdl && TextAt(at) == "supports"); ++at) {
            if (IsKey(at, Kw_virtual)) base.isVirtual = true;
            if (IsKey(at, Kw_public)) base.access = Access::Public;
            if (IsKey(at, Kw_protected)) base.access = Access::Protected;
            if (IsKey(at, Kw_private)) base.access = Access::Private;
            if (IsMark(at, '(')) {
                at = PastBracket(at) - 1;
                continue;
            }
            Chain next;
            if ((IsName(at) || IsMark(at, ColonsMark)) && ReadChain(at, next)) {
                chain = next;
                found = true;
                at = next.past - 1;
            }
        }
        ++at;
        if (!found) continue;
        base.name = Join(chain.first, chain.past);
        base.at = OffsetAt(chain.first);
        facts.bases.push_back(base);
        ++count;
    }
    return count;
}

// Names behind the body of a class or an enum: `} side, *all;`
void FactReader::AfterBody(const Context& context) {
    Head head;
    head.first = declarationFirst = context.past;
    head.typeOf = context.declaration;
    head.isTypedef = context.isTypedef;
    head.flags = context.flags;
    head.words = 1;
    const int at = PastAttributes(i);
    statementBegins = true;
    if (IsMark(at, ';')) {
        i = at + 1;
        return;
    }
    if (!IsName(at) && !IsMark(at, '*') && !IsMark(at, '(') && !IsMark(at, '&') && !IsKey(at, Kw_const))
        return;
    const int before = i;
    if (!Declarators(head, at, Mode::Statement)) i = before;
}

} // namespace ostraka::answers
