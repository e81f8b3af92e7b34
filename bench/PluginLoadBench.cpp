// Loading and unloading many small plug-ins beside bare dlopen, dlsym and dlclose.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <filesystem>
#include <string>
#include <vector>

#include "bench/CountedIterations.h"
#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/ComponentEnum.h"
#include "com/InterfaceIds.h"
#include "pluginmgr/GetAudioPluginMgr.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// A directory with `count` copies of one plug-in; the loader takes each for another library.
class CManyPlugins {
public:
    explicit CManyPlugins(std::int64_t count) {
        for (std::int64_t i = 0; i < count; ++i) {
            m_vPaths.push_back(m_scratch / ("plugin" + std::to_string(i) + ".so"));
            std::filesystem::copy_file(KELO_SMALL_PLUGIN, m_vPaths.back());
        }
    }

    const std::vector<std::string>& Paths() const { return m_vPaths; }
    std::string Directory() const { return m_scratch.Path().string(); }

private:
    CScratchDirectory m_scratch;
    std::vector<std::string> m_vPaths;
};

void NoteEach(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetLabel("per plug-in: items_per_second");
}

void Counts(benchmark::internal::Benchmark* row) {
    row->ArgName("plugins")->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
}

}  // namespace

static void BareLoader(benchmark::State& state) {
    using CGetPrimary = bool(IAudioComponent**);
    const CManyPlugins plugins(state.range(0));
    for (auto _ : state) {
        std::vector<void*> modules;
        for (const std::string& path : plugins.Paths()) {
            void* const module = dlopen(path.c_str(), RTLD_NOW);
            if (module == nullptr) return state.SkipWithError(dlerror());
            IAudioComponent* component = nullptr;
            void* const entry = dlsym(module, "KELO_PLUGIN_GetPrimaryAudioObject");
            if (entry == nullptr || !reinterpret_cast<CGetPrimary*>(entry)(&component)) {
                return state.SkipWithError("a plug-in has no component");
            }
            benchmark::DoNotOptimize(dlsym(module, "KELO_PLUGIN_ReadyToFinish"));
            modules.push_back(module);
        }
        for (void* const module : modules) dlclose(module);
    }
    NoteEach(state);
}
BENCHMARK(BareLoader)->Apply(Counts)->Apply(CountedIterations);

// Ahead of what is timed; true when every plug-in is there, and goes again.
static bool LoadsEach(IAudioPluginMgr& manager, std::int64_t plugins) {
    manager.LoadPlugins();
    auto components = CComPtr<IComponentEnum>::Query(&manager, IID_IComponentEnum);
    const bool all = components && components->GetCount() == plugins;
    components.Reset();
    return manager.UnloadPlugins() && all;
}

static void LoadAndUnloadPlugins(benchmark::State& state) {
    const CManyPlugins plugins(state.range(0));
    CComPtr<IAudioPluginMgr> manager;
    if (GetAudioPluginMgr(manager.Out()) != 1) return state.SkipWithError("no manager");
    manager->SetPluginDirectory(plugins.Directory().c_str());
    if (!LoadsEach(*manager, state.range(0))) return state.SkipWithError("not every plug-in is loaded");
    for (auto _ : state) {
        manager->LoadPlugins();
        if (!manager->UnloadPlugins()) return state.SkipWithError("the plug-ins stay loaded");
    }
    NoteEach(state);
}
BENCHMARK(LoadAndUnloadPlugins)->Apply(Counts)->Apply(CountedIterations);
