#include <answers/facts/Outline.h>

#include <algorithm>
#include <cctype>

#include <answers/facts/Escapes.h>
#include <ostraka/symbols/DialectMarks.h>

namespace ostraka::answers {

namespace {

constexpr const char* kindNames[] = {
    "class",  "struct", "union",          "namespace", "forward",       "enum",     "enumerator", "typedef",
    "method", "member", "implementation", "function",  "function body", "variable", "tie",        "concept"};

bool IsClassLike(FactKind kind) {
    return kind == FactKind::Class || kind == FactKind::Struct || kind == FactKind::Union ||
           kind == FactKind::Interface || kind == FactKind::Exception;
}

DeclarationKind ScopeKindOf(FactKind kind) {
    switch (kind) {
    case FactKind::Struct:
    case FactKind::Exception: return DeclarationKind::Struct;
    case FactKind::Union: return DeclarationKind::Union;
    case FactKind::Enum: return DeclarationKind::Enum;
    case FactKind::Namespace: return DeclarationKind::Namespace;
    default: return DeclarationKind::Class;
    }
}

bool TakesBlank(const TokenList& tokens, int before, int at) {
    const Token& last = tokens[before];
    const Token& next = tokens[at];
    const bool isApart = last.begin + last.size < next.begin;
    const bool endsWord = last.kind != TokenKind::Mark;
    const bool beginsWord = next.kind != TokenKind::Mark;
    if (last.Is(',')) return true;
    if (endsWord && beginsWord)
        return isApart || (last.kind == TokenKind::Word && next.kind == TokenKind::Word);
    if (beginsWord && (last.Is('*') || last.Is('&')) &&
        before > 0) { // of `*name` the mark belongs to the name
        const Token& front = tokens[before - 1];
        if (front.Is(',') || front.Is('(') || front.Is(ColonsMark)) return false;
    }
    if (beginsWord && (last.Is('*') || last.Is('&') || last.Is(AndAndMark) || last.Is(')') || last.Is('>')))
        return next.kind == TokenKind::Word || isApart;
    if (last.IsKeyword(Kw_template)) return isApart;
    if (last.IsKeyword(Kw_operator)) return false;
    if (next.Is(',') || next.Is(';') || next.Is(')') || next.Is(']') || next.Is('[') || next.Is('(') ||
        next.Is(':') || next.Is(ColonsMark) || next.Is('*') || next.Is('&') || next.Is(AndAndMark) ||
        next.Is('<') || next.Is('>'))
        return (next.Is('(') && last.Is('=') && isApart) || (next.Is('[') && last.Is('=') && isApart);
    if (last.Is('(') || last.Is('[') || last.Is(ColonsMark) || last.Is('~')) return false;
    return isApart;
}

// Of the names of one scope.
struct ScopeNames {
    std::string name; // whole
    DeclarationKind kind = DeclarationKind::Class;
    int depth = 0; // of what it holds
    bool isLocal = false;
};

class OutlineMaker {
public:
    OutlineMaker(const TokenList& theTokens, const FileFacts& theFacts)
        : tokens(theTokens), facts(theFacts) {}

    std::vector<OutlineEntry> Make() {
        NameScopes();
        for (std::size_t i = 0; i < facts.declared.size(); ++i) AddDeclared(static_cast<int>(i));
        for (const MacroCall& call : facts.calls) AddTie(call);
        // What stands behind a body was read before it, ties on their own.
        std::stable_sort(found.begin(), found.end(), [](const OutlineEntry& a, const OutlineEntry& b) {
            return std::pair(a.place.line, a.place.column) < std::pair(b.place.line, b.place.column);
        });
        return std::move(found);
    }

private:
    const Declared& DeclaredAt(int i) const { return facts.declared[static_cast<std::size_t>(i)]; }
    const ScopeNames& NamesOf(int scope) const { return scopes[static_cast<std::size_t>(scope)]; }

    // `namespace sea::coast {` declares two, which are told as one.
    bool SharesBody(int i) const {
        const auto next = static_cast<std::size_t>(i) + 1;
        return DeclaredAt(i).kind == FactKind::Namespace && next < facts.declared.size() &&
               facts.declared[next].kind == FactKind::Namespace &&
               facts.declared[next].begin == DeclaredAt(i).begin;
    }

    bool StartsTypedef(const Declared& declared) const {
        return tokens[FirstOf(declared)].IsKeyword(Kw_typedef);
    }

    bool IsTold(int i) const {
        const Declared& declared = DeclaredAt(i);
        switch (declared.kind) {
        case FactKind::Argument:
        case FactKind::TemplateParameter:
        case FactKind::Label: return false;
        case FactKind::Namespace: return !declared.Has(IsUnnamed) && !SharesBody(i);
        case FactKind::Enum: return !declared.Has(IsUnnamed) || !StartsTypedef(declared);
        case FactKind::Function: return !declared.Has(IsFriend) || declared.Has(HasBody);
        case FactKind::Variable: return !declared.Has(IsFriend) && !declared.name.empty();
        default: return true;
        }
    }

    static std::string Within(const std::string& around, std::string_view name) {
        if (around.empty() || name.empty()) return around + std::string(name);
        return around + "::" + std::string(name);
    }

    static std::string NameIn(const Declared& declared) {
        return Within(std::string(declared.qualifier), declared.name);
    }

    void NameScopes() {
        scopes.resize(facts.scopes.size());
        for (std::size_t i = 1; i < facts.scopes.size(); ++i) {
            const Scope& scope = facts.scopes[i];
            ScopeNames& names = scopes[i];
            names = NamesOf(scope.parent);
            names.isLocal =
                names.isLocal || scope.kind == ScopeKind::Function || scope.kind == ScopeKind::Block;
            if (scope.declaration < 0 || names.isLocal || scope.kind == ScopeKind::Template) continue;
            const Declared& declared = DeclaredAt(scope.declaration);
            names.name = Within(names.name, NameIn(declared));
            if (scope.kind != ScopeKind::Enum || !declared.Has(IsUnnamed))
                names.kind = ScopeKindOf(declared.kind);
            if (IsTold(scope.declaration) || scope.kind == ScopeKind::Enum) ++names.depth;
        }
    }

    // Behind attributes and the brace of the body whose names these are.
    int FirstOf(const Declared& declared) const {
        int at = std::max(tokens.At(declared.begin), 0);
        while (at < tokens.Count() && tokens[at].begin < declared.begin) ++at;
        for (;;) {
            const Token& token = tokens[at];
            if (token.Is('}') || token.Is(';')) {
                ++at;
            } else if (token.Is('[') && token.partner > at) {
                at = token.partner + 1;
            } else if ((token.IsKeyword(Kw___attribute__) || token.IsKeyword(Kw___declspec) ||
                        token.IsKeyword(Kw_alignas)) &&
                       tokens[std::min(at + 1, tokens.Count())].Is('(') && tokens[at + 1].partner > at) {
                at = tokens[at + 1].partner + 1;
            } else {
                return std::min(at, tokens.Count());
            }
        }
    }

    int TokenFrom(std::uint32_t offset) const {
        const auto& all = tokens.All();
        return static_cast<int>(
            std::lower_bound(all.begin(), all.end() - 1, offset,
                             [](const Token& token, std::uint32_t at) { return token.begin < at; }) -
            all.begin());
    }

    const Scope* BodyOf(const Declared& declared) const {
        return declared.body < 0 ? nullptr : &facts.scopes[static_cast<std::size_t>(declared.body)];
    }

    // Behind the arguments and what belongs to them.
    int PastHead(int open) const {
        int at = tokens[open].partner + 1;
        for (; at > 0 && at < tokens.Count(); ++at) {
            const Token& token = tokens[at];
            if (token.Is('{') || token.Is(';') || token.Is(':') || token.Is(',') || token.Is('}') ||
                token.IsKeyword(Kw_try))
                break;
            if (token.Is('=')) {
                const Token& value = tokens[at + 1];
                const bool belongs = value.kind == TokenKind::Number || value.IsKeyword(Kw_default) ||
                                     value.IsKeyword(Kw_delete);
                return belongs ? at + 2 : at;
            }
            if ((token.Is('(') || token.Is('[')) && token.partner > at) at = token.partner;
        }
        return std::max(at, open + 1);
    }

    // Behind all names that the statement declares, and what they are initialised with.
    int PastStatement(int i) const {
        std::uint32_t past = 0;
        for (auto each = static_cast<std::size_t>(i);
             each < facts.declared.size() && facts.declared[each].begin == DeclaredAt(i).begin; ++each)
            past = std::max(past, facts.declared[each].past);
        int at = TokenFrom(past);
        const int first = FirstOf(DeclaredAt(i));
        while (at > first + 1 &&
               (tokens[at - 1].Is(';') || tokens[at - 1].Is(',') || tokens[at - 1].Is('}')) &&
               (!tokens[at - 1].Is('}') || tokens[at - 1].partner < first))
            --at;
        return std::max(at, first + 1);
    }

    // What an initialiser in braces holds isn't told, nor a long text to its end: each of its names has it.
    std::string StatementText(int first, int past) const {
        constexpr std::size_t longest = 1000;
        std::string text;
        int kept = -1;
        for (int at = first; at < past; ++at) {
            if (text.size() > longest) {
                text += " ...";
                break;
            }
            const bool isValue = tokens[at].Is('=') && tokens[at + 1].Is('{');
            const int open = isValue ? at + 1 : at;
            if (tokens[open].Is('{') && tokens[open].partner > open) {
                at = tokens[open].partner;
                continue;
            }
            if (kept >= 0 && TakesBlank(tokens, kept, at)) text += ' ';
            text += tokens.TextOf(at);
            kept = at;
        }
        std::string line;
        AppendOneLine(line, text);
        return line;
    }

    std::string TextOfDeclared(int i, int first) const {
        const Declared& declared = DeclaredAt(i);
        const Scope* body = BodyOf(declared);
        const bool opensBody = body != nullptr && body->kind != ScopeKind::Template;
        if (declared.kind == FactKind::Function && opensBody)
            return ReadableTokens(tokens, first, PastHead(TokenFrom(body->begin)));
        if (opensBody && declared.kind != FactKind::Typedef)
            return ReadableTokens(tokens, first, TokenFrom(body->begin));
        if (declared.kind == FactKind::Enumerator) return StatementText(first, TokenFrom(declared.past));
        return StatementText(first, PastStatement(i));
    }

    DeclarationKind KindOf(const Declared& declared, bool isMember) const {
        const bool isForward = declared.Has(IsForward);
        switch (declared.kind) {
        case FactKind::Function:
            if (isMember && !declared.Has(IsFriend)) return DeclarationKind::Method;
            if (!declared.Has(HasBody)) return DeclarationKind::Function;
            return declared.qualifier.empty() ? DeclarationKind::FunctionBody
                                              : DeclarationKind::Implementation;
        case FactKind::Variable: return isMember ? DeclarationKind::Member : DeclarationKind::Variable;
        case FactKind::Enumerator: return DeclarationKind::Enumerator;
        case FactKind::Typedef: return DeclarationKind::Typedef;
        case FactKind::Concept: return DeclarationKind::Concept;
        case FactKind::NamespaceAlias: return DeclarationKind::Namespace;
        default: return isForward ? DeclarationKind::Forward : ScopeKindOf(declared.kind);
        }
    }

    void AddDeclared(int i) {
        const Declared& declared = DeclaredAt(i);
        const ScopeNames& around = NamesOf(declared.scope);
        if (around.isLocal || !IsTold(i)) return;
        const int first = FirstOf(declared);
        OutlineEntry entry;
        const ScopeKind scope = facts.scopes[static_cast<std::size_t>(declared.scope)].kind;
        entry.kind = KindOf(declared, scope == ScopeKind::Class);
        entry.name = declared.name;
        const std::size_t mark = entry.name.starts_with("operator ") ? 9 : std::string::npos;
        if (mark < entry.name.size() && !TokenList::IsWordCharacter(entry.name[mark]))
            entry.name.erase(mark - 1, 1);
        entry.scope = Within(around.name, declared.qualifier);
        entry.scopeKind = declared.qualifier.empty() ? around.kind : DeclarationKind::Class;
        const bool isPart = !found.empty() && found.back().declared >= 0 &&
                            DeclaredAt(found.back().declared).begin == declared.begin &&
                            declared.kind != FactKind::Enumerator && entry.kind == found.back().kind;
        entry.text = isPart ? found.back().text : TextOfDeclared(i, first);
        if (declared.kind == FactKind::Function && BodyOf(declared) != nullptr) {
            const int open = TokenFrom(BodyOf(declared)->begin);
            if (tokens[open].partner > open)
                entry.arguments = ReadableTokens(tokens, open, tokens[open].partner + 1);
        }
        if (declared.kind == FactKind::Variable) {
            entry.type = declared.type;
            if (entry.type.starts_with('*') || entry.type.starts_with('[')) entry.type.clear(); // of no name
            while (entry.type.ends_with("[]")) entry.type.replace(entry.type.find("[]"), 2, "*");
        }
        entry.hasBody = declared.kind == FactKind::Function && declared.Has(HasBody);
        entry.place = facts.PlaceOf(tokens[first].begin);
        std::uint32_t at = declared.at;
        if (const int name = TokenFrom(at);
            entry.name.starts_with('~') && name > 0 && tokens[name - 1].Is('~'))
            at = tokens[name - 1].begin;
        entry.namePlace = facts.PlaceOf(at);
        entry.depth = around.depth;
        entry.access = declared.access;
        entry.declared = i;
        found.push_back(std::move(entry));
    }

    void AddTie(const MacroCall& call) {
        using detail::tieMark;
        if (!call.name.starts_with(tieMark) || call.name.size() == tieMark.size() || call.arguments.empty() ||
            call.arguments.find(',') != call.arguments.npos)
            return;
        OutlineEntry entry;
        entry.kind = DeclarationKind::Tie;
        entry.name = call.name.substr(tieMark.size());
        entry.scope = call.arguments;
        entry.scopeKind = DeclarationKind::Namespace;
        entry.text.append(call.name).append("(").append(call.arguments).append(")");
        entry.place = facts.PlaceOf(call.at);
        entry.namePlace = facts.PlaceOf(call.at + static_cast<std::uint32_t>(tieMark.size()));
        entry.depth = NamesOf(call.scope).depth;
        found.push_back(std::move(entry));
    }

    const TokenList& tokens;
    const FileFacts& facts;
    std::vector<ScopeNames> scopes;
    std::vector<OutlineEntry> found;
};

} // namespace

const char* NameOf(DeclarationKind kind) {
    return kindNames[static_cast<int>(kind)];
}

bool SharesStatement(const OutlineEntry& a, const OutlineEntry& b) {
    return a.place.line == b.place.line && a.place.column == b.place.column && a.text == b.text;
}

std::vector<OutlineEntry> OutlineOf(const TokenList& tokens, const FileFacts& facts) {
    return OutlineMaker(tokens, facts).Make();
}

std::string ReadableTokens(const TokenList& tokens, int first, int past) {
    std::string text;
    for (int at = first; at < past; ++at) {
        if (at > first && TakesBlank(tokens, at - 1, at)) text += ' ';
        text += tokens.TextOf(at);
    }
    std::string line;
    AppendOneLine(line, text);
    return line;
}

const char* SortOf(const FileFacts& facts, const Declared& declared) {
    if (declared.kind == FactKind::Interface) return "interface";
    const char* sort = "plain";
    if (!IsClassLike(declared.kind) || declared.body < 0) return sort;
    const auto first = std::lower_bound(facts.calls.begin(), facts.calls.end(), declared.begin,
                                        [](const MacroCall& call, std::uint32_t at) { return call.at < at; });
    for (auto call = first; call != facts.calls.end() && call->at < declared.past; ++call) {
        const detail::SortMark* mark =
            call->scope == declared.body ? detail::SortMarkOf(call->name) : nullptr;
        if (mark != nullptr) sort = mark->kind == TAPDefClass::Interface ? "interface" : "component";
    }
    return sort;
}

} // namespace ostraka::answers
