// Being ready to finish, unloading, and loading once more.
#include <filesystem>
#include <fstream>

#include "com/ComponentEnum.h"
#include "com/InterfaceIds.h"
#include "host/validate/Checks.h"
#include "host/validate/ElfFile.h"
#include "host/validate/Exercise.h"
#include "host/validate/Objects.h"
#include "host/validate/Outcome.h"
#include "host/validate/Steps.h"
#include "host/validate/Trial.h"

namespace {

namespace fs = std::filesystem;

void IsReadyBeforeUse(CTrial& trial) {
    const CPluginFile file(trial.Around().m_strPlugin);
    Expect(file.IsReadyToFinish(), "false before anything was asked of it");
}

void IsNotReadyWhileObjectsLive(CTrial& trial) {
    const std::size_t components = trial.Plugin().GetEverything().size();
    std::vector<SObject> objects = EveryObject(trial);
    objects.erase(objects.begin(), objects.begin() + static_cast<std::ptrdiff_t>(components));
    if (objects.empty()) throw CSkipped("it makes neither streams nor convertors here");
    while (!objects.empty()) {
        // Statuses may belong to the library: their code stays.
        if (objects.back().m_strLabel.compare(0, 8, "a status") != 0) {
            Expect(!trial.Plugin().GetFile().IsReadyToFinish(), "true while it lives: " + objects.back().m_strLabel);
        }
        objects.pop_back();
    }
}

void FinishPlugin(CTrial& trial) {
    trial.Plugin().Terminate();
    trial.Plugin().Release();
}

void IsReadyAfterUse(CTrial& trial) {
    Exercise(trial);
    FinishPlugin(trial);
    Expect(trial.Plugin().GetFile().IsReadyToFinish(), "false although nothing of it is held");
}

void Unload(CTrial& trial) {
    Exercise(trial);
    FinishPlugin(trial);
    Expect(trial.Plugin().GetFile().Close(), "the loader says that it did not close the file");
}

bool IsMapped(const std::string& path) {
    const std::string place = " " + fs::canonical(path).string();
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        const std::size_t at = line.rfind(place);
        if (at != std::string::npos && at + place.size() == line.size()) return true;
    }
    return false;
}

std::string WhyMapped(const std::string& path) {
    std::string text = "the file is still in memory";
    const std::vector<std::string> unique = UniqueSymbols(path);
    if (AsksToStay(path)) return text + ": it is linked to stay (-z nodelete)";
    if (unique.empty()) return text + ": something holds it, such as a handle, or a thread with objects of its own";
    text += ": it has unique symbols (compile with -fno-gnu-unique or hide them):";
    for (std::size_t i = 0; i < unique.size() && i < 3; ++i) text += " " + unique[i];
    return text + (unique.size() > 3 ? " …" : "");
}

void LeavesMemory(CTrial& trial) {
    const std::string path = trial.Around().m_strPlugin;
    Unload(trial);
    if (IsMapped(path)) throw CFinding(WhyMapped(path));
}

std::vector<std::string> LabelsOf(const CLoadedPlugin& plugin) {
    std::vector<std::string> labels;
    for (const SComponent& component : plugin.GetEverything()) labels.push_back(component.m_strLabel);
    return labels;
}

void LoadsAgain(CTrial& trial) {
    const std::vector<std::string> first = LabelsOf(trial.Plugin());
    Unload(trial);
    CLoadedPlugin again(trial.Around().m_strPlugin, trial.MayUse("component/name"));
    again.Initialize(trial.Manager());
    Expect(LabelsOf(again) == first, "the second time there are other components");
    again.Terminate();
}

// Links the plug-in into a directory of its own and loads that through the manager.
CComPtr<IComponentEnum> LoadThroughManager(CTrial& trial) {
    const std::string directory = trial.Scratch("plugins");
    fs::create_directories(directory);
    const fs::path plugin = trial.Around().m_strPlugin;
    fs::create_symlink(plugin, directory + "/" + plugin.stem().string() + ".so");
    trial.Manager().SetPluginDirectory(directory.c_str());
    TellStep("LoadPlugins of the manager");
    trial.Manager().LoadPlugins();
    return CComPtr<IComponentEnum>::Query(&trial.Manager(), IID_IComponentEnum);
}

void RegistersWithManager(CTrial& trial) {
    const std::size_t expected = trial.Loaded().GetRegistered().size();
    const CComPtr<IComponentEnum> registry = LoadThroughManager(trial);
    const auto registered = static_cast<std::size_t>(registry->GetCount());
    Expect(registered == expected,
           "the manager registers " + std::to_string(registered) + " components of " + std::to_string(expected));
}

void UnloadsWithManager(CTrial& trial) {
    LoadThroughManager(trial);
    TellStep("UnloadPlugins of the manager");
    Expect(trial.Manager().UnloadPlugins(), "the manager cannot unload it");
}

}  // namespace

CCheckList UnloadChecks() {
    return {
        {"ready/before-use", "Before anything was asked of it, the plug-in is ready to finish.", CONCERN_ANY,
         "component/initialize", IsReadyBeforeUse},
        {"ready/while-objects-live", "While a stream, a target or a convertor lives, it is not ready to finish.",
         CONCERN_ANY, "ready/before-use", IsNotReadyWhileObjectsLive},
        {"ready/after-use", "After use, with everything released, it is ready to finish.", CONCERN_ANY,
         "ready/before-use", IsReadyAfterUse},
        {"unload/closes", "After use the loader closes the file.", CONCERN_ANY, "component/initialize", Unload},
        {"unload/leaves-memory", "After that nothing of it is in memory.", CONCERN_ANY, "unload/closes", LeavesMemory},
        {"unload/loads-again", "After that it can be loaded once more.", CONCERN_ANY, "unload/closes", LoadsAgain},
        {"manager/registers", "The manager registers every component.", CONCERN_ANY, "unload/closes",
         RegistersWithManager},
        {"manager/unloads", "The manager unloads it.", CONCERN_ANY, "manager/registers", UnloadsWithManager},
    };
}
