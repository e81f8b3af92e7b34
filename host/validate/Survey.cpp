// What a plug-in has, found out before the checks.
#include "host/validate/Survey.h"

#include <algorithm>
#include <filesystem>

#include "com/InterfaceIds.h"
#include "host/Failure.h"
#include "host/PluginSession.h"
#include "host/StopSignal.h"
#include "host/validate/Check.h"
#include "host/validate/Outcome.h"
#include "host/validate/Sink.h"
#include "host/validate/Source.h"
#include "host/validate/SurveyNotes.h"
#include "host/validate/Texts.h"
#include "host/validate/Trial.h"
#include "host/validate/TrialProcess.h"
#include "stream/URLSourceHandler.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kSamples = "/samples/";
constexpr unsigned int kEveryConcern = ~0U;

unsigned int ConcernOf(EAudioComponentType type) {
    switch (type) {
        case ACT_COLLECTION:
            return CONCERN_COLLECTION;
        case ACT_DECODER:
            return CONCERN_DECODER;
        case ACT_ENCODER:
            return CONCERN_ENCODER;
        case ACT_CONVERTOR:
            return CONCERN_CONVERTOR;
        case ACT_URL_HANDLER:
            return CONCERN_URL_HANDLER;
    }
    return CONCERN_ANY;
}

// In the process of the survey.
class CSurveyor {
public:
    CSurveyor(CSurveyNotes& notes, const std::string& plugin, std::string directory)
        : m_notes(notes), m_strDirectory(std::move(directory)) {
        m_around.m_strPlugin = plugin;
        m_pTrial = std::make_unique<CTrial>(m_around, m_strDirectory, [](const std::string&) { return true; });
    }

    void Run() {
        NoteLoading();
        for (const SComponent& component : m_pTrial->Loaded().GetEverything()) {
            Note("concern", std::to_string(ConcernOf(component.m_eType)));
        }
        for (const SComponent& component : m_pTrial->Loaded().GetEverything()) Note("component", component.m_strLabel);
        NoteProtocols();
        MakeSamples();
    }

private:
    void Note(const char* what, const std::string& text) { m_notes.Add(what + (' ' + text)); }

    void NoteLoading() {
        const auto begin = std::chrono::steady_clock::now();
        const CPluginFile file(m_around.m_strPlugin);
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
        Note("load", std::to_string(time.count()));
    }

    void NoteProtocols() {
        for (const SComponent& component : m_pTrial->Plugin().GetRegistered(ACT_URL_HANDLER)) {
            const auto handler = CComPtr<IURLSourceHandler>::Query(component.m_pComponent.Get(), IID_IURLSourceHandler);
            if (handler && (handler->GetProtocols() & URL_HTTP) != 0) Note("http", "1");
        }
    }

    bool Decodes(const std::string& name) {
        const CComponents decoders = m_pTrial->Plugin().GetRegistered(ACT_DECODER);
        return std::any_of(decoders.begin(), decoders.end(),
                           [&](const SComponent& decoder) { return ListsExtensionOf(name, *decoder.m_pComponent); });
    }

    void MakeSamples() {
        if (Decodes(kSampleFileName)) Note("sample", kSampleFileName);
        if (m_pTrial->Plugin().GetRegistered(ACT_ENCODER).empty()) return;
        int number = 0;
        for (const SOutputCase& output : OutputCases(*m_pTrial)) {
            const std::string name = "encoded-" + std::to_string(number++) + "." + output.m_strExtension;
            if (Decodes(name)) Encode(output, name);
        }
    }

    // A file is a sample only when it is complete.
    void Encode(const SOutputCase& output, const std::string& name) {
        const std::string path = m_strDirectory + "/" + name;
        try {
            CSink(output, path).WriteSample();
            std::error_code missing;
            fs::rename(path, m_strDirectory + kSamples + name, missing);
        } catch (const CFinding&) {
            // The encoder's own checks find it too.
        }
    }

    CSurveyNotes& m_notes;
    std::string m_strDirectory;
    SSurroundings m_around;
    std::unique_ptr<CTrial> m_pTrial;
};

void TakeNote(SSurvey& survey, const std::string& note, const std::string& samples) {
    const std::size_t space = note.find(' ');
    const std::string what = note.substr(0, space);
    const std::string text = note.substr(space + 1);
    if (what == "load") survey.m_fLoadMilliseconds = std::strtod(text.c_str(), nullptr);
    if (what == "concern") survey.m_nConcerns |= static_cast<unsigned int>(std::strtoul(text.c_str(), nullptr, 10));
    if (what == "component") survey.m_vComponents.push_back(text);
    if (what == "http") survey.m_bHandlesHttp = true;
    if (what == "sample") WriteFile(samples + kSampleFileName, MakeSampleFile());
}

// The trouble of a survey, empty for none.
std::string RunSurvey(CSurveyNotes& notes, const std::string& plugin, const std::string& directory,
                      std::chrono::milliseconds limit) {
    const auto run = [&] {
        PrepareEnvironment(directory);
        // Lives as long as the process.
        (new CSurveyor(notes, plugin, directory))->Run();
    };
    CTrialProcess process(run, limit, false);
    process.Wait();
    const SOutcome outcome = process.Finish();
    if (GetStopSignal() != 0) throw CFailure(plugin, "stopped by a signal");
    return IsFinding(outcome.m_eVerdict) ? outcome.m_strSeen : "";
}

}  // namespace

SSurvey SurveyPlugin(const std::string& plugin, const std::string& directory, std::chrono::milliseconds limit) {
    const std::string samples = directory + kSamples;
    fs::create_directories(samples);
    CSurveyNotes notes;
    SSurvey survey;
    survey.m_strTrouble = RunSurvey(notes, plugin, directory, limit);
    for (const std::string& note : notes.GetAll()) TakeNote(survey, note, samples);
    // The checks find out by themselves what there is.
    if (!survey.m_strTrouble.empty() && survey.m_nConcerns == CONCERN_ANY) survey.m_nConcerns = kEveryConcern;
    for (const fs::directory_entry& entry : fs::directory_iterator(samples)) {
        survey.m_vSamples.push_back(entry.path().string());
    }
    std::sort(survey.m_vSamples.begin(), survey.m_vSamples.end());
    return survey;
}
