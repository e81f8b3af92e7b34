// The options of every command that loads plug-ins.
#include "host/PluginOptions.h"

#include <stdlib.h>

#include <CLI/CLI.hpp>

#include "host/ProgramDirectory.h"

namespace {

constexpr const char* kDirectoryVariable = "KELO_AUDIO_PLUGINS";

}  // namespace

void AddPluginOptions(CLI::App& app, SPluginOptions& options) {
    app.add_option("--plugins", options.m_strDirectory,
                   "Plug-in directory; else KELO_AUDIO_PLUGINS or the installed one")
        ->type_name("DIR")
        ->check(RefuseEmpty);
    app.add_flag("--trust-plugins", options.m_bTrusted, "Also load plug-ins that others may replace");
}

std::string ChosenPluginDirectory(const SPluginOptions& options) {
    if (!options.m_strDirectory.empty()) return options.m_strDirectory;
    const char* const named = getenv(kDirectoryVariable);
    return named != nullptr && *named != '\0' ? named : DefaultPluginDirectory();
}

std::string DefaultPluginDirectory() { return ProgramDirectory(KELO_INSTALLED_PLUGINS, "../plugins"); }

std::string RefuseEmpty(const std::string& text) { return text.empty() ? "an empty name" : ""; }
