// The type of an expression from its tokens. What is evaluated is never the whole of it: of operators the
// left side tells, of a call what the function returns. How deep one expression leads into others is bounded;
// beyond that nothing is known.

#include <algorithm>
#include <span>

#include <answers/resolve/Resolver.h>

namespace ostraka::answers {

namespace {

bool IsCast(const Token& token) {
    return token.kind == TokenKind::Word &&
           (token.code == Kw_static_cast || token.code == Kw_dynamic_cast || token.code == Kw_const_cast ||
            token.code == Kw_reinterpret_cast);
}

bool IsBuiltinWord(const Token& token) {
    if (token.kind != TokenKind::Word) return false;
    switch (token.code) {
    case Kw_bool:
    case Kw_char:
    case Kw_char16_t:
    case Kw_char32_t:
    case Kw_char8_t:
    case Kw_double:
    case Kw_float:
    case Kw_int:
    case Kw_long:
    case Kw_short:
    case Kw_signed:
    case Kw_unsigned:
    case Kw_void:
    case Kw_wchar_t: return true;
    default: return false;
    }
}

// Whether an operand can end here, so that a mark behind it is a binary operator.
bool EndsOperand(const Token& token) {
    return token.kind == TokenKind::Number || token.kind == TokenKind::Text || token.IsName() ||
           token.Is(')') || token.Is(']') || token.Is('}') || token.IsKeyword(Kw_this) ||
           token.IsKeyword(Kw_true) || token.IsKeyword(Kw_false) || token.IsKeyword(Kw_nullptr);
}

bool OpensArguments(const Token& token) {
    return token.Is('(') || token.Is('[') || token.Is('{');
}

Type Builtin(std::string_view name, int pointers = 0) {
    Type type;
    type.name = name;
    type.pointers = pointers;
    return type;
}

constexpr std::string_view pointerGivers[] = {"get",         "data",        "release", "begin",  "end",
                                              "cbegin",      "cend",        "rbegin",  "rend",   "find",
                                              "lower_bound", "upper_bound", "c_str",   "insert", "erase"};
constexpr std::string_view elementGivers[] = {"front", "back", "top",       "at",       "value", "value_or",
                                              "first", "last", "takeFirst", "takeLast", "pop"};

// Whether the parentheses behind it are the header of a statement.
bool IsControl(const Token& token) {
    return token.IsKeyword(Kw_if) || token.IsKeyword(Kw_for) || token.IsKeyword(Kw_while) ||
           token.IsKeyword(Kw_switch);
}

bool IsAmong(std::span<const std::string_view> all, std::string_view text) {
    return std::find(all.begin(), all.end(), text) != all.end();
}

} // namespace

Resolver::Where Resolver::WhereAt(int token) const {
    const std::uint32_t at = (*tokens)[token].begin;
    return {localFile, opened.ScopeAt(at), at};
}

// Where the angle bracket stands that this one closes; -1 where it is a comparison.
int Resolver::OpenAngle(int close) const {
    constexpr int widest = 200;
    int depth = 0;
    for (int at = close; at >= std::max(0, close - widest); --at) {
        const Token& token = (*tokens)[at];
        if (token.kind != TokenKind::Mark) continue;
        if (token.code == '>') ++depth;
        if (token.code == '<' && --depth == 0) return at;
        if (token.code == ')' || token.code == ']') {
            if (token.partner < 0) return -1;
            at = token.partner;
        }
        if (token.code == ';' || token.code == '{' || token.code == '}' || token.code == '(' ||
            token.code == '[' || token.code == OrOrMark || token.code == CompareMark)
            return -1;
    }
    return -1;
}

// The first token of the operand that ends with this one.
int Resolver::StartOfPostfix(int last) {
    int at = last;
    while (at >= 0) {
        const Token& token = (*tokens)[at];
        if (token.Is(')') || token.Is(']') || token.Is('}')) {
            if (token.partner < 0) return at + 1;
            const int open = token.partner;
            const Token& before = open > 0 ? (*tokens)[open - 1] : Token{};
            const bool isBehindHeader =
                before.Is(')') && before.partner > 0 && IsControl((*tokens)[before.partner - 1]);
            if (isBehindHeader) return open;
            if (before.IsName() || before.Is(')') || before.Is(']') || IsBuiltinWord(before)) {
                at = open - 1;
                continue;
            }
            if (before.Is('>')) {
                const int angle = OpenAngle(open - 1);
                if (angle > 0) {
                    at = angle - 1;
                    continue;
                }
            }
            return open;
        }
        if (token.Is('>')) {
            const int angle = OpenAngle(at);
            if (angle <= 0) return at + 1;
            at = angle - 1;
            continue;
        }
        if (IsCast(token)) return at;
        if (token.kind != TokenKind::Word && token.kind != TokenKind::Text && token.kind != TokenKind::Number)
            return at + 1;
        const Token& before = at > 0 ? (*tokens)[at - 1] : Token{};
        if (before.Is('.') || before.Is(ArrowMark)) {
            if (at < 2) return at;
            at -= 2;
            continue;
        }
        if (before.Is(ColonsMark)) {
            if (at < 2 || (!(*tokens)[at - 2].IsName() && !(*tokens)[at - 2].Is('>'))) return at - 1;
            at -= 2;
            continue;
        }
        if (before.IsKeyword(Kw_template) && at >= 2) {
            --at;
            continue;
        }
        return at;
    }
    return 0;
}

Resolver::Value Resolver::Evaluate(int first, int past, int depth) {
    Value value;
    if (depth > deepest || ++work > 20000) return value;
    while (first < past && (*tokens)[first].Is('(') && (*tokens)[first].partner == past - 1) {
        ++first;
        --past;
    }
    if (first >= past) return value;
    // Operators between operands, the loosest ones first.
    int question = -1;
    int left = -1; // the first operator that leaves the type of its left side
    bool isBool = false;
    for (int at = first; at < past; ++at) {
        const Token& token = (*tokens)[at];
        if (OpensArguments(token) && token.partner > 0) {
            at = token.partner;
            continue;
        }
        if (token.kind != TokenKind::Mark || at == first || !EndsOperand((*tokens)[at - 1])) {
            if (!(token.kind == TokenKind::Mark && at > first && (*tokens)[at - 1].Is('>'))) continue;
        }
        if (token.Is('<')) {
            const int angles = PastAngles(at);
            if (angles > 0 && angles <= past &&
                (angles == past || !EndsOperand((*tokens)[angles]) || (*tokens)[angles].Is('(')) &&
                (*tokens)[at - 1].IsName()) {
                at = angles - 1;
                continue;
            }
        }
        switch (token.code) {
        case '?': question = at; break;
        case ',': return Evaluate(at + 1, past, depth + 1);
        case '=':
        case AssignMark:
            if (question < 0) return Evaluate(first, at, depth + 1);
            break;
        case OrOrMark:
        case AndAndMark:
        case CompareMark:
        case '<':
        case '>': isBool = isBool || question < 0; break;
        case '+':
        case '-':
        case '*':
        case '/':
        case '%':
        case '&':
        case '|':
        case '^':
        case ShiftMark:
            if (left < 0 && question < 0) left = at;
            break;
        default: break;
        }
        if (question >= 0) break;
    }
    if (question >= 0) {
        int colon = question + 1;
        for (; colon < past && !(*tokens)[colon].Is(':'); ++colon)
            if (OpensArguments((*tokens)[colon]) && (*tokens)[colon].partner > 0)
                colon = (*tokens)[colon].partner;
        value = Evaluate(question + 1, colon, depth + 1);
        return value.type.IsKnown() ? value : Evaluate(std::min(colon + 1, past), past, depth + 1);
    }
    if (isBool) {
        value.type = Builtin("bool");
        return value;
    }
    if (left > 0) return Evaluate(first, left, depth + 1);
    // Operators before an operand.
    const Token& token = (*tokens)[first];
    if (token.Is('*')) {
        value = Evaluate(first + 1, past, depth + 1);
        value.type = PointedBy(value.type, depth + 1);
        value.named = {};
        return value;
    }
    if (token.Is('&')) {
        value = Evaluate(first + 1, past, depth + 1);
        ++value.type.pointers;
        return value;
    }
    if (token.Is('!')) {
        value.type = Builtin("bool");
        return value;
    }
    if (token.Is('-') || token.Is('+') || token.Is('~') || token.Is(StepMark) || token.IsKeyword(Kw_co_await))
        return Evaluate(first + 1, past, depth + 1);
    if (token.IsKeyword(Kw_sizeof)) {
        value.type = Builtin("int");
        return value;
    }
    if (token.IsKeyword(Kw_new)) {
        int at = first + 1;
        if (at < past && (*tokens)[at].Is('(') && (*tokens)[at].partner > 0) at = (*tokens)[at].partner + 1;
        int end = at;
        while (end < past && !OpensArguments((*tokens)[end])) ++end;
        value.type = TypeFromTokens(*tokens, at, end, WhereAt(first), nullptr, depth + 1);
        ++value.type.pointers;
        return value;
    }
    // `(Ship*)x`
    if (token.Is('(') && token.partner > 0 && token.partner + 1 < past) {
        const int close = token.partner;
        const Token& behind = (*tokens)[close + 1];
        const bool operandFollows = behind.kind == TokenKind::Word || behind.kind == TokenKind::Number ||
                                    behind.kind == TokenKind::Text || behind.Is('(') || behind.Is('&') ||
                                    behind.Is('*');
        bool isType = operandFollows;
        for (int at = first + 1; at < close && isType; ++at) {
            const Token& each = (*tokens)[at];
            isType = each.kind == TokenKind::Word || each.Is('*') || each.Is('&') || each.Is(ColonsMark) ||
                     each.Is('<') || each.Is('>') || each.Is(',');
        }
        const bool isPlain = (*tokens)[close - 1].IsName();
        if (isType) {
            const Type cast = TypeFromTokens(*tokens, first + 1, close, WhereAt(first), nullptr, depth + 1);
            const bool isName =
                isPlain && !cast.IsClass() && (behind.Is('(') || behind.Is('&') || behind.Is('*'));
            if (!isName && cast.IsKnown()) {
                value.type = cast;
                return value;
            }
        }
    }
    return EvaluatePostfix(first, past, depth + 1);
}

// A name with what qualifies it; `at` goes behind it and its template arguments.
Resolver::Value Resolver::EvaluateName(int& at, int past, int depth) {
    Value value;
    const Where where = WhereAt(at);
    bool isFirst = true;
    if ((*tokens)[at].Is(ColonsMark)) {
        ++at;
        value.type.entity = Names::global;
        isFirst = false;
    }
    for (;;) {
        if (at >= past) return value;
        if ((*tokens)[at].IsKeyword(Kw_template)) ++at;
        if (!(*tokens)[at].IsName()) {
            ++at;
            return Value{};
        }
        const std::string_view name = tokens->TextOf(at);
        int next = at + 1;
        std::vector<Type> arguments;
        if (next < past && (*tokens)[next].Is('<')) {
            const int close = PastAngles(next);
            const bool isArguments = close > 0 && close <= past &&
                                     (close == past || (*tokens)[close].Is('(') ||
                                      (*tokens)[close].Is(ColonsMark) || (*tokens)[close].Is('{'));
            if (isArguments) {
                const Type parsed = TypeFromTokens(*tokens, at, close, where, nullptr, depth + 1);
                arguments = parsed.arguments;
                next = close;
            }
        }
        const bool more = next + 1 < past && (*tokens)[next].Is(ColonsMark);
        Found found = isFirst ? LookUp(name, where, more ? Wanted::Types : Wanted::Any, depth + 1)
                              : LookIn(name, value.type, more ? Wanted::Types : Wanted::Any, depth + 1);
        const Type outer = value.type;
        value = Value{};
        value.named = found;
        bool isType = found.entity != Names::none;
        for (const DeclarationRef& ref : found.refs) {
            const FactKind kind = At(ref).kind;
            isType = isType || (kind <= FactKind::Typedef && kind != FactKind::Enumerator) ||
                     kind == FactKind::TemplateParameter;
        }
        if (found.IsNone() || isType) {
            value.isType = isType;
            value.type = TypeOfFound(found, arguments, depth + 1, name,
                                     found.owner.IsClass() ? &found.owner
                                     : isFirst             ? nullptr
                                                           : &outer);
            if (found.IsNone()) {
                value.type.entity = Names::none;
                value.type.name = name;
                value.type.arguments = std::move(arguments);
            }
        } else {
            const DeclarationRef ref = found.refs.front();
            if (At(ref).kind != FactKind::Function) {
                value.type = TypeOf(ref, found.owner, depth + 1);
            } else {
                value.type.arguments = std::move(arguments); // of the call
            }
        }
        at = next;
        if (!more) return value;
        ++at;
        isFirst = false;
        if (value.type.entity == Names::none && !value.isType) isFirst = IsMacro(name);
    }
}

Resolver::Value Resolver::EvaluatePostfix(int first, int past, int depth) {
    Value value;
    if (depth > deepest || first >= past) return value;
    int at = first;
    const Token& token = (*tokens)[at];
    if (token.IsKeyword(Kw_this)) {
        value.type = ClassAround(WhereAt(at), depth + 1);
        value.type.pointers = 1;
        ++at;
    } else if (token.Is('(') && token.partner > 0) {
        value = Evaluate(at + 1, token.partner, depth + 1);
        at = token.partner + 1;
    } else if (token.kind == TokenKind::Number) {
        value.type = Builtin(tokens->TextOf(at).find('.') != std::string_view::npos ? "double" : "int");
        ++at;
    } else if (token.kind == TokenKind::Text) {
        value.type = tokens->TextOf(at).ends_with('\'') ? Builtin("char") : Builtin("char", 1);
        ++at;
    } else if (token.IsKeyword(Kw_true) || token.IsKeyword(Kw_false)) {
        value.type = Builtin("bool");
        ++at;
    } else if (IsCast(token)) {
        const int close = at + 1 < past ? PastAngles(at + 1) : -1;
        if (close < 0) return value;
        value.type = TypeFromTokens(*tokens, at + 2, close - 1, WhereAt(at), nullptr, depth + 1);
        at = close;
        if (at < past && (*tokens)[at].Is('(') && (*tokens)[at].partner > 0) at = (*tokens)[at].partner + 1;
    } else if (IsBuiltinWord(token)) {
        while (at < past && IsBuiltinWord((*tokens)[at])) {
            value.type.name += (value.type.name.empty() ? "" : " ") + std::string(tokens->TextOf(at));
            ++at;
        }
        if (at < past && OpensArguments((*tokens)[at]) && (*tokens)[at].partner > 0)
            at = (*tokens)[at].partner + 1;
    } else if (token.IsName() || token.Is(ColonsMark)) {
        value = EvaluateName(at, past, depth + 1);
    } else {
        return value;
    }
    while (at < past) {
        const Token& mark = (*tokens)[at];
        if ((mark.Is('(') || mark.Is('{')) && mark.partner > 0) {
            const Type called = value.isType ? value.type : Call(value, at, depth + 1);
            value = Value{};
            value.type = called;
            at = mark.partner + 1;
        } else if (mark.Is('[') && mark.partner > 0) {
            Type element = ElementOf(value.type, depth + 1);
            if (value.type.pointers == 0 && !value.type.IsClass() && value.type.arguments.size() >= 2)
                element = value.type.arguments[1]; // of a map
            value = Value{};
            value.type = element;
            at = mark.partner + 1;
        } else if ((mark.Is('.') || mark.Is(ArrowMark)) && at + 1 < past) {
            const Type object = mark.Is(ArrowMark) ? PointedBy(value.type, depth + 1) : value.type;
            ++at;
            if ((*tokens)[at].IsKeyword(Kw_template)) ++at;
            if (at >= past || !(*tokens)[at].IsName()) return Value{};
            const std::string_view name = tokens->TextOf(at);
            value = Value{};
            if (object.HasMembers()) {
                value.named = LookInClass(name, object, Wanted::Any, depth + 1);
                if (!value.named.refs.empty() && At(value.named.refs.front()).kind != FactKind::Function)
                    value.type = TypeOf(value.named.refs.front(), value.named.owner, depth + 1);
            }
            ++at;
            if (at < past && (*tokens)[at].Is('<')) {
                const int close = PastAngles(at);
                if (close > 0 && close < past && (*tokens)[close].Is('(')) at = close;
            }
            if (value.named.refs.empty()) {
                const bool isCall = at < past && (*tokens)[at].Is('(') && (*tokens)[at].partner > 0;
                value.type = CallUnknown(name, object);
                if (isCall) at = (*tokens)[at].partner + 1;
            }
        } else if (mark.Is(StepMark)) {
            ++at;
        } else {
            break;
        }
    }
    return value;
}

// What a call gives.
Type Resolver::Call(const Value& callee, int open, int depth) {
    if (depth > deepest) return {};
    Refs functions;
    for (const DeclarationRef& ref : callee.named.refs)
        if (At(ref).kind == FactKind::Function) functions.push_back(ref);
    if (!functions.empty()) {
        const Refs chosen = ChooseFunctions(functions, callee.named, open, depth + 1);
        const DeclarationRef ref = chosen.empty() ? functions.front() : chosen.front();
        Type type = TypeOf(ref, callee.named.owner, depth + 1);
        // A function's own parameter, told by the call: `make<Ship>()`.
        if (!type.IsClass() && !callee.type.arguments.empty()) {
            const FileFacts& facts = FactsIn(ref.file);
            const Declared& declared = At(ref);
            if (declared.body >= 0) {
                const int parameters = facts.scopes[static_cast<std::size_t>(declared.body)].parent;
                if (parameters >= 0 &&
                    facts.scopes[static_cast<std::size_t>(parameters)].kind == ScopeKind::Template) {
                    const std::size_t firstOne = static_cast<std::size_t>(
                        facts.scopes[static_cast<std::size_t>(parameters)].firstDeclared);
                    for (std::size_t i = 0; i < callee.type.arguments.size(); ++i)
                        if (firstOne + i < facts.declared.size() &&
                            facts.declared[firstOne + i].name == type.name) {
                            Type given = callee.type.arguments[i];
                            given.pointers += type.pointers;
                            return given;
                        }
                }
            }
        }
        return type;
    }
    if (callee.type.IsClass()) { // an object that can be called
        const Found found = LookInClass("operator ()", callee.type, Wanted::Any, depth + 1);
        if (!found.refs.empty()) return TypeOf(found.refs.front(), found.owner, depth + 1);
        return {};
    }
    if (callee.named.IsNone() && !callee.type.name.empty()) {
        const std::string& name = callee.type.name;
        Type type;
        if (name.starts_with("make_") && !callee.type.arguments.empty()) { // a smart pointer's maker
            type.name = name.substr(5) + "_ptr";
            type.arguments = {callee.type.arguments.front()};
            return type;
        }
        if ((name == "move" || name == "forward" || name == "ref" || name == "cref" || name == "min" ||
             name == "max") &&
            (*tokens)[open].partner > 0) {
            std::vector<std::pair<int, int>> ranges;
            if (ArgumentCount(open, &ranges) > 0)
                return Evaluate(ranges[0].first, ranges[0].second, depth + 1).type;
        }
        if ((name == "static_pointer_cast" || name == "dynamic_pointer_cast") &&
            !callee.type.arguments.empty()) {
            type.name = "shared_ptr";
            type.arguments = {callee.type.arguments.front()};
            return type;
        }
    }
    if (callee.type.pointers > 0) { // a pointer to a function
        Type type = callee.type;
        --type.pointers;
        return type;
    }
    return {};
}

// A member of an object whose class no file declares: what holds elements gives them by names that are the
// same in all such classes.
Type Resolver::CallUnknown(std::string_view method, const Type& object) {
    Type type;
    if (object.name == "pair" && object.arguments.size() == 2) {
        if (method == "first") return object.arguments[0];
        if (method == "second") return object.arguments[1];
    }
    if (object.arguments.empty()) return type;
    if (IsAmong(pointerGivers, method)) {
        type = ElementOf(object, deepest);
        ++type.pointers;
    } else if (IsAmong(elementGivers, method)) {
        const bool isMap = method == "at" && object.arguments.size() >= 2;
        type = isMap ? object.arguments[1] : ElementOf(object, deepest);
    } else if (method == "lock") {
        type = object;
    }
    return type;
}

} // namespace ostraka::answers
