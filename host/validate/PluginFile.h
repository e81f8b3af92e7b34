// A plug-in's shared object and its two entry symbols.
#pragma once

#include <string>

#include "com/AudioComponent.h"

constexpr const char* kPrimaryObjectSymbol = "KELO_PLUGIN_GetPrimaryAudioObject";
constexpr const char* kReadyToFinishSymbol = "KELO_PLUGIN_ReadyToFinish";

// Opened as the manager opens plug-ins. Nothing is closed unless Close is called: the process of a check ends without.
// One thread.
class CPluginFile {
public:
    // Throws CFinding with the loader's reason.
    explicit CPluginFile(std::string path);

    CPluginFile(const CPluginFile&) = delete;
    CPluginFile& operator=(const CPluginFile&) = delete;

    const std::string& GetPath() const { return m_strPath; }

    bool Exports(const std::string& symbol) const;

    // Both throw CFinding when the symbol is missing.
    bool GetPrimaryObject(IAudioComponent** component) const;
    bool IsReadyToFinish() const;

    // Whether the loader says that it closed the file.
    bool Close();

private:
    void* Require(const char* symbol) const;

    std::string m_strPath;
    void* m_pModule;
};
