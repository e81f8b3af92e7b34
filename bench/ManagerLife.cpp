// A host that only links the library, or that loads and unloads the plug-ins of the directory it is given.
#include "com/ComPtr.h"
#include "pluginmgr/GetAudioPluginMgr.h"

int main(int argc, char** argv) {
    if (argc != 2) return 0;
    CComPtr<IAudioPluginMgr> manager;
    if (GetAudioPluginMgr(manager.Out()) != 1 || !manager->SetPluginDirectory(argv[1])) return 1;
    return manager->LoadPlugins() && manager->UnloadPlugins() ? 0 : 1;
}
