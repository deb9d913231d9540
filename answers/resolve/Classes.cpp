#include <answers/resolve/Classes.h>

#include <algorithm>

namespace ostraka::answers {

namespace {

bool IsClassLike(FactKind kind) {
    return kind == FactKind::Class || kind == FactKind::Struct || kind == FactKind::Union ||
           kind == FactKind::Interface || kind == FactKind::Exception;
}

bool EndsWithName(std::string_view whole, std::string_view name) {
    return whole == name || (whole.size() > name.size() + 2 && whole.ends_with(name) &&
                             whole.substr(whole.size() - name.size() - 2, 2) == "::");
}

std::string_view WithoutArguments(std::string_view name) {
    return name.substr(0, name.find('<'));
}

} // namespace

std::string_view LastName(std::string_view name) {
    name = WithoutArguments(name);
    const std::size_t colons = name.rfind("::");
    return colons == name.npos ? name : name.substr(colons + 2);
}

ClassList::ClassList(CodeBase& known, Names& allNames, Resolver& asked, const std::vector<int>& files,
                     bool withLocals) {
    for (const int file : files) allNames.Add(file);
    for (const int file : files) {
        const FileFacts& facts = known.FactsOf(file);
        for (int i = 0; i < static_cast<int>(facts.declared.size()); ++i) {
            const Declared& declared = facts.declared[static_cast<std::size_t>(i)];
            if (!IsClassLike(declared.kind) || !declared.Has(HasBody) || declared.name.empty() ||
                declared.body < 0)
                continue;
            ClassEntry entry;
            entry.ref = {file, i};
            entry.entity = allNames.EntityOf(file, declared.body);
            entry.kind = declared.kind;
            entry.isTemplate = declared.Has(IsTemplate);
            const int around = allNames.ParentOf(entry.entity);
            entry.name = around > Names::global ? allNames.QualifiedName(around) + "::" : "";
            entry.name += declared.name;
            entry.begin = declared.begin;
            entry.at = declared.at;
            const std::vector<Type> types = asked.BasesOfClass(entry.ref);
            for (int b = 0; b < declared.bases; ++b) {
                const Base& base = facts.bases[static_cast<std::size_t>(declared.firstBase + b)];
                entry.bases.push_back({std::string(base.name), base.access, base.isVirtual,
                                       types[static_cast<std::size_t>(b)].entity});
            }
            entries.push_back(std::move(entry));
        }
        if (withLocals) AddLocals(known, file);
    }
    std::sort(entries.begin(), entries.end(), [&](const ClassEntry& a, const ClassEntry& b) {
        if (a.name != b.name) return a.name < b.name;
        if (a.ref.file != b.ref.file) return known.PathOf(a.ref.file) < known.PathOf(b.ref.file);
        return a.at < b.at;
    });
    for (int i = 0; i < static_cast<int>(entries.size()); ++i) {
        const ClassEntry& entry = entries[static_cast<std::size_t>(i)];
        if (entry.entity > Names::global) ofEntity[entry.entity].push_back(i);
        for (const ClassBase& base : entry.bases)
            if (base.entity > Names::global) derivedOf[base.entity].push_back(i);
    }
}

// Classes in the bodies of functions, which nobody outside can mean.
void ClassList::AddLocals(CodeBase& known, int file) {
    std::string bytes;
    if (!CodeBase::ReadBytes(known.PathOf(file), bytes)) return;
    const FileFacts facts =
        ReadFacts(TokenList(bytes, known.DroppedWords()), Depth::Bodies, DialectOf(known.PathOf(file)));
    std::vector<bool> isLocal(facts.scopes.size());
    for (std::size_t i = 1; i < facts.scopes.size(); ++i)
        isLocal[i] = facts.scopes[i].kind >= ScopeKind::Function ||
                     isLocal[static_cast<std::size_t>(facts.scopes[i].parent)];
    for (const Declared& declared : facts.declared) {
        if (!IsClassLike(declared.kind) || !declared.Has(HasBody) || declared.name.empty() ||
            !isLocal[static_cast<std::size_t>(declared.scope)])
            continue;
        ClassEntry entry;
        entry.ref = {file, -1};
        entry.kind = declared.kind;
        entry.name = declared.name;
        entry.begin = declared.begin;
        entry.at = declared.at;
        for (int b = 0; b < declared.bases; ++b) {
            const Base& each = facts.bases[static_cast<std::size_t>(declared.firstBase + b)];
            entry.bases.push_back({std::string(each.name), each.access, each.isVirtual, Names::none});
        }
        entries.push_back(std::move(entry));
    }
}

std::vector<int> ClassList::Find(std::string_view name) const {
    std::vector<int> found;
    for (int i = 0; i < static_cast<int>(entries.size()); ++i)
        if (EndsWithName(entries[static_cast<std::size_t>(i)].name, name)) found.push_back(i);
    return found;
}

bool ClassList::Means(const ClassBase& base, std::string_view name) const {
    if (base.entity > Names::global && ofEntity.contains(base.entity)) return false; // told by its entity
    return EndsWithName(WithoutArguments(base.name), name) || base.name == name;
}

bool ClassList::IsBase(std::string_view name) const {
    return std::any_of(entries.begin(), entries.end(), [&](const ClassEntry& entry) {
        return std::any_of(entry.bases.begin(), entry.bases.end(), [&](const ClassBase& base) {
            return EndsWithName(WithoutArguments(base.name), name);
        });
    });
}

std::vector<int> ClassList::DerivedFrom(std::string_view name) const {
    std::vector<bool> isFound(entries.size());
    std::vector<int> waiting;
    const auto add = [&](int i) {
        if (isFound[static_cast<std::size_t>(i)]) return;
        isFound[static_cast<std::size_t>(i)] = true;
        waiting.push_back(i);
    };
    for (const int i : Find(name))
        for (const int below : Below(i)) add(below);
    for (int i = 0; i < static_cast<int>(entries.size()); ++i)
        for (const ClassBase& base : entries[static_cast<std::size_t>(i)].bases)
            if (Means(base, name)) add(i);
    while (!waiting.empty()) {
        const int next = waiting.back();
        waiting.pop_back();
        for (const int below : Below(next)) add(below);
    }
    std::vector<int> found;
    for (int i = 0; i < static_cast<int>(entries.size()); ++i)
        if (isFound[static_cast<std::size_t>(i)]) found.push_back(i);
    return found;
}

std::vector<int> ClassList::Below(int entry) const {
    if (entries[static_cast<std::size_t>(entry)].entity <= Names::global) return {};
    const auto below = derivedOf.find(entries[static_cast<std::size_t>(entry)].entity);
    return below != derivedOf.end() ? below->second : std::vector<int>();
}

std::vector<int> ClassList::Tops() const {
    std::vector<int> tops;
    std::vector<bool> isReached(entries.size());
    const auto reach = [&](int top) {
        std::vector<int> waiting = {top};
        while (!waiting.empty()) {
            const int next = waiting.back();
            waiting.pop_back();
            if (isReached[static_cast<std::size_t>(next)]) continue;
            isReached[static_cast<std::size_t>(next)] = true;
            for (const int below : Below(next)) waiting.push_back(below);
        }
    };
    for (const bool withBases : {false, true})
        for (int i = 0; i < static_cast<int>(entries.size()); ++i) {
            if (isReached[static_cast<std::size_t>(i)] || (!withBases && !BasesOf(i).empty())) continue;
            tops.push_back(i);
            reach(i);
        }
    return tops;
}

std::vector<int> ClassList::BasesOf(int entry) const {
    std::vector<int> bases;
    for (const ClassBase& base : entries[static_cast<std::size_t>(entry)].bases) {
        const auto found = ofEntity.find(base.entity);
        if (base.entity > Names::global && found != ofEntity.end()) bases.push_back(found->second.front());
    }
    return bases;
}

} // namespace ostraka::answers
