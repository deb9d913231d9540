// The dump has one line for each thing that the library knows of a file, in the library's own numbers.

#include <charconv>
#include <initializer_list>

#include <ostraka/syntax/TAPExpression.h>
#include <ostraka/syntax/TAPInstruction.h>

#include "formats/PlaceRuns.h"
#include "formats/Text.h"
#include "formats/TreeWalk.h"
#include "verbs/SourceRun.h"

namespace ostraka::tool {

namespace {

class DumpLines {
public:
    explicit DumpLines(std::string& text) : out(text) {}

    DumpLines& operator<<(std::string_view more) {
        out += more;
        return *this;
    }
    DumpLines& operator<<(int number) {
        char digits[16];
        out.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
        return *this;
    }
    DumpLines& Escaped(std::string_view more) {
        AppendEscaped(out, more);
        return *this;
    }

private:
    std::string& out;
};

void DumpStream(const TAPSourceFile& file, DumpLines& out) {
    out << "SIZE " << file.GetSize() << " NBLINE " << file.GetNbLine() << " NBCODELINE "
        << file.GetNbCodeLine();
    out << "\nSTREAM ";
    if (file.GetSize() > 0) out.Escaped({file.GetStream(), static_cast<std::size_t>(file.GetSize())});
    out << "\nMAP ";
    ForEachRun(
        file, [](const TAPSyntaxePoint& point) { return point.GetCol(); },
        [&](int pos, int line, int column) {
            if (pos > 0) out << " ";
            out << pos << ":" << line << ":" << column;
        });
    out << "\n";
}

void DumpNames(const TAPSourceFile& file, const TAIndex& macros, DumpLines& out) {
    out << "INCLUDES " << file.includes.size << "\n";
    for (int i = 0; i < file.includes.size; ++i) (out << "INC ").Escaped(file.includes.keys[i]) << "\n";
    out << "MACROS " << macros.size << "\n";
    for (int i = 0; i < macros.size; ++i) {
        (out << "MAC ").Escaped(macros.keys[i]) << "\t";
        out.Escaped(static_cast<const char*>(macros.values[i])) << "\n";
    }
}

void DumpExtra(const TAPSyntaxe& node, DumpLines& out) {
    if (node.GetType() == STYPE_Expression) {
        const auto& kind = static_cast<const TAPExpression&>(node).kind;
        out << "K\"" << std::string_view(kind, strnlen(kind, sizeof kind)) << "\"";
    } else if (node.GetType() == STYPE_Instruction || node.GetType() == STYPE_Declaration) {
        out << "P" << static_cast<const TAPInstruction&>(node).GetPreciseType();
    } else {
        out << "-";
    }
}

void DumpTree(SourceUnit& unit, DumpLines& out) {
    out << "BUILD " << (unit.BuildResult());
    if (unit.BuildResult() != 0) (out << " ").Escaped(unit.BuildMessage());
    out << "\n";
    for (TreeWalk walk(unit.Root(), "", -1); walk.Node() != nullptr; walk.Next()) {
        const TAPSyntaxe& node = *walk.Node();
        out << "N " << walk.Path() << " T" << node.GetType() << " ";
        DumpExtra(node, out);
        out << " " << node.GetBegin() << " " << node.GetSize() << "\n";
    }
}

} // namespace

void PrintDump(const Input& input, SourceUnit& unit, Result& result) {
    if (!unit.WasRead()) return;
    DumpLines out(result.out);
    out << "FILE " << input.path << "\nPROCESS " << unit.ProcessResult() << "\n";
    if (unit.ProcessResult() == 0) {
        DumpStream(unit.File(), out);
        DumpNames(unit.File(), unit.Macros(), out);
        DumpTree(unit, out);
    }
    out << "END\n";
}

} // namespace ostraka::tool
