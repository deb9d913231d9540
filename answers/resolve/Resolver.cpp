// Names are sought scope by scope from the place outwards. A first pass takes only what the file sees by its
// includes; where it finds nothing, a second one takes every file, since headers may be missing or be
// included by others first.

#include <answers/resolve/Resolver.h>

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace ostraka::answers {

namespace {

bool IsClassLike(FactKind kind) {
    return kind == FactKind::Class || kind == FactKind::Struct || kind == FactKind::Union ||
           kind == FactKind::Interface || kind == FactKind::Exception;
}

bool IsTypeLike(const Declared& declared) {
    return IsClassLike(declared.kind) || declared.kind == FactKind::Enum ||
           declared.kind == FactKind::Typedef || declared.kind == FactKind::NamespaceAlias ||
           declared.kind == FactKind::TemplateParameter || declared.kind == FactKind::Concept;
}

constexpr int mostWork = 20000; // steps for one question

} // namespace

bool Resolver::Open(int file) {
    if (openedFile == file) return true;
    openedFile = -1;
    if (!CodeBase::ReadBytes(base.PathOf(file), bytes)) return false;
    tokens = std::make_unique<TokenList>(bytes, base.DroppedWords());
    opened = ReadFacts(*tokens, Depth::Bodies, DialectOf(base.PathOf(file)));
    openedFile = file;

    const std::vector<int> seen = base.SeenFrom(file);
    for (const int each : seen) names.Add(each);
    visible.assign(static_cast<std::size_t>(base.FileCount()), 0);
    int order = 0;
    for (const int each : seen) visible[static_cast<std::size_t>(each)] = ++order;

    around.assign(static_cast<std::size_t>(tokens->Count()) + 1, -1);
    std::vector<int> open;
    for (int i = 0; i < tokens->Count(); ++i) {
        const Token& token = (*tokens)[i];
        while (!open.empty() && (*tokens)[open.back()].partner <= i) open.pop_back();
        around[static_cast<std::size_t>(i)] = open.empty() ? -1 : open.back();
        if (token.partner > i) open.push_back(i);
    }

    const FileFacts& shallow = base.FactsOf(file);
    openedEntities.assign(opened.scopes.size(), Names::global);
    for (std::size_t i = 1; i < opened.scopes.size(); ++i) {
        const Scope& scope = opened.scopes[i];
        const bool isLocal =
            scope.kind == ScopeKind::Block || scope.kind == ScopeKind::Function ||
            (scope.parent >= 0 &&
             opened.scopes[static_cast<std::size_t>(scope.parent)].kind >= ScopeKind::Function);
        openedEntities[i] = isLocal ? Names::none : names.EntityOf(file, shallow.ScopeAt(scope.begin));
    }

    declaredAt.clear();
    locals.clear();
    localUsings.clear();
    for (int i = 0; i < static_cast<int>(opened.usings.size()); ++i)
        localUsings[opened.usings[static_cast<std::size_t>(i)].scope].push_back(i);
    classesOfFunctions.clear();
    for (int i = 0; i < static_cast<int>(opened.declared.size()); ++i) {
        const Declared& each = opened.declared[static_cast<std::size_t>(i)];
        if (each.name.empty()) continue;
        declaredAt.try_emplace(static_cast<int>(each.at), i);
        const ScopeKind kind = opened.scopes[static_cast<std::size_t>(each.scope)].kind;
        if (kind == ScopeKind::Function || kind == ScopeKind::Block || kind == ScopeKind::Template ||
            openedEntities[static_cast<std::size_t>(each.scope)] == Names::none)
            locals[each.name].push_back(i);
    }
    return true;
}

void Resolver::TakeAllFiles() {
    if (std::exchange(hasAllFiles, true)) return;
    for (const int file : base.AllFiles()) names.Add(file);
}

const FileFacts& Resolver::FactsIn(int file) {
    return file == localFile ? opened : base.FactsOf(file);
}

const Declared& Resolver::At(const DeclarationRef& ref) {
    return FactsIn(ref.file).declared[static_cast<std::size_t>(ref.index)];
}

int Resolver::EntityAt(const Where& where) {
    if (where.file == localFile) return openedEntities[static_cast<std::size_t>(where.scope)];
    return names.EntityOf(where.file, where.scope);
}

bool Resolver::IsVisible(const DeclarationRef& ref) const {
    return ref.file == localFile || (static_cast<std::size_t>(ref.file) < visible.size() &&
                                     visible[static_cast<std::size_t>(ref.file)] > 0);
}

// Whether a file that doesn't see the declaration may mean it: not what another source keeps to itself.
bool Resolver::IsForOthers(const DeclarationRef& ref) {
    if (IsVisible(ref)) return true;
    const Declared& declared = At(ref);
    const bool isOwn =
        declared.Has(IsStatic) &&
        FactsIn(ref.file).scopes[static_cast<std::size_t>(declared.scope)].kind <= ScopeKind::Namespace;
    return !isOwn || !IsCompiledPath(base.PathOf(ref.file));
}

Refs Resolver::VisibleOf(const Refs& refs, Wanted wanted) {
    Refs kept;
    for (const DeclarationRef& ref : refs) {
        const bool isSeen = IsVisible(ref);
        if (strict && !isSeen) continue;
        const Declared& declared = At(ref);
        if (wanted == Wanted::Types && !IsTypeLike(declared)) continue;
        if (declared.Has(IsConstructor) || declared.Has(IsDestructor) || declared.kind == FactKind::Label)
            continue;
        if (!isSeen && !IsForOthers(ref)) continue;
        kept.push_back(ref);
    }
    return kept;
}

Resolver::Found Resolver::LookUp(std::string_view name, Where where, Wanted wanted, int depth) {
    Found found;
    if (depth > deepest) return found;
    const FileFacts& facts = FactsIn(where.file);
    int reached = Names::none; // the entity whose scopes were looked into
    for (int scope = where.scope; scope >= 0; scope = facts.scopes[static_cast<std::size_t>(scope)].parent) {
        const Scope& each = facts.scopes[static_cast<std::size_t>(scope)];
        if (++work > mostWork) return found;
        if (each.kind >= ScopeKind::Template) {
            if (LookInBody(name, where, scope, wanted, found, depth)) return found;
            if (each.kind != ScopeKind::Function) continue;
            // The class of a method that is implemented outside of it, and what is around that.
            int entity = ClassOfFunction(where, scope, depth + 1);
            const int outer = EntityAt({where.file, each.parent, where.at});
            for (; entity > Names::global && entity != outer; entity = names.ParentOf(entity)) {
                Type owner;
                owner.entity = entity;
                found = LookIn(name, owner, wanted, depth + 1);
                if (!found.IsNone()) return found;
            }
            continue;
        }
        const int entity = EntityAt({where.file, scope, where.at});
        if (entity == Names::none) { // a class in a body
            if (LookInBody(name, where, scope, wanted, found, depth)) return found;
            continue;
        }
        if (each.kind == ScopeKind::Class) {
            Type owner;
            owner.entity = entity;
            found = LookInClass(name, owner, wanted, depth + 1);
        } else if (entity != reached) {
            // `namespace a::b` opens two scopes; a class that is defined outside sees what is around its
            // name.
            for (int at = entity; at != Names::none; at = names.ParentOf(at)) {
                found = LookInNamespace(name, at, wanted, depth + 1);
                if (!found.IsNone()) return found;
            }
            reached = entity;
            break;
        }
        if (!found.IsNone()) return found;
    }
    if (reached == Names::none) found = LookInNamespace(name, Names::global, wanted, depth + 1);
    return found;
}

// Arguments, template parameters and locals of one scope, as far as they are declared before the place.
bool Resolver::LookInBody(std::string_view name, const Where& where, int scope, Wanted wanted, Found& found,
                          int depth) {
    const FileFacts& facts = FactsIn(where.file);
    if (where.file == localFile) {
        const auto declared = locals.find(name);
        if (declared != locals.end()) {
            for (auto i = declared->second.rbegin(); i != declared->second.rend(); ++i) {
                const Declared& each = facts.declared[static_cast<std::size_t>(*i)];
                if (each.scope != scope || (wanted == Wanted::Types && !IsTypeLike(each)) ||
                    each.kind == FactKind::Label)
                    continue;
                const bool inClass = facts.scopes[static_cast<std::size_t>(scope)].kind == ScopeKind::Class;
                if (each.at > where.at && !inClass && each.kind != FactKind::Argument) continue;
                found.refs = {{localFile, *i}};
                return true;
            }
        }
    } else {
        const Scope& each = facts.scopes[static_cast<std::size_t>(scope)];
        for (std::size_t i = static_cast<std::size_t>(each.firstDeclared);
             i < facts.declared.size() && facts.declared[i].scope == scope; ++i) {
            const Declared& declared = facts.declared[i];
            if (declared.name != name || (wanted == Wanted::Types && !IsTypeLike(declared))) continue;
            found.refs = {{where.file, static_cast<int>(i)}};
            return true;
        }
    }
    return LookInUsings(name, where, scope, wanted, found, depth);
}

// `using namespace std;` in a body
bool Resolver::LookInUsings(std::string_view name, const Where& where, int scope, Wanted wanted, Found& found,
                            int depth) {
    const auto usings = localUsings.find(scope);
    const int parent = opened.scopes[static_cast<std::size_t>(scope)].parent;
    if (where.file != localFile || usings == localUsings.end() || parent < 0) return false;
    for (const int i : usings->second) {
        const Using& each = opened.usings[static_cast<std::size_t>(i)];
        if (each.at > where.at || ++work > mostWork) break;
        const std::size_t colons = each.name.rfind("::");
        if (!each.isNamespace && (colons == each.name.npos || each.name.substr(colons + 2) != name)) continue;
        const std::string_view target = each.isNamespace ? each.name : each.name.substr(0, colons);
        const Type owner = TypeFromText(target, {localFile, parent, each.at}, nullptr, depth + 4);
        if (owner.entity == Names::none) continue;
        found = LookIn(name, owner, wanted, depth + 4);
        if (!found.IsNone()) return true;
    }
    return false;
}

Resolver::Found Resolver::LookInNamespace(std::string_view name, int entity, Wanted wanted, int depth) {
    Found found;
    const int id = names.IdOf(name);
    if (id != Names::none) found.refs = VisibleOf(names.In(entity, id), wanted);
    if (found.refs.empty()) {
        const int child = names.ChildOf(entity, name);
        if (child != Names::none && IsNamed(child)) found.entity = child;
    }
    const Search search{name, entity, wanted};
    if (!found.IsNone() || depth > deepest || names.UsingsOf(entity).empty() ||
        std::find(underWay.begin(), underWay.end(), search) != underWay.end())
        return found;
    underWay.push_back(search);
    found = LookInUsed(search, depth);
    underWay.pop_back();
    return found;
}

// Each namespace once that usings of this one let in.
Resolver::Found Resolver::LookInUsed(const Search& search, int depth) {
    const auto [name, entity, wanted] = search;
    std::unordered_set<std::string_view> met;
    for (const Names::UsingRef& ref : names.UsingsOf(entity)) {
        if (strict && !IsVisible({ref.file, 0})) continue;
        if (++work > mostWork) break;
        const FileFacts& facts = base.FactsOf(ref.file);
        const Using& each = facts.usings[static_cast<std::size_t>(ref.index)];
        std::string_view target = each.name;
        if (!each.isNamespace) {
            const std::size_t colons = target.rfind("::");
            if (colons == target.npos || target.substr(colons + 2) != name) continue;
            target = target.substr(0, colons);
        }
        if (!met.insert(target).second) continue;
        Type owner;
        owner.entity = Names::global;
        if (!target.empty())
            owner = TypeFromText(target, {ref.file, each.scope, each.at}, nullptr, depth + 8);
        if (owner.entity == Names::none || owner.entity == entity) continue;
        Found found = LookIn(name, owner, wanted, depth + 8);
        if (!found.IsNone()) return found;
    }
    return {};
}

Resolver::Found Resolver::LookIn(std::string_view name, const Type& owner, Wanted wanted, int depth) {
    if (owner.entity == Names::none) return {};
    if (owner.entity == Names::global || !names.OpeningsOf(owner.entity).empty())
        return LookInNamespace(name, owner.entity, wanted, depth);
    return LookInClass(name, owner, wanted, depth);
}

// The class itself first, then its bases, level by level.
Resolver::Found Resolver::LookInClass(std::string_view name, const Type& owner, Wanted wanted, int depth) {
    if (owner.localClass >= 0) return LookInLocalClass(name, owner.localClass, wanted, depth);
    Found found;
    const int id = names.IdOf(name);
    std::vector<Type> level = {owner};
    std::vector<int> met;
    for (std::size_t next = 0; next < level.size(); ++next) {
        const Type type = level[next];
        if (++work > mostWork) break;
        if (id != Names::none) found.refs = VisibleOf(names.In(type.entity, id), wanted);
        if (found.refs.empty() && id != Names::none) // declared by a macro, and implemented at hand
            found.refs = VisibleOf(names.ImplementedFor(type.entity, id), wanted);
        if (found.refs.empty()) {
            const int child = names.ChildOf(type.entity, name);
            if (child != Names::none && IsNamed(child)) found.entity = child;
        }
        // A class is called by its own name in itself.
        if (!found.IsNone()) {
            found.owner = type;
            return found;
        }
        if (std::find(met.begin(), met.end(), type.entity) != met.end()) continue;
        met.push_back(type.entity);
        for (const Names::UsingRef& ref : names.UsingsOf(type.entity)) {
            const Using& each = base.FactsOf(ref.file).usings[static_cast<std::size_t>(ref.index)];
            const std::size_t colons = each.name.rfind("::");
            if (each.isNamespace || colons == each.name.npos || each.name.substr(colons + 2) != name)
                continue;
            const Type target =
                TypeFromText(each.name.substr(0, colons), {ref.file, each.scope, each.at}, &type, depth + 4);
            if (target.IsClass() && target.entity != type.entity) level.push_back(target);
        }
        if (depth < deepest)
            for (Type& each : BasesOf(type, depth + 1)) level.push_back(std::move(each));
    }
    return found;
}

Resolver::Found Resolver::LookInLocalClass(std::string_view name, int scope, Wanted wanted, int depth) {
    Found found;
    if (const auto declared = locals.find(name); declared != locals.end())
        for (const int each : declared->second)
            if (opened.declared[static_cast<std::size_t>(each)].scope == scope)
                found.refs.push_back({localFile, each});
    const int declaration = opened.scopes[static_cast<std::size_t>(scope)].declaration;
    if (!found.refs.empty() || declaration < 0 || depth > deepest) return found;
    const Declared& owner = opened.declared[static_cast<std::size_t>(declaration)];
    for (int i = 0; i < owner.bases && found.IsNone(); ++i) {
        const Base& each = opened.bases[static_cast<std::size_t>(owner.firstBase + i)];
        const Type type = TypeFromText(each.name, {localFile, owner.scope, owner.at}, nullptr, depth + 1);
        if (type.HasMembers()) found = LookInClass(name, type, wanted, depth + 1);
    }
    return found;
}

// Whether what is looked at names the entity, though no declaration of it is at hand.
bool Resolver::IsNamed(int entity) const {
    const std::vector<int>& files = names.FilesOf(entity);
    return !strict || std::any_of(files.begin(), files.end(), [this](int file) {
        return IsVisible({file, 0});
    });
}

// Not what other files say is looked at while only what is seen counts, even where it is known already.
bool Resolver::IsMacro(std::string_view name) const {
    const auto& macros = names.MacrosOf(names.IdOf(name));
    return std::any_of(macros.begin(), macros.end(), [this](const Names::MacroRef& ref) {
        return !strict || IsVisible({ref.file, 0});
    });
}

DeclarationRef Resolver::DefinitionOf(int entity) {
    if (entity <= Names::global) return {};
    const Refs& definitions = names.DefinitionsOf(entity);
    for (const DeclarationRef& ref : definitions)
        if (IsVisible(ref)) return ref;
    return strict || definitions.empty() ? DeclarationRef() : definitions.front();
}

std::vector<Type> Resolver::BasesOf(const Type& type, int depth) {
    std::vector<Type> bases;
    const DeclarationRef ref = DefinitionOf(type.entity);
    if (ref.IsNone()) return bases;
    const FileFacts& facts = base.FactsOf(ref.file);
    const Declared& declared = facts.declared[static_cast<std::size_t>(ref.index)];
    const Where where{ref.file, facts.scopes[static_cast<std::size_t>(declared.body)].parent, declared.at};
    for (int i = 0; i < declared.bases; ++i) {
        const Base& each = facts.bases[static_cast<std::size_t>(declared.firstBase + i)];
        Type resolved = TypeFromText(each.name, where, &type, depth + 1);
        if (resolved.IsClass() && resolved.entity != type.entity) bases.push_back(std::move(resolved));
    }
    return bases;
}

// The entity that the qualifier of a function names, in whose body the place lies.
int Resolver::ClassOfFunction(const Where& where, int scope, int depth) {
    const FileFacts& facts = FactsIn(where.file);
    const Scope& function = facts.scopes[static_cast<std::size_t>(scope)];
    if (function.declaration < 0) return Names::none;
    const Declared& declared = facts.declared[static_cast<std::size_t>(function.declaration)];
    if (declared.qualifier.empty()) return Names::none;
    const std::uint64_t key = (static_cast<std::uint64_t>(static_cast<std::uint32_t>(where.file)) << 33) |
                              (static_cast<std::uint64_t>(static_cast<std::uint32_t>(scope)) << 1) |
                              (strict ? 1U : 0U);
    const auto known = classesOfFunctions.find(key);
    if (known != classesOfFunctions.end()) return known->second;
    const Type type =
        TypeFromText(declared.qualifier, {where.file, function.parent, declared.begin}, nullptr, depth);
    return classesOfFunctions[key] = type.entity;
}

Type Resolver::ClassAround(const Where& where, int depth) {
    const FileFacts& facts = FactsIn(where.file);
    Type type;
    for (int scope = where.scope; scope >= 0; scope = facts.scopes[static_cast<std::size_t>(scope)].parent) {
        const Scope& each = facts.scopes[static_cast<std::size_t>(scope)];
        if (each.kind == ScopeKind::Function) type.entity = ClassOfFunction(where, scope, depth);
        if (each.kind == ScopeKind::Class) type.entity = EntityAt({where.file, scope, where.at});
        if (type.IsClass()) return type;
        type.entity = Names::none;
    }
    return type;
}

} // namespace ostraka::answers
