// A name points to a block of one piece: the count of the names that hold it, and behind that the text with
// its NUL. A block with more than one holder is never written to. All changes but one make a new block, so
// the texts they are made from may lie in the old one.

#include <ostraka/foundation/TAFileName.h>

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <ostraka/foundation/Directory.h>
#include <ostraka/foundation/FileMode.h>

struct TAFileName::Block {
    int count;

    char* Text() { return reinterpret_cast<char*>(this + 1); }
};

namespace {

#if defined(O_PATH)
constexpr int openToReturn = O_PATH | O_DIRECTORY | O_CLOEXEC; // works in a directory that can't be read too
#else
constexpr int openToReturn = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif

std::string_view ViewOf(const char* text) {
    return text ? text : "";
}

// The end of the first part when the last component before `end` is taken off with its slash, or 0 when there
// is no slash but perhaps the one at the front.
std::size_t EndOfParent(std::string_view text, std::size_t end) {
    const std::size_t slash = end < 2 ? 0 : text.rfind('/', end - 1);
    return slash == std::string_view::npos ? 0 : slash;
}

std::size_t EndOfAncestor(std::string_view text, int level) {
    std::size_t end = text.size();
    for (; level > 0 && end > 0; --level) end = EndOfParent(text, end);
    return end;
}

// Goes back to the present working directory when it dies. It holds the directory and not its path, which may
// have changed by then or be longer than the system takes; the path serves where no descriptor is free.
class Return {
public:
    Return() : directory(open(".", openToReturn)) {
        if (directory < 0) path = ::GetWorkDir();
        possible = directory >= 0 || (path != "." && ::SetWorkDir(path) == 0);
    }
    ~Return() {
        // It could be entered a moment ago; there is nothing to be done if it no longer can.
        if (possible) static_cast<void>(directory < 0 ? ::SetWorkDir(path) : fchdir(directory));
        if (directory >= 0) close(directory);
    }
    Return(const Return&) = delete;
    Return& operator=(const Return&) = delete;

    bool IsPossible() const { return possible; }

private:
    int directory;
    NUBString path; // only without a descriptor
    bool possible;
};

} // namespace

TAFileName TAFileName::Joined(std::string_view head, std::string_view glue, std::string_view tail) {
    TAFileName name;
    const std::size_t length = head.size() + glue.size() + tail.size();
    if (length == 0) return name;
    name.block = new (::operator new(sizeof(Block) + length + 1)) Block{1};
    char* past = name.block->Text();
    for (std::string_view piece : {head, glue, tail}) past = std::copy(piece.begin(), piece.end(), past);
    *past = '\0';
    return name;
}

std::string_view TAFileName::View() const {
    return static_cast<const char*>(*this);
}

TAFileName::TAFileName(const NUBString& text) : TAFileName(Joined(text.View(), {}, {})) {
    Normalize();
}

TAFileName::TAFileName(const char* text) : TAFileName(Joined(ViewOf(text), {}, {})) {
    Normalize();
}

TAFileName::TAFileName(const char* text, int length) {
    if (!text || length <= 0) return;
    *this = Joined({text, strnlen(text, static_cast<std::size_t>(length))}, {}, {});
    Normalize();
}

TAFileName::TAFileName(const TAFileName& other) : block(other.block) {
    if (block) ++block->count;
}

TAFileName::~TAFileName() {
    if (block && --block->count == 0) ::operator delete(block);
}

TAFileName& TAFileName::operator=(const char* text) {
    return *this = TAFileName(text);
}

TAFileName& TAFileName::operator=(const NUBString& text) {
    return *this = TAFileName(text);
}

TAFileName& TAFileName::operator=(const TAFileName& other) {
    return *this = TAFileName(other);
}

// The argument takes the old block away with it.
TAFileName& TAFileName::operator=(TAFileName&& other) noexcept {
    std::swap(block, other.block);
    return *this;
}

TAFileName::operator const char*() const {
    return block ? block->Text() : "";
}

int TAFileName::IsEqual(const TAFileName& other) const {
    return View() == other.View();
}

int TAFileName::Compare(TAFileName* a, TAFileName* b) {
    return std::strcmp(*a, *b);
}

int TAFileName::IsUnderDirectory(const TAFileName& directory) const {
    if (IsNull()) return 0;
    if (IsEqual(directory)) return 1;
    const TAFileName parent = dirname(1);
    const std::string_view text = parent.View();
    for (std::size_t end = text.size(); end > 0; end = EndOfParent(text, end))
        if (text.substr(0, end) == directory.View()) return 1;
    return 0;
}

TAFileName TAFileName::basename(int level) const {
    const std::string_view text = View();
    const std::size_t slash = EndOfAncestor(text, std::max(level, 1));
    if (slash == 0) return *this;
    const std::string_view rest = text.substr(slash + 1);
    TAFileName name = Joined(rest.substr(0, rest.find('/')), {}, {});
    name.Normalize();
    return name;
}

TAFileName TAFileName::dirname(int level) const {
    const std::string_view text = View();
    TAFileName name = Joined(text.substr(0, EndOfAncestor(text, level)), {}, {});
    name.Normalize();
    return name;
}

NUBString TAFileName::GetExtension() const {
    const std::size_t dot = View().rfind('.');
    return dot == std::string_view::npos ? NUBString() : NUBString(View().substr(dot + 1));
}

TAFileName TAFileName::operator+(const char* part) const {
    TAFileName name = Joined(View(), IsNull() ? "" : "/", ViewOf(part));
    name.Normalize();
    return name;
}

TAFileName TAFileName::operator+(const NUBString& part) const {
    return *this + part.CastToCharPtr();
}

TAFileName& TAFileName::operator+=(const char* part) {
    return *this = *this + part;
}

void TAFileName::AddExtension(const NUBString& extension) {
    *this = Joined(View(), {}, extension.View());
}

void TAFileName::SetExtension(const NUBString& extension) {
    // Without a dot this is the whole text: `rfind` gives the greatest number then, and `substr` clamps.
    const std::size_t dot = View().rfind('.');
    *this = Joined(View().substr(0, dot == std::string_view::npos ? dot : dot + 1), {}, extension.View());
}

void TAFileName::Normalize() {
    if (!block) return;
    if (block->count > 1) *this = Joined(View(), {}, {});
    char* text = block->Text();
    std::replace(text, text + std::strlen(text), '\\', '/');
}

int TAFileName::IsFile() const {
    return ostraka::detail::HasModeBit(*this, 0x8000);
}

int TAFileName::IsDirectory() const {
    return ostraka::detail::HasModeBit(*this, 0x4000);
}

void TAFileName::SetAsExecutable() const {
    struct stat status;
    if (stat(*this, &status) == 0) chmod(*this, (status.st_mode & 07777) | 0x40);
}

int TAFileName::Delete() const {
    return IsNull() ? 0 : unlink(*this);
}

int TAFileName::CreateDirectory() const {
    return IsNull() ? 1 : mkdir(*this, 0777);
}

TAFileName TAFileName::GetFullPath() const {
    if (IsNull()) return GetWorkDir();
    const Return back;
    if (!back.IsPossible()) return *this;
    if (SetWorkDir(dirname(1)) != 0) SetWorkDir((GetWorkDir() + *this).dirname(1));
    const NUBString directory = ::GetWorkDir();
    if (directory == ".") return *this;
    // The root loses its only slash here and gets it back as the glue.
    const std::size_t length = directory.View().find_last_not_of('/') + 1;
    TAFileName path = Joined(directory.View().substr(0, length), "/", basename(1).View());
    path.Normalize();
    return path;
}

TAFileName TAFileName::GetWorkDir() {
    return TAFileName(::GetWorkDir());
}

int TAFileName::SetWorkDir(const TAFileName& directory) {
    return chdir(directory);
}

TAFileName TAFileName::GetTemporaryFileName() {
    static unsigned counter = 0;
    const std::string name = "/tmp/Ostra_" + std::to_string(getpid()) + "_" + std::to_string(++counter);
    return TAFileName(name.c_str());
}
