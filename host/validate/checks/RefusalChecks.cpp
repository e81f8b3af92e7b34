// How decoders refuse what they cannot open.
#include <algorithm>
#include <filesystem>
#include <functional>

#include "com/InterfaceIds.h"
#include "host/PluginSession.h"
#include "host/validate/Checks.h"
#include "host/validate/Outcome.h"
#include "host/validate/Steps.h"
#include "host/validate/Trial.h"
#include "stream/FileOpener.h"

namespace {

constexpr const char* kText = "This is a text and no sound, and it goes on for a while so that it is long enough.\n";

// A name under which the decoder expects a sound, if possible one with a header: a headerless file has no wrong
// content.
std::string BadName(const SComponent& decoder, const std::string& stem) {
    const std::vector<std::string> extensions = ExtensionsOf(*decoder.m_pComponent);
    if (extensions.empty()) return stem;
    const auto wav = std::find(extensions.begin(), extensions.end(), "wav");
    return stem + "." + (wav != extensions.end() ? *wav : extensions.front());
}

void ForEachOpener(CTrial& trial,
                   const std::function<void(IAudioFileOpener& opener, const SComponent& decoder)>& examine) {
    for (const SComponent& decoder : trial.Components(ACT_DECODER)) {
        const auto opener = CComPtr<IAudioFileOpener>::Query(decoder.m_pComponent.Get(), IID_IAudioFileOpener);
        try {
            Expect(static_cast<bool>(opener), "no interface " + std::to_string(IID_IAudioFileOpener));
            examine(*opener, decoder);
        } catch (const CFinding& finding) {
            throw CFinding(decoder.m_strLabel + ": " + finding.what());
        }
    }
}

// The status is asked for and dropped.
void ExpectRefused(IAudioFileOpener& opener, const std::string& path, const std::string& what) {
    TellStep("Open of " + what);
    IUnknown* stream = nullptr;
    CComPtr<IStatus> status;
    Expect(!opener.Open(path.c_str(), &stream, AUX_NONE, AUX_NONE, status.Out()), "opens " + what);
    Expect(stream == nullptr, "refuses " + what + " and stores a stream all the same");
}

void RefusesMissingFile(CTrial& trial) {
    ForEachOpener(trial, [&](IAudioFileOpener& opener, const SComponent& decoder) {
        ExpectRefused(opener, trial.Scratch(BadName(decoder, "missing")), "a file that is not there");
    });
}

void RefusesDirectory(CTrial& trial) {
    ForEachOpener(trial, [&](IAudioFileOpener& opener, const SComponent& decoder) {
        const std::string path = trial.Scratch(BadName(decoder, "directory"));
        std::filesystem::create_directories(path);
        ExpectRefused(opener, path, "a directory");
    });
}

void RefusesEmptyFile(CTrial& trial) {
    ForEachOpener(trial, [&](IAudioFileOpener& opener, const SComponent& decoder) {
        ExpectRefused(opener, trial.WriteScratch(BadName(decoder, "empty"), ""), "an empty file");
    });
}

void RefusesText(CTrial& trial) {
    ForEachOpener(trial, [&](IAudioFileOpener& opener, const SComponent& decoder) {
        std::string text;
        for (int line = 0; line < 100; ++line) text += kText;
        ExpectRefused(opener, trial.WriteScratch(BadName(decoder, "text"), text), "a file of plain text");
    });
}

void TellsWhy(CTrial& trial) {
    ForEachOpener(trial, [&](IAudioFileOpener& opener, const SComponent& decoder) {
        TellStep("Open of a file that is not there");
        IUnknown* stream = nullptr;
        CComPtr<IStatus> status;
        opener.Open(trial.Scratch(BadName(decoder, "missing")).c_str(), &stream, AUX_NONE, AUX_NONE, status.Out());
        Expect(static_cast<bool>(status), "refuses a file that is not there without a status");
    });
}

void RefusesWithoutStatus(CTrial& trial) {
    ForEachOpener(trial, [&](IAudioFileOpener& opener, const SComponent& decoder) {
        TellStep("Open with a null status pointer");
        IUnknown* stream = nullptr;
        const std::string path = trial.Scratch(BadName(decoder, "missing"));
        Expect(!opener.Open(path.c_str(), &stream, AUX_NONE, AUX_NONE, nullptr),
               "opens a file that is not there when nobody asks for a status");
    });
}

}  // namespace

CCheckList RefusalChecks() {
    return {
        {"decoder/refuses-missing-file", "A decoder refuses a file that is not there and stores no stream.",
         CONCERN_DECODER, "extensions/named", RefusesMissingFile},
        {"decoder/refuses-directory", "A decoder refuses a directory and stores no stream.", CONCERN_DECODER,
         "extensions/named", RefusesDirectory},
        {"decoder/refuses-empty-file", "A decoder refuses an empty file and stores no stream.", CONCERN_DECODER,
         "extensions/named", RefusesEmptyFile},
        {"decoder/refuses-text", "A decoder refuses a file of plain text and stores no stream.", CONCERN_DECODER,
         "extensions/named", RefusesText},
        {"decoder/refusal-status", "A decoder that refuses a file says why through a status.", CONCERN_DECODER,
         "decoder/refuses-missing-file", TellsWhy},
        {"decoder/null-status", "A decoder refuses a file with a null status pointer too.", CONCERN_DECODER,
         "decoder/refuses-missing-file", RefusesWithoutStatus},
    };
}
