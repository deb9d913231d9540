// All questions of a symbol table, asked from every node of what was loaded.

#include <vector>

#include "LoadedTable.h"
#include "SlowQuestions.h"

namespace {

constexpr std::size_t mostNodes = 1000;
constexpr std::size_t mostPlain = 40; // nodes from which the plain walks start
constexpr int mostClasses = 20;

class Questions {
public:
    explicit Questions(TAPSymbolTable& ofTable) : table(ofTable) {}

    ~Questions() {
        for (TAPDefClass* cls : classes) cls->Release();
    }

    void AskAll() {
        for (int i = 0; i < table.trees.size; ++i)
            nodes.push_back(static_cast<TAPSyntaxe*>(table.trees.values[i]));
        for (std::size_t i = 0; i < nodes.size() && nodes.size() < mostNodes; ++i)
            for (int child = 1; child <= nodes[i]->ChildCount(); ++child)
                nodes.push_back(nodes[i]->Child(child));
        for (std::size_t i = 0; i < nodes.size(); i += nodes.size() / mostPlain + 1)
            CompareWithPlain(nodes[i]);
        for (TAPSyntaxe* node : nodes) {
            AskForTypes(node);
            AskForDeclarations(node);
            AskForNames(node);
        }
        for (int i = 0; i < table.classIndex.size; ++i) {
            classes.push_back(static_cast<TAPDefClass*>(table.classIndex.values[i]));
            classes.back()->AddRef();
        }
        AskClasses();
        CompareLines();
        for (int i = 0; i < table.functions.size; ++i)
            CheckNode(table.GetFunctionDeclarationLocation(table.functions.keys[i]));
    }

    // Of the classes that were there, whatever has become of their files.
    void AskClasses() {
        for (TAPDefClass* cls : classes) AskClass(*cls);
    }

private:
    void CheckNode(TAPSyntaxe* node) const { CheckStands(table, node); }

    void CheckAndRelease(NUBListPtrTAPDefVar& vars) {
        for (int i = 1; i <= vars.Size(); ++i) {
            CheckNode(vars[i]->GetDefinition());
            vars[i]->Release();
        }
        vars.RemoveAll(1);
    }

    // What the table looks up against the plain walks.
    void CompareWithPlain(TAPSyntaxe* node) {
        const std::string name = node->GetContent();
        if (static_cast<int>(name.size()) != node->GetSize())
            return; // it holds a NUL, or lies behind the end
        NUBString type;
        std::string plainType;
        TAPSyntaxe* scope = nodes[name.size() % nodes.size()];
        CHECK(table.FindDeclare(node, type, nullptr, 0) == slow::FindAround(table, node, plainType));
        CHECK(type == plainType.c_str());
        CHECK(table.FindDeclare(node, type, scope, 0) == slow::FindInScope(table, node, plainType, scope));
        CHECK(type == plainType.c_str());
        TAPSyntaxe* block = nullptr;
        for (TAPSyntaxe* around = node; around != nullptr; around = around->GetParent())
            if (around->GetType() == STYPE_Bloc) block = around;
        int count = 0;
        const bool isReturned = table.IsReturned(block, name.c_str(), count, 1) == -1;
        CHECK((table.IsReturned(node, name.c_str(), count, 0) == -1) == isReturned);
    }

    void CompareLines() {
        const TAIndex& index = table.classIndex;
        for (int i = 0; i < index.size && i < mostClasses; ++i) {
            for (int k = 0; k < index.size && k < mostClasses; ++k) {
                const std::string derived = index.keys[i];
                const std::string base = index.keys[k];
                if ((derived + base).find_first_of("_*&") != std::string::npos) continue;
                CHECK((table.InheritFrom(derived.c_str(), base.c_str()) != 0) ==
                      slow::IsDerived(table, derived, base));
            }
        }
    }

    void AskForTypes(TAPSyntaxe* node) {
        NUBString type;
        if (table.GetType(node, type) == 0) {
            table.MatchType(type, lastType);
            table.MatchType(lastType, type);
            table.InheritFrom(type.CastToCharPtr(), lastType.CastToCharPtr());
            table.IsARecognizedType(type);
            table.IsBasicType(type.CastToCharPtr());
            lastType = type;
        }
        table.IsBasicType(node);
        int unused = 0;
        NUBString name;
        table.GetArgType(node, type, name);
        table.GetIdlArgType(node, type, name, unused);
    }

    void AskForDeclarations(TAPSyntaxe* node) {
        NUBListPtrTAPDefVar vars;
        for (const int strict : {0, 1}) {
            NUBListValNUBString words;
            if (table.IsVariableDeclarationInternal(node, words, strict) == 1)
                table.GetVariablesAndType(node, words, vars);
        }
        CheckAndRelease(vars);
        CHECK((table.IsVariableOrFunctionDeclaration(node, vars) == 1) == (vars.Size() > 0));
        CheckAndRelease(vars);
        NUBString type, name;
        TAPSyntaxe* args = nullptr;
        if (table.IsFunctionDeclaration(node, type, name, args) == 2) CheckNode(args);
        if (table.IsMethodImplementation(node, type, name, args) == 1) CheckNode(args);
        if (table.IsFunctionImplementation(node, name, args) == 1) CheckNode(args);
    }

    void AskForNames(TAPSyntaxe* node) {
        const std::string name = node->GetContent();
        NUBString type;
        CheckNode(table.FindDeclare(node, type, nullptr, 0));
        CheckNode(table.FindDeclare(node, type, nodes[name.size() % nodes.size()], 1));
        table.FindClass(node);
        table.GetClassName(node);
        table.GetMethodName(node, type);
        TAPSyntaxe* cast = nullptr;
        CheckNode(table.FindObject(node, &cast));
        CheckNode(cast);
        int count = 0;
        table.IsReturned(node, name.c_str(), count, 0);
        NUBListPtrTAPDefVar vars;
        table.GetVariableDefinitions(node, vars);
        if (TAPDefVar* var = table.GetVariable(name.c_str(), node, vars)) CheckNode(var->GetDefinition());
        CheckAndRelease(vars);
        CheckNode(table.GetClassDeclarationLocation(name.c_str()));
    }

    void AskClass(TAPDefClass& cls) {
        CheckNode(cls.GetDeclarationLocation());
        for (int i = 1; i <= cls.methods.Size(); ++i) {
            TAPDefMethod& method = *cls.methods[i];
            CheckNode(method.GetSyntaxe());
            CHECK(method.GetImpLine() >= 0 && cls.GetMethod(method.GetName()) != nullptr);
            cls.GetMethodAll("none");
            CHECK(TAPDefMethod::Compare(&method, &method) == 0);
            delete method.GetArgTypes();
        }
    }

    TAPSymbolTable& table;
    std::vector<TAPSyntaxe*> nodes;
    std::vector<TAPDefClass*> classes; // one reference held for each
    NUBString lastType;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const InputFiles files(data, size, "text.cpp");
    auto* table = new TAPSymbolTable;
    table->LoadFile(files.path.c_str(), 1);
    const std::string records = Records(*table).text;
    {
        Questions questions(*table);
        questions.AskAll();
        CHECK(Records(*table).text == records);
        table->UnLoadFile(table->sources.keys[0]); // a header, if there is any
        Questions(*table).AskAll();
        questions.AskClasses();
        files.Shift();
        table->UnLoadAllFiles();
        questions.AskClasses();
        table->LoadFile(files.path.c_str(), 1);
        questions.AskClasses();
    }
    table->Release();
    return 0;
}
