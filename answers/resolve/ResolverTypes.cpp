// Types as far as texts tell them. A name that no file declares keeps its text and its arguments, so that
// what holds elements still gives its elements: whatever `List` is, an element of `List<Ship*>` is a `Ship*`.

#include <algorithm>

#include <answers/resolve/Resolver.h>
#include <ostraka/syntax/DialectWords.h>

namespace ostraka::answers {

namespace {

bool IsBuiltin(const Token& token) {
    if (token.kind != TokenKind::Word) return false;
    switch (token.code) {
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

constexpr std::string_view handleEnding = "_var";

} // namespace

// Behind the bracket that closes template arguments; -1 where none does.
int Resolver::PastAngles(const TokenList& list, int open) {
    int depth = 0;
    constexpr int widest = 600;
    for (int at = open; at < std::min(list.Count(), open + widest); ++at) {
        const Token& token = list[at];
        if (token.kind != TokenKind::Mark) {
            if (token.kind == TokenKind::Text || token.IsKeyword(Kw_return)) return -1;
            continue;
        }
        if (token.code == '<') ++depth;
        if (token.code == '>' && --depth == 0) return at + 1;
        if (token.code == '(' || token.code == '[') {
            if (token.partner < 0) return -1;
            at = token.partner;
        }
        if (token.code == ';' || token.code == '{' || token.code == '}' || token.code == ')' ||
            token.code == ']' || token.code == OrOrMark || token.code == AssignMark ||
            token.code == CompareMark || token.code == '.' || token.code == ArrowMark || token.code == '?')
            return -1;
    }
    return -1;
}

Type Resolver::TypeFromText(std::string_view text, const Where& where, const Type* owner, int depth) {
    if (text.empty() || depth > deepest || ++work > 20000) return {};
    const TokenList list(text);
    return TypeFromTokens(list, 0, list.Count(), where, owner, depth);
}

Type Resolver::TypeFromTokens(const TokenList& list, int first, int past, const Where& where,
                              const Type* owner, int depth) {
    Type type;
    if (depth > deepest) return type;
    int pointers = 0;
    bool isConst = false;
    bool hasName = false;
    int at = first;
    while (at < past) {
        const Token& token = list[at];
        if (token.kind == TokenKind::Mark) {
            if (token.code == '*' || token.code == '[' || token.code == '^') ++pointers;
            if (token.code == '(' && hasName) {
                ++pointers;
                break; // of a function
            }
            if (token.code == ColonsMark && !hasName) {
                ++at;
                Where outside = where;
                outside.scope = 0;
                if (at < past && list[at].IsName()) {
                    type = TypeFromTokens(list, at, past, outside, owner, depth + 1);
                    return type;
                }
                continue;
            }
            ++at;
            continue;
        }
        if (token.IsKeyword(Kw_const)) isConst = isConst || pointers == 0;
        if (IsBuiltin(token)) {
            type.name = type.name.empty() ? std::string(list.TextOf(at))
                                          : type.name + " " + std::string(list.TextOf(at));
            hasName = true;
        }
        if (!token.IsName() || hasName) {
            ++at;
            continue;
        }
        // A chain: `ns::List<int>::Node`
        hasName = true;
        bool isFirst = true;
        for (;;) {
            const std::string_view name = list.TextOf(at);
            std::vector<Type> arguments;
            int next = at + 1;
            if (next < past && list[next].Is('<')) {
                const int close = PastAngles(list, next);
                if (close > 0) {
                    int begin = next + 1;
                    int angles = 0;
                    for (int i = next + 1; i < close; ++i) {
                        if (list[i].Is('(') && list[i].partner > 0) i = list[i].partner;
                        if (list[i].Is('<')) ++angles;
                        if (list[i].Is('>') && i < close - 1) --angles;
                        if ((list[i].Is(',') && angles == 0) || i == close - 1) {
                            arguments.push_back(TypeFromTokens(list, begin, i, where, owner, depth + 1));
                            begin = i + 1;
                        }
                    }
                    next = close;
                }
            }
            if (isFirst && next < past && list[next].Is('(') && list[next].partner < past &&
                detail::IsTypedListWord(name)) { // `NUBLISTP(Ship)`
                arguments.push_back(
                    TypeFromTokens(list, next + 1, list[next].partner, where, owner, depth + 1));
                if (name == "NUBLISTP") ++arguments.back().pointers;
                next = list[next].partner + 1;
            }
            Found found;
            if (isFirst) {
                found = LookUp(name, where, Wanted::Types, depth + 1);
            } else if (type.entity != Names::none) {
                found = LookIn(name, type, Wanted::Types, depth + 1);
            }
            const bool hasMore = next + 1 < past && list[next].Is(ColonsMark) &&
                                 (list[next + 1].IsName() || list[next + 1].IsKeyword(Kw_template));
            if (!isFirst && type.entity == Names::none) {
                type.name = name; // below what isn't known
                type.arguments = std::move(arguments);
            } else {
                const Type outer = type;
                type = TypeOfFound(found, arguments, depth + 1, name,
                                   found.owner.IsClass() ? &found.owner
                                   : isFirst             ? owner
                                                         : &outer);
                if (type.entity == Names::none && hasMore && type.name == name && isFirst && IsMacro(name)) {
                    // A macro that stands for a namespace: whatever it is, go on from the place.
                    at = next + 1;
                    continue;
                }
            }
            if (!hasMore) {
                at = next;
                break;
            }
            at = next + 1;
            if (list[at].IsKeyword(Kw_template)) ++at;
            isFirst = false;
        }
    }
    type.pointers += pointers;
    type.isConst = type.isConst || isConst;
    return type;
}

// A handle of an interface, which is generated, so that at most its name is declared. False for other names.
bool Resolver::TakeHandle(std::string_view written, int depth, Type& type) {
    if (written.size() <= handleEnding.size() || !written.ends_with(handleEnding)) return false;
    const Found meant = LookUp(written.substr(0, written.size() - handleEnding.size()), {openedFile, 0, ~0U},
                               Wanted::Types, depth + 1);
    if (meant.IsNone()) return false;
    type = TypeOfFound(meant, {}, depth + 1, written, nullptr);
    type.pointers = 1;
    return true;
}

// What a type's name was found as, with the arguments that are written behind it.
Type Resolver::TypeOfFound(const Found& found, const std::vector<Type>& arguments, int depth,
                           std::string_view written, const Type* owner) {
    Type type;
    type.name = written;
    type.arguments = arguments;
    if (found.entity != Names::none) {
        type.entity = found.entity;
        return type;
    }
    if (found.refs.empty()) {
        if (arguments.empty()) TakeHandle(written, depth, type);
        return type;
    }
    // A class rather than a typedef of the same name, as of C.
    DeclarationRef ref = found.refs.front();
    for (const DeclarationRef& each : found.refs)
        if (At(each).kind != FactKind::Typedef && At(each).kind != FactKind::TemplateParameter) ref = each;
    const Declared& declared = At(ref);
    if (declared.Has(IsForward) && arguments.empty() && TakeHandle(written, depth, type)) return type;
    switch (declared.kind) {
    case FactKind::Typedef: {
        if (declared.typeOf >= 0) {
            const FileFacts& facts = FactsIn(ref.file);
            const Declared& named = facts.declared[static_cast<std::size_t>(declared.typeOf)];
            TakeBody(ref.file, named, type);
            type.pointers = static_cast<int>(std::count(declared.type.begin(), declared.type.end(), '*'));
            return type;
        }
        Type aliased;
        aliased.entity = Names::none;
        Where where = WhereOf(ref);
        // The parameters of an alias are replaced by the arguments written here.
        aliased = TypeFromText(declared.type, where, owner, depth + 1);
        if (declared.body >= 0 && aliased.entity == Names::none && !arguments.empty() &&
            aliased.arguments.empty())
            aliased.arguments = arguments;
        if (declared.body >= 0 && !arguments.empty())
            for (Type& each : aliased.arguments)
                if (!each.IsClass() && each.pointers == 0) {
                    const FileFacts& facts = FactsIn(ref.file);
                    const Scope& parameters = facts.scopes[static_cast<std::size_t>(declared.body)];
                    for (std::size_t i = 0; i < arguments.size(); ++i) {
                        const std::size_t index = static_cast<std::size_t>(parameters.firstDeclared) + i;
                        if (index < facts.declared.size() && facts.declared[index].name == each.name) {
                            each = arguments[i];
                            break;
                        }
                    }
                }
        if (!aliased.IsKnown()) return type;
        return aliased;
    }
    case FactKind::NamespaceAlias: return TypeFromText(declared.type, WhereOf(ref), nullptr, depth + 1);
    case FactKind::TemplateParameter: {
        type.arguments.clear();
        if (owner == nullptr || !owner->IsClass()) return type;
        const DeclarationRef definition = DefinitionOf(owner->entity);
        if (definition.IsNone()) return type;
        // The parameter of the class's own template, by its number; implementations elsewhere name theirs
        // anew.
        const FileFacts& facts = FactsIn(ref.file);
        const int number = ref.index - facts.scopes[static_cast<std::size_t>(declared.scope)].firstDeclared;
        if (number >= 0 && number < static_cast<int>(owner->arguments.size()))
            return owner->arguments[static_cast<std::size_t>(number)];
        return type;
    }
    default: break;
    }
    // The scope that the class opens, or the one that another declaration of it opens.
    if (ref.file == localFile) {
        TakeBody(ref.file, declared, type);
    } else {
        const int holder = names.EntityOf(ref.file, declared.scope);
        type.entity = names.ChildOf(holder, declared.name);
        if (declared.body >= 0 && type.entity == Names::none)
            type.entity = names.EntityOf(ref.file, declared.body);
        if (type.entity == Names::none) type.name = declared.name;
    }
    return type;
}

// The class that a declaration begins.
void Resolver::TakeBody(int file, const Declared& declared, Type& type) {
    if (declared.body < 0) return;
    type.entity = EntityAt({file, declared.body, 0});
    if (file == localFile && type.entity == Names::none) type.localClass = declared.body;
}

Resolver::Where Resolver::WhereOf(const DeclarationRef& ref) {
    const FileFacts& facts = FactsIn(ref.file);
    const Declared& declared = facts.declared[static_cast<std::size_t>(ref.index)];
    int scope = declared.scope;
    if (declared.body >= 0) {
        const Scope& body = facts.scopes[static_cast<std::size_t>(declared.body)];
        scope = body.kind == ScopeKind::Template ? declared.body : body.parent;
    }
    return {ref.file, scope, declared.at};
}

// The type of a variable, or what a function returns.
Type Resolver::TypeOf(const DeclarationRef& ref, const Type& owner, int depth) {
    Type type;
    if (depth > deepest) return type;
    const FileFacts& facts = FactsIn(ref.file);
    const Declared& declared = facts.declared[static_cast<std::size_t>(ref.index)];
    if (declared.kind == FactKind::Enumerator) {
        if (declared.typeOf < 0) return type;
        const Declared& owning = facts.declared[static_cast<std::size_t>(declared.typeOf)];
        type.name = owning.name;
        if (owning.body >= 0 && !owning.Has(IsUnnamed)) type.entity = EntityAt({ref.file, owning.body, 0});
        return type;
    }
    if (declared.typeOf >= 0) {
        const Declared& named = facts.declared[static_cast<std::size_t>(declared.typeOf)];
        TakeBody(ref.file, named, type);
        type.name = named.name;
        type.pointers = static_cast<int>(std::count_if(declared.type.begin(), declared.type.end(),
                                                       [](char c) { return c == '*' || c == '['; }));
        return type;
    }
    const bool isAuto = declared.type.find("auto") != declared.type.npos &&
                        (declared.type.starts_with("auto") || declared.type.starts_with("const auto"));
    if (isAuto) {
        if (ref.file != localFile || declared.initial < 0) return type;
        type = Evaluate(declared.initial, declared.initialPast, depth + 1).type;
        if (declared.Has(IsRangeElement)) type = ElementOf(type, depth + 1);
        return declared.Has(IsBinding) ? PartOf(type, ref.index, depth + 1) : type;
    }
    Where where = WhereOf(ref);
    if (declared.kind == FactKind::Function) where.at = declared.past;
    type = TypeFromText(declared.type, where, owner.IsClass() ? &owner : nullptr, depth + 1);
    return type;
}

// What a name of a structured binding stands for: an element, an argument of `pair` and its like, or a
// member.
Type Resolver::PartOf(const Type& type, int binding, int depth) {
    int number = 0;
    const std::uint32_t statement = opened.declared[static_cast<std::size_t>(binding)].begin;
    for (int i = binding - 1; i >= 0 && opened.declared[static_cast<std::size_t>(i)].begin == statement; --i)
        if (opened.declared[static_cast<std::size_t>(i)].Has(IsBinding)) ++number;
    if (type.pointers > 0) return ElementOf(type, depth + 1);
    if (!type.IsClass())
        return number < static_cast<int>(type.arguments.size())
                   ? type.arguments[static_cast<std::size_t>(number)]
                   : Type();
    const DeclarationRef ref = DefinitionOf(type.entity);
    if (ref.IsNone()) return {};
    const FileFacts& facts = FactsIn(ref.file);
    const int body = At(ref).body;
    for (std::size_t i = static_cast<std::size_t>(ref.index) + 1; i < facts.declared.size(); ++i) {
        const Declared& member = facts.declared[i];
        if (member.begin >= At(ref).past) break;
        const bool isData =
            member.scope == body && member.kind == FactKind::Variable && !member.Has(IsStatic);
        if (isData && number-- == 0) return TypeOf({ref.file, static_cast<int>(i)}, type, depth + 1);
    }
    return {};
}

// What a type gives that is stepped through: elements of arrays and of all that holds elements.
Type Resolver::ElementOf(const Type& type, int depth) {
    Type element;
    if (type.pointers > 0) {
        element = type;
        --element.pointers;
        return element;
    }
    if (type.IsClass()) {
        for (const std::string_view name : {"begin", "operator []", "operator *"}) {
            const Found found = LookInClass(name, type, Wanted::Any, depth + 1);
            if (found.refs.empty()) continue;
            Type given = TypeOf(found.refs.front(), found.owner, depth + 1);
            if (name == "begin") given = PointedBy(given, depth + 1);
            if (given.IsKnown()) return given;
        }
    }
    if (type.arguments.size() >= 2 &&
        (type.name.find("map") != type.name.npos || type.name.find("Map") != type.name.npos)) {
        element.name = "pair";
        element.arguments = {type.arguments[0], type.arguments[1]};
        return element;
    }
    if (!type.arguments.empty()) return type.arguments.front();
    if (type.name == "string") element.name = "char";
    return element;
}

// What `*x` and `x->` give.
Type Resolver::PointedBy(const Type& type, int depth) {
    if (depth > deepest) return {};
    Type pointed = type;
    if (type.pointers > 0) {
        --pointed.pointers;
        return pointed;
    }
    if (type.IsClass()) {
        for (const std::string_view name : {"operator ->", "operator *"}) {
            const Found found = LookInClass(name, type, Wanted::Any, depth + 1);
            if (found.refs.empty()) continue;
            Type given = TypeOf(found.refs.front(), found.owner, depth + 1);
            if (!given.IsKnown()) continue;
            return name == "operator ->" ? PointedBy(given, depth + 1) : given;
        }
    }
    if (!type.arguments.empty()) return type.arguments.front();
    return {};
}

} // namespace ostraka::answers
