#include <ostraka/symbols/TAPDefSource.h>

#include <algorithm>
#include <string_view>

#include <ostraka/foundation/TAFileName.h>
#include <ostraka/symbols/OwnedParts.h>

using namespace ostraka::detail;

TAIndex TAPDefSource::fws;

namespace {

struct Classification {
    std::string_view text;
    int kind;
};

constexpr Classification extensions[] = {{".h", TAPDefSource::Header},
                                         {".cpp", TAPDefSource::CppFile},
                                         {".c", TAPDefSource::CFile},
                                         {".idl", TAPDefSource::IdlFile}};

// The last row that a path holds decides.
constexpr Classification directories[] = {
    {"/LocalInterfaces/", TAPDefSource::LocalInterface},
    {"/PublicInterfaces/", TAPDefSource::PublicInterface},
    {"/ProtectedInterfaces/", TAPDefSource::ProtectedInterface},
    {"/PrivateInterfaces/", TAPDefSource::PrivateInterface},
    {"/PublicGenerated/", TAPDefSource::PublicInterface},
    {"/ProtectedGenerated/", TAPDefSource::ProtectedInterface},
    {"/PrivateGenerated/", TAPDefSource::PrivateInterface},
};

// The dot may lie in the name of a directory; what follows it then is no extension of the table.
int FileKindOf(std::string_view path) {
    const std::size_t dot = path.rfind('.');
    if (dot == std::string_view::npos) return TAPDefSource::OtherFile;
    for (const Classification& row : extensions)
        if (path.substr(dot) == row.text) return row.kind;
    return TAPDefSource::OtherFile;
}

int InterfaceKindOf(std::string_view path) {
    int kind = TAPDefSource::NoInterface;
    for (const Classification& row : directories)
        if (path.find(row.text) != std::string_view::npos) kind = row.kind;
    return kind;
}

// The nearest of the path itself and its directories that holds an identity card, by its last component.
const char* FrameworkOf(const char* path) {
    const char* framework = TAPDefSource::fws.Append("NotInAframework", nullptr, 0);
    TAFileName directory(path);
    while (!directory.IsNull() && !(directory + "IdentityCard").IsDirectory())
        directory = directory.dirname(1);
    return directory.IsNull() ? framework : TAPDefSource::fws.Append(directory.basename(1), nullptr, 0);
}

} // namespace

TAPDefSource::TAPDefSource(const NUBString& fileName, TAPSyntaxe* root, TAPSymbolTable* table)
    : fileKind(FileKindOf(fileName.View())), interfaceKind(InterfaceKindOf(fileName.View())), name(fileName),
      framework(FrameworkOf(fileName.CastToCharPtr())) {
    symTab = table;
    path = PathTo(root);
}

TAPDefSource::~TAPDefSource() {
    LeaveIncluders();
    ForgetIncludes();
    for (int i = 1; i <= classes.size; ++i)
        if (classes[i] != nullptr && classes[i]->source == this) classes[i]->source = nullptr;
    ReleaseAll(classes);
    ReleaseAll(implMethods);
}

int TAPDefSource::GetDefKind() {
    return SourceRecord;
}

int TAPDefSource::AddDefClass(TAPDefClass* defClass) {
    AppendShared(classes, defClass);
    return 0;
}

int TAPDefSource::AddImplMethod(TAPDefMethod* method) {
    AppendShared(implMethods, method);
    return 0;
}

void TAPDefSource::AddInclude(TAPDefSource* included) {
    includes.Append(included);
    included->includers.push_back(this);
}

void TAPDefSource::LeaveIncluders() {
    for (TAPDefSource* includer : includers) {
        NUBListPtrTAPDefSource& list = includer->includes;
        int entry = list.size;
        while (entry >= 1 && list[entry] != this) --entry;
        list.RemovePosition(entry);
    }
    includers.clear();
}

void TAPDefSource::ForgetIncludes() {
    for (int i = includes.size; i >= 1; --i) {
        std::vector<TAPDefSource*>& others = includes[i]->includers;
        const auto mark = std::find(others.begin(), others.end(), this);
        if (mark == others.end()) continue;
        *mark = others.back();
        others.pop_back();
    }
    includes.RemoveAll(1);
}
