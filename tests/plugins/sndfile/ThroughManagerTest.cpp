// The built plug-in's streams inside the manager's aggregators.
#include <filesystem>

#include "pluginmgr/AudioPluginMgr.h"
#include "stream/LiveAggregators.h"
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/SinkUnderTest.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"

namespace {

std::int64_t LiveAggregators() {
    pthread_mutex_lock(&g_AggregatorsMutex);
    const std::int64_t count = g_lAggregators;
    pthread_mutex_unlock(&g_AggregatorsMutex);
    return count;
}

// A manager that has loaded a copy of the plug-in and nothing else.
class CThroughManager : public testing::Test {
protected:
    CThroughManager() {
        const std::string directory = m_scratch / "plugins";
        std::filesystem::create_directory(directory);
        std::filesystem::copy_file(KELO_SNDFILE_PLUGIN, directory + "/sndfile.so");
        EXPECT_TRUE(m_manager->SetPluginDirectory(directory.c_str()));
        EXPECT_TRUE(m_manager->LoadPlugins());
        EXPECT_EQ(m_manager->GetCount(), 2);
    }
    ~CThroughManager() override { EXPECT_TRUE(m_bUnloaded); }

    IUnknown* Open(const std::string& path, const SWavFormat* wanted = nullptr) {
        IUnknown* stream = nullptr;
        CComPtr<IStatus> status;
        EXPECT_TRUE(m_manager->OpenURLAudioFile(path.c_str(), wanted, &stream, -1, AUX_CONVERT, AUX_NONE, status.Out()))
            << (status ? status->GetDescription() : "");
        return stream;
    }

    IUnknown* Create(const std::string& path, const SWavFormat& format) {
        CComPtr<IAudioComponent> encoder;
        EXPECT_TRUE(m_manager->GetComponent(1, encoder.Out()));
        const auto opener = CComPtr<IAudioTargetOpener>::Query(encoder.Get(), IID_IAudioTargetOpener);
        CComPtr<IAudioTarget> target;
        EXPECT_TRUE(opener->OpenTarget(path.c_str(), "wav", target.Out(), nullptr));
        IUnknown* stream = nullptr;
        EXPECT_TRUE(m_manager->CreateURLAudioTarget(target->GetTargetFactory(), &stream, format, nullptr));
        return stream;
    }

    // The stream counts as the one live aggregator and keeps the plug-in loaded until its last reference is gone.
    // `own` are the references of the aggregator.
    void ExpectLife(IUnknown* stream, unsigned int own) {
        EXPECT_EQ(LiveAggregators(), 1);
        EXPECT_FALSE(m_manager->CanUnloadPlugins());
        EXPECT_FALSE(m_manager->UnloadPlugins());
        EXPECT_EQ(stream->AddRef(), own + 2);
        EXPECT_EQ(stream->Release(), own + 1);
        EXPECT_EQ(stream->Release(), 0u);
        EXPECT_EQ(LiveAggregators(), 0);
        ExpectUnload();
    }

    void ExpectUnload() {
        EXPECT_TRUE(m_manager->CanUnloadPlugins());
        m_bUnloaded = m_manager->UnloadPlugins();
        EXPECT_TRUE(m_bUnloaded);
        EXPECT_EQ(m_manager->GetCount(), 0);
    }

    CScratchDirectory m_scratch;
    support::CManagerHold m_manager;
    bool m_bUnloaded = false;
};

std::string WithCues(const CScratchDirectory& scratch) {
    const std::string cue =
        LittleEndian(1, 4) + LittleEndian(1, 4) + LittleEndian(9, 4) + "data" + LittleEndian(0, 8) + LittleEndian(9, 4);
    return scratch.Write("cues.wav", WavFile({44100, 16, 1}, RandomBytes(2000), 1, Chunk("cue ", cue)));
}

}  // namespace

TEST_F(CThroughManager, SeekableSourceIsHeldBySevenReferences) { ExpectLife(Open(kVoice), 7); }

TEST_F(CThroughManager, SourceWithCuesIsHeldByEightReferences) { ExpectLife(Open(WithCues(m_scratch)), 8); }

TEST_F(CThroughManager, SourceThatReadsThroughTheManagerDeliversTheFile) {
    IUnknown* const stream = Open(kVoice);
    auto source = CComPtr<IAudioRawReader>::Query(stream, IID_IAudioRawReader);
    auto process = CComPtr<IProcess>::Query(stream, IID_IProcess);
    ASSERT_TRUE(process->Start(nullptr));
    std::string samples;
    for (;;) {
        unsigned char buffer[4096];
        int count = 0;
        EAudioRawState state = ARS_MORE;
        ASSERT_TRUE(source->RawRead(buffer, sizeof buffer, &count, state, nullptr));
        if (count == 0) break;
        samples.append(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(count));
    }
    EXPECT_TRUE(Content(kVoice).find(samples) != std::string::npos);
    EXPECT_EQ(samples.size(), source->GetRawLen());
    ASSERT_TRUE(process->End(nullptr));
    process.Reset();
    source.Reset();
    ExpectLife(stream, 7);
}

// Every query of a face is one reference of the same count, and the face alone keeps both objects alive.
TEST_F(CThroughManager, FacesOfASourceShareOneCount) {
    IUnknown* const stream = Open(WithCues(m_scratch));
    std::vector<IUnknown*> faces;
    for (const unsigned long identity :
         {IID_IUnknown, IID_IProcess, IID_IAudioRawReader, IID_IAudioRawBlockInfo, IID_ISeekable, IID_IInfoReader,
          IID_IIndexArray, IID_IRealFormat, IID_ISourceName, IID_IAggregatable}) {
        void* face = nullptr;
        ASSERT_EQ(stream->QueryInterface(identity, &face), 0) << identity;
        faces.push_back(static_cast<IUnknown*>(face));
        EXPECT_EQ(faces.back()->AddRef(), 8 + 1 + faces.size() + 1) << identity;
        EXPECT_EQ(faces.back()->Release(), 8 + 1 + faces.size()) << identity;
    }
    EXPECT_EQ(stream->Release(), 8 + faces.size());
    for (; faces.size() > 1; faces.pop_back()) EXPECT_EQ(faces.back()->Release(), 8 + faces.size() - 1);
    EXPECT_EQ(LiveAggregators(), 1);
    EXPECT_EQ(faces[0]->Release(), 0u);
    EXPECT_EQ(LiveAggregators(), 0);
    ExpectUnload();
}

TEST_F(CThroughManager, SourceWithoutTagsTakesItsTextsFromTheFileName) {
    IUnknown* const stream = Open(m_scratch.Write("Band - Song.wav", WavFile({44100, 16, 1}, RandomBytes(200))));
    auto info = CComPtr<IInfoReader>::Query(stream, IID_IInfoReader);
    ASSERT_TRUE(info);
    EXPECT_STREQ(info->GetArtist(), "Band");
    EXPECT_STREQ(info->GetTitle(), "Song");
    EXPECT_STREQ(info->GetAlbum(), "");
    info.Reset();
    ExpectLife(stream, 7);
}

TEST_F(CThroughManager, RefusedSourceLeavesNothingBehind) {
    IUnknown* stream = nullptr;
    CComPtr<IStatus> status;
    const std::string path = m_scratch.Write("text.wav", "Just a text of some length that is no sound at all.\n");
    EXPECT_FALSE(m_manager->OpenURLAudioFile(path.c_str(), nullptr, &stream, -1, AUX_CONVERT, AUX_NONE, status.Out()));
    EXPECT_EQ(stream, nullptr);
    EXPECT_STREQ(status->GetDescription(), "text.wav: not readable as audio: Format not recognised.");
    EXPECT_EQ(LiveAggregators(), 0);
    ExpectUnload();
}

TEST_F(CThroughManager, CutSourceFailsItsLastRead) {
    const std::string whole = WavFile({44100, 16, 2}, RandomBytes(4000));
    IUnknown* const stream = Open(m_scratch.Write("cut.wav", whole.substr(0, whole.size() - 400)));
    auto source = CComPtr<IAudioRawReader>::Query(stream, IID_IAudioRawReader);
    auto process = CComPtr<IProcess>::Query(stream, IID_IProcess);
    ASSERT_TRUE(process->Start(nullptr));
    unsigned char buffer[4096];
    int count = 0;
    EAudioRawState state = ARS_MORE;
    const auto read = [&](IStatus** status) { return source->RawRead(buffer, sizeof buffer, &count, state, status); };
    ASSERT_TRUE(read(nullptr));
    EXPECT_EQ(count, 3600);
    EXPECT_EQ(ReasonOf(read), "cut.wav: cut short: 900 of 1000 frames are there");
    ASSERT_TRUE(process->End(nullptr));
    process.Reset();
    source.Reset();
    EXPECT_EQ(stream->Release(), 0u);
    ExpectUnload();
}

TEST_F(CThroughManager, TargetIsHeldByFourReferences) { ExpectLife(Create(m_scratch / "x.wav", {44100, 16, 2}), 4); }

TEST_F(CThroughManager, TargetThatWritesThroughTheManagerWritesTheFile) {
    const std::string path = m_scratch / "x.wav";
    IUnknown* const stream = Create(path, {44100, 16, 2});
    auto writer = CComPtr<IAudioRawWriter>::Query(stream, IID_IAudioRawWriter);
    auto process = CComPtr<IProcess>::Query(stream, IID_IProcess);
    ASSERT_TRUE(process->Start(nullptr));
    std::string samples = RandomBytes(4000);
    EAudioRawState state = ARS_MORE;
    EXPECT_TRUE(writer->RawWrite(reinterpret_cast<unsigned char*>(samples.data()), 4000, state, nullptr));
    EXPECT_TRUE(process->End(nullptr));
    process.Reset();
    writer.Reset();
    ExpectLife(stream, 4);
    EXPECT_TRUE(Content(path).find(samples) != std::string::npos);
}

TEST_F(CThroughManager, FacesOfATargetShareOneCount) {
    IUnknown* const stream = Create(m_scratch / "x.wav", {44100, 16, 2});
    void* face = nullptr;
    for (const unsigned long identity : {IID_IUnknown, IID_IProcess, IID_IAudioRawWriter, IID_IAggregatable}) {
        ASSERT_EQ(stream->QueryInterface(identity, &face), 0) << identity;
        EXPECT_EQ(static_cast<IUnknown*>(face)->AddRef(), 7u);
        EXPECT_EQ(static_cast<IUnknown*>(face)->Release(), 6u);
        EXPECT_EQ(static_cast<IUnknown*>(face)->Release(), 5u);
    }
    ExpectLife(stream, 4);
}
