// A directory for the files of a run.
#include "host/ScratchPlace.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>

#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/TemporaryDirectory.h"

namespace fs = std::filesystem;

namespace {

std::string Make() {
    const fs::path place = TemporaryDirectory();
    std::error_code error;
    std::string path = (fs::canonical(place, error) / "keloaudio-XXXXXX").string();
    if (!error && mkdtemp(path.data()) != nullptr) return path;
    const std::string reason = error ? error.message() : SystemErrorText(errno);
    throw CFailure(place, "no directory can be made in it (TMPDIR): " + reason);
}

}  // namespace

CScratchPlace::CScratchPlace() : m_strPath(Make()) {}

CScratchPlace::~CScratchPlace() {
    std::error_code ignored;
    fs::remove_all(m_strPath, ignored);
}

std::string CScratchPlace::MakeDirectory(const std::string& name) const {
    std::string path = m_strPath + "/" + name;
    std::error_code error;
    fs::create_directories(path, error);
    if (error) throw CFailure(path, error.message());
    return path;
}

void CScratchPlace::RemoveDirectory(const std::string& name) const {
    std::error_code ignored;
    fs::remove_all(m_strPath + "/" + name, ignored);
}
