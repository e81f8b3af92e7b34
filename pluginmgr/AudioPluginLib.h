// One opened plug-in.
#pragma once

#include "portable/BasicString.h"
#include "portable/Export.h"

class IAudioComponent;

// What every plug-in exports, without name mangling.
constexpr char kPrimaryObjectSymbol[] = "KELO_PLUGIN_GetPrimaryAudioObject";
constexpr char kReadyToFinishSymbol[] = "KELO_PLUGIN_ReadyToFinish";

// Stores the plug-in's primary component with one reference for the caller; false when it has none.
using FGetPrimaryAudioObject = bool (*)(IAudioComponent** component);

// True while the plug-in holds no work that forbids unloading it.
using FReadyToFinish = bool (*)();

// Owns the module and closes it at its end; the plug-in's components must be released before.
// Made and destroyed on the thread that loads and unloads plug-ins.
class KELO_EXPORT CAudioPluginLib {
public:
    // Takes over `module`, a handle from LoadLibrary that may be null. `path` is that of the plug-in, below 4096
    // characters.
    CAudioPluginLib(const char* path, void* module);
    virtual ~CAudioPluginLib();

    CAudioPluginLib(const CAudioPluginLib&) = delete;
    CAudioPluginLib& operator=(const CAudioPluginLib&) = delete;

    // Whether both entry points were found; may be asked of a null pointer, which is not OK.
    bool IsOK();

    // False, with the out-pointer untouched, without the entry point; false also when the plug-in throws an int.
    // Other exceptions pass.
    bool GetPrimaryAudioObject(IAudioComponent** component);

    // As above.
    bool ReadyToFinish();

    // File name with extension; empty for an unusable library.
    const char* GetFileName();

private:
    char m_szPath[4096];
    CBasicString<char> m_strFileName;
    void* m_pModule;
    FGetPrimaryAudioObject m_pGetPrimaryAudioObject;
    FReadyToFinish m_pReadyToFinish;
};
