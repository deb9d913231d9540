#include <ostraka/symbols/TAPSymbolTable.h>

#include <cstdlib>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <ostraka/foundation/Ref.h>
#include <ostraka/symbols/DeclarationScan.h>
#include <ostraka/symbols/DroppedFunctions.h>
#include <ostraka/symbols/HeaderMemory.h>
#include <ostraka/symbols/LineOfBases.h>
#include <ostraka/symbols/OwnedParts.h>
#include <ostraka/symbols/Ties.h>

using namespace ostraka::detail;

namespace {

constexpr const char* keywordTable[] = {
    "const",    "volatile", "inline", "virtual", "signed",  "unsigned", "long",   "short", "auto",
    "register", "static",   "extern", "friend",  "typedef", "class",    "struct", "union", "enum",
};

constexpr const char* basicTypeTable[] = {
    "void",   "long",     "short", "char",  "int",     "double", "float", "HANDLE", "DWORD", "time_t",
    "signed", "unsigned", "BYTE",  "ULONG", "HRESULT", "WORD",   "GUID",  "IID",    "CLSID",
};

constexpr const char* lightLoadProblem = "Problem while loading a file in light mode";

template <class Record>
Record* ValueAt(const TAIndex& index, int position) {
    return static_cast<Record*>(index.values[position]);
}

template <class Record>
Record* ValueOf(const TAIndex& index, const char* key) {
    return static_cast<Record*>(index[key]);
}

// Gives back the index's reference on each value, from the last to the first.
template <class Record>
void ReleaseValues(const TAIndex& index) {
    for (int i = index.size - 1; i >= 0; --i) ReleaseIfAny(ValueAt<Record>(index, i));
}

// A look at the path spares resolving the classes of other files, and reading a dropped tree again.
bool IsDeclaredIn(TAPDefClass* cls, const TAPDefSource& source, bool hasTree) {
    if (cls->path == nullptr || cls->path->filePath != source.name) return false;
    if (!hasTree) return true;
    TAPSyntaxe* declaration = cls->GetDeclarationLocation();
    return declaration != nullptr && declaration->GetSource() == source.name;
}

// Takes the classes of a source out of the index, from the last to the first.
void DropClassesOf(const TAPDefSource& source, bool hasTree, TAIndex& classIndex) {
    std::vector<int> positions;
    for (int i = classIndex.size - 1; i >= 0; --i)
        if (IsDeclaredIn(ValueAt<TAPDefClass>(classIndex, i), source, hasTree)) positions.push_back(i);
    for (int position : positions) {
        const auto cls = Ref<TAPDefClass>::Adopt(ValueAt<TAPDefClass>(classIndex, position));
        classIndex.RemovePosition(position);
    }
}

// Nothing when there is none.
Ref<TAPSyntaxe> TakeTree(TAIndex& trees, const char* name) {
    const int position = trees.IsIn(name);
    if (position < 0) return {};
    auto* root = ValueAt<TAPSyntaxe>(trees, position);
    trees.RemovePosition(position);
    return Ref<TAPSyntaxe>::Adopt(root);
}

// What was freed lies scattered over the heap, which keeps it from the system unless it is asked.
void GiveMemoryBack() {
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace

TAPSymbolTable::TAPSymbolTable()
    : bases(std::make_unique<LineOfBases>()), headerMemory(std::make_unique<HeaderMemory>()),
      droppedFunctions(std::make_unique<DroppedFunctions>(*this)) {
    const char* os = std::getenv("QxqxOS_VAR");
    if (os == nullptr) std::exit(1);
    osName = os;
    for (const char* word : basicTypeTable) basicTypes.Append(word, nullptr, 0);
    for (const char* word : keywordTable) keywords.Append(word, nullptr, 0);
}

TAPSymbolTable::~TAPSymbolTable() {
    ReleaseAllFiles();
}

int TAPSymbolTable::ReceiveCallback(TACallbackPublisher* publisher, int event, void* data1, void*) {
    const bool told = event == 1 && SendCallback(1, static_cast<TAPSourceFile*>(publisher), data1) == 0;
    if (told) headerMemory->Doubt(); // a subscriber may make headers
    return 0;
}

int TAPSymbolTable::LightLoadFile(const NUBString& name) {
    const char* path = name.CastToCharPtr();
    FATAL(trees.Holds(path), "Internal error in TAPSymbolTable::LightLoadFile, file already loaded");
    auto* buffer = new TAFileBuffer(path, 0);
    const bool unreadable = buffer->GetBuffer() == nullptr;
    const auto file = Ref<TAPSourceFile>::Adopt(new TAPSourceFile(buffer));
    file->SetLexicalSettings(lexicalSettings);
    if (unreadable || file->Process(macros) != 0) {
        errMsg = unreadable ? NUBString(lightLoadProblem) : file->GetErrMsg();
        return 2;
    }
    auto root = Ref<TAPSyntaxe>::Adopt(new TAPSyntaxe(STYPE_File, file.Get(), 0, file->GetSize(), -1));
    if (root->Build() != 0) {
        errMsg = root->GetErrMsg();
        return 3;
    }
    AddSyntaxeInTable(name, root.HandOver());
    return 1;
}

int TAPSymbolTable::AddSyntaxeInTable(const NUBString& name, TAPSyntaxe* root) {
    trees.Append(name.CastToCharPtr(), root, 0);
    return 0;
}

int TAPSymbolTable::UnLoadFile(const char* name) {
    auto* source = ValueOf<TAPDefSource>(sources, name);
    if (source == nullptr) return 1;
    const NUBString path(name); // the argument may be a key that goes
    BreakCirclesOfTies({source});
    DropClassesOf(*source, trees.Holds(name), classIndex);
    source->LeaveIncluders();
    sources.RemovePosition(sources.IsIn(path.CastToCharPtr()));
    source->Release();
    droppedFunctions->Forget(path);

    const Ref<TAPSyntaxe> root = TakeTree(trees, path.CastToCharPtr());
    if (root) ForgetFunctions(*this, *root);
    return 0;
}

int TAPSymbolTable::DropTree(const char* name) {
    if (!trees.Holds(name)) return 1;
    const Ref<TAPSyntaxe> root = TakeTree(trees, name);
    if (root) droppedFunctions->Keep(*root);
    return 0;
}

void TAPSymbolTable::DropTrees() {
    for (int i = trees.size - 1; i >= 0; --i) DropTree(trees.keys[i]);
    GiveMemoryBack();
}

void TAPSymbolTable::UnLoadAllFiles() {
    ReleaseAllFiles();
    TAIndex* const emptied[] = {&classIndex, &functions,    &trees,       &sources,
                                &types,      &macros,       &classNames,  &interfaceNames,
                                &enumNames,  &typedefNames, &scannedFiles};
    for (TAIndex* index : emptied) index->Reset();
    headerMemory->Forget();
    droppedFunctions->ForgetAll();
    GiveMemoryBack();
}

void TAPSymbolTable::ReleaseAllFiles() {
    std::vector<TAPDefSource*> records;
    records.reserve(static_cast<std::size_t>(sources.size));
    for (int i = 0; i < sources.size; ++i) records.push_back(ValueAt<TAPDefSource>(sources, i));
    BreakCirclesOfTies(records);
    ReleaseValues<TAPDefClass>(classIndex);
    ReleaseValues<TAPSyntaxe>(trees);
    // Before any record goes, and upward, since the lists run downward and give up their last entry for less.
    for (TAPDefSource* record : records) record->LeaveIncluders();
    ReleaseValues<TAPDefSource>(sources);
}

TAPSyntaxe* TAPSymbolTable::GetSyntaxe(TAPSyntaxePath* path) {
    if (path == nullptr) return nullptr;
    const char* file = path->filePath.CastToCharPtr();
    if (!trees.Holds(file) && LightLoadFile(path->filePath) != 1) {
        errMsg = lightLoadProblem;
        return nullptr;
    }
    auto* node = ValueOf<TAPSyntaxe>(trees, file);
    for (int i = 1; i <= path->posInTree.size && node != nullptr; ++i) {
        const int position = path->posInTree[i];
        node = position >= 1 && position <= node->ChildCount() ? node->Child(position) : nullptr;
    }
    return node;
}

TAPDefSource* TAPSymbolTable::GetSource(const char* name) const {
    return ValueOf<TAPDefSource>(sources, name);
}

TAPDefClass* TAPSymbolTable::GetClass(const char* name) const {
    return ValueOf<TAPDefClass>(classIndex, name);
}

void TAPSymbolTable::GetClassNames(NUBListValNUBString& names, int mask) const {
    names.RemoveAll(0);
    for (int i = 0; i < classIndex.size; ++i)
        if ((ValueAt<TAPDefClass>(classIndex, i)->kind & mask) != 0)
            names.Append(NUBString(classIndex.keys[i]));
}

NUBString TAPSymbolTable::GetErrMsg() const {
    return NUBString("SymboleTable: ") + errMsg;
}
