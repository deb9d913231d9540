// A source path is worked on once: whatever comes out, a framework or none, is kept under the path.

#include <ostraka/memreport/Call.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include <ostraka/memreport/CallText.h>
#include <ostraka/memreport/TAPIndexContainer.h>

namespace {

struct Free {
    void operator()(char* text) const { std::free(text); }
};
using OwnText = std::unique_ptr<char, Free>;

OwnText CopyOf(std::string_view text) {
    OwnText copy(static_cast<char*>(std::malloc(text.size() + 1)));
    if (!copy) throw std::bad_alloc();
    copy.get()[text.copy(copy.get(), text.size())] = '\0';
    return copy;
}

// What `Call::wsOfRun` points to.
[[gnu::init_priority(101)]] OwnText heldWorkspace;

const char* EnterFramework(std::string_view sourcePath) {
    const std::string name(ostraka::detail::FrameworkOf(sourcePath));
    return name.empty() ? nullptr : TAPIndexContainer::respForFwIndex.Append(name.c_str(), ".", 0);
}

const char* FrameworkOfSource(std::string_view sourcePath) {
    TAIndex& sources = TAPIndexContainer::fwForSourceIndex;
    const int known = sources.IsIn(sourcePath.data(), static_cast<int>(sourcePath.size()));
    if (known >= 0) return static_cast<const char*>(sources.values[known]);
    const char* framework = EnterFramework(sourcePath);
    sources.Append(std::string(sourcePath).c_str(), framework, 0);
    return framework;
}

int LineBehind(std::string_view sourcePath) {
    const char* colon = sourcePath.data() + sourcePath.size();
    int line = 0;
    if (*colon == ':') std::from_chars(colon + 1, colon + 1 + std::strlen(colon + 1), line);
    return std::max(line, 0);
}

} // namespace

namespace ostraka::detail {

std::string_view ShortCallOf(const char* text) {
    const char* bracket = std::strchr(text, '[');
    if (bracket == nullptr) return text;
    std::string_view before(text, static_cast<std::size_t>(bracket - text));
    while (!before.empty() && static_cast<unsigned char>(before.back()) <= 0x20) before.remove_suffix(1);
    return before;
}

std::optional<std::string_view> SourcePathOf(const char* text) {
    constexpr std::string_view module = ".m/src/";
    const char* bracket = std::strchr(text, '[');
    if (bracket == nullptr) return std::nullopt;
    const std::string_view line(bracket + 1);
    std::size_t end = line.find(':');
    if (end == std::string_view::npos) end = line.find(']', line.find(module));
    if (end == std::string_view::npos) return std::nullopt;
    return line.substr(0, end);
}

// From the last slash to the first, each cut off with what is behind it. The marking layer starts a countdown
// over two more slashes.
std::string_view FrameworkOf(std::string_view sourcePath) {
    int countdown = 0;
    std::string_view rest = sourcePath;
    for (auto slash = rest.rfind('/'); slash != std::string_view::npos; slash = rest.rfind('/')) {
        const std::string_view component = rest.substr(slash + 1);
        if (countdown > 0 && --countdown == 0) return component;
        const bool isModule = slash >= 3 && rest.substr(slash - 2) == ".m/src";
        if (isModule || component == "LocalGenerated") countdown = 2;
        rest = rest.substr(0, slash);
    }
    return {};
}

} // namespace ostraka::detail

char* Call::wsOfRun = nullptr;

Call::Call(const char* text, TAIndexCall* index) : call(index->Append(text, this, 0)) {
    if (const auto source = ostraka::detail::SourcePathOf(text)) fwResponsible = FrameworkOfSource(*source);
}

// Volatile, as the compiler drops other stores to an object that ends.
Call::~Call() {
    for (const char** field : {&fwResponsible, &call}) *const_cast<const char* volatile*>(field) = nullptr;
}

void Call::SetWsOfRun(const char* workspace) {
    heldWorkspace = workspace != nullptr ? CopyOf(workspace) : nullptr;
    wsOfRun = heldWorkspace.get();
}

const char* Call::GetResponsible() const {
    if (fwResponsible == nullptr) return nullptr;
    const TAIndex& frameworks = TAPIndexContainer::respForFwIndex;
    if (const void* responsible = frameworks[fwResponsible]) return static_cast<const char*>(responsible);
    return frameworks.Holds(fwResponsible) ? nullptr : ".";
}

int Call::HasString(const char* prefix) const {
    return std::strncmp(call, prefix, std::strlen(prefix)) == 0;
}

char* Call::GetShortCall() const {
    return CopyOf(ostraka::detail::ShortCallOf(call)).release();
}

CallParts Call::GetParts() const {
    CallParts parts{ostraka::detail::ShortCallOf(call), {}, 0};
    if (const auto source = ostraka::detail::SourcePathOf(call)) {
        parts.path = *source;
        parts.line = LineBehind(*source);
    }
    return parts;
}
