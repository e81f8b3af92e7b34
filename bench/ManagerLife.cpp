// A host that only links the library, or that loads and unloads the plug-ins of the directory it is given.
#include <cstdio>

#include "com/ComPtr.h"
#include "com/ComponentEnum.h"
#include "com/InterfaceIds.h"
#include "pluginmgr/GetAudioPluginMgr.h"

namespace {

bool HasComponents(IAudioPluginMgr& manager) {
    const auto components = CComPtr<IComponentEnum>::Query(&manager, IID_IComponentEnum);
    return components && components->GetCount() > 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 0;
    CComPtr<IAudioPluginMgr> manager;
    if (GetAudioPluginMgr(manager.Out()) != 1 || !manager->SetPluginDirectory(argv[1])) return 1;
    const bool loaded = manager->LoadPlugins() && HasComponents(*manager);
    if (!loaded) std::fprintf(stderr, "kelo_manager_life: no plug-ins in %s\n", argv[1]);
    return manager->UnloadPlugins() && loaded ? 0 : 1;
}
