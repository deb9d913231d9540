// The answer for a place: the part that its name has there, then which of the declarations found is meant. Of
// declarations of one thing the answer is the one that a compiler would name: of a class the one with its
// body, of a function or a variable the last one before the place, of a method the one in its class.

#include <algorithm>
#include <map>

#include <answers/resolve/Resolver.h>

namespace ostraka::answers {

namespace {

bool IsClassLike(FactKind kind) {
    return kind == FactKind::Class || kind == FactKind::Struct || kind == FactKind::Union ||
           kind == FactKind::Interface || kind == FactKind::Exception;
}

bool IsNumber(const Type& type) {
    return !type.IsClass() && type.pointers == 0 && type.arguments.empty() &&
           (type.name.find("int") != type.name.npos || type.name.find("long") != type.name.npos ||
            type.name.find("unsigned") != type.name.npos || type.name == "char" || type.name == "bool" ||
            type.name == "double" || type.name == "float" || type.name == "short" || type.name == "size_t");
}

constexpr std::size_t mostAnswers = 3;

} // namespace

// ---- Calls

int Resolver::ArgumentCount(int open, std::vector<std::pair<int, int>>* ranges) const {
    const int close = (*tokens)[open].partner;
    if (close <= open + 1) return 0;
    int count = 0;
    int begin = open + 1;
    for (int at = open + 1; at <= close; ++at) {
        const Token& token = (*tokens)[at];
        if (at < close) {
            if ((token.Is('(') || token.Is('[') || token.Is('{')) && token.partner > 0) {
                at = token.partner;
                continue;
            }
            if (token.Is('<') && (*tokens)[at - 1].IsName()) {
                const int past = PastAngles(at);
                const Token& behind = past > 0 ? (*tokens)[past] : Token{};
                if (behind.Is('(') || behind.Is(ColonsMark) || behind.Is('{') || behind.Is('>'))
                    at = past - 1;
                continue;
            }
            if (!token.Is(',')) continue;
        }
        ++count;
        if (ranges != nullptr) ranges->emplace_back(begin, at);
        begin = at + 1;
    }
    return count;
}

std::vector<int> Resolver::ParametersOf(const DeclarationRef& ref) {
    const FileFacts& facts = FactsIn(ref.file);
    const Declared& function = facts.declared[static_cast<std::size_t>(ref.index)];
    std::vector<int> parameters;
    if (function.body < 0) return parameters;
    for (std::size_t i =
             static_cast<std::size_t>(facts.scopes[static_cast<std::size_t>(function.body)].firstDeclared);
         i < facts.declared.size() && facts.declared[i].scope == function.body &&
         facts.declared[i].kind == FactKind::Argument;
         ++i)
        parameters.push_back(static_cast<int>(i));
    return parameters;
}

Resolver::Arity Resolver::ArityOf(const DeclarationRef& ref) {
    const FileFacts& facts = FactsIn(ref.file);
    Arity arity;
    for (const int i : ParametersOf(ref)) {
        const Declared& parameter = facts.declared[static_cast<std::size_t>(i)];
        ++arity.most;
        if (parameter.Has(IsPack)) arity.most = 1000;
        if (!parameter.Has(HasDefault) && !parameter.Has(IsPack)) ++arity.least;
    }
    if (At(ref).Has(IsVariadic)) arity.most = 1000;
    return arity;
}

std::string Resolver::SignatureOf(const DeclarationRef& ref) {
    const FileFacts& facts = FactsIn(ref.file);
    std::string signature = At(ref).Has(IsConstMethod) ? "const(" : "(";
    for (const int i : ParametersOf(ref)) {
        signature += facts.declared[static_cast<std::size_t>(i)].type;
        signature += ',';
    }
    return signature;
}

// How well an argument fits a parameter: 0 not, 4 exactly.
int Resolver::Fit(const Type& argument, const Type& parameter, int depth) {
    if (!argument.IsKnown() || !parameter.IsKnown()) return 2;
    if (argument.IsClass() && argument.entity == parameter.entity)
        return argument.pointers == parameter.pointers ? 4 : 0;
    if (argument.IsClass() && parameter.IsClass()) {
        if (argument.pointers != parameter.pointers) return 0;
        std::vector<Type> line = {argument};
        for (std::size_t i = 0; i < line.size() && i < 64; ++i)
            for (Type& each : BasesOf(line[i], depth + 1)) {
                if (each.entity == parameter.entity) return 3;
                line.push_back(std::move(each));
            }
        return argument.pointers == 0 ? 1 : 0;
    }
    if (argument.name == parameter.name && argument.pointers == parameter.pointers) return 4;
    if (IsNumber(argument) && IsNumber(parameter)) return 3;
    if (argument.pointers > 0 && parameter.pointers > 0) return parameter.name == "void" ? 2 : 1;
    if (argument.pointers != parameter.pointers)
        return parameter.IsClass() && parameter.pointers == 0 ? 1 : 0;
    return 1;
}

// Later is greater: what stands behind the place comes before all, since a compiler wouldn't see it yet.
std::uint64_t Resolver::OrderOf(const DeclarationRef& ref, std::uint32_t at) const {
    if (ref.file == localFile) return ~std::uint64_t{0};
    const Declared& declared = base.FactsOf(ref.file).declared[static_cast<std::size_t>(ref.index)];
    if (ref.file == openedFile && declared.at > at) return 0;
    const bool isSeen = IsVisible(ref);
    return (static_cast<std::uint64_t>(isSeen ? visible[static_cast<std::size_t>(ref.file)] : 0) << 32) +
           declared.at + 1;
}

// A member that is implemented outside of its class before the place is what a compiler names from there on.
DeclarationRef Resolver::LatestOf(const DeclarationRef& ref, std::uint32_t at) {
    if (ref.file == localFile) return ref;
    const Declared& declared = At(ref);
    if (declared.kind != FactKind::Function && declared.kind != FactKind::Variable) return ref;
    const int entity = names.EntityOf(ref.file, declared.scope);
    if (entity <= Names::global) return ref;
    DeclarationRef latest = ref;
    const std::size_t parameters = ParametersOf(ref).size();
    std::string signature;
    for (const DeclarationRef& each : names.ImplementedFor(entity, names.IdOf(declared.name))) {
        if (!IsVisible(each) || At(each).kind != declared.kind) continue;
        if (OrderOf(each, at) <= OrderOf(latest, at)) continue;
        if (declared.kind == FactKind::Function) {
            if (ParametersOf(each).size() != parameters) continue;
            if (signature.empty()) signature = SignatureOf(ref);
            if (SignatureOf(each) != signature && names.In(entity, names.IdOf(declared.name)).size() > 1)
                continue;
        }
        latest = each;
    }
    return latest;
}

// Of functions with one name, those that the call can mean. Of several declarations of one the last before
// it.
Refs Resolver::ChooseFunctions(const Refs& functions, const Found& found, int token, int depth) {
    const std::uint32_t at = (*tokens)[token].begin;
    Refs fitting;
    const bool isCall = (*tokens)[token].Is('(') && (*tokens)[token].partner > 0;
    std::vector<std::pair<int, int>> ranges;
    if (isCall) {
        const int count = ArgumentCount(token, &ranges);
        for (const DeclarationRef& ref : functions) {
            const Arity arity = ArityOf(ref);
            if (count >= arity.least && count <= arity.most) fitting.push_back(ref);
        }
    }
    if (fitting.empty()) fitting = functions;
    std::map<std::string, DeclarationRef> last; // by what the parameters are
    for (const DeclarationRef& ref : fitting) {
        std::string signature = SignatureOf(ref);
        const auto [entry, isNew] = last.emplace(std::move(signature), ref);
        if (!isNew && OrderOf(ref, at) > OrderOf(entry->second, at)) entry->second = ref;
    }
    if (last.size() == 1) return {last.begin()->second};
    struct Rated {
        DeclarationRef ref;
        int rate;
    };
    std::vector<Rated> rated;
    std::vector<Type> arguments;
    if (isCall && depth < deepest - 4)
        for (const auto& [first, past] : ranges) arguments.push_back(Evaluate(first, past, depth + 2).type);
    for (const auto& [signature, ref] : last) {
        int rate = 0;
        const std::vector<int> parameters = ParametersOf(ref);
        const FileFacts& facts = FactsIn(ref.file);
        for (std::size_t i = 0; i < arguments.size() && i < parameters.size(); ++i) {
            const Declared& parameter = facts.declared[static_cast<std::size_t>(parameters[i])];
            const Where where = WhereOf(ref);
            const Type type = TypeFromText(parameter.type, where,
                                           found.owner.IsClass() ? &found.owner : nullptr, depth + 1);
            const int fit = Fit(arguments[i], type, depth + 1);
            rate += fit == 0 ? -100 : fit;
        }
        rated.push_back({ref, rate * 4});
    }
    // Constant methods for constant objects only.
    for (Rated& each : rated)
        if (At(each.ref).Has(IsConstMethod) == found.owner.isConst) ++each.rate;
    const int best = std::max_element(rated.begin(), rated.end(), [](const Rated& a, const Rated& b) {
                         return a.rate < b.rate;
                     })->rate;
    Refs chosen;
    for (const Rated& each : rated)
        if (each.rate == best) chosen.push_back(each.ref);
    std::sort(chosen.begin(), chosen.end(), [&](const DeclarationRef& a, const DeclarationRef& b) {
        return OrderOf(a, ~0U) < OrderOf(b, ~0U);
    });
    return chosen;
}

// ---- Places

// Whether a name stands before the arguments of a constructor's initialiser: `: base(1), member(2)`.
bool Resolver::IsInitialiser(int token) const {
    if (token == 0 || token + 1 >= tokens->Count()) return false;
    const Token& before = (*tokens)[token - 1];
    const Token& behind = (*tokens)[token + 1];
    if (!(before.Is(':') || before.Is(',')) || !(behind.Is('(') || behind.Is('{'))) return false;
    const int scope = opened.ScopeAt((*tokens)[token].begin);
    const Scope& function = opened.scopes[static_cast<std::size_t>(scope)];
    if (function.kind != ScopeKind::Function || function.declaration < 0) return false;
    // Not within the body, nor among the parameters.
    const int bracket = around[static_cast<std::size_t>(token)];
    if (bracket < 0) return true;
    return (*tokens)[bracket].begin < function.begin;
}

Resolver::Found Resolver::QualifiedAt(int token, int depth) {
    const std::string_view name = tokens->TextOf(token);
    int last = token - 2; // before the `::`
    if (last >= 0 && (*tokens)[last].IsKeyword(Kw_template)) --last;
    Type owner;
    const bool isGlobal = last < 0 || !((*tokens)[last].IsName() || (*tokens)[last].Is('>'));
    const bool isCalled = (*tokens)[std::min(token + 1, tokens->Count())].Is('(');
    if (isGlobal) {
        owner.entity = Names::global;
    } else {
        int first = StartOfPostfix(last);
        // `object->Base::f()`: the qualifier alone
        for (int at = last; at > first; --at)
            if ((*tokens)[at].Is('.') || (*tokens)[at].Is(ArrowMark)) {
                first = at + 1;
                break;
            }
        owner = TypeFromTokens(*tokens, first, last + 1, WhereAt(token), nullptr, depth + 1);
        if (owner.entity == Names::none && IsMacro(tokens->TextOf(first)))
            return LookUp(name, WhereAt(token), Wanted::Any, depth + 1);
    }
    if (owner.entity == Names::none) return {};
    Found found = LookIn(name, owner, Wanted::Any, depth + 1);
    // `Ship::Ship` names the constructor, and the class where none is declared.
    if (found.IsNone() && owner.entity > Names::global && names.NameOf(owner.entity) == name) {
        const auto isUnseen = [this](const DeclarationRef& ref) { return strict && !IsVisible(ref); };
        if (isCalled) found.refs = names.In(owner.entity, names.IdOf(name));
        std::erase_if(found.refs, isUnseen);
        if (found.refs.empty()) found.refs = names.DefinitionsOf(owner.entity);
        std::erase_if(found.refs, isUnseen);
        found.owner = owner;
    }
    return found;
}

Resolver::Found Resolver::FindAt(int token, bool& isMember, int depth) {
    const std::string_view name = tokens->TextOf(token);
    const Token& before = token > 0 ? (*tokens)[token - 1] : Token{};
    const int operatorAt = before.IsKeyword(Kw_template) ? token - 2 : token - 1;
    isMember = false;
    if (operatorAt >= 0 && ((*tokens)[operatorAt].Is('.') || (*tokens)[operatorAt].Is(ArrowMark))) {
        isMember = true;
        if (operatorAt == 0) return {};
        const int first = StartOfPostfix(operatorAt - 1);
        Type object = first < operatorAt ? EvaluatePostfix(first, operatorAt, depth + 1).type : Type{};
        if ((*tokens)[operatorAt].Is(ArrowMark)) object = PointedBy(object, depth + 1);
        if (!object.HasMembers()) return {};
        const bool isConst = object.isConst;
        Found found = LookInClass(name, object, Wanted::Any, depth + 1);
        found.owner.isConst = isConst;
        return found;
    }
    if (before.Is(ColonsMark)) return QualifiedAt(token, depth);
    const Where where = WhereAt(token);
    if (IsInitialiser(token)) {
        const Type owner = ClassAround(where, depth + 1);
        if (owner.IsClass()) {
            const Refs own = VisibleOf(names.In(owner.entity, names.IdOf(name)), Wanted::Any);
            if (!own.empty()) return {own, Names::none, owner};
        }
    }
    const bool isScope = (*tokens)[std::min(token + 1, tokens->Count())].Is(ColonsMark) ||
                         before.IsKeyword(Kw_class) || before.IsKeyword(Kw_struct) ||
                         before.IsKeyword(Kw_enum) || before.IsKeyword(Kw_union) || before.IsKeyword(Kw_new);
    if (isScope) {
        Found found = LookUp(name, where, Wanted::Types, depth + 1);
        if (!found.IsNone()) return found;
    }
    return LookUp(name, where, Wanted::Any, depth + 1);
}

// Which of the declarations that were found is meant.
Refs Resolver::Choose(const Found& found, int token, int depth) {
    Refs functions;
    Refs types;
    Refs others;
    for (const DeclarationRef& ref : found.refs) {
        const Declared& declared = At(ref);
        if (declared.kind == FactKind::Function) {
            functions.push_back(ref);
        } else if (IsClassLike(declared.kind) || declared.kind == FactKind::Enum) {
            types.push_back(ref);
        } else {
            others.push_back(ref);
        }
    }
    const std::uint32_t at = (*tokens)[token].begin;
    int next = token + 1;
    if (next < tokens->Count() && (*tokens)[next].Is('<'))
        if (const int past = PastAngles(next); past > 0) next = past;
    const bool isCall = next < tokens->Count() && (*tokens)[next].Is('(');
    if (!functions.empty() && (types.empty() || isCall))
        return ChooseFunctions(functions, found, isCall ? next : token, depth);
    if (!types.empty() && others.empty()) {
        const auto rank = [&](const DeclarationRef& ref) {
            const Declared& declared = At(ref);
            return std::make_pair(declared.Has(HasBody), OrderOf(ref, at));
        };
        DeclarationRef best = types.front();
        for (const DeclarationRef& ref : types) {
            const auto [hasBody, order] = rank(ref);
            const auto [bestHasBody, bestOrder] = rank(best);
            // A type keeps the declaration that it was met with first, until it is defined.
            const bool isEarlier = order != 0 && (order < bestOrder || bestOrder == 0);
            if (hasBody != bestHasBody ? hasBody : !hasBody && isEarlier) best = ref;
        }
        // Whoever includes a header sees more than the header does.
        if (!At(best).Has(HasBody) && !IsCompiledPath(base.PathOf(openedFile)) && best.file != localFile) {
            const int entity = names.ChildOf(names.EntityOf(best.file, At(best).scope), At(best).name);
            if (entity != Names::none && names.DefinitionsOf(entity).size() == 1)
                best = names.DefinitionsOf(entity).front();
        }
        return {best};
    }
    if (others.empty()) return functions.empty() ? types : functions;
    // Of a variable that is declared more than once the last before the place.
    DeclarationRef best = others.front();
    for (const DeclarationRef& ref : others)
        if (OrderOf(ref, at) > OrderOf(best, at)) best = ref;
    return {best};
}

// By name alone, wherever it is declared: worth telling only where few things are called so.
Resolver::Found Resolver::LookAnywhere(int token, bool isMember, bool withinClass) {
    const std::string_view name = tokens->TextOf(token);
    const bool isCalled = (*tokens)[token + 1].Is('(');
    const bool isQualified = token > 0 && (*tokens)[token - 1].Is(ColonsMark);
    Found found;
    const int id = names.IdOf(name);
    if (id == Names::none) return found;
    Refs kept;
    std::vector<int> owners;
    for (const DeclarationRef& ref : names.All(id)) {
        const Declared& declared = At(ref);
        const FileFacts& facts = FactsIn(ref.file);
        const bool inClass = facts.scopes[static_cast<std::size_t>(declared.scope)].kind == ScopeKind::Class;
        if (!declared.qualifier.empty() || declared.Has(IsConstructor)) continue;
        if (isMember && !inClass) continue;
        if (!isQualified && declared.kind == FactKind::Enumerator && declared.typeOf >= 0 &&
            facts.declared[static_cast<std::size_t>(declared.typeOf)].Has(IsScopedEnum))
            continue;
        if (isCalled && declared.kind == FactKind::Variable &&
            declared.type.find('(') == declared.type.npos && isMember)
            continue;
        if (!isMember && !IsForOthers(ref)) continue;
        // A plain name means a member only in a class, one of whose bases may have it.
        if (!isMember && inClass && !withinClass &&
            (declared.kind == FactKind::Variable || declared.kind == FactKind::Function))
            continue;
        kept.push_back(ref);
        const int owner = names.EntityOf(ref.file, declared.scope);
        if (std::find(owners.begin(), owners.end(), owner) == owners.end()) owners.push_back(owner);
    }
    // Those that the file sees, if there are such.
    Refs seen;
    std::copy_if(kept.begin(), kept.end(), std::back_inserter(seen),
                 [this](const DeclarationRef& ref) { return IsVisible(ref); });
    if (!seen.empty()) {
        kept = std::move(seen);
        owners.clear();
        for (const DeclarationRef& ref : kept) {
            const int owner = names.EntityOf(ref.file, At(ref).scope);
            if (std::find(owners.begin(), owners.end(), owner) == owners.end()) owners.push_back(owner);
        }
    }
    if (owners.size() != 1) return found;
    found.refs = std::move(kept);
    found.owner.entity = owners.front();
    return found;
}

PlaceAnswer Resolver::AnswerFor(const DeclarationRef& ref, bool isCertain) {
    const FileFacts& facts = FactsIn(ref.file);
    const Declared& declared = facts.declared[static_cast<std::size_t>(ref.index)];
    PlaceAnswer answer;
    answer.file = ref.file == localFile ? openedFile : ref.file;
    answer.at = declared.at;
    answer.kind = declared.kind;
    answer.isCertain = isCertain;
    answer.name = declared.name;
    answer.type = declared.type;
    answer.isMember = facts.scopes[static_cast<std::size_t>(declared.scope)].kind == ScopeKind::Class;
    int entity = EntityAt({ref.file, declared.scope, 0});
    if (!declared.qualifier.empty()) { // outside of what it belongs to
        answer.isMember = true;
        const Type owner =
            TypeFromText(declared.qualifier, {ref.file, declared.scope, declared.begin}, nullptr, 1);
        if (owner.entity > Names::global) entity = owner.entity;
        if (entity <= Names::global) answer.scope = declared.qualifier;
    }
    if (entity > Names::global) answer.scope = names.QualifiedName(entity);
    return answer;
}

std::vector<PlaceAnswer> Resolver::MacroAnswers(std::string_view name) {
    std::vector<PlaceAnswer> answers;
    for (const Names::MacroRef& ref : names.MacrosOf(names.IdOf(name))) {
        if (!IsVisible({ref.file, 0})) continue;
        const MacroDefined& macro = base.FactsOf(ref.file).macros[static_cast<std::size_t>(ref.index)];
        PlaceAnswer answer;
        answer.file = ref.file;
        answer.at = macro.at;
        answer.isMacro = true;
        answer.isCertain = true;
        answer.name = macro.name;
        answer.type = macro.value;
        // Of several in one file, in the branches of an `#if`, nobody knows which one holds.
        if (answers.empty() || (answers.front().file == ref.file && answers.size() < mostAnswers))
            answers.push_back(answer);
    }
    return answers;
}

std::vector<Type> Resolver::BasesOfClass(const DeclarationRef& ref) {
    std::vector<Type> bases;
    const FileFacts& facts = base.FactsOf(ref.file);
    const Declared& declared = facts.declared[static_cast<std::size_t>(ref.index)];
    const Where where{ref.file, facts.scopes[static_cast<std::size_t>(declared.body)].parent, declared.at};
    const bool wasStrict = std::exchange(strict, false);
    for (int i = 0; i < declared.bases; ++i) {
        work = 0;
        bases.push_back(TypeFromText(facts.bases[static_cast<std::size_t>(declared.firstBase + i)].name,
                                     where, nullptr, 1));
    }
    strict = wasStrict;
    return bases;
}

bool Resolver::IsBaseAt(std::uint32_t offset) const {
    return std::any_of(opened.bases.begin(), opened.bases.end(), [offset](const Base& each) {
        return offset >= each.at && offset < each.at + each.name.size();
    });
}

std::vector<PlaceAnswer> Resolver::Ask(std::uint32_t offset) {
    std::vector<PlaceAnswer> answers;
    if (openedFile < 0) return answers;
    const FileFacts& shallow = base.FactsOf(openedFile);
    for (const MacroDefined& macro : shallow.macros) {
        if (offset < macro.at || offset > macro.at + macro.name.size()) continue;
        PlaceAnswer answer;
        answer.file = openedFile;
        answer.at = macro.at;
        answer.isMacro = answer.isCertain = true;
        answer.name = macro.name;
        answer.type = macro.value;
        return {answer};
    }
    int token = tokens->At(offset);
    if (token >= 0 && (*tokens)[token].IsKeyword(Kw_operator))
        if (const auto own = declaredAt.find(static_cast<int>((*tokens)[token].begin));
            own != declaredAt.end())
            return {AnswerFor({localFile, own->second}, true)};
    if (token > 0 && !(*tokens)[token].IsName() && (*tokens)[token].begin == offset) --token;
    if (token < 0 || !(*tokens)[token].IsName()) return answers;
    const Token& asked = (*tokens)[token];
    if (offset > asked.begin + asked.size) return answers;
    const std::string_view name = tokens->TextOf(token);
    // A name that is declared right here means itself.
    if (const auto own = declaredAt.find(static_cast<int>(asked.begin)); own != declaredAt.end()) {
        const Declared& declared = opened.declared[static_cast<std::size_t>(own->second)];
        if (declared.kind != FactKind::Label) return {AnswerFor({localFile, own->second}, true)};
    }
    bool isMember = false;
    for (const bool onlySeen : {true, false}) {
        strict = onlySeen;
        if (!strict) TakeAllFiles();
        work = 0;
        const Found found = FindAt(token, isMember, 0);
        if (!found.refs.empty()) {
            for (const DeclarationRef& ref : Choose(found, token, 0)) {
                if (answers.size() == mostAnswers) break;
                answers.push_back(AnswerFor(LatestOf(ref, asked.begin), strict));
            }
            break;
        }
        if (found.entity > Names::global) { // a namespace, where it was opened last
            DeclarationRef last;
            for (const DeclarationRef& ref : names.OpeningsOf(found.entity))
                if ((IsVisible(ref) || !strict) &&
                    (last.IsNone() || OrderOf(ref, asked.begin) > OrderOf(last, asked.begin)))
                    last = ref;
            if (!last.IsNone()) {
                answers.push_back(AnswerFor(last, strict));
                break;
            }
        }
        if (onlySeen) {
            answers = MacroAnswers(name);
            if (!answers.empty()) break;
        }
    }
    if (answers.empty()) {
        strict = false;
        work = 0;
        const Found found = LookAnywhere(token, isMember, ClassAround(WhereAt(token), 1).IsClass());
        if (!found.refs.empty())
            for (const DeclarationRef& ref : Choose(found, token, 0)) {
                if (answers.size() == mostAnswers) break;
                answers.push_back(AnswerFor(LatestOf(ref, asked.begin), false));
            }
    }
    strict = true;
    return answers;
}

} // namespace ostraka::answers
