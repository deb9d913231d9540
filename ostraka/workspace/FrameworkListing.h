#pragma once

// The frameworks of a workspace: its directories that hold an entry called IdentityCard. The test framework
// of X is called X.tst. All four functions append to `out`, in the reverse order of the directory, and return
// 0 unless they say otherwise.

#include <basalt/NUBListValNUBString.h>
#include <basalt/NUBString.h>
#include <ostraka/Export.h>

// All frameworks; with a `pureCode` that isn't 0, those whose name has no dot in its middle. 1 when the
// workspace has no framework at all.
OSTRAKA_EXPORT int GetFWCodeList(const NUBString& workspace, NUBListValNUBString& out, int pureCode);
// All frameworks, or with a `testOnly` that isn't 0 the test frameworks. 1 when there is none.
OSTRAKA_EXPORT int GetFWTestList(const NUBString& workspace, NUBListValNUBString& out, int testOnly);
// The test frameworks of a framework, as the command `ls_test_fw -w WORKSPACE -f FRAMEWORK` lists them, one a
// line, without its comments; and X.tst in any case. The command is looked for in the PATH, and prints
// nothing if it isn't there. With `query` 0, the framework itself.
OSTRAKA_EXPORT int GetTestFW(const NUBString& workspace, const NUBString& framework, NUBListValNUBString& out,
                             int query);
// The framework X that X.tst tests, if the workspace has such an entry. 1 when the name hasn't that form.
// With `query` 0, the name itself.
OSTRAKA_EXPORT int GetCodeFW(const NUBString& workspace, const NUBString& testFramework,
                             NUBListValNUBString& out, int query);
