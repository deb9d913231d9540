// The road of a file. Its first half, up to the includes, enters it; then each header that it includes takes
// the whole road; then its second half makes the tree and reads the declarations. A file that waits for its
// headers stands on a stack of our own, so that a chain of includes may be as long as it likes:
//
//     a.h    includes b.h, c.h     next header: c.h
//     b.h    includes d.h          next header: none left
//     d.h                          being finished

#include <ostraka/symbols/FileLoading.h>

#include <string_view>
#include <utility>
#include <vector>

#include <ostraka/symbols/DeclarationScan.h>
#include <ostraka/symbols/HeaderMemory.h>
#include <ostraka/symbols/OwnedParts.h>

using namespace ostraka::detail;

namespace {

constexpr int loaded = 0;
constexpr int nothingGiven = 1;
constexpr int notNormalised = 2;
constexpr int notBuilt = 3;

// A file between the two halves. It holds a reference on its parts, since a subscriber may unload the file.
struct PendingLoad {
    Language language;
    int full;
    TAPSourceFile* file;
    TAPDefSource* record;
    std::vector<TAFileName> headers; // the files that the includes name, in the order of loading
    std::size_t next = 0;
    unsigned round = 0; // of the memory of folders when they were searched
};

class Loader {
public:
    explicit Loader(TAPSymbolTable& ofTable) : table(ofTable), memory(HeaderMemory::Of(ofTable)) {}

    // The results of headers are dropped; the file that was asked for is the last to be finished.
    int Load(Language language, TAFileBuffer* buffer, int full) {
        int result = Begin(language, buffer, full);
        while (!pending.empty()) {
            if (LoadNextHeader()) continue;
            PendingLoad done = std::move(pending.back());
            pending.pop_back();
            result = Finish(done);
        }
        return result;
    }

private:
    int Begin(Language language, TAFileBuffer* buffer, int full);
    bool WasHandled(const char* name, int full);
    void SearchHeaders(PendingLoad& load) const;
    void ListKnownHeaders(PendingLoad& load);
    bool LoadNextHeader();
    int Finish(PendingLoad& load);
    int MakeTree(PendingLoad& load);
    int Scan(PendingLoad& load, TAPSyntaxe* root);
    void ReadInterfaces(TAPDefSource& header);

    TAPSymbolTable& table;
    const HeaderMemory& memory;
    std::vector<PendingLoad> pending;
};

bool Loader::WasHandled(const char* name, int full) {
    if (full == 0) {
        if (table.scannedFiles.Holds(name)) return true;
        table.scannedFiles.Append(name, nullptr, 0);
    }
    return table.sources.Holds(name);
}

// The first half. It ends with the file on the stack, unless there is nothing to do or the text is unsound.
int Loader::Begin(Language language, TAFileBuffer* buffer, int full) {
    if (buffer == nullptr) return nothingGiven;
    if (WasHandled(buffer->fileName, full)) {
        delete buffer;
        return loaded;
    }
    const NUBString name(buffer->fileName);
    PendingLoad load{language, full, new TAPSourceFile(buffer), new TAPDefSource(name, nullptr, &table), {}};
    load.file->SetLexicalSettings(table.lexicalSettings);
    load.record->readForInterfaces = language == Language::Idl;
    if (full != 0) {
        // From here on the file counts as loaded, which ends a circle of includes.
        table.sources.Append(name.CastToCharPtr(), load.record, 0);
        load.record->AddRef();
    }
    load.file->AddSubscriber(&table);
    const int result = load.file->Process(table.macros);
    load.record->failure = load.file->GetFailure();
    if (result != 0) {
        table.errMsg = load.file->GetErrMsg();
        load.file->Release();
        load.record->Release();
        return notNormalised;
    }
    load.record->nbLine = load.file->GetNbLine();
    load.record->nbCodeLine = load.file->GetNbCodeLine();
    if (full != 0) SearchHeaders(load);
    if (language == Language::Idl) ListKnownHeaders(load);
    pending.push_back(std::move(load));
    return loaded;
}

void Loader::SearchHeaders(PendingLoad& load) const {
    const TAIndex& names = load.file->includes;
    load.headers.clear();
    for (int i = names.size - 1; i >= 0; --i) {
        TAFileName header = table.SearchHeaderFile(load.record->name.CastToCharPtr(), names.keys[i]);
        if (!header.IsNull()) load.headers.push_back(std::move(header));
    }
    load.round = memory.Round();
}

// A file of interfaces lists the headers that are loaded by now a second time.
void Loader::ListKnownHeaders(PendingLoad& load) {
    for (const TAFileName& header : load.headers)
        if (TAPDefSource* known = table.GetSource(header)) load.record->AddInclude(known);
}

// False when the file on top waits for nothing more.
bool Loader::LoadNextHeader() {
    PendingLoad& load = pending.back();
    if (load.next == load.headers.size()) return false;
    const TAFileName header = load.headers[load.next++];
    if (table.sources.Holds(header)) return true;
    Begin(LanguageOfHeader(table, load.language, header), new TAFileBuffer(header, 0), 1);
    return true;
}

// The second half. All headers are loaded now. Those who were told of them may have made others.
int Loader::Finish(PendingLoad& load) {
    if (load.full != 0 && load.round != memory.Round()) SearchHeaders(load);
    for (const TAFileName& header : load.headers) {
        TAPDefSource* included = table.GetSource(header);
        if (included == nullptr) continue;
        load.record->AddInclude(included);
        if (load.record->readForInterfaces && table.headersByEnding) ReadInterfaces(*included);
    }
    const int result = MakeTree(load);
    load.record->Release();
    return result;
}

// Takes the tree that a light load has left, or builds one; then reads its declarations.
int Loader::MakeTree(PendingLoad& load) {
    const char* name = load.record->name.CastToCharPtr();
    const int position = table.trees.IsIn(name);
    TAPSyntaxe* root = nullptr;
    if (position >= 0) {
        root = static_cast<TAPSyntaxe*>(table.trees.values[position]);
        if (root != nullptr) root->AddRef();
    } else {
        root = new TAPSyntaxe(STYPE_File, load.file, 0, load.file->GetSize(), -1);
        if (root->Build() != 0) {
            table.errMsg = root->GetErrMsg();
            load.record->failure = root->GetFailure();
            load.file->Release();
            root->Release();
            return notBuilt;
        }
        if (load.full != 0) {
            table.AddSyntaxeInTable(load.record->name, root);
            root->AddRef();
        }
    }
    load.record->SetSyntaxe(root);
    load.file->RemoveSubscriber(&table);
    load.file->Release();
    return Scan(load, root);
}

// Reads a header that was loaded as C++ for its interfaces, those that it includes first. What has no tree
// yet waits for its own scan.
void Loader::ReadInterfaces(TAPDefSource& header) {
    struct Visit {
        TAPDefSource* source;
        int next = 1; // of its includes
    };
    std::vector<Visit> open;
    const auto enter = [&open](TAPDefSource& source) {
        if (!std::exchange(source.readForInterfaces, true)) open.push_back({&source});
    };
    enter(header);
    while (!open.empty()) {
        Visit& visit = open.back();
        TAPDefSource& source = *visit.source;
        if (visit.next <= source.includes.size) {
            enter(*source.includes[visit.next++]);
        } else {
            open.pop_back();
            table.SearchIdlDeclarations(source.GetSyntaxe(), &source, 1);
        }
    }
}

int Loader::Scan(PendingLoad& load, TAPSyntaxe* root) {
    const int result =
        load.language == Language::Cxx ? table.SearchDeclarations(root, load.record, load.full) : 0;
    if (load.record->readForInterfaces) table.SearchIdlDeclarations(root, load.record, load.full);
    if (root == nullptr) return result;
    // With this reference goes the tree of a scan-only load, and a tree that was unloaded meanwhile.
    if (root->count == 1) ForgetFunctions(table, *root);
    root->Release();
    return result;
}

} // namespace

int ostraka::detail::LoadAs(Language language, TAPSymbolTable& table, TAFileBuffer* buffer, int full) {
    const LoadInProgress load(table);
    return Loader(table).Load(language, buffer, full);
}

Language ostraka::detail::LanguageOfHeader(const TAPSymbolTable& table, Language includer, const char* path) {
    const bool cxx = table.headersByEnding
                         ? !TAPSymbolTable::EndsAsIdl(path)
                         : includer == Language::Cxx && std::string_view(path).ends_with(".h");
    return cxx ? Language::Cxx : Language::Idl;
}

bool TAPSymbolTable::EndsAsIdl(const char* path) {
    const std::string_view text = path;
    return text.ends_with(".idl") || text.ends_with(".IDL");
}

int TAPSymbolTable::LoadFile(const char* name, int full) {
    return sources.Holds(name) ? loaded : LoadFile(new TAFileBuffer(name, 0), full);
}

int TAPSymbolTable::LoadFile(TAFileBuffer* buffer, int full) {
    return LoadAs(Language::Cxx, *this, buffer, full);
}
