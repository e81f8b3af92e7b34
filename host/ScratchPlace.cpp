// A directory for the files of a run.
#include "host/ScratchPlace.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>

#include "host/Failure.h"
#include "host/FailureText.h"

namespace fs = std::filesystem;

CScratchPlace::CScratchPlace() {
    std::string name = (fs::canonical(fs::temp_directory_path()) / "keloaudio-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw CFailure(name, SystemErrorText(errno));
    m_strPath = name;
}

CScratchPlace::~CScratchPlace() {
    std::error_code ignored;
    fs::remove_all(m_strPath, ignored);
}

std::string CScratchPlace::MakeDirectory(const std::string& name) const {
    const std::string path = m_strPath + "/" + name;
    std::error_code error;
    fs::create_directories(path, error);
    if (error) throw CFailure(path, error.message());
    return path;
}

void CScratchPlace::RemoveDirectory(const std::string& name) const {
    std::error_code ignored;
    fs::remove_all(m_strPath + "/" + name, ignored);
}
