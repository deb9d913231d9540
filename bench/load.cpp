// Loads a workspace into a symbol table, as a whole process, and tells what it costs at each step of its
// life.
//
//     load ROOT LIST
//
// ROOT is the workspace, LIST a file that names what to load. Tells the CPU time of the load, the heap that
// is used and resident with all trees, after the trees were dropped, and after UnLoadAllFiles; and, after the
// load, the time of a round of questions that are look-ups, which is to be the same for any number of files.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <malloc.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include <ostraka/symbols/TAPSymbolTable.h>

#include "Measure.h"

namespace {

constexpr int questionRounds = 5000;

// Bytes of the heap that are in use. Nodes of trees lie outside of it.
long HeapBytes() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<long>(info.uordblks + info.hblkhd);
}

long ResidentBytes() {
    std::ifstream statm("/proc/self/statm");
    long pages = 0;
    statm >> pages >> pages;
    return pages * sysconf(_SC_PAGESIZE);
}

long LoadAll(TAPSymbolTable& table, const std::vector<std::string>& names) {
    long failures = 0;
    for (const std::string& name : names) {
        const bool idl = std::string_view(name).ends_with(".idl");
        const int result = idl ? table.LoadIdlFile(name.c_str(), 1) : table.LoadFile(name.c_str(), 1);
        if (result != 0) ++failures;
    }
    return failures;
}

long BytesOf(const std::vector<std::string>& names) {
    long bytes = 0;
    for (const std::string& name : names) bytes += static_cast<long>(std::filesystem::file_size(name));
    return bytes;
}

// Microseconds for a round of questions about classes taken evenly from the whole table.
double AskQuestions(TAPSymbolTable& table) {
    const double start = bench::CpuSeconds();
    int answers = 0;
    for (int i = 0; i < questionRounds; ++i) {
        const int place = static_cast<int>(static_cast<long>(i) * table.classIndex.size / questionRounds);
        const char* name = table.classIndex.keys[place];
        TAPDefClass* cls = table.GetClass(name);
        answers += cls->GetMethod("Count") != nullptr;
        answers += cls->GetDeclarationLocation() != nullptr;
        answers += table.IsBasicType(name) + table.MatchType(name, "int");
        answers += table.IsARecognizedType(name);
        answers += table.SearchHeaderFile(cls->path->filePath.CastToCharPtr(), "NUBString.h").IsNull();
    }
    return answers == 0 ? 0 : (bench::CpuSeconds() - start) * 1e6 / questionRounds;
}

void TellMemory(const char* when, long baseline, long bytes) {
    const long used = HeapBytes() - baseline;
    std::printf("%-8s heap MB %7.1f bytes/byte %6.2f resident MB %7.1f\n", when,
                static_cast<double>(used) / 1e6, static_cast<double>(used) / static_cast<double>(bytes),
                static_cast<double>(ResidentBytes()) / 1e6);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: load ROOT LIST\n");
        return 2;
    }
    setenv("QxqxOS_VAR", "linux", 0);
    const std::vector<std::string> names = bench::ReadList(argv[2]);
    const long baseline = HeapBytes();
    TAPSymbolTable table;
    table.SetConcatenation(TAFileName(argv[1]));
    const long failures = LoadAll(table, names);
    const double seconds = bench::CpuSeconds();
    const long bytes = BytesOf(names);
    std::printf("load     files %zu bytes %ld classes %d seconds %.3f MB/s %.2f failures %ld\n", names.size(),
                bytes, table.classIndex.size, seconds, static_cast<double>(bytes) / 1e6 / seconds, failures);
    TellMemory("trees", baseline, bytes);
    std::printf("ask      us %.2f\n", AskQuestions(table));
    table.DropTrees();
    TellMemory("records", baseline, bytes);
    table.UnLoadAllFiles();
    TellMemory("empty", baseline, bytes);
    return failures != 0;
}
