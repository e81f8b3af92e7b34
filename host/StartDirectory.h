// Paths that stay what they meant when the program began.
#pragma once

#include <filesystem>

// The absolute path of one that the person gave: plug-ins may change the current directory at any time. [any thread]
std::filesystem::path FromStart(const std::filesystem::path& given);
