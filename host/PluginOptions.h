// The options of every command that loads plug-ins.
#pragma once

#include <string>

namespace CLI {
class App;
}

struct SPluginOptions {
    std::string m_strDirectory;  // as the person named it; empty when left out
    bool m_bTrusted = false;     // also a directory that others may write to
};

// `options` lives until the command has run.
void AddPluginOptions(CLI::App& app, SPluginOptions& options);

// The directory of --plugins, else of the environment variable KELO_AUDIO_PLUGINS, else DefaultPluginDirectory.
std::string ChosenPluginDirectory(const SPluginOptions& options);

// The directory of plug-ins that was installed or built with the running program.
std::string DefaultPluginDirectory();

// A check for options and operands: what is wrong with an empty name.
std::string RefuseEmpty(const std::string& text);
