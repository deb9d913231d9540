// A reader of reports, fed with a report as a whole and byte by byte: what it hands on is the same, and both
// or none end in a fault. Where a NUL is at fault, the XML parser tells it in several ways.

#include <cstdint>
#include <cstring>
#include <string>

#include <answers/reports/ReportReader.h>

#include "Check.h"

using namespace ostraka::reports;

namespace {

class Dump : public RecordTaker {
public:
    void Take(const ReportRecord& record) override {
        text += record.type + record.kind + std::to_string(record.line) + (record.leak ? "leak" : "") +
                std::to_string(record.bytes) + "," + std::to_string(record.count);
        CHECK(record.others.size() <= ReportRecord::mostOthers);
        Append(record.title, record.calls);
        for (const TitledCalls& other : record.others) Append(other.title, other.calls);
    }
    void Recount(std::uint64_t unique, std::int64_t count) override {
        text += std::to_string(unique) + "=" + std::to_string(count) + "\n";
    }
    std::string text;

private:
    void Append(const std::string& title, const CallTexts& calls) {
        CHECK(calls.Kept() <= CallTexts::most && calls.Kept() <= calls.Told());
        text += title;
        for (int i = 0; i < calls.Kept(); ++i) {
            const std::string call = calls[i];
            CHECK(std::strlen(calls[i]) == call.size());
            text += "\n" + call;
        }
        text += "\n" + std::to_string(calls.Told()) + "\n";
    }
};

std::string DumpOf(std::string_view report, std::size_t pieceSize) {
    Dump dump;
    const auto reader = MakeReader(ReportForm::REPORT_FORM, dump);
    bool going = true;
    for (; going && !report.empty(); report.remove_prefix(std::min(pieceSize, report.size())))
        going = reader->Feed(report.substr(0, pieceSize));
    if (going) reader->End();
    if (reader->Fault()) dump.text += "fault";
    return dump.text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view report(reinterpret_cast<const char*>(data), size);
    CHECK(DumpOf(report, size + 1) == DumpOf(report, 1));
    const auto [form, cause] = Recognise(report);
    CHECK((form == ReportForm::None) == !cause.empty());
    return 0;
}
