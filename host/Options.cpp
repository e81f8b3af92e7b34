// The command line.
#include "host/Options.h"

#include <CLI/CLI.hpp>

#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/PluginSession.h"
#include "host/SettingsCommand.h"

namespace {

constexpr int kMinSampleRate = 1000;
constexpr int kMaxSampleRate = 768000;
constexpr int kMaxChannels = 64;

std::string RefuseEmpty(const std::string& text) { return text.empty() ? "an empty name" : ""; }

void AddPluginOption(CLI::App& command, std::string& directory) {
    command
        .add_option("--plugins", directory, "Plug-in directory; if left out, the one installed or built with keloaudio")
        ->type_name("DIR")
        ->check(RefuseEmpty);
}

void AddConvertOptions(CLI::App& command, SConvertOptions& options) {
    command.add_option("INPUT", options.m_strInput, "A file, or an http:// or ftp:// address")
        ->required()
        ->check(RefuseEmpty);
    command.add_option("OUTPUT", options.m_strOutput, "The file to write; its extension chooses the encoder")
        ->required()
        ->check(RefuseEmpty);
    command.add_option("--rate", options.m_nSampleRate, "Sample frames per second")
        ->type_name("HZ")
        ->check(CLI::Range(kMinSampleRate, kMaxSampleRate));
    command.add_option("--bits", options.m_nBitsPerSample, "Bits per sample: 8, 16, 24 or 32")
        ->type_name("N")
        ->check(CLI::IsMember({8, 16, 24, 32}));
    command.add_option("--channels", options.m_nChannels, "Number of channels")
        ->type_name("N")
        ->check(CLI::Range(1, kMaxChannels));
}

void AddImagesOption(CLI::App& command, std::string& directory) {
    command
        .add_option("--images", directory,
                    "Directory of the dialog's icons; if left out, the one installed or built with keloaudio")
        ->type_name("DIR")
        ->check(RefuseEmpty);
}

SOptions::ECommand CommandOf(const CLI::App& convert, const CLI::App& settings) {
    if (convert.parsed()) return SOptions::ECommand::Convert;
    return settings.parsed() ? SOptions::ECommand::Settings : SOptions::ECommand::List;
}

// The parser's first line alone; the rest repeats where help is.
int ReportWrongUsage(const std::string& text) {
    const std::string reason = text.substr(0, text.find('\n')) + " (see keloaudio --help)";
    ReportFailure(nullptr, reason.c_str());
    return kExitWrongUsage;
}

}  // namespace

bool ParseOptions(int argc, char** argv, SOptions& options, int& exitStatus) {
    CLI::App app("Converts audio files through the plug-in manager, lists its plug-ins and shows their settings.",
                 "keloaudio");
    app.set_version_flag("--version", "keloaudio " KELO_VERSION);
    app.require_subcommand(1);
    CLI::App& list = *app.add_subcommand("list", "List the components of the plug-ins");
    CLI::App& convert = *app.add_subcommand("convert", "Convert one audio file");
    CLI::App& settings = *app.add_subcommand("settings", "Show the plug-ins and their settings in a dialog");
    AddPluginOption(list, options.m_strPluginDirectory);
    AddPluginOption(convert, options.m_strPluginDirectory);
    AddPluginOption(settings, options.m_strPluginDirectory);
    AddImagesOption(settings, options.m_strImagesDirectory);
    AddConvertOptions(convert, options.m_convert);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitStatus = error.get_exit_code() == 0 ? app.exit(error) : ReportWrongUsage(error.what());
        return false;
    }
    options.m_eCommand = CommandOf(convert, settings);
    if (options.m_strPluginDirectory.empty()) options.m_strPluginDirectory = DefaultPluginDirectory();
    if (options.m_strImagesDirectory.empty()) options.m_strImagesDirectory = DefaultImagesDirectory();
    return true;
}
