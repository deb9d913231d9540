// A file is looked at only if its bytes hold the name as a word. In it each such name is asked for what it
// means: a use is certain where that is one of the declarations, possible where nothing tells what it is.

#include <answers/resolve/Uses.h>

#include <algorithm>

namespace ostraka::answers {

std::string_view NameOf(UsePart part) {
    constexpr std::string_view parts[] = {"read", "call", "type", "base", "declaration"};
    return parts[static_cast<int>(part)];
}

namespace {

// A type's text without what two declarations of one function may write in different ways: scopes, blanks,
// and a const of the argument itself.
std::string Comparable(std::string_view type) {
    std::string text;
    for (std::size_t at = 0; at < type.size();) {
        std::size_t past = at;
        while (past < type.size() && TokenList::IsWordCharacter(type[past])) ++past;
        if (past == at) {
            if (type[at] != ' ' && type[at] != ':') text += type[at];
            ++at;
            continue;
        }
        if (!type.substr(past).starts_with("::")) text += type.substr(at, past - at);
        at = past;
    }
    if (text.ends_with("const")) text.resize(text.size() - 5);
    if (text.starts_with("const") && text.find_first_of("*&") == text.npos) text.erase(0, 5);
    return text;
}

} // namespace

bool HoldsWord(std::string_view text, std::string_view word) {
    for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at + 1)) {
        const bool begins = at == 0 || !TokenList::IsWordCharacter(text[at - 1]);
        const std::size_t past = at + word.size();
        if (begins && (past == text.size() || !TokenList::IsWordCharacter(text[past]))) return true;
    }
    return false;
}

// Whoever declares the name holds it.
void UseSearch::TakeFilesWith(std::string_view name) {
    std::string bytes;
    for (const int file : base.AllFiles())
        if (!names.Has(file) && CodeBase::ReadBytes(base.PathOf(file), bytes) && HoldsWord(bytes, name))
            names.Add(file);
}

std::vector<NamedPlace> UseSearch::DeclarationsOf(std::string_view name) {
    const std::size_t colons = name.rfind("::");
    const std::string_view last = colons == name.npos ? name : name.substr(colons + 2);
    TakeFilesWith(last);
    const std::string scope(colons == name.npos ? std::string_view() : name.substr(0, colons));
    std::vector<NamedPlace> places;
    for (const DeclarationRef& ref : names.All(names.IdOf(last))) {
        const Declared& declared = base.FactsOf(ref.file).declared[static_cast<std::size_t>(ref.index)];
        if (!scope.empty()) {
            std::string whole = names.QualifiedName(names.EntityOf(ref.file, declared.scope));
            if (!declared.qualifier.empty())
                whole += (whole.empty() ? "" : "::") + std::string(declared.qualifier);
            const bool ends =
                whole == scope || (whole.size() > scope.size() + 1 && whole.ends_with("::" + scope));
            if (!ends) continue;
        }
        places.push_back({ref.file, declared.at});
    }
    std::sort(places.begin(), places.end());
    return places;
}

// Whether two functions of one name and scope can't be the same: they take another number of arguments, or
// others.
bool UseSearch::IsOverloadOf(const DeclarationRef& a, const DeclarationRef& b) {
    const auto typesOf = [this](const DeclarationRef& ref) {
        const FileFacts& facts = base.FactsOf(ref.file);
        const Declared& function = facts.declared[static_cast<std::size_t>(ref.index)];
        std::vector<std::string> types;
        if (function.kind != FactKind::Function || function.body < 0) return types;
        const auto first =
            static_cast<std::size_t>(facts.scopes[static_cast<std::size_t>(function.body)].firstDeclared);
        for (std::size_t i = first; i < facts.declared.size() && facts.declared[i].scope == function.body &&
                                    facts.declared[i].kind == FactKind::Argument;
             ++i)
            types.push_back(Comparable(facts.declared[i].type));
        types.emplace_back(function.Has(IsConstMethod) ? "const" : "");
        return types;
    };
    return typesOf(a) != typesOf(b);
}

// Whether two declarations of one whole name in several files are of two things, as in programs that lie side
// by side: each with a body of its own, or known to its own file alone.
bool UseSearch::IsOfAnother(const DeclarationRef& a, const DeclarationRef& b, int entity) {
    if (a.file == b.file) return false;
    const auto declaredAt = [this](const DeclarationRef& ref) -> const Declared& {
        return base.FactsOf(ref.file).declared[static_cast<std::size_t>(ref.index)];
    };
    const auto isInBody = [&](const DeclarationRef& ref) {
        const Scope& scope = base.FactsOf(ref.file).scopes[static_cast<std::size_t>(declaredAt(ref).scope)];
        const bool isPart = scope.kind == ScopeKind::Class || scope.kind == ScopeKind::Enum;
        return isPart && declaredAt(ref).qualifier.empty();
    };
    const Declared& one = declaredAt(a);
    const Declared& other = declaredAt(b);
    if (one.Has(HasBody) && other.Has(HasBody) && one.kind != FactKind::Namespace) return true;
    if (one.kind == FactKind::Typedef && other.kind == FactKind::Typedef) return one.type != other.type;
    if (isInBody(a) && isInBody(b)) return true;
    if (isInBody(a) != isInBody(b)) {
        if (names.DefinitionsOf(entity).size() < 2) return false;
        const int outside = isInBody(a) ? b.file : a.file;
        const std::vector<int> seen = base.SeenFrom(outside);
        return std::find(seen.begin(), seen.end(), isInBody(a) ? a.file : b.file) == seen.end();
    }
    if (!one.qualifier.empty() || !other.qualifier.empty()) return false;
    if (one.kind == FactKind::Variable && !one.Has(IsExtern) && !other.Has(IsExtern)) return true;
    const bool isOfFile = (one.Has(IsStatic) && IsCompiledPath(base.PathOf(a.file))) ||
                          (other.Has(IsStatic) && IsCompiledPath(base.PathOf(b.file)));
    return isOfFile && (one.kind == FactKind::Variable || one.kind == FactKind::Function);
}

std::vector<NamedPlace> UseSearch::AllOf(const PlaceAnswer& answer) {
    std::vector<NamedPlace> places = {{answer.file, answer.at}};
    if (answer.isMacro) return places;
    names.Add(answer.file);
    if (answer.kind != FactKind::Argument && answer.kind != FactKind::TemplateParameter)
        TakeFilesWith(answer.name);
    const int name = names.IdOf(answer.name);
    DeclarationRef meant;
    for (const DeclarationRef& ref : names.All(name))
        if (ref.file == answer.file &&
            base.FactsOf(ref.file).declared[static_cast<std::size_t>(ref.index)].at == answer.at)
            meant = ref;
    if (meant.IsNone()) return places; // a local
    const Declared& declaration = base.FactsOf(meant.file).declared[static_cast<std::size_t>(meant.index)];
    const int entity = declaration.qualifier.empty() ? names.EntityOf(meant.file, declaration.scope)
                                                     : names.NamedScopeOf(meant);
    if (entity == Names::none) return places;
    Refs all = names.In(entity, name);
    const Refs& implemented = names.ImplementedFor(entity, name);
    all.insert(all.end(), implemented.begin(), implemented.end());
    const bool isFunction = declaration.kind == FactKind::Function;
    for (const DeclarationRef& ref : all) {
        const Declared& declared = base.FactsOf(ref.file).declared[static_cast<std::size_t>(ref.index)];
        if (isFunction != (declared.kind == FactKind::Function)) continue;
        if (isFunction && all.size() > 2 && IsOverloadOf(meant, ref)) continue;
        if (IsOfAnother(meant, ref, entity)) continue;
        places.push_back({ref.file, declared.at});
    }
    return places;
}

std::vector<NamedPlace> UseSearch::MeantAt(int file, std::uint32_t at) {
    std::vector<NamedPlace> places;
    if (!resolver.Open(file)) return places;
    for (const PlaceAnswer& answer : resolver.Ask(at)) {
        const std::vector<NamedPlace> all = AllOf(answer);
        places.insert(places.end(), all.begin(), all.end());
    }
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    return places;
}

std::vector<Use> UseSearch::Find(const std::vector<NamedPlace>& declarations) {
    std::vector<Use> uses;
    if (declarations.empty()) return uses;
    std::string bytes;
    CodeBase::ReadBytes(base.PathOf(declarations.front().file), bytes);
    const std::size_t begin = declarations.front().at;
    std::size_t past = begin;
    if (begin < bytes.size() && bytes[begin] == '~') ++past;
    while (past < bytes.size() && TokenList::IsWordCharacter(bytes[past])) ++past;
    const std::string name = bytes.substr(begin, past - begin);
    if (name.empty()) return uses;
    std::vector<int> files = base.AllFiles();
    for (const NamedPlace& each : declarations)
        if (std::find(files.begin(), files.end(), each.file) == files.end()) files.push_back(each.file);
    for (const int file : files)
        if (CodeBase::ReadBytes(base.PathOf(file), bytes) && HoldsWord(bytes, name))
            FindIn(file, name, declarations, uses);
    std::sort(uses.begin(), uses.end(), [this](const Use& a, const Use& b) {
        return a.file != b.file ? base.PathOf(a.file) < base.PathOf(b.file) : a.at < b.at;
    });
    return uses;
}

void UseSearch::FindIn(int file, std::string_view name, const std::vector<NamedPlace>& wanted,
                       std::vector<Use>& uses) {
    if (!resolver.Open(file)) return;
    const TokenList& tokens = resolver.Tokens();
    for (int i = 0; i < tokens.Count(); ++i) {
        if (tokens[i].kind != TokenKind::Word || tokens.TextOf(i) != name) continue;
        const std::uint32_t at = tokens[i].begin;
        const std::vector<PlaceAnswer> answers = resolver.Ask(at);
        bool isMeant = false;
        bool isCertain = true; // all that the place may mean is
        for (const PlaceAnswer& answer : answers) {
            const bool isWanted =
                std::binary_search(wanted.begin(), wanted.end(), NamedPlace{answer.file, answer.at});
            isMeant = isMeant || isWanted;
            isCertain = isCertain && answer.isCertain && isWanted;
        }
        if (!isMeant && !answers.empty()) continue;
        Use use;
        use.file = file;
        use.at = at;
        use.place = resolver.Opened().PlaceOf(at);
        use.isCertain = isMeant && isCertain;
        const bool declares = std::binary_search(wanted.begin(), wanted.end(), NamedPlace{file, at});
        const bool isType = isMeant && answers.front().kind <= FactKind::Typedef &&
                            !answers.front().isMacro && answers.front().kind != FactKind::Enumerator;
        if (declares) {
            use.part = UsePart::Declaration;
        } else if (isType) {
            use.part = resolver.IsBaseAt(at) ? UsePart::Base : UsePart::Type;
        } else if (tokens[std::min(i + 1, tokens.Count())].Is('(')) {
            use.part = UsePart::Call;
        }
        uses.push_back(use);
    }
}

} // namespace ostraka::answers
