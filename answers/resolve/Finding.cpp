#include <answers/resolve/Finding.h>

#include <algorithm>

namespace ostraka::answers {

namespace {

// "gui::Frame", whichever way the declaration says where it belongs.
std::string ScopeOf(const Names& names, const DeclarationRef& ref, const Declared& declared) {
    const int named = names.NamedScopeOf(ref);
    const int entity = named != Names::none ? named : names.EntityOf(ref.file, declared.scope);
    return entity > Names::global ? names.QualifiedName(entity) : std::string();
}

bool EndsWithScope(std::string_view whole, std::string_view scope) {
    return scope.empty() || whole == scope ||
           (whole.size() > scope.size() + 2 && whole.ends_with(scope) &&
            whole.substr(whole.size() - scope.size() - 2, 2) == "::");
}

FoundDeclaration Describe(const FileFacts& facts, const DeclarationRef& ref, const Declared& declared,
                          std::string scope) {
    FoundDeclaration found;
    found.answer.file = ref.file;
    found.answer.at = declared.at;
    found.answer.kind = declared.kind;
    found.answer.isCertain = true;
    found.answer.isMember = facts.scopes[static_cast<std::size_t>(declared.scope)].kind == ScopeKind::Class ||
                            !declared.qualifier.empty();
    found.answer.name = declared.name;
    found.answer.scope = std::move(scope);
    found.answer.type = declared.type;
    found.hasBody = declared.Has(HasBody);
    if (declared.kind == FactKind::Function) found.signature = SignatureText(facts, declared);
    return found;
}

} // namespace

std::string SignatureText(const FileFacts& facts, const Declared& function) {
    std::string text = "(";
    if (function.body >= 0) {
        const auto first =
            static_cast<std::size_t>(facts.scopes[static_cast<std::size_t>(function.body)].firstDeclared);
        for (std::size_t i = first; i < facts.declared.size() && facts.declared[i].scope == function.body &&
                                    facts.declared[i].kind == FactKind::Argument;
             ++i) {
            if (i > first) text += ", ";
            text += facts.declared[i].type;
            if (!facts.declared[i].name.empty()) text.append(" ").append(facts.declared[i].name);
        }
    }
    if (function.Has(IsVariadic)) text += text.size() > 1 ? ", ..." : "...";
    text += ')';
    if (function.Has(IsConstMethod)) text += " const";
    if (function.Has(IsPure)) text += " = 0";
    return text;
}

std::vector<FoundDeclaration> FindDeclarations(CodeBase& base, Names& names, std::string_view name,
                                               bool byPrefix) {
    for (const int file : base.AllFiles()) names.Add(file);
    const std::size_t colons = name.rfind("::");
    const std::string_view last = colons == name.npos ? name : name.substr(colons + 2);
    const std::string_view scope = colons == name.npos ? std::string_view() : name.substr(0, colons);
    std::vector<int> ids;
    if (byPrefix) {
        for (int id = 0; id < names.NameCount(); ++id)
            if (names.TextOf(id).starts_with(last)) ids.push_back(id);
    } else if (const int id = names.IdOf(last); id != Names::none) {
        ids.push_back(id);
    }
    std::vector<FoundDeclaration> all;
    for (const int id : ids) {
        for (const DeclarationRef& ref : names.All(id)) {
            const FileFacts& facts = base.FactsOf(ref.file);
            const Declared& declared = facts.declared[static_cast<std::size_t>(ref.index)];
            std::string whole = ScopeOf(names, ref, declared);
            if (EndsWithScope(whole, scope)) all.push_back(Describe(facts, ref, declared, std::move(whole)));
        }
        if (!scope.empty()) continue;
        for (const Names::MacroRef& ref : names.MacrosOf(id)) {
            const MacroDefined& macro = base.FactsOf(ref.file).macros[static_cast<std::size_t>(ref.index)];
            FoundDeclaration found;
            found.answer.file = ref.file;
            found.answer.at = macro.at;
            found.answer.isMacro = found.answer.isCertain = true;
            found.answer.name = macro.name;
            found.answer.type = macro.value;
            found.signature = macro.arguments;
            all.push_back(std::move(found));
        }
    }
    std::sort(all.begin(), all.end(), [&](const FoundDeclaration& a, const FoundDeclaration& b) {
        if (a.answer.file != b.answer.file) return base.PathOf(a.answer.file) < base.PathOf(b.answer.file);
        return a.answer.at < b.answer.at;
    });
    return all;
}

} // namespace ostraka::answers
