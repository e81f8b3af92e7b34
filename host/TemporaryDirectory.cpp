// Where files lie for the time of some work.
#include "host/TemporaryDirectory.h"

#include <stdlib.h>

#include <string>
#include <system_error>

#include "host/Failure.h"

namespace {

// The variables that std::filesystem::temp_directory_path asks; that function does not name what it refuses.
std::string NameOfPlace() {
    for (const char* const variable : {"TMPDIR", "TMP", "TEMP", "TEMPDIR"}) {
        const char* const place = getenv(variable);
        if (place != nullptr && *place != '\0') return place;
    }
    return "/tmp";
}

}  // namespace

std::filesystem::path TemporaryDirectory() {
    const std::string place = NameOfPlace();
    std::error_code error;
    const bool there = std::filesystem::is_directory(place, error);
    if (!there && !error) error = std::make_error_code(std::errc::not_a_directory);
    if (error) throw CFailure(place, "there is no temporary directory (TMPDIR): " + error.message());
    return place;
}
