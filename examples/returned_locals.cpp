// Finds every method that gives a local pointer back: what it points to is then the caller's to care for.
//
//     returned_locals ROOT[:ROOT...] FILE...

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <ostraka/ostraka.h>

namespace {

// The body of an implementation: the block itself when it stands in the class, else what follows the head.
TAPSyntaxe* BodyOf(TAPSyntaxe* implementation) {
    if (implementation == nullptr || implementation->GetType() == STYPE_Bloc) return implementation;
    return implementation->NextSibling();
}

void Tell(const TAPDefMethod& method, TAPDefVar& variable) {
    const TAPSyntaxePath& place = *variable.path;
    std::printf("%s:%d:%d: %s::%s returns its local %s %s\n", place.filePath.CastToCharPtr(),
                place.beginPoint.line, place.beginPoint.col - 1, method.defClass->name, method.name,
                variable.type, variable.name);
}

void LookAt(TAPSymbolTable& table, TAPDefMethod& method) {
    TAPSyntaxe* body = BodyOf(table.GetSyntaxe(method.implPath));
    NUBListPtrTAPDefVar locals;
    table.GetVariableDefinitions(body, locals);
    for (int i = 1; i <= locals.Size(); ++i) {
        TAPDefVar& local = *locals[i];
        int arguments = 0;
        const bool pointer = std::string_view(local.type).ends_with('*');
        if (pointer && table.IsReturned(local.GetDefinition(), local.name, arguments, 0) == -1)
            Tell(method, local);
        local.Release();
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    setenv("QxqxOS_VAR", "unix_a", 0); // the level below the generated directories
    TAPSymbolTable table;
    table.SetConcatenation(argv[1]);
    for (int i = 2; i < argc; ++i) {
        if (table.LoadFile(argv[i], 1) != 0) std::fprintf(stderr, "%s: not loaded\n", argv[i]);
        const TAPDefSource* source = table.GetSource(argv[i]);
        for (int k = 1; source != nullptr && k <= source->implMethods.Size(); ++k)
            LookAt(table, *source->implMethods[k]);
    }
}
