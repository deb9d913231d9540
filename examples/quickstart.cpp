#include <cstdio>

#include <ostraka/ostraka.h>

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    TAIndex macros;
    TAPSourceFile source(argv[1]);
    TAPSyntaxe root(STYPE_File, &source, 0, source.Process(macros) == 0 ? source.GetSize() : 0, -1);
    if (root.Build() != 0) std::fprintf(stderr, "%s\n", root.GetErrMsg().CastToCharPtr());
    for (int i = 1; i <= root.ChildCount(); ++i) std::printf("%s\n", root.Child(i)->GetContent());
}
