// Float samples through a manager whose sources take them.
#include <cmath>
#include <cstring>
#include <filesystem>

#include "pluginmgr/AudioPluginMgr.h"
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"
#include "tests/support/FakeConvertor.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// A manager that has loaded a copy of the plug-in; advanced formats are on.
class CAdvancedManager : public testing::Test {
protected:
    CAdvancedManager() {
        const std::string directory = m_scratch / "plugins";
        std::filesystem::create_directory(directory);
        std::filesystem::copy_file(KELO_SNDFILE_PLUGIN, directory + "/sndfile.so");
        m_manager->SetPluginDirectory(directory.c_str());
        m_manager->LoadPlugins();
        m_manager->SetConvertor(&m_factory, nullptr);
        m_manager->EnableSupport(AF_BASIC, true);
        EXPECT_TRUE(m_manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    }
    ~CAdvancedManager() override { EXPECT_TRUE(m_manager->UnloadPlugins()); }

    // In the file's own format.
    CComPtr<IUnknown> Open(const std::string& path, const SWavFormat* wanted = nullptr) {
        CComPtr<IUnknown> stream;
        EXPECT_TRUE(m_manager->OpenURLAudioFile(path.c_str(), wanted, stream.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr))
            << path;
        return stream;
    }

    SWavFormat FormatOf(const std::string& path) {
        return CComPtr<IAudioRawReader>::Query(Open(path).Get(), IID_IAudioRawReader)->GetRawFormat();
    }

    void ExpectBits(const std::string& path, int bits) { EXPECT_EQ(FormatOf(path).nBitsPerSample, bits) << path; }

    // All samples; from frame `from` on.
    std::string Samples(const std::string& path, std::uint64_t from = 0) {
        const CComPtr<IUnknown> stream = Open(path);
        const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
        const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
        EXPECT_TRUE(process->Start(nullptr));
        const auto seekable = CComPtr<ISeekable>::Query(stream.Get(), IID_ISeekable);
        EXPECT_TRUE(from == 0 || seekable->Seek(from, nullptr));
        std::string samples;
        for (;;) {
            // Not where a float would lie.
            unsigned char buffer[4097];
            int count = 0;
            EAudioRawState state = ARS_MORE;
            EXPECT_TRUE(reader->RawRead(buffer + 1, 4096, &count, state, nullptr));
            if (count == 0) break;
            samples.append(reinterpret_cast<const char*>(buffer) + 1, static_cast<std::size_t>(count));
        }
        EXPECT_TRUE(process->End(nullptr));
        return samples;
    }

    CScratchDirectory m_scratch;
    support::CFakeConvertorFactory m_factory;
    support::CManagerHold m_manager;
};

double GreatestFloatDifference(const std::string& left, const std::string& right) {
    double greatest = 0;
    for (std::size_t at = 0; at + 4 <= std::min(left.size(), right.size()); at += 4) {
        float samples[2] = {};
        std::memcpy(samples, left.data() + at, 4);
        std::memcpy(samples + 1, right.data() + at, 4);
        greatest = std::max(greatest, static_cast<double>(std::fabs(samples[0] - samples[1])));
    }
    return greatest;
}

}  // namespace

TEST_F(CAdvancedManager, GetsFloatSamplesAsTheyAre) {
    const float values[] = {0.0f, 1e-9f, -0.75f, 1.5f, -200.0f, 0.1f};
    const std::string samples(reinterpret_cast<const char*>(values), sizeof values);
    const std::string path = m_scratch.Write("x.wav", WavFile({44100, 32, 2}, samples, 3));
    ExpectBits(path, 32);
    EXPECT_EQ(Samples(path), samples);
    EXPECT_EQ(Samples(path, 1), samples.substr(8));
}

TEST_F(CAdvancedManager, GetsLossySoundsAsFloats) {
    RunTool("oggenc -Q -o " + m_scratch / "x.ogg" + " " + kVoice);
    RunTool("opusenc --quiet " + kVoice + " " + m_scratch / "x.opus");
    RunTool("lame --quiet " + kVoice + " " + m_scratch / "x.mp3");
    for (const char* const name : {"x.ogg", "x.opus", "x.mp3"}) {
        ExpectBits(m_scratch / name, 32);
        RunTool("ffmpeg -y -v error -i " + m_scratch / name + " -f f32le -c:a pcm_f32le " + m_scratch / "x.raw");
        const std::string expected = Content(m_scratch / "x.raw");
        const std::string samples = Samples(m_scratch / name);
        EXPECT_EQ(samples.size(), expected.size()) << name;
        EXPECT_LT(GreatestFloatDifference(samples, expected), 1e-5) << name;
        EXPECT_GT(GreatestFloatDifference(samples, std::string(samples.size(), '\0')), 0.1) << name;
    }
}

TEST_F(CAdvancedManager, GetsIntegersAndWhatDecodesToThemAsIntegers) {
    ExpectBits(kVoice, 16);
    ExpectBits(m_scratch.Write("x.wav", WavFile({44100, 8, 2}, RandomBytes(400))), 8);
    ExpectBits(m_scratch.Write("x.wav", WavFile({44100, 24, 2}, RandomBytes(600))), 24);
    ExpectBits(m_scratch.Write("x.wav", WavFile({44100, 32, 2}, RandomBytes(800))), 32);
    RunTool("sox -D " + kVoice + " -e u-law " + m_scratch / "law.wav");
    ExpectBits(m_scratch / "law.wav", 16);
}

TEST_F(CAdvancedManager, TellsTheQualifierToTheConvertorFactory) {
    const std::string path = m_scratch.Write("x.wav", WavFile({44100, 32, 2}, std::string(800, '\0'), 3));
    const SWavFormat wanted{44100, 32, 2};
    const CComPtr<IUnknown> stream = Open(path, &wanted);
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    ASSERT_TRUE(process->Start(nullptr));
    ASSERT_EQ(m_factory.m_createCalls.size(), 1u);
    EXPECT_TRUE((m_factory.m_createCalls[0].m_from == SHeldWavFormat{wanted, kFloatSamples}));
    EXPECT_TRUE((m_factory.m_createCalls[0].m_to == SHeldWavFormat{wanted, kIntegerSamples}));
    EXPECT_TRUE(process->End(nullptr));
}

TEST_F(CAdvancedManager, GetsIntegersAgainOnceTheFeatureIsOff) {
    const std::string path = m_scratch.Write("x.wav", WavFile({44100, 32, 2}, std::string(800, '\0'), 3));
    ExpectBits(path, 32);
    m_manager->EnableSupport(AF_ADVANCED_FORMATS, false);
    ExpectBits(path, 16);
    EXPECT_EQ(Samples(path), std::string(400, '\0'));
    ExpectBits(kBell, 16);
}
