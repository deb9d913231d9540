#include <answers/resolve/Names.h>

#include <string>

namespace ostraka::answers {

namespace {

const Refs noRefs;

bool IsClassLike(FactKind kind) {
    return kind == FactKind::Class || kind == FactKind::Struct || kind == FactKind::Union ||
           kind == FactKind::Interface || kind == FactKind::Exception;
}

// The next part of "ns::List<int>::Node" without its arguments; steps behind it.
std::string_view NextPart(std::string_view& rest) {
    while (rest.starts_with(':') || rest.starts_with(' ')) rest.remove_prefix(1);
    std::size_t size = 0;
    while (size < rest.size() && TokenList::IsWordCharacter(rest[size])) ++size;
    const std::string_view part = rest.substr(0, size);
    std::size_t at = size;
    int depth = 0;
    for (; at < rest.size(); ++at) {
        if (rest[at] == '<') ++depth;
        if (rest[at] == '>') --depth;
        if (depth == 0 && rest[at] == ':') break;
    }
    rest.remove_prefix(at);
    return part;
}

} // namespace

int Names::Intern(std::string_view name) {
    const auto found = nameIds.find(name);
    if (found != nameIds.end()) return found->second;
    const std::string_view kept = texts.Keep(name);
    const int id = static_cast<int>(nameTexts.size());
    nameIds.emplace(kept, id);
    nameTexts.push_back(kept);
    byName.emplace_back();
    return id;
}

int Names::IdOf(std::string_view name) const {
    const auto found = nameIds.find(name);
    return found != nameIds.end() ? found->second : none;
}

int Names::MakeChild(int file, int entity, int name) {
    const auto [child, isNew] = children.try_emplace(Key(entity, name), static_cast<int>(entities.size()));
    if (isNew) entities.push_back({entity, name, {}, {}, {}});
    std::vector<int>& files = entities[static_cast<std::size_t>(child->second)].files;
    if (files.empty() || files.back() != file) files.push_back(file);
    return child->second;
}

int Names::MakeQualified(int file, int entity, std::string_view qualifier) {
    while (!qualifier.empty()) {
        const std::string_view part = NextPart(qualifier);
        if (part.empty()) break;
        entity = MakeChild(file, entity, Intern(part));
    }
    return entity;
}

// What has no name of its own belongs to what is around it, but for types that only a variable or a typedef
// names.
int Names::MakeEntity(int file, const FileFacts& facts, int scope, const std::vector<int>& of,
                      const std::vector<bool>& isNamedElsewhere) {
    const Scope& opened = facts.scopes[static_cast<std::size_t>(scope)];
    if (opened.parent < 0) return global;
    const int around = of[static_cast<std::size_t>(opened.parent)];
    const bool isNamed = opened.kind == ScopeKind::Namespace || opened.kind == ScopeKind::Class ||
                         opened.kind == ScopeKind::Enum;
    if (!isNamed || opened.declaration < 0) return around;
    const Declared& declaration = facts.declared[static_cast<std::size_t>(opened.declaration)];
    if (opened.kind == ScopeKind::Namespace)
        return declaration.Has(IsUnnamed) || declaration.Has(IsInline)
                   ? around
                   : MakeChild(file, around, Intern(declaration.name));
    const auto apart = [&](std::string_view name) {
        const std::string text =
            std::string(name) + "<" + std::to_string(file) + ":" + std::to_string(opened.declaration) + ">";
        return MakeChild(file, around, Intern(text));
    };
    if (declaration.Has(IsUnnamed)) {
        if (opened.kind == ScopeKind::Enum) return around;
        return isNamedElsewhere[static_cast<std::size_t>(opened.declaration)] ? apart("") : around;
    }
    if (declaration.Has(IsSpecialization)) return apart(declaration.name);
    return MakeChild(file, MakeQualified(file, around, declaration.qualifier), Intern(declaration.name));
}

void Names::Add(int file) {
    std::vector<int>& of = entitiesOfFile[file];
    if (!of.empty()) return;
    const FileFacts& facts = base.FactsOf(file);
    of.reserve(facts.scopes.size());
    std::vector<bool> isNamedElsewhere(facts.declared.size());
    for (const Declared& each : facts.declared)
        if (each.typeOf >= 0 && each.kind != FactKind::Enumerator)
            isNamedElsewhere[static_cast<std::size_t>(each.typeOf)] = true;
    for (int scope = 0; scope < static_cast<int>(facts.scopes.size()); ++scope)
        of.push_back(MakeEntity(file, facts, scope, of, isNamedElsewhere));
    for (int i = 0; i < static_cast<int>(facts.declared.size()); ++i) {
        const Declared& each = facts.declared[static_cast<std::size_t>(i)];
        if (each.kind == FactKind::Argument || each.kind == FactKind::TemplateParameter || each.name.empty())
            continue;
        const ScopeKind kind = facts.scopes[static_cast<std::size_t>(each.scope)].kind;
        if (kind == ScopeKind::Function || kind == ScopeKind::Block) continue;
        const int name = Intern(each.name);
        const int around = of[static_cast<std::size_t>(each.scope)];
        const DeclarationRef ref{file, i};
        if ((IsClassLike(each.kind) || each.kind == FactKind::Enum) && each.Has(HasBody) && each.body >= 0)
            entities[static_cast<std::size_t>(of[static_cast<std::size_t>(each.body)])].definitions.push_back(
                ref);
        if (each.kind == FactKind::Namespace) {
            if (each.body >= 0 && !each.Has(IsInline) && !each.Has(IsUnnamed))
                entities[static_cast<std::size_t>(of[static_cast<std::size_t>(each.body)])]
                    .openings.push_back(ref);
            continue;
        }
        byName[static_cast<std::size_t>(name)].push_back(ref);
        if (each.Has(IsSpecialization) && IsClassLike(each.kind)) continue;
        if (!each.qualifier.empty()) {
            const int scope = MakeQualified(file, around, each.qualifier);
            implemented[Key(scope, name)].push_back(ref);
            namedScopes[Key(ref.file, ref.index)] = scope;
            continue;
        }
        declared[Key(around, name)].push_back(ref);
        if (each.kind == FactKind::Enumerator && each.typeOf >= 0) {
            const Declared& owner = facts.declared[static_cast<std::size_t>(each.typeOf)];
            const int outer = of[static_cast<std::size_t>(owner.scope)];
            if (!owner.Has(IsScopedEnum) && outer != around) declared[Key(outer, name)].push_back(ref);
        }
    }
    for (int i = 0; i < static_cast<int>(facts.usings.size()); ++i) {
        const Using& each = facts.usings[static_cast<std::size_t>(i)];
        const ScopeKind kind = facts.scopes[static_cast<std::size_t>(each.scope)].kind;
        if (kind == ScopeKind::Function || kind == ScopeKind::Block) continue;
        usings[of[static_cast<std::size_t>(each.scope)]].push_back({file, i});
    }
    for (int i = 0; i < static_cast<int>(facts.macros.size()); ++i)
        macros[Intern(facts.macros[static_cast<std::size_t>(i)].name)].push_back({file, i});
}

int Names::EntityOf(int file, int scope) const {
    const auto found = entitiesOfFile.find(file);
    if (found == entitiesOfFile.end() || scope < 0 || scope >= static_cast<int>(found->second.size()))
        return global;
    return found->second[static_cast<std::size_t>(scope)];
}

int Names::ChildOf(int entity, std::string_view name) const {
    const int id = IdOf(name);
    if (id == none) return none;
    const auto child = children.find(Key(entity, id));
    return child != children.end() ? child->second : none;
}

int Names::NamedScopeOf(const DeclarationRef& ref) const {
    const auto found = namedScopes.find(Key(ref.file, ref.index));
    return found != namedScopes.end() ? found->second : none;
}

std::string_view Names::NameOf(int entity) const {
    const int name = entities[static_cast<std::size_t>(entity)].name;
    return name == none ? std::string_view() : TextOf(name);
}

std::string Names::QualifiedName(int entity) const {
    std::vector<std::string_view> parts;
    for (int at = entity; at > global; at = ParentOf(at)) parts.push_back(NameOf(at));
    std::string name;
    for (auto part = parts.rbegin(); part != parts.rend(); ++part)
        name.append(name.empty() ? "" : "::").append(*part);
    return name;
}

const Refs& Names::In(int entity, int name) const {
    const auto found = declared.find(Key(entity, name));
    return found != declared.end() ? found->second : noRefs;
}

const Refs& Names::All(int name) const {
    return name == none ? noRefs : byName[static_cast<std::size_t>(name)];
}

const Refs& Names::ImplementedFor(int entity, int name) const {
    const auto found = implemented.find(Key(entity, name));
    return found != implemented.end() ? found->second : noRefs;
}

const std::vector<Names::UsingRef>& Names::UsingsOf(int entity) const {
    static const std::vector<UsingRef> nothing;
    const auto found = usings.find(entity);
    return found != usings.end() ? found->second : nothing;
}

const std::vector<Names::MacroRef>& Names::MacrosOf(int name) const {
    static const std::vector<MacroRef> nothing;
    const auto found = macros.find(name);
    return found != macros.end() ? found->second : nothing;
}

} // namespace ostraka::answers
