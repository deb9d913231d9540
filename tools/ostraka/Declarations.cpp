// The scan of the library looks at the children of the root, and so does this: a child is what the record
// with its position says, or else what the recognisers of the table make of it.

#include "Declarations.h"

#include <algorithm>
#include <unordered_map>

#include <fmt/format.h>
#include <ostraka/symbols/TAPSymbolTable.h>
#include <ostraka/syntax/TAPExpression.h>

#include "NodeText.h"

namespace ostraka::tool {

namespace {

constexpr const char* kindNames[] = {"class",  "forward",        "enum",     "typedef",       "method",
                                     "member", "implementation", "function", "function body", "variable",
                                     "tie"};
constexpr const char* visibilities[] = {"public", "protected", "private"};
constexpr const char* directions[] = {"in", "out", "inout"};
constexpr std::string_view tieMark = "TIE_";

struct Word {
    int code;
    const char* word;
};

constexpr Word classKinds[] = {{1, "plain"}, {2, "interface"}, {4, "component"}};
constexpr Word bindings[] = {{11, "static"}, {12, "virtual"}, {13, "pure virtual"}};

bool LiesIn(const TAPSyntaxePath* path, const std::string& file) {
    return path != nullptr && path->filePath == file.c_str();
}

// A record's position among the children of the root of this file, or 0 if it isn't one of them.
int TopPosition(const TAPSyntaxePath* path, const std::string& file) {
    return LiesIn(path, file) && path->posInTree.size == 1 ? path->posInTree[1] : 0;
}

std::string OneLine(std::string_view text) {
    std::string line;
    AppendOneLine(line, text);
    return line;
}

bool IsBlock(const TAPSyntaxe& root, int i) {
    return i <= root.ChildCount() && root.Child(i)->GetType() == STYPE_Bloc;
}

std::string TextOfVariable(const TAPDefVar& variable) {
    return fmt::format("{} {}", variable.type, variable.name != nullptr ? variable.name : "");
}

class FileReading {
public:
    FileReading(TAPSymbolTable& symbols, const std::string& path, TAPSyntaxe& top)
        : table(symbols), file(path), root(top) {
        const TAPDefSource* source = table.GetSource(path.c_str());
        if (source == nullptr) return;
        for (int i = 1; i <= source->classes.size; ++i)
            classAt.try_emplace(TopPosition(source->classes[i]->path, file), source->classes[i]);
        for (int i = 1; i <= source->implMethods.size; ++i)
            implementationAt.try_emplace(TopPosition(source->implMethods[i]->implPath, file),
                                         source->implMethods[i]);
    }

    std::vector<OutlineEntry> Run() {
        for (int i = 1; i <= root.ChildCount(); ++i) Read(i);
        return std::move(found);
    }

private:
    void Read(int i) {
        TAPSyntaxe& child = *root.Child(i);
        if (const auto known = classAt.find(i); known != classAt.end())
            return AddClass(*known->second, child);
        if (const auto known = implementationAt.find(i); known != implementationAt.end())
            return AddImplementation(*known->second, child);
        if (child.GetType() == STYPE_Declaration) return ReadDeclaration(child, i);
        if (child.GetType() == STYPE_Instruction) ReadInstruction(child, i);
    }

    OutlineEntry& Add(DeclarationKind kind, std::string name, TAPSyntaxe& node) {
        found.push_back({kind, std::move(name), "", OneLine(TrimmedTextOf(node)), PlaceOf(node)});
        return found.back();
    }

    void AddClass(const TAPDefClass& record, TAPSyntaxe& head) {
        Add(DeclarationKind::Class, record.name, head).classRecord = &record;
        const std::size_t first = found.size();
        for (int i = 1; i <= record.methods.size; ++i) {
            const TAPDefMethod& method = *record.methods[i];
            if (!LiesIn(method.path, file)) continue;
            found.push_back({DeclarationKind::Method, method.name, record.name, SignatureOf(method),
                             PlaceOf(*method.path), nullptr, &method});
        }
        for (int i = 1; i <= record.vars.size; ++i) {
            const TAPDefVar& member = *record.vars[i];
            if (!LiesIn(member.path, file)) continue;
            found.push_back({DeclarationKind::Member, member.name != nullptr ? member.name : "", record.name,
                             TextOfVariable(member), PlaceOf(*member.path), nullptr, nullptr, &member});
        }
        std::stable_sort(found.begin() + static_cast<std::ptrdiff_t>(first), found.end(),
                         [](const OutlineEntry& a, const OutlineEntry& b) {
                             return std::pair(a.place.line, a.place.column) <
                                    std::pair(b.place.line, b.place.column);
                         });
    }

    void AddImplementation(const TAPDefMethod& method, TAPSyntaxe& head) {
        OutlineEntry& added = Add(DeclarationKind::Implementation, method.name, head);
        added.method = &method;
        if (method.defClass != nullptr) added.scope = method.defClass->name;
    }

    void ReadDeclaration(TAPSyntaxe& child, int i) {
        const std::string_view text = TrimmedTextOf(child);
        const TAPSyntaxe* first = child.ChildCount() > 0 ? child.Child(1) : nullptr;
        if (text.starts_with("typedef ")) {
            Add(DeclarationKind::Typedef, OneLine(TrimmedTextOf(*child.GetLastLeaf())), child);
        } else if (text.starts_with("class ") && first != nullptr) {
            Add(IsBlock(root, i + 1) ? DeclarationKind::Class : DeclarationKind::Forward,
                OneLine(TrimmedTextOf(*first)), child);
        } else if (text.starts_with("enum ") || text.find(" enum ") != text.npos) {
            Add(DeclarationKind::Enum, first != nullptr ? OneLine(TrimmedTextOf(*first)) : "", child);
        } else {
            ReadBody(child);
        }
    }

    // A body of a method whose class isn't known has no record.
    void ReadBody(TAPSyntaxe& child) {
        NUBString className, name;
        TAPSyntaxe* args = nullptr;
        if (table.IsMethodImplementation(&child, className, name, args) != 0) {
            Add(DeclarationKind::Implementation, OneLine(name.View()), child).scope =
                OneLine(className.View());
        } else if (table.IsFunctionImplementation(&child, name, args) != 0) {
            Add(DeclarationKind::FunctionBody, OneLine(name.View()), child);
        }
    }

    void ReadInstruction(TAPSyntaxe& child, int i) {
        NUBString type, name;
        TAPSyntaxe* args = nullptr;
        if (ReadTie(child)) return;
        if (IsBlock(root, i + 1)) return ReadBody(child);
        if (table.IsFunctionDeclaration(&child, type, name, args) == 2 && type.Length() > 0) {
            Add(DeclarationKind::Function, OneLine(name.View()), child);
            return;
        }
        NUBListPtrTAPDefVar variables;
        if (child.ChildCount() > 0 && table.IsVariableOrFunctionDeclaration(child.Child(1), variables) == 1)
            for (int k = 1; k <= variables.size; ++k)
                Add(DeclarationKind::Variable, variables[k]->name != nullptr ? variables[k]->name : "",
                    child);
        for (int k = 1; k <= variables.size; ++k) variables[k]->Release();
    }

    bool ReadTie(TAPSyntaxe& child) {
        const TAPSyntaxe* call = child.ChildCount() == 1 ? child.Child(1) : nullptr;
        if (call == nullptr || call->ChildCount() != 2) return false;
        const std::string_view word = TrimmedTextOf(*call->Child(1));
        if (!word.starts_with(tieMark) || word.size() == tieMark.size()) return false;
        Add(DeclarationKind::Tie, OneLine(word.substr(tieMark.size())), child).scope =
            OneLine(TrimmedTextOf(*call->Child(2)));
        return true;
    }

    TAPSymbolTable& table;
    const std::string& file;
    TAPSyntaxe& root;
    std::unordered_map<int, const TAPDefClass*> classAt; // by position below the root; 0 for all others
    std::unordered_map<int, const TAPDefMethod*> implementationAt;
    std::vector<OutlineEntry> found;
};

template <std::size_t count>
const char* WordFor(const Word (&words)[count], int code) {
    const auto* found = std::find_if(words, words + count, [=](const Word& row) { return row.code == code; });
    return found == words + count ? "" : found->word;
}

} // namespace

const char* NameOf(DeclarationKind kind) {
    return kindNames[static_cast<int>(kind)];
}

std::vector<OutlineEntry> DeclarationsOf(TAPSymbolTable& table, const std::string& path) {
    auto* root = static_cast<TAPSyntaxe*>(table.trees[path.c_str()]);
    if (root == nullptr) return {};
    return FileReading(table, path, *root).Run();
}

Place PlaceOf(const TAPSyntaxePath& path) {
    return {path.beginPoint.line, std::max(1, path.beginPoint.col - 1)};
}

const char* VisibilityOf(int code) {
    return code >= 0 && code <= 2 ? visibilities[code] : "";
}

const char* BindingOf(const TAPDefMethod& method) {
    return WordFor(bindings, method.binding);
}

const char* DirectionOf(int code) {
    return code >= 100 && code <= 102 ? directions[code - 100] : "";
}

std::string KindOf(const TAPDefClass& record) {
    std::string words;
    for (const Word& row : classKinds) {
        if ((record.kind & row.code) == 0) continue;
        if (!words.empty()) words += ',';
        words += row.word;
    }
    return words;
}

std::string ArgumentsOf(const TAPDefMethod& method) {
    std::string text = "(";
    for (int i = 1; i <= method.args.size; ++i) {
        const TAPDefVar& argument = *method.args[i];
        if (i > 1) text += ", ";
        if (const std::string_view direction = DirectionOf(argument.direction); !direction.empty())
            text += fmt::format("{} ", direction);
        text += argument.type;
        if (argument.name != nullptr) text += fmt::format(" {}", argument.name);
    }
    return text + ")";
}

std::string SignatureOf(const TAPDefMethod& method) {
    std::string text;
    for (const std::string_view word :
         {std::string_view(method.inlined != 0 ? "inline" : ""), std::string_view(BindingOf(method)),
          std::string_view(method.returnedType != nullptr ? method.returnedType : "")})
        if (!word.empty()) text += fmt::format("{} ", word);
    return text + method.name + ArgumentsOf(method);
}

} // namespace ostraka::tool
