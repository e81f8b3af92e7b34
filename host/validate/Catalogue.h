// All checks, and which of them a person chose.
#pragma once

#include <string>
#include <vector>

#include "host/validate/Check.h"

// In the order in which they are run and reported.
const CCheckList& AllChecks();

// Null for an unknown name.
const SCheck* FindCheck(const std::string& name);

// Without what "source" has before the slash: "source/start" belongs to "source".
std::string GroupOf(const SCheck& check);

// Names of checks, of groups, or wildcards over names, such as "source/start", "source" and "*/reference".
using CPatterns = std::vector<std::string>;

// Throws CWrongUsage for a pattern that no check matches.
void RequireKnown(const CPatterns& patterns);

// The checks that match `only`, or all for no pattern there, without those that match `skip`.
CCheckList ChosenChecks(const CPatterns& only, const CPatterns& skip);
