#pragma once

// Free functions over the file system: a test for a file, the working directory, and the selection of the
// paths that a pattern matches. None keeps state and none reports: what can't be read counts as absent. Paths
// are taken as the bytes they are, and are as long as the system allows, counted from the working directory.

#include <basalt/NUBListValNUBString.h>
#include <basalt/NUBString.h>
#include <ostraka/Export.h>
#include <ostraka/foundation/TAFileName.h>

// 1 for a regular file, or a symbolic link to one, else 0. A socket counts as one too.
OSTRAKA_EXPORT int FileExists(const NUBString& path);

// 0, or -1 with the reason in `errno`.
OSTRAKA_EXPORT int SetWorkDir(const NUBString& path);
// The absolute path, or "." when it can't be had.
OSTRAKA_EXPORT NUBString GetWorkDir();

// Add the paths that `pattern` matches to `out`, which keeps what it holds. A pattern is absolute or starts
// from the working directory; the paths start with the working directory then. A part between slashes that
// holds a "*" matches by `TestMatch` all entries of the directories found so far, hidden ones and dangling
// links among them, but not "." and ".."; symbolic links are followed. Any other part names what exists. The
// paths of a directory come in the system's order. An empty pattern gives what it starts from.
//
// As texts, paths begin with one slash: "/usr/*" gives "/usr/bin". As names they are joined by the operator +
// of a name, from the name "/": "/usr/*" gives "//usr/bin", and a backslash in an entry becomes a slash.
OSTRAKA_EXPORT void ReadDirectory(const char* pattern, NUBListValNUBString& out);
OSTRAKA_EXPORT void ReadDirectory(const NUBString& pattern, NUBListValNUBString& out);
OSTRAKA_EXPORT void ReadDirectory(const char* pattern, NUBListValTAFileName& out);
OSTRAKA_EXPORT void ReadDirectory(const NUBString& pattern, NUBListValTAFileName& out);
// How many paths the pattern matches.
OSTRAKA_EXPORT int FileSelectionSize(const NUBString& pattern);
