#pragma once

// Free functions over text that all rooms share: lines for the console, splitting, dates, patterns with
// stars, and sorted lists of texts. None keeps state. Positions in text count from 0, positions in lists
// from 1. Texts of any length work.

#include <basalt/NUBListValNUBString.h>
#include <basalt/NUBString.h>
#include <ostraka/Export.h>

// Console lines, on standard output. `Trace` writes the text behind three blanks; with a `header` that isn't
// 0, a block that tells the date. `TraceErr` writes a line that says ERROR.
OSTRAKA_EXPORT void Trace(const NUBString& text, int header);
OSTRAKA_EXPORT void TraceErr(const NUBString& text);

// Cut `text` into the fragments between separators, none of them empty, and return how many there are; `out`
// holds them and nothing else. Without a separator it is one blank. An empty separator leaves the text in one
// piece. `text` may be an element of `out`.
OSTRAKA_EXPORT int Split(const NUBString& text, NUBListValNUBString& out);
OSTRAKA_EXPORT int Split(const NUBString& text, NUBListValNUBString& out, const NUBString& separator);
// Uses up at most `limit` - 1 separators, whether they yield a fragment or not, and what is left is the last
// fragment: "a b c" with limit 2 gives "a", "b c". The separator is a single character.
OSTRAKA_EXPORT int Split(const NUBString& text, NUBListValNUBString& out, const NUBString& separator,
                         int limit);
// The same at blanks, filled up with empty texts to `count` elements. Returns `count`.
OSTRAKA_EXPORT int Split(const NUBString& text, NUBListValNUBString& out, int count);

// The present local time.
OSTRAKA_EXPORT NUBString GetDate();      // "Tue Nov  1 09:05:07 2005"
OSTRAKA_EXPORT NUBString GetSortDate();  // "105-11-01-09-05-07": the year counts from 1900
OSTRAKA_EXPORT NUBString GetShortDate(); // "11-01.09:05"

// `a->Compare(*b)`, for `QuickSort`.
OSTRAKA_EXPORT int CompareTAStrings(NUBString* a, NUBString* b);

// 1 when `text` matches `pattern`, in which "*" stands for any run of characters, else 0. The pieces between
// the stars have to be found one after the other, but a piece may begin where the one before it began: "ab*b"
// matches "ab", and "ab" matches "abxab". A pattern of several stars and nothing else matches only itself.
OSTRAKA_EXPORT int TestMatch(const NUBString& text, const NUBString& pattern);
OSTRAKA_EXPORT int TestMatchNoCase(const NUBString& text, const NUBString& pattern);

// Position of an entry with which `text` begins, found by halving a list in ascending order, or 0. The second
// form looks at the positions `first` to `last`, which the list has.
OSTRAKA_EXPORT int SearchInStringList(const NUBString& text, const NUBListValNUBString& list);
OSTRAKA_EXPORT int rSearchInStringList(const NUBString& text, const NUBListValNUBString& list, int first,
                                       int last);

// Put `text` into its place in a list in ascending order, unless it is there already.
OSTRAKA_EXPORT void InsertInList(const NUBString& text, NUBListValNUBString& list);
OSTRAKA_EXPORT void rInsertInList(const NUBString& text, NUBListValNUBString& list, int first, int last);

// Where `what` occurs in `text` before its first line feed and within its first `limit` characters, or null.
// Null in one of the two gives null, and an empty `what` is found in an empty text only. The search never
// goes back in `text`: "aab" isn't found in "aaab".
OSTRAKA_EXPORT const char* Q_strstr(const char* text, const char* what, int limit);
