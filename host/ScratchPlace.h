// A directory for the files of a run.
#pragma once

#include <string>

// Below the directory of temporary files; removed with everything in it. One thread.
class CScratchPlace {
public:
    // Throws CFailure when there is no room for it.
    CScratchPlace();
    ~CScratchPlace();

    CScratchPlace(const CScratchPlace&) = delete;
    CScratchPlace& operator=(const CScratchPlace&) = delete;

    // Makes a directory in it and returns its path.
    std::string MakeDirectory(const std::string& name) const;

    void RemoveDirectory(const std::string& name) const;

private:
    std::string m_strPath;
};
