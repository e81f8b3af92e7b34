// Where files lie for the time of some work.
#include "host/TemporaryDirectory.h"

#include <stdlib.h>

#include <string>

#include "host/Failure.h"

namespace {

// What std::filesystem::temp_directory_path asks, which names no directory that it refuses.
std::string NameOfPlace() {
    for (const char* const variable : {"TMPDIR", "TMP", "TEMP", "TEMPDIR"}) {
        if (const char* const place = getenv(variable)) return place;
    }
    return "/tmp";
}

}  // namespace

std::filesystem::path TemporaryDirectory() {
    std::error_code error;
    std::filesystem::path place = std::filesystem::temp_directory_path(error);
    if (error) throw CFailure(NameOfPlace(), "there is no temporary directory (TMPDIR): " + error.message());
    return place;
}
