// What each name of a file means, in a folder that holds the input and a header: an answer's place is one of
// its file, on its name, and it is the same whatever was asked before.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include <answers/resolve/Uses.h>

#include "Check.h"
#include "LoadedTable.h"

using namespace ostraka::answers;

namespace {

constexpr int mostNames = 200;

class Asking {
public:
    explicit Asking(const std::string& path)
        : base({{path.substr(0, path.rfind('/'))}, {}}), names(base), resolver(base, names),
          file(base.FileAt(path)) {
        CHECK(resolver.Open(file));
    }

    int TokenCount() const { return resolver.Tokens().Count(); }

    std::string AnswersAt(int token) {
        std::string text;
        for (const PlaceAnswer& answer : resolver.Ask(resolver.Tokens()[token].begin)) {
            CheckStands(answer);
            text += std::to_string(answer.file) + ":" + std::to_string(answer.at) +
                    (answer.isCertain ? "" : "?") + answer.name + answer.scope + answer.type + "\n";
        }
        return text;
    }

    void CheckUses(int token) {
        UseSearch search(base, names, resolver);
        const auto meant = search.MeantAt(file, resolver.Tokens()[token].begin);
        if (meant.empty()) return;
        for (const Use& use : search.Find(meant)) CHECK(use.at < BytesOf(use.file).size());
    }

private:
    void CheckStands(const PlaceAnswer& answer) {
        std::string_view name(answer.name);
        name = name.substr(0, name.find(' '));
        if (name.starts_with('~')) name.remove_prefix(1);
        CHECK(answer.at <= BytesOf(answer.file).size());
        CHECK(std::string_view(BytesOf(answer.file)).substr(answer.at).starts_with(name));
    }

    const std::string& BytesOf(int which) {
        std::string& known = bytes[which];
        if (known.empty()) CodeBase::ReadBytes(base.PathOf(which), known);
        return known;
    }

    CodeBase base;
    Names names;
    Resolver resolver;
    const int file;
    std::map<int, std::string> bytes;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const InputFiles files(data, size, "main.cpp");
    Asking asking(files.path);
    const int step = asking.TokenCount() / mostNames + 1;
    std::string all;
    for (int i = 0; i < asking.TokenCount(); i += step) all += asking.AnswersAt(i);
    std::string again;
    Asking others(files.path);
    for (int i = (others.TokenCount() - 1) / step * step; i >= 0; i -= step)
        again = others.AnswersAt(i) + again;
    CHECK(all == again);
    if (asking.TokenCount() > 0) asking.CheckUses(asking.TokenCount() / 2);
    return 0;
}
