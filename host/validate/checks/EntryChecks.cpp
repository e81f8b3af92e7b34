// The shared object, its entry symbols and its primary object.
#include "host/validate/Checks.h"
#include "host/validate/Outcome.h"
#include "host/validate/References.h"
#include "host/validate/Trial.h"

namespace {

// The names that the entry symbols get without C linkage, by the Itanium C++ ABI.
constexpr const char* kMangledPrimaryObject = "_Z34KELO_PLUGIN_GetPrimaryAudioObjectPP15IAudioComponent";
constexpr const char* kMangledReadyToFinish = "_Z25KELO_PLUGIN_ReadyToFinishv";

std::string WhyMissing(const CPluginFile& file, const char* symbol, const char* mangled) {
    if (file.Exports(symbol)) return "";
    const std::string text = std::string(symbol) + " is missing";
    return file.Exports(mangled) ? text + ": it has its C++ name, and extern \"C\" is what it lacks; " : text + "; ";
}

void Opens(CTrial& trial) { const CPluginFile file(trial.Around().m_strPlugin); }

void ExportsBothSymbols(CTrial& trial) {
    const CPluginFile file(trial.Around().m_strPlugin);
    const std::string missing = WhyMissing(file, kPrimaryObjectSymbol, kMangledPrimaryObject) +
                                WhyMissing(file, kReadyToFinishSymbol, kMangledReadyToFinish);
    Expect(missing.empty(), missing.substr(0, missing.size() - 2));
}

void SurvivesNullOutPointer(CTrial& trial) {
    const CPluginFile file(trial.Around().m_strPlugin);
    Expect(!file.GetPrimaryObject(nullptr), "true for a null pointer");
}

void GivesPrimaryObject(CTrial& trial) {
    const CPluginFile file(trial.Around().m_strPlugin);
    IAudioComponent* primary = nullptr;
    Expect(file.GetPrimaryObject(&primary), "false");
    Expect(primary != nullptr, "true, and no object is stored");
}

void GivesReference(CTrial& trial) {
    const CPluginFile file(trial.Around().m_strPlugin);
    IAudioComponent* primary = nullptr;
    file.GetPrimaryObject(&primary);
    Expect(primary != nullptr, "no object is stored");
    ExpectOwnReference(*primary);
}

}  // namespace

CCheckList EntryChecks() {
    return {
        {"entry/opens", "The loader opens the file with everything that it needs.", CONCERN_ANY, "", Opens},
        {"entry/both-symbols",
         "It exports KELO_PLUGIN_GetPrimaryAudioObject and KELO_PLUGIN_ReadyToFinish under their C names.", CONCERN_ANY,
         "entry/opens", ExportsBothSymbols},
        {"entry/null-out-pointer", "KELO_PLUGIN_GetPrimaryAudioObject refuses a null pointer.", CONCERN_ANY,
         "entry/both-symbols", SurvivesNullOutPointer},
        {"entry/primary-object", "KELO_PLUGIN_GetPrimaryAudioObject stores a component and answers true.", CONCERN_ANY,
         "entry/both-symbols", GivesPrimaryObject},
        {"entry/reference", "The primary object comes with a reference that the caller owns.", CONCERN_ANY,
         "entry/primary-object", GivesReference},
    };
}
