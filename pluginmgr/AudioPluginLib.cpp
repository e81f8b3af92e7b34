// One opened plug-in and its two entry points.
#include "pluginmgr/AudioPluginLib.h"

#include <dlfcn.h>

#include <cstring>

#include "portable/BoundedStrings.h"
#include "portable/DynamicLibrary.h"
#include "portable/PortableFile.h"

namespace {

template <typename TEntry>
TEntry FindEntry(void* module, const char* symbol) {
    void* const address = GetProcAddress(module, symbol);
    dlerror();  // leaves the loader's error state clean for the plug-in and the host
    return reinterpret_cast<TEntry>(address);
}

// A pointer that the compiler knows nothing about, so that the comparison with null stays.
bool IsNull(const void* object) { return object == nullptr; }

}  // namespace

CAudioPluginLib::CAudioPluginLib(const char* path, void* module)
    : m_szPath{}, m_pModule(module), m_pGetPrimaryAudioObject(nullptr), m_pReadyToFinish(nullptr) {
    if (path == nullptr || module == nullptr || *path == '\0') return;
    strncpy_s(m_szPath, sizeof m_szPath, path, _TRUNCATE);
    m_pGetPrimaryAudioObject = FindEntry<FGetPrimaryAudioObject>(module, kPrimaryObjectSymbol);
    m_pReadyToFinish = FindEntry<FReadyToFinish>(module, kReadyToFinishSymbol);
    m_strFileName = CPortableFile::Split_GetFileName(m_szPath);
}

CAudioPluginLib::~CAudioPluginLib() {
    if (m_pModule != nullptr) FreeLibrary(m_pModule);
}

bool CAudioPluginLib::IsOK() {
    return !IsNull(this) && m_pGetPrimaryAudioObject != nullptr && m_pReadyToFinish != nullptr;
}

bool CAudioPluginLib::GetPrimaryAudioObject(IAudioComponent** component) {
    if (m_pGetPrimaryAudioObject == nullptr) return false;
    try {
        return m_pGetPrimaryAudioObject(component);
    } catch (int) {
        return false;
    }
}

bool CAudioPluginLib::ReadyToFinish() {
    if (m_pReadyToFinish == nullptr) return false;
    try {
        return m_pReadyToFinish();
    } catch (int) {
        return false;
    }
}

const char* CAudioPluginLib::GetFileName() { return m_strFileName.GetText(); }
