// Streams of the real plug-ins, each driven by a thread of its own, while others use the manager.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "com/ComPtr.h"
#include "com/ComponentEnum.h"
#include "com/InterfaceIds.h"
#include "stream/FileOpener.h"
#include "stream/LiveAggregators.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/SourceDetails.h"
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/threads/CountingReceiver.h"
#include "tests/threads/Together.h"

namespace {

constexpr int kReaders = 6;
constexpr int kOnlookers = 2;
constexpr int kRounds = 3;
constexpr SWavFormat kWanted{48000, 24, 2};

std::int64_t AggregatorsAlive() {
    pthread_mutex_lock(&g_AggregatorsMutex);
    const std::int64_t alive = g_lAggregators;
    pthread_mutex_unlock(&g_AggregatorsMutex);
    return alive;
}

// A third of a second in a format and with a sound of the number's own.
std::string NumberedSound(int number) {
    const SWavFormat format{number % 2 == 0 ? 44100 : 32000, 16, 1 + number % 2};
    std::string samples;
    for (int i = 0; i < format.nSampleRate / 3 * format.nChannels; ++i) {
        samples += LittleEndian(static_cast<std::uint64_t>(i * (number + 3) % 20000), 2);
    }
    return WavFile(format, samples);
}

class StreamThreads : public testing::Test {
protected:
    StreamThreads() {
        for (int i = 0; i < kReaders; ++i) {
            m_vSounds.push_back(m_scratch.Write(std::to_string(i) + ".wav", NumberedSound(i)));
        }
    }
    ~StreamThreads() override {
        EXPECT_EQ(AggregatorsAlive(), 0);
        EXPECT_TRUE(m_manager->UnloadPlugins());
    }

    void Load(const std::set<std::string>& plugins) {
        const std::filesystem::path directory = m_scratch.Path() / "plugins";
        std::filesystem::create_directory(directory);
        for (const std::filesystem::path plugin : plugins) {
            std::filesystem::create_symlink(plugin, directory / plugin.filename());
        }
        m_manager->SetPluginDirectory(directory.c_str());
        m_manager->LoadPlugins();
    }

    // Opens the sound, reads a block, goes back to near its begin, reads to its end and closes it: what was read.
    std::string Read(const std::string& sound) {
        CComPtr<IUnknown> stream;
        if (!m_manager->OpenURLAudioFile(sound.c_str(), &kWanted, stream.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr)) {
            return "cannot be opened";
        }
        EXPECT_GT(AggregatorsAlive(), 0);
        const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
        const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
        const auto seekable = CComPtr<ISeekable>::Query(stream.Get(), IID_ISeekable);
        if (!process->Start(nullptr)) return "cannot be started";
        std::string bytes = ReadBlocks(*reader.Get(), 1);
        EXPECT_TRUE(seekable->Seek(100, nullptr));
        bytes += ReadBlocks(*reader.Get(), 1000);
        EXPECT_TRUE(process->End(nullptr));
        return bytes;
    }

    static std::string ReadBlocks(IAudioRawReader& reader, int most) {
        std::string bytes;
        std::vector<unsigned char> buffer(6 * 1000);
        EAudioRawState state = ARS_MORE;
        for (int read = 0; (read > 0 || state == ARS_MORE) && most > 0; --most) {
            if (!reader.RawRead(buffer.data(), static_cast<int>(buffer.size()), &read, state, nullptr)) break;
            bytes.append(reinterpret_cast<const char*>(buffer.data()), static_cast<std::size_t>(read));
        }
        return bytes;
    }

    // The names of all components, each asked for what hosts ask.
    std::string Enumerate() {
        std::string names;
        for (int i = 0; i < m_manager->GetCount(); ++i) {
            CComPtr<IAudioComponent> component;
            EXPECT_TRUE(m_manager->GetComponent(i, component.Out()));
            COMPONENT_INFO info;
            EXPECT_TRUE(m_manager->GetComponentInfo(component.Get(), &info));
            names += component->GetName();
            const auto extensions = CComPtr<IExtensionList>::Query(component.Get(), IID_IExtensionList);
            if (extensions) names += extensions->GetAt(0);
        }
        CComPtr<IComponentEnum> decoders;
        EXPECT_TRUE(m_manager->Get(ACT_DECODER, decoders.Out()));
        return names + std::to_string(decoders->GetCount());
    }

    // Uses the manager as other threads of a host do, until no reader is left.
    void LookOn(const std::string& names, const std::atomic<int>& readers) {
        CCountingReceiver receiver(1);
        do {
            EXPECT_EQ(Enumerate(), names);
            EXPECT_TRUE(m_manager->SubscribeToEvents(&receiver));
            EXPECT_TRUE(m_manager->SendEvent(1, nullptr));
            EXPECT_TRUE(m_manager->UnsubscribeToEvents(&receiver));
        } while (readers > 0);
        EXPECT_GT(receiver.GetOwn(), 0);
    }

    // Readers and onlookers begin together, and each reader reads what one thread alone reads.
    void ExpectUndisturbed() {
        std::vector<std::vector<std::string>> read(kReaders);
        std::atomic<int> readers{kReaders};
        const std::string names = Enumerate();
        RunTogether(kReaders + kOnlookers, [&](int thread) {
            if (thread >= kReaders) return LookOn(names, readers);
            const auto place = static_cast<std::size_t>(thread);
            for (int round = 0; round < kRounds; ++round) read[place].push_back(Read(m_vSounds[place]));
            --readers;
        });
        for (std::size_t i = 0; i < read.size(); ++i) {
            const std::string alone = Read(m_vSounds[i]);
            EXPECT_GT(alone.size(), 90000U) << alone;
            for (const std::string& bytes : read[i]) EXPECT_TRUE(bytes == alone) << m_vSounds[i];
        }
    }

    CScratchDirectory m_scratch;
    support::CManagerHold m_manager;
    std::vector<std::string> m_vSounds;
};

TEST_F(StreamThreads, ReadThroughLibsndfileAndSoxrAsOneThreadAloneDoes) {
    Load({KELO_SNDFILE_PLUGIN, KELO_SOXR_PLUGIN});
    ExpectUndisturbed();
}

#ifdef KELO_LIBAV_PLUGIN
// The first of them to open a file loads libavformat, and all are the first.
TEST_F(StreamThreads, ReadThroughLibavcodecAsOneThreadAloneDoes) {
    Load({KELO_LIBAV_PLUGIN, KELO_SOXR_PLUGIN});
    ExpectUndisturbed();
}
#endif

TEST_F(StreamThreads, KeepThePluginsLoadedUntilTheLastStreamIsClosed) {
    Load({KELO_SNDFILE_PLUGIN, KELO_SOXR_PLUGIN});
    CComPtr<IUnknown> held;
    ASSERT_TRUE(
        m_manager->OpenURLAudioFile(m_vSounds[0].c_str(), &kWanted, held.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr));
    RunTogether(kReaders, [this](int thread) {
        for (int round = 0; round < kRounds; ++round) {
            CComPtr<IUnknown> stream;
            EXPECT_TRUE(m_manager->OpenURLAudioFile(m_vSounds[static_cast<std::size_t>(thread)].c_str(), &kWanted,
                                                    stream.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr));
            EXPECT_GE(AggregatorsAlive(), 2);
        }
    });
    EXPECT_EQ(AggregatorsAlive(), 1);
    EXPECT_FALSE(m_manager->UnloadPlugins());
}

// One stream is one thread's, but references to it are everybody's. The last one is given back alone: without a lock,
// two that are given back at the same moment may both be told 0.
TEST_F(StreamThreads, GiveBackTheirReferencesToOneStream) {
    Load({KELO_SNDFILE_PLUGIN, KELO_SOXR_PLUGIN});
    for (int round = 0; round < 50; ++round) {
        IUnknown* stream = nullptr;
        ASSERT_TRUE(
            m_manager->OpenURLAudioFile(m_vSounds[0].c_str(), &kWanted, &stream, -1, AUX_CONVERT, AUX_NONE, nullptr));
        for (int i = 0; i < kReaders; ++i) stream->AddRef();
        std::atomic<int> ended{0};
        RunTogether(kReaders, [stream, &ended](int) { ended += stream->Release() == 0 ? 1 : 0; });
        EXPECT_EQ(ended, 0);
        EXPECT_EQ(AggregatorsAlive(), 1);
        EXPECT_EQ(stream->Release(), 0U);
        EXPECT_EQ(AggregatorsAlive(), 0);
    }
}

}  // namespace
