// The parser calls for each element; the path down to the open one is kept as a stack of the few names that
// matter, all others being `Other`. Text is gathered only inside an element whose text is wanted. The bytes
// are taken for ISO-8859-1, since names in a report may hold any bytes, and turned back when they are used.
// Of several stacks in an error the first says where it happened.
//
// Nearly all of a report is frames, and nearly all frames have been met before; to parse each of them would
// take most of the time. So what is fed is cut behind each "<stack>", and the frames that follow there are
// looked up by their bytes, blanks in front included. One that is known gives its call, and the parser
// doesn't see it: before the next bytes it gets, it is told as many line feeds and blanks as were left out,
// so that its lines and columns stay those of the report. One that isn't known goes to the parser alone, and
// is remembered if that shows it to be a single frame from its first byte to its last. In a comment "<stack>"
// opens none and "</frame>" ends none, which the parser shows as well: `behind` is the tag that it has just
// passed, and frames are looked up only while that is right. What doesn't hold at the cut, as a frame that
// the piece ends in, is simply parsed.

#include <algorithm>
#include <charconv>
#include <functional>
#include <iterator>
#include <unordered_map>
#include <vector>

#include <expat.h>

#include "LineReader.h"
#include "ReportTypes.h"

namespace ostraka::reports {

namespace {

constexpr std::string_view stackTag = "<stack>";
constexpr std::string_view frameTag = "<frame>";
constexpr std::string_view frameEnd = "</frame>";
constexpr std::size_t mostKnownFrames = 1 << 14; // so that they take a few megabytes

enum class Element { Other, Root, Error, Stack, Frame, Counts, Pair };

// The texts of an error, of its first stack's frames and of a pair of counts.
enum Field { Unique, Kind, What, Bytes, Blocks, Function, Folder, File, Line, Object, Count, Fields };

struct ElementName {
    std::string_view name;
    Element parent;
    Element element;
};

constexpr ElementName elementNames[] = {
    {"frame", Element::Stack, Element::Frame}, {"stack", Element::Error, Element::Stack},
    {"error", Element::Root, Element::Error},  {"errorcounts", Element::Root, Element::Counts},
    {"pair", Element::Counts, Element::Pair},
};

struct FieldName {
    std::string_view name;
    Element parent;
    Field field;
};

constexpr FieldName fieldNames[] = {
    {"obj", Element::Frame, Object}, {"fn", Element::Frame, Function},  {"dir", Element::Frame, Folder},
    {"file", Element::Frame, File},  {"line", Element::Frame, Line},    {"unique", Element::Error, Unique},
    {"kind", Element::Error, Kind},  {"auxwhat", Element::Error, What}, {"unique", Element::Pair, Unique},
    {"count", Element::Pair, Count},
};

// In an error these lie one level deeper, in an element of their own.
constexpr FieldName innerFieldNames[] = {
    {"leakedbytes", Element::Error, Bytes},
    {"leakedblocks", Element::Error, Blocks},
};

constexpr std::string_view addressLabel = "Address ";

struct RegionWord {
    std::string_view word;
    Region region;
};

constexpr RegionWord regionWords[] = {
    {"free'd", Region::Freed},
    {"alloc'd", Region::OutOfBlock},
    {"bytes below stack pointer", Region::BeyondStack},
    {"'s stack", Region::Stack},
    {"inside data symbol", Region::OutOfBlock},
};

Region RegionOf(std::string_view what) {
    // "Address 0x8 is not stack'd, malloc'd or (recently) free'd"
    if (what.starts_with(addressLabel) && what.find(" is not ") != std::string_view::npos)
        return RegionOfAddress(what.substr(addressLabel.size()));
    for (const RegionWord& row : regionWords)
        if (what.find(row.word) != std::string_view::npos) return row.region;
    return Region::Unknown;
}

template <class Number>
Number ParseNumber(std::string_view text) {
    Number number = 0;
    const bool hexadecimal = text.starts_with("0x");
    if (hexadecimal) text.remove_prefix(2);
    std::from_chars(text.data(), text.data() + text.size(), number, hexadecimal ? 16 : 10);
    return number;
}

// Back from what the parser made of bytes above 0x7f: "\xc3\xa4" stands for "\xe4". What can't come from a
// byte stays.
void RestoreBytes(std::string& text) {
    if (std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; })) return;
    std::size_t to = 0;
    for (std::size_t from = 0; from < text.size(); ++from, ++to) {
        const auto lead = static_cast<unsigned char>(text[from]);
        const bool pair = (lead == 0xc2 || lead == 0xc3) && from + 1 < text.size();
        text[to] = pair ? static_cast<char>((lead << 6 & 0xc0) | (text[from + 1] & 0x3f)) : text[from];
        if (pair) ++from;
    }
    text.resize(to);
}

struct KnownFrame {
    std::string call;
    std::string blanks;
};

struct HashOfText {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

// Line feeds, and blanks for what stands behind the last of them.
std::string BlanksFor(std::string_view text) {
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    const std::size_t last = text.rfind('\n');
    return std::string(lines, '\n') +
           std::string(text.size() - (last == std::string_view::npos ? 0 : last + 1), ' ');
}

class ValgrindReader : public ReportReader {
public:
    explicit ValgrindReader(RecordTaker& theTaker) : taker(theTaker), parser(XML_ParserCreate("ISO-8859-1")) {
        if (parser == nullptr) throw std::bad_alloc();
        XML_SetUserData(parser, this);
        XML_SetElementHandler(
            parser, [](void* self, const char* name, const char**) { Self(self).Open(name); },
            [](void* self, const char*) { Self(self).Close(); });
        // A report has no document type, and one could hold entities without end.
        XML_SetStartDoctypeDeclHandler(parser, [](void* self, const char*, const char*, const char*, int) {
            Self(self).Stop("holds a document type, which a report hasn't");
        });
    }
    ~ValgrindReader() override { XML_ParserFree(parser); }
    ValgrindReader(const ValgrindReader&) = delete;
    ValgrindReader& operator=(const ValgrindReader&) = delete;

    bool Feed(std::string_view piece) override {
        for (std::size_t tag = piece.find(stackTag); tag != std::string_view::npos && !fault;
             tag = piece.find(stackTag)) {
            Parse(piece.substr(0, tag + stackTag.size()), false);
            piece.remove_prefix(tag + stackTag.size());
            if (behind == Tag::StackBegin) TakeFrames(piece);
        }
        Parse(piece, false);
        return !fault;
    }
    void End() override { Parse("", true); }

private:
    static ValgrindReader& Self(void* self) { return *static_cast<ValgrindReader*>(self); }

    // The last tag before the place that has been reached, if it is one of these.
    enum class Tag { Other, StackBegin, FrameEnd };

    // Takes the frames that `piece` begins with off it, as far as they are whole.
    void TakeFrames(std::string_view& piece) {
        while (!fault) {
            const std::size_t begin = piece.find_first_not_of(" \t\r\n");
            if (begin == std::string_view::npos || !piece.substr(begin).starts_with(frameTag)) return;
            const std::size_t end = piece.find(frameEnd, begin);
            if (end == std::string_view::npos) return;
            const std::string_view frame = piece.substr(0, end + frameEnd.size());
            piece.remove_prefix(frame.size());
            if (const auto known = knownFrames.find(frame); known != knownFrames.end()) {
                if (stacks == 1) record.calls.AddText(known->second.call);
                blanks += known->second.blanks;
            } else if (!LearnFrame(frame)) {
                return;
            }
        }
    }

    // False when the frame doesn't end where it seemed to.
    bool LearnFrame(std::string_view frame) {
        const int before = record.calls.Told();
        behind = Tag::Other;
        Parse(frame, false);
        if (behind != Tag::FrameEnd) return false;
        if (stacks != 1 || record.calls.Told() != before + 1 || before >= CallTexts::most) return true;
        if (knownFrames.size() >= mostKnownFrames) knownFrames.clear();
        knownFrames.emplace(frame, KnownFrame{record.calls[before], BlanksFor(frame)});
        return true;
    }

    void Parse(std::string_view piece, bool last) {
        if (!blanks.empty()) ParseBytes(blanks, false);
        blanks.clear();
        for (; piece.size() > formLength; piece.remove_prefix(formLength))
            ParseBytes(piece.substr(0, formLength), false);
        ParseBytes(piece, last);
    }

    void ParseBytes(std::string_view piece, bool last) {
        if (fault || XML_Parse(parser, piece.data(), static_cast<int>(piece.size()), last) == XML_STATUS_OK ||
            fault)
            return;
        std::string cause = XML_ErrorString(XML_GetErrorCode(parser));
        if (recordOpen) cause += "; the error that is open here is left out";
        SetFault(cause);
    }

    void SetFault(const std::string& cause) {
        fault = {static_cast<int>(XML_GetCurrentLineNumber(parser)),
                 static_cast<int>(XML_GetCurrentColumnNumber(parser)) + 1, cause};
    }

    void Stop(const std::string& cause) {
        SetFault(cause);
        XML_StopParser(parser, XML_FALSE);
    }

    Element Parent() const { return path.back(); }

    void Open(std::string_view name) {
        behind = Tag::Other;
        if (path.empty()) {
            if (name != "valgrindoutput") return Stop("is XML, but not Valgrind's");
            path.push_back(Element::Root);
            return;
        }
        // Text and elements are never mixed where a text is wanted.
        Want(FindField(name));
        path.push_back(wanted == Fields ? FindElement(name) : Element::Other);
        if (path.back() == Element::Error) OpenError();
        if (path.back() == Element::Stack) {
            ++stacks;
            behind = Tag::StackBegin;
        }
        if (path.back() == Element::Frame || path.back() == Element::Pair)
            for (const Field field : {Function, Folder, File, Line, Object, Count}) fields[field].clear();
    }

    static Element FindElement(std::string_view name, Element parent) {
        for (const ElementName& row : elementNames)
            if (row.parent == parent && row.name == name) return row.element;
        return Element::Other;
    }
    Element FindElement(std::string_view name) const { return FindElement(name, Parent()); }

    Field FindField(std::string_view name) const {
        if (stacks > 1 && Parent() == Element::Frame) return Fields;
        for (const FieldName& row : fieldNames)
            if (row.parent == Parent() && row.name == name) return row.field;
        if (path.size() < 2 || Parent() != Element::Other || path[path.size() - 2] != Element::Error)
            return Fields;
        for (const FieldName& row : innerFieldNames)
            if (row.name == name) return row.field;
        return Fields;
    }

    // Gathers the text of the element that has just opened.
    void Want(Field field) {
        if (field != wanted) XML_SetCharacterDataHandler(parser, field == Fields ? nullptr : TakeText);
        wanted = field;
        // An error may have several remarks about its address; all of them count.
        if (field != Fields && field != What) fields[field].clear();
    }

    static void TakeText(void* self, const char* text, int size) {
        Self(self).fields[Self(self).wanted].append(text, static_cast<std::size_t>(size));
    }

    void Close() {
        if (path.empty()) return; // of an element that stopped the parser
        const Element closed = path.back();
        path.pop_back();
        behind = closed == Element::Frame ? Tag::FrameEnd : Tag::Other;
        Want(Fields);
        if (closed == Element::Frame && stacks == 1) AddCall();
        if (closed == Element::Error) CloseError();
        if (closed == Element::Pair)
            taker.Recount(ParseNumber<std::uint64_t>(fields[Unique]),
                          ParseNumber<std::int64_t>(fields[Count]));
    }

    void OpenError() {
        record.Clear();
        record.line = static_cast<int>(XML_GetCurrentLineNumber(parser));
        for (std::string& field : fields) field.clear();
        stacks = 0;
        recordOpen = true;
    }

    void AddCall() {
        for (const Field field : {Function, Folder, File, Object}) RestoreBytes(fields[field]);
        if (fields[File].empty()) return record.calls.Add(fields[Function], fields[Object], "");
        if (!fields[Folder].empty() && !fields[File].starts_with('/'))
            fields[File].insert(0, fields[Folder] + "/");
        record.calls.Add(fields[Function], fields[File], fields[Line]);
    }

    void CloseError() {
        RestoreBytes(fields[Kind]);
        record.kind = fields[Kind];
        SetType(record, RegionOf(fields[What]), record.kind == "InvalidWrite");
        record.unique = ParseNumber<std::uint64_t>(fields[Unique]);
        if (record.leak) {
            record.bytes = ParseNumber<std::int64_t>(fields[Bytes]);
            record.count = ParseNumber<std::int64_t>(fields[Blocks]);
        }
        recordOpen = false;
        taker.Take(record);
    }

    RecordTaker& taker;
    XML_Parser parser;
    std::vector<Element> path;
    Tag behind = Tag::Other;
    std::string fields[Fields];
    Field wanted = Fields;
    ReportRecord record;
    int stacks = 0; // of the open error
    bool recordOpen = false;
    std::unordered_map<std::string, KnownFrame, HashOfText, std::equal_to<>> knownFrames;
    std::string blanks; // for known frames that the parser hasn't been told of yet
};

} // namespace

std::unique_ptr<ReportReader> MakeValgrindReader(RecordTaker& taker) {
    return std::make_unique<ValgrindReader>(taker);
}

} // namespace ostraka::reports
