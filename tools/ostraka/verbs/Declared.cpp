#include "verbs/Declared.h"

#include <algorithm>

#include <answers/resolve/Declarations.h>

namespace ostraka::tool {

const char* WordFor(const PlaceAnswer& answer) {
    if (answer.isMacro) return "macro";
    if (answer.isMember && answer.kind == FactKind::Function) return "method";
    if (answer.isMember && answer.kind == FactKind::Variable) return "member";
    return WordFor(answer.kind);
}

const char* WordFor(FactKind kind) {
    switch (kind) {
    case FactKind::Namespace:
    case FactKind::NamespaceAlias: return "namespace";
    case FactKind::Class: return "class";
    case FactKind::Struct: return "struct";
    case FactKind::Union: return "union";
    case FactKind::Interface: return "interface";
    case FactKind::Exception: return "exception";
    case FactKind::Enum: return "enum";
    case FactKind::Enumerator: return "enumerator";
    case FactKind::Typedef: return "typedef";
    case FactKind::Concept: return "concept";
    case FactKind::Function: return "function";
    case FactKind::Variable: return "variable";
    case FactKind::Argument: return "argument";
    case FactKind::TemplateParameter: return "template parameter";
    case FactKind::Label: return "label";
    }
    return "";
}

const char* WordOf(Access access) {
    constexpr const char* words[] = {"", "public", "protected", "private"};
    return words[static_cast<int>(access)];
}

void TakeAccess(CodeSession& code, const std::string& path, std::vector<OutlineEntry>& entries) {
    const auto isImplementation = [](const OutlineEntry& entry) {
        return entry.kind == DeclarationKind::Implementation;
    };
    if (std::none_of(entries.begin(), entries.end(), isImplementation)) return;
    const int file = code.FileAt(path);
    for (const int seen : code.Base().SeenFrom(file))
        if (!code.AllNames().Has(seen)) code.AllNames().Add(seen);
    for (OutlineEntry& entry : entries)
        if (isImplementation(entry))
            entry.access = AccessOfImplementation(code.Base(), code.AllNames(), {file, entry.declared});
}

void DeclaredMembers(JsonWriter& json, CodeSession& session, const PlaceAnswer& answer) {
    json.PlaceMembers(session.Shown(answer.file), session.Base().FactsOf(answer.file).PlaceOf(answer.at));
    json.Member("name", answer.name);
    json.Member("kind", WordFor(answer));
    json.Member("scope", OrNull(answer.scope));
    json.Member("type", OrNull(answer.type));
    json.Member("certainty", answer.isCertain ? "certain" : "possible");
}

} // namespace ostraka::tool
