// Float samples through a manager whose sources take them.
#include <filesystem>

#include "pluginmgr/AudioPluginMgr.h"
#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/plugins/libav/MediaTable.h"
#include "tests/support/FakeConvertor.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// A manager that has loaded the plug-in; advanced formats are on.
class LibavFloat : public testing::Test {
protected:
    LibavFloat() {
        std::filesystem::create_symlink(KELO_LIBAV_PLUGIN, m_scratch / "libav.so");
        m_manager->SetPluginDirectory(m_scratch.Path().c_str());
        m_manager->LoadPlugins();
        m_manager->SetConvertor(&m_factory, nullptr);
        m_manager->EnableSupport(AF_BASIC, true);
        EXPECT_TRUE(m_manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    }
    ~LibavFloat() override { EXPECT_TRUE(m_manager->UnloadPlugins()); }

    CComPtr<IUnknown> Open(const std::string& path, const SWavFormat* wanted = nullptr) {
        CComPtr<IUnknown> stream;
        EXPECT_TRUE(m_manager->OpenURLAudioFile(path.c_str(), wanted, stream.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr))
            << path;
        return stream;
    }

    int BitsOf(const std::string& name) {
        const CComPtr<IUnknown> stream = Open(Media(name));
        return CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader)->GetRawFormat().nBitsPerSample;
    }

    std::string Samples(const std::string& path) {
        const CComPtr<IUnknown> stream = Open(path);
        const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
        const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
        EXPECT_TRUE(process->Start(nullptr));
        std::string samples;
        std::string buffer(48000, '\0');
        EAudioRawState state = ARS_MORE;
        for (int count = 1; count > 0;) {
            EXPECT_TRUE(
                reader->RawRead(reinterpret_cast<unsigned char*>(buffer.data()), 48000, &count, state, nullptr));
            samples.append(buffer, 0, static_cast<std::size_t>(count));
        }
        EXPECT_TRUE(process->End(nullptr));
        return samples;
    }

    CScratchDirectory m_scratch;
    support::CFakeConvertorFactory m_factory;
    support::CManagerHold m_manager;
};

TEST_F(LibavFloat, LossySoundsComeAsTheCodecMakesThem) {
    for (const char* const name : {"adts.aac", "two.wma", "six.ac3", "vorbis.webm", "video.avi"}) {
        EXPECT_EQ(BitsOf(name), 32) << name;
        EXPECT_TRUE(Samples(Media(name)) == Content(Media(name + std::string(".f32")))) << name;
    }
}

TEST_F(LibavFloat, FloatsThatWereCompressedComeBackAsTheyWere) {
    const float values[] = {0.0f, 1e-9f, -0.75f, 1.5f, -200.0f, 0.1f, 0.25f, -1.0f};
    const std::string samples(reinterpret_cast<const char*>(values), sizeof values);
    const std::string wav = m_scratch.Write("x.wav", WavFile({44100, 32, 2}, samples, 3));
    RunTool("wavpack -q " + wav + " -o " + m_scratch / "x.wv");
    RunTool("ffmpeg -i " + wav + " -c:a pcm_f64le " + m_scratch / "x.mkv");
    EXPECT_TRUE(Samples(m_scratch / "x.wv") == samples);
    EXPECT_TRUE(Samples(m_scratch / "x.mkv") == samples);
}

TEST_F(LibavFloat, IntegersStayIntegersOfTheirWidth) {
    for (const SLosslessFile& file : kLosslessFiles) {
        EXPECT_EQ(BitsOf(file.m_strName), file.m_format.nBitsPerSample) << file.m_strName;
    }
    EXPECT_EQ(BitsOf("lossy.wv"), 16);
}

TEST_F(LibavFloat, QualifierReachesTheConvertorFactory) {
    const SWavFormat wanted{44100, 32, 2};
    const CComPtr<IUnknown> stream = Open(Media("aac.m4a"), &wanted);
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    ASSERT_TRUE(process->Start(nullptr));
    ASSERT_EQ(m_factory.m_createCalls.size(), 1u);
    EXPECT_TRUE((m_factory.m_createCalls[0].m_from == SHeldWavFormat{wanted, kFloatSamples}));
    EXPECT_TRUE((m_factory.m_createCalls[0].m_to == SHeldWavFormat{wanted, kIntegerSamples}));
    EXPECT_TRUE(process->End(nullptr));
}

TEST_F(LibavFloat, WithoutTheFeatureThereAreIntegersAlone) {
    EXPECT_EQ(BitsOf("aac.m4a"), 32);
    m_manager->EnableSupport(AF_ADVANCED_FORMATS, false);
    EXPECT_EQ(BitsOf("aac.m4a"), 16);
}

}  // namespace
