// What a file says, as C++ and as IDL: places lie in the file and on their names, scopes in each other,
// bodies add only what they hold, and the same bytes give the same facts.

#include <cstdint>
#include <string_view>

#include "Check.h"
#include "support/FactProperties.h"

using namespace ostraka::answers;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const Dialect dialect : {Dialect::Cpp, Dialect::Idl}) {
        CHECK(FactProperties::FaultIn(text, dialect).empty());
        const TokenList tokens(text);
        const FileFacts facts = ReadFacts(tokens, Depth::Bodies, dialect);
        CHECK(FactText::Of(facts) == FactText::Of(ReadFacts(TokenList(text), Depth::Bodies, dialect)));
        for (std::uint32_t at = 0; at <= size; ++at) {
            const int scope = facts.ScopeAt(at);
            CHECK(scope >= 0 && scope < static_cast<int>(facts.scopes.size()));
            CHECK(facts.OffsetOf(facts.PlaceOf(at)) == at);
            const int token = tokens.At(at);
            CHECK(token >= -1 && token < tokens.Count());
        }
    }
    return 0;
}
