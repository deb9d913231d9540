// The searches in lists halve a range whose two ends both stay candidates: a range of one or two positions is
// decided by comparing, a longer one goes on with a half that keeps its middle.

#include <ostraka/foundation/TextHelpers.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <limits>
#include <string_view>
#include <utility>

#include <gneiss/qxOFStream.h>

namespace {

constexpr int noLimit = std::numeric_limits<int>::max();

// Cuts at no more than `cuts` separators and steps `step` characters past each.
int SplitInto(const NUBString& text, NUBListValNUBString& out, const NUBString& separator, int step,
              int cuts) {
    NUBListValNUBString fragments;
    int cursor = 0;
    for (int found = 0; found < cuts && step > 0; ++found) {
        const int place = text.FindPosition(separator, cursor);
        if (place < 0) break;
        if (place > cursor) fragments.Append(text.SubString(cursor, place - cursor));
        cursor = place + step;
    }
    if (cursor < text.Length()) fragments.Append(text.SubString(cursor, text.Length() - cursor));
    out = std::move(fragments);
    return out.Size();
}

std::tm LocalTime() {
    const std::time_t now = std::time(nullptr);
    std::tm fields = {};
    localtime_r(&now, &fields);
    return fields;
}

// Each piece is searched from where the one before it begins, so the cursor only ever moves forward.
bool HoldsInOrder(const NUBString& text, const NUBListValNUBString& pieces) {
    int cursor = 0;
    for (const NUBString& piece : pieces) {
        cursor = text.FindPosition(piece, cursor);
        if (cursor < 0) return false;
    }
    return true;
}

bool BeginsWith(const NUBString& text, const NUBString& entry) {
    return text.View().starts_with(entry.View());
}

void InsertIntoPair(const NUBString& text, NUBListValNUBString& list, int first, int last) {
    if (text == list[first] || text == list[last]) return;
    if (text < list[first])
        list.InsertBefore(first, text);
    else if (text > list[last])
        list.InsertAfter(last, text);
    else
        list.InsertAfter(first, text);
}

} // namespace

void Trace(const NUBString& text, int header) {
    if (header == 0) {
        qxStdout << "   " << text.CastToCharPtr() << endl;
        return;
    }
    qxStdout << endl << endl;
    qxStdout << "## " << GetShortDate().CastToCharPtr() << " - " << text.CastToCharPtr() << endl;
    qxStdout << endl;
}

void TraceErr(const NUBString& text) {
    qxStdout << "   ERROR :" << text.CastToCharPtr() << endl;
}

int Split(const NUBString& text, NUBListValNUBString& out) {
    return Split(text, out, " ");
}

int Split(const NUBString& text, NUBListValNUBString& out, const NUBString& separator) {
    return SplitInto(text, out, separator, separator.Length(), noLimit);
}

int Split(const NUBString& text, NUBListValNUBString& out, const NUBString& separator, int limit) {
    return SplitInto(text, out, separator, separator.Length() > 0, limit < 2 ? 0 : limit - 1);
}

int Split(const NUBString& text, NUBListValNUBString& out, int count) {
    Split(text, out, " ", count);
    while (out.Size() < count) out.Append(NUBString());
    return count;
}

NUBString GetDate() {
    const std::time_t now = std::time(nullptr);
    const char* line = std::ctime(&now);
    return line ? NUBString(std::string_view(line).substr(0, 24)) : NUBString();
}

NUBString GetSortDate() {
    const std::tm now = LocalTime();
    char date[80];
    std::snprintf(date, sizeof date, "%.2d-%.2d-%.2d-%.2d-%.2d-%.2d", now.tm_year, now.tm_mon + 1,
                  now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec);
    return NUBString(date);
}

NUBString GetShortDate() {
    const std::tm now = LocalTime();
    char date[80];
    std::snprintf(date, sizeof date, "%.2d-%.2d.%.2d:%.2d", now.tm_mon + 1, now.tm_mday, now.tm_hour,
                  now.tm_min);
    return NUBString(date);
}

int CompareTAStrings(NUBString* a, NUBString* b) {
    return a->Compare(*b);
}

int TestMatch(const NUBString& text, const NUBString& pattern) {
    if (pattern == "*" || text == pattern) return 1;
    NUBListValNUBString pieces;
    const int count = Split(pattern, pieces, "*");
    if (count == 0) return 0;
    if (!pattern.View().starts_with('*') && !BeginsWith(text, pieces[1])) return 0;
    const std::string_view last = pieces[count].View();
    // A text shorter than the last piece fails below, where the piece isn't found.
    if (!pattern.View().ends_with('*') && !text.View().ends_with(last)) return 0;
    return HoldsInOrder(text, pieces);
}

int TestMatchNoCase(const NUBString& text, const NUBString& pattern) {
    if (pattern == "*") return 1;
    NUBString upperText(text);
    NUBString upperPattern(pattern);
    upperText.ToUpper();
    upperPattern.ToUpper();
    return TestMatch(upperText, upperPattern);
}

int SearchInStringList(const NUBString& text, const NUBListValNUBString& list) {
    return rSearchInStringList(text, list, 1, list.Size());
}

int rSearchInStringList(const NUBString& text, const NUBListValNUBString& list, int first, int last) {
    if (last < first) return 0;
    while (last - first > 1) {
        const int middle = first + (last - first) / 2;
        (text < list[middle] ? last : first) = middle;
    }
    if (BeginsWith(text, list[first])) return first;
    return BeginsWith(text, list[last]) ? last : 0;
}

void InsertInList(const NUBString& text, NUBListValNUBString& list) {
    if (list.Size() == 0)
        list.Append(text);
    else
        rInsertInList(text, list, 1, list.Size());
}

void rInsertInList(const NUBString& text, NUBListValNUBString& list, int first, int last) {
    if (last < first) return;
    while (last - first > 1) {
        const int middle = first + (last - first) / 2;
        (text < list[middle] ? last : first) = middle;
    }
    InsertIntoPair(text, list, first, last);
}

// Nothing in `text` is looked at twice, save the character at which a begun match fails.
const char* Q_strstr(const char* text, const char* what, int limit) {
    if (!text || !what) return nullptr;
    if (*what == '\0') return *text == '\0' ? text : nullptr;
    int matched = 0;
    for (int i = 0; i < limit && text[i] != '\0' && text[i] != '\n';) {
        if (text[i] == what[matched]) {
            ++i;
            ++matched;
            if (what[matched] == '\0') return text + i - matched;
        } else if (matched > 0) {
            matched = 0;
        } else {
            ++i;
        }
    }
    return nullptr;
}
