#pragma once

// What the facts of a file say, as a text to compare: a declaration a line, deeper scopes further in, then
// what else the file says.

#include <string>
#include <string_view>
#include <utility>

#include <answers/facts/Facts.h>

class FactText {
public:
    static std::string Of(const ostraka::answers::FileFacts& facts) { return FactText(facts).Text(); }

private:
    explicit FactText(const ostraka::answers::FileFacts& shown) : facts(shown) {}

    std::string Text() {
        using namespace ostraka::answers;
        for (int i = 0; i < Count(); ++i) {
            const bool isListed =
                At(i).kind == FactKind::Argument || At(i).kind == FactKind::TemplateParameter;
            const ScopeKind around = ScopeOf(At(i).scope).kind;
            const bool isOfLambda = around == ScopeKind::Function && ScopeOf(At(i).scope).declaration < 0;
            if (!isListed || isOfLambda) AddLine(i);
        }
        for (const Using& each : facts.usings)
            text += std::string("using ") + (each.isNamespace ? "namespace " : "") + std::string(each.name) +
                    "\n";
        for (const MacroCall& each : facts.calls)
            text += "call " + std::string(each.name) + "(" + std::string(each.arguments) + ")\n";
        for (const FaultAt& each : facts.faults) {
            constexpr const char* names[] = {"literal", "comment", "bracket", "head"};
            const Place place = facts.PlaceOf(each.at);
            text += std::string("fault ") + names[static_cast<int>(each.fault)] + " " +
                    std::to_string(place.line) + ":" + std::to_string(place.column) + "\n";
        }
        return text;
    }

    int Count() const { return static_cast<int>(facts.declared.size()); }
    const ostraka::answers::Declared& At(int i) const { return facts.declared[static_cast<std::size_t>(i)]; }
    const ostraka::answers::Scope& ScopeOf(int i) const { return facts.scopes[static_cast<std::size_t>(i)]; }

    void Add(std::string_view before, std::string_view part) {
        if (!part.empty()) text.append(before).append(part);
    }

    // "+class Ship : public Hull {}"; arguments and parameters in their lists.
    void AddLine(int i) {
        using namespace ostraka::answers;
        constexpr const char* kinds[] = {
            "namespace",  "alias",   "class",   "struct",   "union",    "interface", "exception", "enum",
            "enumerator", "typedef", "concept", "function", "variable", "argument",  "parameter", "label"};
        const Declared& each = At(i);
        for (int scope = each.scope; scope > 0; scope = ScopeOf(scope).parent)
            if (ScopeOf(scope).kind != ScopeKind::Template) text += "  ";
        constexpr const char* accesses[] = {"", "+", "#", "-"};
        text += accesses[static_cast<int>(each.access)];
        text += kinds[static_cast<int>(each.kind)];
        if (each.Has(IsTemplate)) AddParameters(i);
        Add(" ", each.qualifier);
        Add(each.qualifier.empty() ? " " : "::", each.name);
        if (each.kind == FactKind::Function) AddArguments(each);
        Add(": ", each.type);
        AddBases(each);
        AddFlags(each);
        if (each.Has(HasBody)) text += " {}";
        text += '\n';
    }

    void AddArguments(const ostraka::answers::Declared& owner) {
        using namespace ostraka::answers;
        const char* between = "";
        text += "(";
        for (int i = owner.body < 0 ? Count() : ScopeOf(owner.body).firstDeclared; i < Count(); ++i) {
            if (At(i).kind != FactKind::Argument || At(i).scope != owner.body) continue;
            AddNamed(At(i), std::exchange(between, ", "));
        }
        if (owner.Has(IsVariadic)) text += std::string(between) + "...";
        text += ")";
    }

    void AddParameters(int owner) {
        using namespace ostraka::answers;
        int first = owner;
        while (first > 0 && At(first - 1).kind == FactKind::TemplateParameter &&
               At(first - 1).at >= At(owner).begin)
            --first;
        const char* between = "";
        text += "<";
        for (; first < owner; ++first) AddNamed(At(first), std::exchange(between, ", "));
        text += ">";
    }

    void AddNamed(const ostraka::answers::Declared& each, const char* between) {
        text += between;
        text += each.type;
        Add(each.type.empty() ? "" : " ", each.name);
        if (each.Has(ostraka::answers::HasDefault)) text += " =";
    }

    void AddBases(const ostraka::answers::Declared& owner) {
        constexpr const char* accesses[] = {"", "public ", "protected ", "private "};
        for (int i = 0; i < owner.bases; ++i) {
            const ostraka::answers::Base& base = facts.bases[static_cast<std::size_t>(owner.firstBase + i)];
            text += i == 0 ? " : " : ", ";
            if (base.isVirtual) text += "virtual ";
            text += accesses[static_cast<int>(base.access)];
            text += base.name;
        }
    }

    void AddFlags(const ostraka::answers::Declared& each) {
        using namespace ostraka::answers;
        struct Shown {
            FactFlag flag;
            const char* text;
        };
        constexpr Shown all[] = {
            {IsStatic, "static"},         {IsVirtual, "virtual"},     {IsPure, "pure"},
            {IsConstMethod, "const"},     {IsConstructor, "ctor"},    {IsDestructor, "dtor"},
            {IsConversion, "converts"},   {IsFriend, "friend"},       {IsExtern, "extern"},
            {IsDeleted, "deleted"},       {IsDefaulted, "defaulted"}, {IsScopedEnum, "scoped"},
            {IsForward, "forward"},       {IsRangeElement, "each"},   {IsBinding, "binding"},
            {IsInline, "inline"},         {IsOverride, "override"},   {IsConstExpr, "constexpr"},
            {IsSpecialization, "special"}};
        for (const Shown& shown : all)
            if (each.Has(shown.flag)) Add(" ", shown.text);
    }

    const ostraka::answers::FileFacts& facts;
    std::string text;
};
