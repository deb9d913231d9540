// Lists every use of a typed list: where it is named as a type, and where a name stands for one.
//
//     list_uses ROOT[:ROOT...] NUBLISTP_Ship_ FILE...

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <ostraka/ostraka.h>

namespace {

void Tell(TAPSyntaxe* leaf, const char* what) {
    int line = 0;
    int col = 0;
    leaf->GetPos(line, col);
    std::printf("%s:%d:%d: %s %s\n", leaf->GetSource().CastToCharPtr(), line, col - 1, what,
                leaf->GetContent());
}

void LookThrough(TAPSymbolTable& table, TAPSyntaxe* root, std::string_view list) {
    for (TAPSyntaxeWalk walk(*root); walk.Node() != nullptr; walk.Next()) {
        TAPSyntaxe* node = walk.Node();
        if (node->GetType() != STYPE_Identifiant) continue;
        NUBString type;
        if (node->GetContent() == list) {
            Tell(node, "names the type:");
        } else if (table.FindDeclare(node, type, nullptr, 0) != nullptr && type.View().starts_with(list)) {
            Tell(node, "is one:");
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) return 2;
    setenv("QxqxOS_VAR", "unix_a", 0); // the level below the generated directories
    TAPSymbolTable table;
    table.SetConcatenation(argv[1]);
    for (int i = 3; i < argc; ++i) {
        if (table.LoadFile(argv[i], 1) != 0) std::fprintf(stderr, "%s: not loaded\n", argv[i]);
        if (TAPDefSource* source = table.GetSource(argv[i]))
            if (TAPSyntaxe* root = source->GetSyntaxe()) LookThrough(table, root, argv[2]);
    }
}
