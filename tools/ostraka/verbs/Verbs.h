#pragma once

// The rows of all verbs, each defined in the source of its verb.

#include "cli/Verb.h"

namespace ostraka::tool {

extern const Verb streamVerb;
extern const Verb treeVerb;
extern const Verb atVerb;
extern const Verb findVerb;
extern const Verb usesVerb;
extern const Verb headerVerb;
extern const Verb includesVerb;
extern const Verb outlineVerb;
extern const Verb classesVerb;
extern const Verb showVerb;
extern const Verb hierarchyVerb;
extern const Verb tagsVerb;
extern const Verb triageVerb;
extern const Verb maskVerb;
extern const Verb frameworksVerb;

// In the order of the help.
inline constexpr const Verb* allVerbs[] = {
    &streamVerb,    &treeVerb,     &atVerb,      &findVerb,    &usesVerb,
    &headerVerb,    &includesVerb, &outlineVerb, &classesVerb, &showVerb,
    &hierarchyVerb, &tagsVerb,     &triageVerb,  &maskVerb,    &frameworksVerb,
};

} // namespace ostraka::tool
