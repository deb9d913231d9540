#include <ostraka/workspace/FrameworkListing.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <sys/types.h>

#include <ostraka/foundation/Directory.h>
#include <ostraka/foundation/TAFileName.h>
#include <ostraka/foundation/TextHelpers.h>

namespace {

NUBListValTAFileName CardsOf(const NUBString& workspace, const char* frameworks) {
    NUBListValTAFileName cards;
    ReadDirectory(workspace + frameworks + "/IdentityCard", cards);
    return cards;
}

bool IsCodeName(const NUBString& name) {
    NUBListValNUBString parts;
    return Split(name, parts, ".") == 1;
}

int AppendNames(const NUBListValTAFileName& cards, NUBListValNUBString& out, bool codeOnly) {
    for (int i = cards.Size(); i >= 1; --i) {
        const NUBString name(cards[i].dirname(1).basename(1));
        if (!codeOnly || IsCodeName(name)) out.Append(name);
    }
    return cards.Size() == 0;
}

// The name as one word of the shell, whatever is in it.
std::string WordOf(const NUBString& name) {
    constexpr const char* plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./-+:@%,";
    const std::string_view text = name.View();
    if (text.find_first_not_of(plain) == std::string_view::npos) return std::string(text);
    std::string word = "'";
    for (const char c : text) {
        if (c == '\'')
            word += "'\\''";
        else
            word += c;
    }
    return word + "'";
}

// The lines that a command prints.
class Output {
public:
    explicit Output(const std::string& command) : pipe(popen(command.c_str(), "r")) {}
    ~Output() {
        std::free(buffer);
        if (pipe != nullptr) pclose(pipe);
    }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // The next line without its line feed; false at the end, and for a last line that has none.
    bool Read(std::string_view& line) {
        if (pipe == nullptr) return false;
        const ssize_t length = getline(&buffer, &room, pipe);
        if (length <= 0 || buffer[length - 1] != '\n') return false;
        line = {buffer, static_cast<std::size_t>(length - 1)};
        return true;
    }

private:
    std::FILE* pipe;
    char* buffer = nullptr;
    std::size_t room = 0;
};

std::string_view WithoutBlanks(std::string_view line) {
    return line.substr(std::min(line.find_first_not_of(' '), line.size()));
}

} // namespace

int GetFWCodeList(const NUBString& workspace, NUBListValNUBString& out, int pureCode) {
    return AppendNames(CardsOf(workspace, "/*"), out, pureCode != 0);
}

int GetFWTestList(const NUBString& workspace, NUBListValNUBString& out, int testOnly) {
    return AppendNames(CardsOf(workspace, testOnly != 0 ? "/*.tst" : "/*"), out, false);
}

int GetTestFW(const NUBString& workspace, const NUBString& framework, NUBListValNUBString& out, int query) {
    if (query == 0) {
        out.Append(framework);
        return 0;
    }
    const NUBString expected = framework + ".tst";
    bool met = false;
    // Asked first, so that the shell doesn't complain about a missing command.
    Output output("command -v ls_test_fw >/dev/null && ls_test_fw -w " + WordOf(workspace) + " -f " +
                  WordOf(framework));
    for (std::string_view line; output.Read(line);) {
        const NUBString name(WithoutBlanks(line));
        if (name.Length() == 0 || name.View().starts_with('#')) continue;
        met = met || name == expected;
        out.Append(name);
    }
    if (!met) out.Append(expected);
    return 0;
}

int GetCodeFW(const NUBString& workspace, const NUBString& testFramework, NUBListValNUBString& out,
              int query) {
    if (query == 0) {
        out.Append(testFramework);
        return 0;
    }
    NUBListValNUBString parts, found;
    if (Split(testFramework, parts, ".") < 2 || parts[2] != "tst") return 1;
    ReadDirectory(workspace + "/" + parts[1], found);
    if (found.Size() > 0) out.Append(parts[1]);
    return 0;
}
