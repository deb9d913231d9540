#pragma once

// What holds of the facts of any bytes.

#include <algorithm>
#include <string>
#include <string_view>

#include <answers/facts/Facts.h>

#include "support/FactText.h"

class FactProperties {
public:
    // What doesn't hold; empty where all does.
    static std::string FaultIn(std::string_view text, ostraka::answers::Dialect dialect) {
        using namespace ostraka::answers;
        const TokenList tokens(text);
        const FileFacts bodies = ReadFacts(tokens, Depth::Bodies, dialect);
        const FileFacts heads = ReadFacts(tokens, Depth::Declarations, dialect);
        std::string fault = FactProperties(text, bodies).Fault();
        if (fault.empty()) fault = FactProperties(text, heads).Fault();
        if (!fault.empty()) return fault;
        const std::string more = NamesOutside(bodies);
        const std::string less = NamesOutside(heads);
        const auto at = static_cast<std::size_t>(
            std::mismatch(more.begin(), more.end(), less.begin(), less.end()).first - more.begin());
        return more == less ? "" : "bodies and heads declare other things from " + more.substr(at, 40);
    }

private:
    using Facts = ostraka::answers::FileFacts;

    FactProperties(std::string_view read, const Facts& checked) : text(read), facts(checked) {}

    std::string Fault() const {
        for (std::size_t i = 1; i < facts.scopes.size(); ++i)
            if (!Nests(static_cast<int>(i))) return "scope " + std::to_string(i) + " isn't in its parent";
        for (const auto& each : facts.declared)
            if (!IsInPlace(each)) return "place of " + std::string(each.name);
        for (const auto& each : facts.bases)
            if (!Stands(each.at, each.name.substr(0, 1))) return "place of base " + std::string(each.name);
        for (const auto& each : facts.macros)
            if (!Stands(each.at, each.name)) return "place of macro " + std::string(each.name);
        for (const auto& each : facts.includes)
            if (!Stands(each.at, each.name)) return "place of include " + std::string(each.name);
        return "";
    }

    bool Stands(std::uint32_t at, std::string_view name) const {
        return at <= text.size() && text.substr(at).starts_with(name);
    }

    // Behind its parent, in the order of their begin, and inside of it.
    bool Nests(int i) const {
        const ostraka::answers::Scope& scope = ScopeAt(i);
        if (scope.parent < 0 || scope.parent >= i || scope.begin > scope.past) return false;
        const ostraka::answers::Scope& parent = ScopeAt(scope.parent);
        return scope.begin >= parent.begin && scope.past <= parent.past &&
               scope.begin >= ScopeAt(i - 1).begin;
    }

    bool IsInPlace(const ostraka::answers::Declared& each) const {
        std::string_view name = each.name.substr(0, each.name.find(' ')); // of "operator =" the first word
        if (name.starts_with('~')) name.remove_prefix(1);
        const bool isInside = each.begin <= each.at && each.at <= each.past && each.past <= text.size();
        return isInside && each.scope >= 0 && each.scope < static_cast<int>(facts.scopes.size()) &&
               Stands(each.at, name);
    }

    const ostraka::answers::Scope& ScopeAt(int i) const { return facts.scopes[static_cast<std::size_t>(i)]; }

    // Name, kind and place of what no body holds.
    static std::string NamesOutside(const Facts& facts) {
        using namespace ostraka::answers;
        std::string names;
        for (const Declared& each : facts.declared) {
            bool isLocal = each.kind == FactKind::Label;
            for (int scope = each.scope; scope >= 0;
                 scope = facts.scopes[static_cast<std::size_t>(scope)].parent) {
                const Scope& around = facts.scopes[static_cast<std::size_t>(scope)];
                isLocal = isLocal || around.kind == ScopeKind::Block || IsBodyOf(facts, around, each);
            }
            if (isLocal) continue;
            names += std::to_string(each.at) + " " + std::to_string(static_cast<int>(each.kind)) + " ";
            names.append(each.name).append(": ").append(each.type) += '\n';
        }
        return names;
    }

    static bool IsBodyOf(const Facts& facts, const ostraka::answers::Scope& scope,
                         const ostraka::answers::Declared& each) {
        using namespace ostraka::answers;
        if (scope.kind != ScopeKind::Function) return false;
        const bool isArgument = each.kind == FactKind::Argument && scope.declaration >= 0;
        return !isArgument || &facts.scopes[static_cast<std::size_t>(each.scope)] != &scope;
    }

    const std::string_view text;
    const Facts& facts;
};
