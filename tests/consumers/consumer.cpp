#include <cstdio>
#include <cstdlib>

#include <ostraka/ostraka.h>

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    setenv("QxqxOS_VAR", "linux", 0);
    TAPSymbolTable table;
    if (table.LoadFile(argv[1], 1) != 0) return 1;
    for (int i = 0; i < table.classIndex.size; ++i) std::puts(table.classIndex.keys[i]);
}
