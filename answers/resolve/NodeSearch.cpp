#include <answers/resolve/NodeSearch.h>

#include <charconv>
#include <system_error>

#include <ostraka/syntax/TAPSourceFile.h>
#include <ostraka/syntax/TAPSyntaxe.h>

namespace ostraka::answers {

namespace {

constexpr int nowhere = -1;

// The characters around a place.
struct Around {
    int exact = nowhere;  // at the place
    int before = nowhere; // the last one before it on its line
    int behind = nowhere; // the first one behind it

    int Nearest() const { return before != nowhere ? before : behind; }
};

// Blanks don't count: they hold no code, and one can stand for the end of a line.
Around LookAround(const TAPSourceFile& file, Place asked) {
    Around around;
    const int column = asked.column + 1; // as the library counts
    for (int pos = 0; pos < file.GetSize(); ++pos) {
        if (file.GetStream()[pos] == ' ') continue;
        const TAPSyntaxePoint point = file.GetPoint(pos);
        const bool isBehind =
            point.GetLine() > asked.line || (point.GetLine() == asked.line && point.GetCol() > column);
        if (isBehind) {
            around.behind = pos;
            return around;
        }
        if (point.GetLine() == asked.line) (point.GetCol() == column ? around.exact : around.before) = pos;
    }
    return around;
}

// Whether the position lies in the node, on a brace of the block, or on the mark that ends the instruction.
bool Holds(const TAPSyntaxe& node, int pos) {
    const int past = node.GetBegin() + node.GetSize();
    if (pos >= node.GetBegin() && pos < past) return true;
    if (node.GetType() == STYPE_Bloc) return pos == node.GetBegin() - 1 || pos == past;
    const bool isInstruction = node.GetType() == STYPE_Instruction || node.GetType() == STYPE_Declaration;
    return isInstruction && pos == past && node.GetTAPSourceFile()->GetStream()[pos] == ';';
}

TAPSyntaxe* ChildAt(const TAPSyntaxe& node, int pos) {
    for (int i = 1; i <= node.ChildCount(); ++i)
        if (Holds(*node.Child(i), pos)) return node.Child(i);
    return nullptr;
}

// Takes ":NUMBER" off the end.
std::optional<int> TakeNumber(std::string& words) {
    const std::size_t colon = words.rfind(':');
    if (colon == std::string::npos || colon == 0) return std::nullopt;
    int number = 0;
    const char* past = words.data() + words.size();
    const auto [end, error] = std::from_chars(words.data() + colon + 1, past, number);
    if (error != std::errc() || end != past || number < 1) return std::nullopt;
    words.resize(colon);
    return number;
}

} // namespace

std::optional<FilePlace> ParseFilePlace(const std::string& words) {
    FilePlace place{words, {}};
    const std::optional<int> last = TakeNumber(place.file);
    if (!last) return std::nullopt;
    const std::optional<int> line = TakeNumber(place.file);
    place.place = line ? Place{*line, *last} : Place{*last, 0};
    return place;
}

std::optional<NodeAt> FindNodeAt(TAPSyntaxe& root, Place asked) {
    const TAPSourceFile& file = *root.GetTAPSourceFile();
    const Around around = LookAround(file, asked);
    const int pos = around.exact != nowhere ? around.exact : around.Nearest();
    if (pos == nowhere) return std::nullopt;
    const Place place = PlaceAt(file, pos);
    const bool isNearest = asked.column > 0 ? around.exact == nowhere : place.line != asked.line;
    TAPSyntaxe* node = &root;
    while (TAPSyntaxe* child = ChildAt(*node, pos)) node = child;
    return NodeAt{node, place, isNearest};
}

} // namespace ostraka::answers
