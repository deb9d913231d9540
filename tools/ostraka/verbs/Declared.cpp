#include "verbs/Declared.h"

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

void DeclaredMembers(JsonWriter& json, CodeSession& session, const PlaceAnswer& answer) {
    json.PlaceMembers(session.Shown(answer.file), session.Base().FactsOf(answer.file).PlaceOf(answer.at));
    json.Member("name", answer.name);
    json.Member("kind", WordFor(answer));
    json.Member("scope", OrNull(answer.scope));
    json.Member("type", OrNull(answer.type));
    json.Member("certainty", answer.isCertain ? "certain" : "possible");
}

} // namespace ostraka::tool
