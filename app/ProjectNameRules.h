#pragma once

#include "kernel/KDirectory.h"
#include "kernel/KString.h"

// The rules a project's (or an actor's) name keeps. Projects travel on
// memory sticks formatted for other systems, so a name is refused when
// any of them could not hold it, and two names that differ only in case
// are the same name.
namespace ProjectNameRules {

constexpr int32_t kMaximumLength = 26;

enum class Problem {
    None,
    TooLong,
    IllegalCharacters,
    Exists,
};

// Without blanks at either end.
KString trimmed(const KString& name);
// What is wrong with the (trimmed) name for a new entry in `folder`.
Problem check(const KString& name, const KDirectory& folder);
// Whether `folder` holds an entry of that name, compared without case.
bool existsIn(const KString& name, const KDirectory& folder);
// `base`, or "base 2", "base 3" ... the first that is free in `folder`.
KString freeName(const KString& base, const KDirectory& folder);
// The warning for a problem, translated; empty for None.
KString message(Problem problem);

} // namespace ProjectNameRules
