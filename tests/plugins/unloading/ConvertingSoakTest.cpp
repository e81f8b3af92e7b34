// Loading, converting a file and unloading over and over leaves nothing behind.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "stream/AudioTargetOpener.h"
#include "stream/FileOpener.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/RawWriter.h"
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/unloading/OneFileServer.h"
#include "tests/support/FetchEnvironment.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ProcessUse.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr SWavFormat kStored{44100, 16, 2};
constexpr SWavFormat kConverted{48000, 24, 1};

// KELO_LONG_TESTS asks for more, as ./check --long does.
int Rounds() {
    if (support::kSanitized) return 20;
    return std::getenv("KELO_LONG_TESTS") != nullptr ? 10000 : 100;
}

// A tenth of a second.
std::string ShortSound() {
    std::string samples;
    for (std::uint64_t i = 0; i < 4410 * 2; ++i) samples += LittleEndian(i * 7 % 20000, 2);
    return WavFile(kStored, samples);
}

struct SSoak {
    const char* m_pName;
    const char* m_pPlugin;   // besides those that convert WAV
    const char* m_pSource;   // null for the WAV file
    bool m_bRemote = false;  // the WAV file is fetched
    int m_nShare = 1;        // how much longer than of the WAV file a round takes
};

class ConvertingSoak : public testing::TestWithParam<SSoak> {
protected:
    ConvertingSoak() {
        support::PrepareToFetch(m_scratch / "temporary");
        std::filesystem::create_directory(m_scratch / "plugins");
        for (const std::filesystem::path plugin : {KELO_SNDFILE_PLUGIN, KELO_SOXR_PLUGIN, GetParam().m_pPlugin}) {
            std::error_code there;
            std::filesystem::create_symlink(plugin, m_scratch.Path() / "plugins" / plugin.filename(), there);
        }
        m_manager->SetPluginDirectory((m_scratch / "plugins").c_str());
        m_scratch.Write("in.wav", ShortSound());
    }

    // One round: everything that a host does to convert one file, from loading to unloading.
    void LoadConvertUnload() {
        ASSERT_TRUE(m_manager->LoadPlugins());
        ASSERT_NO_FATAL_FAILURE(Convert());
        ASSERT_TRUE(m_manager->UnloadPlugins());
        ASSERT_EQ(std::filesystem::file_size(m_scratch / "out.wav"), m_nOutputBytes);
    }

    // On a thread of their own, with which malloc's cache of freed blocks ends: it counts as handed out.
    void RunRounds(int rounds) {
        std::thread([this, rounds] {
            for (int i = 0; i < rounds && !HasFatalFailure(); ++i) LoadConvertUnload();
        }).join();
    }

    void Convert() {
        if (!GetParam().m_bRemote) {
            Convert(GetParam().m_pSource != nullptr ? GetParam().m_pSource : m_scratch / "in.wav");
        } else {
            const COneFileServer server(m_scratch / "in.wav");
            Convert(server.URL("in.wav"));
        }
    }

    void Convert(const std::string& url) {
        CComPtr<IUnknown> source;
        CComPtr<IUnknown> target;
        CComPtr<IAudioTarget> opened;
        ASSERT_TRUE(
            m_manager->OpenURLAudioFile(url.c_str(), &kConverted, source.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr));
        ASSERT_NO_FATAL_FAILURE(OpenTarget(opened));
        ASSERT_TRUE(m_manager->CreateURLAudioTarget(opened->GetTargetFactory(), target.Out(), kConverted, nullptr));
        const auto reading = CComPtr<IProcess>::Query(source.Get(), IID_IProcess);
        const auto writing = CComPtr<IProcess>::Query(target.Get(), IID_IProcess);
        ASSERT_TRUE(reading->Start(nullptr) && writing->Start(nullptr));
        Pass(*CComPtr<IAudioRawReader>::Query(source.Get(), IID_IAudioRawReader).Get(),
             *CComPtr<IAudioRawWriter>::Query(target.Get(), IID_IAudioRawWriter).Get());
        ASSERT_TRUE(reading->End(nullptr) && writing->End(nullptr));
    }

    // By the first encoder.
    void OpenTarget(CComPtr<IAudioTarget>& target) {
        for (int i = 0; i < m_manager->GetCount() && !target; ++i) {
            CComPtr<IAudioComponent> component;
            m_manager->GetComponent(i, component.Out());
            const auto opener = CComPtr<IAudioTargetOpener>::Query(component.Get(), IID_IAudioTargetOpener);
            if (opener) opener->OpenTarget((m_scratch / "out.wav").c_str(), "wav", target.Out(), nullptr);
        }
        ASSERT_TRUE(target);
    }

    static void Pass(IAudioRawReader& reader, IAudioRawWriter& writer) {
        std::vector<unsigned char> buffer(30000);
        EAudioRawState state = ARS_MORE;
        for (int read = 0; read > 0 || state == ARS_MORE;) {
            ASSERT_TRUE(reader.RawRead(buffer.data(), static_cast<int>(buffer.size()), &read, state, nullptr));
            ASSERT_TRUE(read == 0 || writer.RawWrite(buffer.data(), read, state, nullptr));
        }
    }

    CScratchDirectory m_scratch;
    support::CManagerHold m_manager;
    std::uintmax_t m_nOutputBytes = 0;
};

TEST_P(ConvertingSoak, LeavesNothingBehind) {
    m_manager->LoadPlugins();
    ASSERT_NO_FATAL_FAILURE(Convert());
    ASSERT_TRUE(m_manager->UnloadPlugins());
    m_nOutputBytes = std::filesystem::file_size(m_scratch / "out.wav");
    ASSERT_GT(m_nOutputBytes, 4800U * 3);
    // What the process and the codec libraries set up once is not what this test looks for.
    ASSERT_NO_FATAL_FAILURE(RunRounds(100 / GetParam().m_nShare));
    const support::SProcessUse before = support::MeasureUse();
    const int rounds = Rounds() / GetParam().m_nShare;
    ASSERT_NO_FATAL_FAILURE(RunRounds(rounds));
    const support::SProcessUse after = support::MeasureUse();

    RecordProperty("allocated", std::to_string(before.m_nAllocated) + " to " + std::to_string(after.m_nAllocated));
    RecordProperty("mapped", std::to_string(before.m_nMapped) + " to " + std::to_string(after.m_nMapped));
    EXPECT_EQ(after.m_nDescriptors, before.m_nDescriptors);
    for (const char* const plugin : {KELO_SNDFILE_PLUGIN, KELO_SOXR_PLUGIN, GetParam().m_pPlugin}) {
        EXPECT_EQ(support::Mappings().find(plugin), std::string::npos) << plugin;
    }
    if (support::kSanitized) return;
    support::ExpectNoMoreMemory(before, after, rounds);
}

// As far as the plug-ins are built.
std::vector<SSoak> Soaks() {
    std::vector<SSoak> soaks{{"Wav", KELO_SNDFILE_PLUGIN, nullptr}};
#ifdef KELO_LIBAV_PLUGIN
    soaks.push_back({"Matroska", KELO_LIBAV_PLUGIN, KELO_MEDIA "/flac.mka", false, 10});
#endif
#ifdef KELO_CURL_PLUGIN
    soaks.push_back({"Remote", KELO_CURL_PLUGIN, nullptr, true, 4});
#endif
    return soaks;
}

INSTANTIATE_TEST_SUITE_P(Sources, ConvertingSoak, testing::ValuesIn(Soaks()),
                         [](const auto& test) { return std::string(test.param.m_pName); });

}  // namespace
