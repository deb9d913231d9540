// Questions about places of a file: those that the text marks with `^`, and others over the whole of it. What
// is answered stands in a tree of the table, on a line of its file, and is the same twice.

#include <string>
#include <vector>

#include <answers/resolve/NodeAnswers.h>
#include <answers/resolve/NodeSearch.h>
#include <answers/resolve/NodeText.h>

#include "LoadedTable.h"
#include "support/MarkedText.h"

using namespace ostraka::answers;

namespace {

constexpr int mostMarks = 20;
constexpr int others = 10;

// As an editor counts, also behind the last line.
std::vector<Place> PlacesOf(const MarkedText& marked) {
    std::vector<Place> places(marked.places.begin(),
                              marked.places.begin() + std::min<long>(mostMarks, std::ssize(marked.places)));
    const auto lines = static_cast<int>(std::count(marked.text.begin(), marked.text.end(), '\n')) + 1;
    for (int i = 0; i < others; ++i) places.push_back({1 + i * lines / others, i * 7 % 40});
    places.push_back({lines + 1, 1});
    return places;
}

class Questions {
public:
    explicit Questions(TAPSymbolTable& asked) : table(asked) {}

    std::string Ask(TAPSyntaxe& root, Place place) {
        const auto at = FindNodeAt(root, place);
        if (!at) return "nothing";
        AddNode(at->node);
        const NodeAnswers answers = AskAbout(table, *at->node);
        Add(answers.type);
        Add(answers.className);
        Add(answers.method);
        for (const Declaration& declared : answers.declared) {
            dump += declared.as + declared.type;
            AddNode(declared.node);
        }
        if (answers.object) {
            CHECK(answers.object->node != nullptr);
            AddNode(answers.object->node);
            Add(answers.object->type);
        }
        if (const auto& back = answers.goesBack)
            CHECK(back->argument >= 0 && back->argument <= back->arguments &&
                  (!back->isReturned || back->argument == 0));
        return dump;
    }

private:
    void Add(const std::optional<std::string>& text) { dump += text.value_or("none") + "|"; }

    void AddNode(TAPSyntaxe* node) {
        CheckStands(table, node);
        if (node == nullptr) return;
        const Place place = PlaceOf(*node);
        CHECK(place.column >= 1 && place.line <= std::max(1, node->GetTAPSourceFile()->GetNbLine()));
        dump += DescriptionOf(*node) + std::string(TrimmedTextOf(*node)) + std::to_string(place.line) + ":" +
                std::to_string(place.column) + "|";
    }

    TAPSymbolTable& table;
    std::string dump;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const MarkedText marked({reinterpret_cast<const char*>(data), size});
    const InputFiles files(reinterpret_cast<const std::uint8_t*>(marked.text.data()), marked.text.size(),
                           "text.cpp");
    auto* table = new TAPSymbolTable;
    table->LoadFile(files.path.c_str(), 1);
    if (auto* root = static_cast<TAPSyntaxe*>(table->trees[files.path.c_str()]); root != nullptr) {
        const std::string records = Records(*table).text;
        for (const Place& place : PlacesOf(marked))
            CHECK(Questions(*table).Ask(*root, place) == Questions(*table).Ask(*root, place));
        CHECK(Records(*table).text == records);
    }
    table->Release();
    return 0;
}
