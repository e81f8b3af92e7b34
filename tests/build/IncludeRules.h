// Who may include whom in the source tree.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

// Checks every source and header of the library's folders, the host, the plug-ins and the examples below `root` and
// returns one line per violation, each naming the file:
// - The library's folders are layers; includes point into the same layer or down.
// - The library includes nothing of the host, the plug-ins, the examples and the tests.
// - Host, plug-ins and examples include the public headers of the library, of the manager only its entry point and its
//   class, and otherwise only their own folder; plug-ins also plugins/shared.
// - Files of the tree are included in quotes, by their path from the root, and exist.
// - No chain of includes comes back to its beginning.
std::vector<std::string> FindIncludeViolations(const std::filesystem::path& root,
                                               const std::set<std::string>& publicHeaders);

// The sources and headers that the check reads, by their path from `root`.
std::vector<std::string> CheckedFiles(const std::filesystem::path& root);
