// Paths that stay what they meant when the program began.
#include "host/StartDirectory.h"

#include <system_error>

namespace {

namespace fs = std::filesystem;

// Empty when it has been removed; relative paths lead nowhere then.
fs::path CurrentDirectory() {
    std::error_code error;
    return fs::current_path(error);
}

// Asked before any plug-in is loaded.
const fs::path g_start = CurrentDirectory();

}  // namespace

fs::path FromStart(const fs::path& given) { return g_start / given; }
