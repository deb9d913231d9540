// Runs the library over a list of files as a whole process, so that its time and its memory are seen from
// outside.
//
//     measure read|stream|tree|hold|count LIST
//
// read: reads the files only. stream: makes each stream and drops it. tree: makes each stream and tree, and
// drops them. hold: keeps all of them to the end, then releases them. count: like hold, and counts the nodes.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include <ostraka/syntax/TAPSourceFile.h>
#include <ostraka/syntax/TAPSyntaxe.h>
#include <ostraka/syntax/TAPSyntaxeWalk.h>

#include "Measure.h"

namespace {

struct Totals {
    long files = 0;
    long bytes = 0;
    long streamed = 0;
    long nodes = 0;
    long failures = 0;
};

// The streams and trees that are kept.
struct Held {
    std::vector<TAPSourceFile*> files;
    std::vector<TAPSyntaxe*> roots;
};

void Read(const char* name, Totals& totals, Held&) {
    TAFileBuffer file(name, 0);
    totals.bytes += file.GetSize();
}

TAPSourceFile* MakeStream(const char* name, Totals& totals) {
    auto* buffer = new TAFileBuffer(name, 0);
    totals.bytes += buffer->GetSize();
    auto* file = new TAPSourceFile(buffer);
    TAIndex macros;
    if (file->Process(macros) != 0) ++totals.failures;
    totals.streamed += file->GetSize();
    return file;
}

TAPSyntaxe* MakeTree(TAPSourceFile* file, Totals& totals) {
    auto* root = new TAPSyntaxe(STYPE_File, file, 0, file->GetSize(), -1);
    if (root->Build() != 0) ++totals.failures;
    return root;
}

void Stream(const char* name, Totals& totals, Held&) {
    MakeStream(name, totals)->Release();
}

void Tree(const char* name, Totals& totals, Held&) {
    TAPSourceFile* file = MakeStream(name, totals);
    MakeTree(file, totals)->Release();
    file->Release();
}

void Hold(const char* name, Totals& totals, Held& held) {
    TAPSourceFile* file = MakeStream(name, totals);
    held.files.push_back(file);
    held.roots.push_back(MakeTree(file, totals));
}

void Count(const char* name, Totals& totals, Held& held) {
    Hold(name, totals, held);
    for (TAPSyntaxeWalk walk(*held.roots.back()); walk.Node() != nullptr; walk.Next()) ++totals.nodes;
}

struct Mode {
    const char* name;
    void (*run)(const char* fileName, Totals& totals, Held& held);
};

constexpr Mode modes[] = {
    {"read", Read}, {"stream", Stream}, {"tree", Tree}, {"hold", Hold}, {"count", Count},
};

} // namespace

int main(int argc, char** argv) {
    const Mode* mode = std::find_if(std::begin(modes), std::end(modes), [=](const Mode& m) {
        return argc == 3 && std::strcmp(m.name, argv[1]) == 0;
    });
    if (mode == std::end(modes)) {
        std::fprintf(stderr, "usage: measure read|stream|tree|hold|count LIST\n");
        return 2;
    }
    const std::vector<std::string> names = bench::ReadList(argv[2]);
    const long baseline = bench::PeakBytes();
    Totals totals;
    Held held;
    for (const std::string& name : names) mode->run(name.c_str(), totals, held);
    totals.files = static_cast<long>(names.size());
    for (TAPSyntaxe* root : held.roots) root->Release();
    for (TAPSourceFile* file : held.files) file->Release();
    const double seconds = bench::CpuSeconds();
    const long peak = bench::PeakBytes();
    const double bytes = static_cast<double>(totals.bytes);
    std::printf("%s files %ld bytes %ld stream %ld seconds %.3f MB/s %.1f peakMB %.1f bytes/byte %.2f "
                "nodes/KB %.1f failures %ld\n",
                mode->name, totals.files, totals.bytes, totals.streamed, seconds, bytes / 1e6 / seconds,
                static_cast<double>(peak) / 1e6, static_cast<double>(peak - baseline) / bytes,
                static_cast<double>(totals.nodes) / (bytes / 1e3), totals.failures);
    return 0;
}
