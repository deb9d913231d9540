#include <answers/resolve/Declarations.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include <answers/resolve/Finding.h>
#include <ostraka/symbols/TAPDefClass.h>
#include <ostraka/symbols/TAPDefMethod.h>

namespace ostraka::answers {

namespace {

constexpr std::string_view visibilities[] = {"public", "protected", "private"};

struct Word {
    int code;
    const char* word;
};

constexpr Word classKinds[] = {{TAPDefClass::PlainClass, "plain"},
                               {TAPDefClass::Interface, "interface"},
                               {TAPDefClass::ComponentClass, "component"}};
constexpr Word bindings[] = {{TAPDefMethod::Static, "static"},
                             {TAPDefMethod::Virtual, "virtual"},
                             {TAPDefMethod::PureVirtual, "pure virtual"}};
constexpr Word directions[] = {{TAPDefVar::In, "in"}, {TAPDefVar::Out, "out"}, {TAPDefVar::InOut, "inout"}};

template <std::size_t count>
const char* WordIn(const Word (&words)[count], int code) {
    const auto* found = std::find_if(words, words + count, [=](const Word& row) { return row.code == code; });
    return found == words + count ? "" : found->word;
}

} // namespace

OutlinedFile::OutlinedFile(const std::string& path, const std::vector<std::string>& droppedWords) {
    std::string bytes;
    CodeBase::ReadBytes(path, bytes);
    const TokenList tokens(bytes, droppedWords);
    facts = ReadFacts(tokens, Depth::Declarations, DialectOf(path));
    entries = OutlineOf(tokens, facts);
}

const OutlineEntry* OutlinedFile::EntryAt(const Place& place) const {
    const auto found = std::lower_bound(
        entries.begin(), entries.end(), place, [](const OutlineEntry& entry, const Place& wanted) {
            return std::pair(entry.place.line, entry.place.column) < std::pair(wanted.line, wanted.column);
        });
    const bool isThere =
        found != entries.end() && found->place.line == place.line && found->place.column == place.column;
    return isThere ? &*found : nullptr;
}

Access AccessOfImplementation(CodeBase& base, const Names& names, const DeclarationRef& implementation) {
    const FileFacts& facts = base.FactsOf(implementation.file);
    const Declared& method = facts.declared[static_cast<std::size_t>(implementation.index)];
    const int entity = names.NamedScopeOf(implementation);
    const int name = names.IdOf(method.name);
    if (entity == Names::none || name == Names::none) return Access::None;
    const std::string signature = SignatureText(facts, method);
    Access access = Access::None;
    for (const DeclarationRef& ref : names.In(entity, name)) {
        const FileFacts& others = base.FactsOf(ref.file);
        const Declared& declared = others.declared[static_cast<std::size_t>(ref.index)];
        if (declared.kind != FactKind::Function) continue;
        const bool isSame = SignatureText(others, declared) == signature;
        if (access == Access::None || isSame) access = declared.access;
        if (isSame) break;
    }
    return access;
}

Place PlaceOf(const TAPSyntaxePath& path) {
    return {path.beginPoint.line, std::max(1, path.beginPoint.col - 1)};
}

const char* VisibilityOf(int code) {
    return code >= TAPDefEntity::Public && code <= TAPDefEntity::Private ? visibilities[code].data() : "";
}

const char* BindingOf(const TAPDefMethod& method) {
    return WordIn(bindings, method.binding);
}

const char* DirectionOf(int code) {
    return WordIn(directions, code);
}

std::string KindOf(const TAPDefClass& record) {
    std::string words;
    for (const Word& row : classKinds) {
        if ((record.kind & row.code) == 0) continue;
        if (!words.empty()) words += ',';
        words += row.word;
    }
    return words;
}

} // namespace ostraka::answers
