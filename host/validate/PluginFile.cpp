// A plug-in's shared object and its two entry symbols.
#include "host/validate/PluginFile.h"

#include <dlfcn.h>

#include <utility>

#include "host/validate/Outcome.h"
#include "host/validate/Steps.h"
#include "portable/DynamicLibrary.h"

namespace {

std::string LoaderReason() {
    const char* const reason = dlerror();
    return reason == nullptr ? "the loader tells no reason" : reason;
}

}  // namespace

CPluginFile::CPluginFile(std::string path) : m_strPath(std::move(path)) {
    TellStep("loading");
    m_pModule = LoadLibrary(m_strPath.c_str());
    if (m_pModule == nullptr) throw CFinding(LoaderReason());
}

bool CPluginFile::Exports(const std::string& symbol) const {
    return GetProcAddress(m_pModule, symbol.c_str()) != nullptr;
}

bool CPluginFile::GetPrimaryObject(IAudioComponent** component) const {
    const auto entry = reinterpret_cast<bool (*)(IAudioComponent**)>(Require(kPrimaryObjectSymbol));
    TellStep(kPrimaryObjectSymbol);
    return entry(component);
}

bool CPluginFile::IsReadyToFinish() const {
    const auto entry = reinterpret_cast<bool (*)()>(Require(kReadyToFinishSymbol));
    TellStep(kReadyToFinishSymbol);
    return entry();
}

bool CPluginFile::Close() {
    TellStep("unloading");
    return FreeLibrary(std::exchange(m_pModule, nullptr)) == 0;
}

void* CPluginFile::Require(const char* symbol) const {
    void* const address = GetProcAddress(m_pModule, symbol);
    if (address == nullptr) throw CFinding(std::string(symbol) + " is missing");
    return address;
}
