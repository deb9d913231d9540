// Reads a report into interned stacks, as a whole process.
//
//     report FILE [read]      with "read", the records are only read

#include <cstdio>
#include <cstring>
#include <fstream>
#include <vector>

#include <answers/reports/ReportModel.h>
#include <answers/reports/ReportReader.h>

#include "Measure.h"

namespace {

using namespace ostraka::reports;

class Counter : public RecordTaker {
public:
    void Take(const ReportRecord&) override { ++records; }
    void Recount(std::uint64_t, std::int64_t) override {}
    long records = 0;
};

void Feed(const char* path, RecordTaker& taker) {
    std::ifstream file(path, std::ios::binary);
    std::vector<char> piece(1 << 18);
    const auto reader = MakeReader(ReportForm::Valgrind, taker);
    do {
        file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        reader->Feed({piece.data(), static_cast<std::size_t>(file.gcount())});
    } while (file);
    reader->End();
    if (const auto& fault = reader->Fault()) std::printf("line %d: %s\n", fault->line, fault->cause.c_str());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: report FILE [read]\n");
        return 2;
    }
    ReportModel model;
    Counter counter;
    const bool readOnly = argc > 2 && std::strcmp(argv[2], "read") == 0;
    if (readOnly)
        Feed(argv[1], counter);
    else
        Feed(argv[1], model);
    const double seconds = bench::CpuSeconds();
    const long records = readOnly ? counter.records : static_cast<long>(model.Records());
    std::printf("records %ld stacks %zu seconds %.3f records/s %.0f peakMB %.1f\n", records,
                model.Groups().size(), seconds, static_cast<double>(records) / seconds,
                static_cast<double>(bench::PeakBytes()) / 1e6);
    return 0;
}
