// Loading and unloading over and over leaves nothing behind.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/pluginmgr/LoadedManager.h"
#include "tests/support/ProcessUse.h"
#include "tests/support/Sanitizers.h"

namespace {

// KELO_LONG_TESTS asks for more, as ./check --long does. The sanitizers keep notes of every library that was ever open.
int Rounds() {
    if (support::kSanitized) return 50;
    return std::getenv("KELO_LONG_TESTS") != nullptr ? 10000 : 1000;
}

// One round: what loads, what is refused and what is dropped again, all of it unloaded at the end.
void LoadAndUnload(CAudioPluginMgr& manager, int components) {
    manager.LoadPlugins();
    ASSERT_EQ(manager.GetCount(), components);
    ASSERT_TRUE(manager.UnloadPlugins());
}

void ExpectFlatUse(const CPluginDirectory& plugins, int components) {
    unsetenv("KELO_FIXTURE_LOG");
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(plugins.Path().c_str());
    // What the process sets up once, such as the unwinder's buffers, is not what this test looks for.
    for (int i = 0; i < 50; ++i) ASSERT_NO_FATAL_FAILURE(LoadAndUnload(*manager, components));
    const support::SProcessUse before = support::MeasureUse();
    const int rounds = Rounds();
    for (int i = 0; i < rounds; ++i) ASSERT_NO_FATAL_FAILURE(LoadAndUnload(*manager, components));
    const support::SProcessUse after = support::MeasureUse();

    EXPECT_EQ(after.m_nDescriptors, before.m_nDescriptors);
    EXPECT_EQ(support::Mappings().find(plugins.Path()), std::string::npos);
    if (support::kSanitized) return;
    support::ExpectNoMoreMemory(before, after, rounds);
}

TEST(UnloadingSoak, PluginsOfEveryKindLeaveNothingBehind) {
    const CPluginDirectory plugins({"decoder", "encoder", "convertor", "url_handler", "collection"});
    ExpectFlatUse(plugins, 8);
}

TEST(UnloadingSoak, RefusedPluginsLeaveNothingBehind) {
    const CPluginDirectory plugins({"lacks_primary", "lacks_ready", "null_primary", "primary_throws_int",
                                    "refuses_primary", "type_throws_int", "unresolved"});
    std::ofstream(plugins.File("text.so")) << "no shared object\n";
    ExpectFlatUse(plugins, 0);
}

TEST(UnloadingSoak, PluginsWhoseInitialisersThrowLeaveNothingBehind) {
    if (support::kThreadSanitizer) GTEST_SKIP() << "it keeps counts over dlopen that an exception upsets";
    const CPluginDirectory plugins({"initializer_throws_int"});
    ExpectFlatUse(plugins, 0);
}

TEST(UnloadingSoak, ComponentsThatFailToInitialiseLeaveNothingBehind) {
    const CPluginDirectory plugins({"initialize_fails"});
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    const int components = manager->GetCount();
    ASSERT_TRUE(manager->UnloadPlugins());
    ExpectFlatUse(plugins, components);
}

}  // namespace
