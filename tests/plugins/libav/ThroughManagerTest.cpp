// Beside the decoder on libsndfile, through the manager.
#include <filesystem>

#include "pluginmgr/AudioPluginMgr.h"
#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/plugins/libav/WrittenFiles.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"

namespace {

class LibavThroughManager : public testing::Test {
protected:
    LibavThroughManager() {
        for (const std::filesystem::path plugin : {KELO_LIBAV_PLUGIN, KELO_SNDFILE_PLUGIN, KELO_SOXR_PLUGIN}) {
            std::filesystem::create_directories(m_scratch / "plugins");
            std::filesystem::create_symlink(plugin, m_scratch.Path() / "plugins" / plugin.filename());
        }
        m_manager->SetPluginDirectory((m_scratch / "plugins").c_str());
        m_manager->LoadPlugins();
    }
    ~LibavThroughManager() override { EXPECT_TRUE(m_manager->UnloadPlugins()); }

    bool Open(const std::string& path, const SWavFormat* wanted, IUnknown** stream, IStatus** status) {
        return m_manager->OpenURLAudioFile(path.c_str(), wanted, stream, -1, AUX_CONVERT, AUX_NONE, status);
    }

    std::string Samples(const std::string& path, const SWavFormat* wanted = nullptr) {
        CComPtr<IUnknown> stream;
        CComPtr<IStatus> status;
        EXPECT_TRUE(Open(path, wanted, stream.Out(), status.Out())) << (status ? status->GetDescription() : "");
        if (!stream) return {};
        const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
        const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
        EXPECT_TRUE(process->Start(nullptr));
        std::string samples;
        std::string buffer(48000, '\0');
        EAudioRawState state = ARS_MORE;
        for (int count = 1; count > 0 || state == ARS_MORE;) {
            if (!reader->RawRead(reinterpret_cast<unsigned char*>(buffer.data()), 48000, &count, state, nullptr)) break;
            samples.append(buffer, 0, static_cast<std::size_t>(count));
        }
        EXPECT_TRUE(process->End(nullptr));
        return samples;
    }

    std::string Refusal(const std::string& path) {
        CComPtr<IUnknown> stream;
        return ReasonOf([&](IStatus** status) { return Open(path, nullptr, stream.Out(), status); });
    }

    CScratchDirectory m_scratch;
    support::CManagerHold m_manager;
};

TEST_F(LibavThroughManager, SoundTrackOfAFilmIsDelivered) {
    EXPECT_EQ(Samples(Media("video.mp4")).size(), 176401u * 4);
}

TEST_F(LibavThroughManager, IsConvertedToTheFormatThatIsWanted) {
    const SWavFormat wanted{48000, 24, 2};
    const std::string samples = Samples(Media("alac.m4a"), &wanted);
    EXPECT_NEAR(static_cast<double>(samples.size()) / 6, 176401.0 * 48000 / 44100, 2);
}

TEST_F(LibavThroughManager, FileThatLibsndfileDoesNotReadIsStillOpened) {
    std::string pcm = Content(Media("deep.pcm")).substr(0, 60000);
    for (std::size_t i = 0; i < pcm.size(); i += 3) pcm[i] = static_cast<char>(pcm[i] & 0xF0);
    RunTool("flac -s " + m_scratch.Write("x.wav", ExtensibleWav({48000, 24, 2}, 20, pcm)) + " -o " +
            m_scratch / "x.flac");
    EXPECT_TRUE(Samples(m_scratch / "x.flac") == pcm);
}

TEST_F(LibavThroughManager, WrongOrMissingExtensionDoesNoHarm) {
    const std::string original = Content(Media("source.pcm"));
    for (const char* const name : {"x.wav", "x", "x.flac"}) {
        std::filesystem::copy_file(Media("alac.m4a"), m_scratch / name);
        EXPECT_TRUE(Samples(m_scratch / name) == original) << name;
    }
}

TEST_F(LibavThroughManager, RefusalsOfListedExtensionsReachTheHost) {
    EXPECT_EQ(Refusal(Media("silent.mp4")), "silent.mp4: no audio stream in this QuickTime / MOV file");
    EXPECT_EQ(Refusal(m_scratch.Write("x.wma", "text")), "x.wma: not readable as audio: unknown format");
}

TEST_F(LibavThroughManager, RefusalOfTheOtherDecoderIsKept) {
    EXPECT_EQ(Refusal(m_scratch.Write("x.wav", "text")).substr(0, 28), "x.wav: not readable as audio");
}

}  // namespace
