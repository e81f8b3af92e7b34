// The reference plug-ins leave the process when they are unloaded, whatever they were used for.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "stream/AudioTargetOpener.h"
#include "stream/FileOpener.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/RawWriter.h"
#include "tests/plugins/unloading/OneFileServer.h"
#include "tests/support/FetchEnvironment.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ProcessUse.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr SWavFormat kWritten{44100, 16, 2};
constexpr SWavFormat kRead{48000, 24, 1};  // another rate, width and channel count: a convertor has work

// The mappings of the directory that the plug-ins are loaded from.
std::vector<std::string> MappedPlugins() {
    std::vector<std::string> mapped;
    std::istringstream lines(support::Mappings());
    for (std::string line; std::getline(lines, line);) {
        if (line.find(KELO_PLUGIN_DIRECTORY "/") != std::string::npos) mapped.push_back(line);
    }
    return mapped;
}

std::set<std::string> MappedFiles() {
    std::set<std::string> files;
    for (const std::string& line : MappedPlugins()) files.insert(line.substr(line.rfind('/') + 1));
    return files;
}

std::set<std::string> BuiltPlugins() {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(KELO_PLUGIN_DIRECTORY)) {
        if (entry.path().extension() == ".so") files.insert(entry.path().filename());
    }
    return files;
}

class Unloading : public testing::Test {
protected:
    ~Unloading() override { m_manager->UnloadPlugins(); }

    void Load() {
        ASSERT_TRUE(m_manager->SetPluginDirectory(KELO_PLUGIN_DIRECTORY));
        ASSERT_TRUE(m_manager->LoadPlugins());
        ASSERT_EQ(MappedFiles(), BuiltPlugins());
    }

    void UnloadAndExpectNothingLeft() {
        ASSERT_TRUE(m_manager->UnloadPlugins());
        EXPECT_THAT(MappedPlugins(), testing::IsEmpty());
    }

    std::vector<CComPtr<IAudioComponent>> Components(EAudioComponentType type) {
        std::vector<CComPtr<IAudioComponent>> found;
        for (int i = 0; i < m_manager->GetCount(); ++i) {
            CComPtr<IAudioComponent> component;
            if (m_manager->GetComponent(i, component.Out()) && component->GetType() == type) found.push_back(component);
        }
        return found;
    }

    // Encodes a second of sound into each format of each encoder; the files are named after their encoder's place.
    void WriteEveryFormat() {
        int place = 0;
        for (const auto& encoder : Components(ACT_ENCODER)) {
            const auto extensions = CComPtr<IExtensionList>::Query(encoder.Get(), IID_IExtensionList);
            const auto opener = CComPtr<IAudioTargetOpener>::Query(encoder.Get(), IID_IAudioTargetOpener);
            ASSERT_TRUE(extensions && opener) << encoder->GetName();
            ++place;
            for (int i = 0; i < extensions->GetCount(); ++i) {
                const std::string extension = extensions->GetAt(i);
                const std::string path = m_scratch / (std::to_string(place) + "." + extension);
                if (Write(*opener.Get(), path, extension)) m_vWritten.push_back(path);
            }
        }
        ASSERT_GE(m_vWritten.size(), 4U);
    }

    bool Write(IAudioTargetOpener& opener, const std::string& path, const std::string& extension) {
        CComPtr<IAudioTarget> target;
        if (!opener.OpenTarget(path.c_str(), extension.c_str(), target.Out(), nullptr)) return false;
        CComPtr<IUnknown> stream;
        if (!m_manager->CreateURLAudioTarget(target->GetTargetFactory(), stream.Out(), kWritten, nullptr)) return false;
        const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
        const auto writer = CComPtr<IAudioRawWriter>::Query(stream.Get(), IID_IAudioRawWriter);
        if (!process->Start(nullptr)) return false;
        std::vector<unsigned char> sound(static_cast<std::size_t>(ByteRateOf(kWritten)));
        for (std::size_t i = 0; i < sound.size(); ++i) sound[i] = static_cast<unsigned char>(i % 4 < 2 ? 0 : i / 256);
        EAudioRawState state = ARS_END;
        const bool written = writer->RawWrite(sound.data(), static_cast<int>(sound.size()), state, nullptr);
        return process->End(nullptr) && written;
    }

    // Lets each decoder read on its own from what it opens of the written files, wherever the manager would have sent
    // them.
    void ReadWithEveryDecoder() {
        for (const auto& decoder : Components(ACT_DECODER)) {
            const auto opener = CComPtr<IAudioFileOpener>::Query(decoder.Get(), IID_IAudioFileOpener);
            ASSERT_TRUE(opener) << decoder->GetName();
            int opened = 0;
            for (const std::string& path : m_vWritten) {
                CComPtr<IUnknown> stream;
                if (!opener->Open(path.c_str(), stream.Out(), AUX_NONE, AUX_NONE, nullptr)) continue;
                EXPECT_GT(ReadStream(stream.Get(), path), 44100U) << decoder->GetName() << ", " << path;
                ++opened;
            }
            EXPECT_GT(opened, 0) << decoder->GetName();
        }
    }

    // Reads a source to its end through a conversion; the bytes that came.
    std::size_t Read(const std::string& url) {
        CComPtr<IUnknown> stream;
        if (!m_manager->OpenURLAudioFile(url.c_str(), &kRead, stream.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr)) {
            ADD_FAILURE() << url << " cannot be opened";
            return 0;
        }
        return ReadStream(stream.Get(), url);
    }

    static std::size_t ReadStream(IUnknown* stream, const std::string& name) {
        const auto process = CComPtr<IProcess>::Query(stream, IID_IProcess);
        const auto reader = CComPtr<IAudioRawReader>::Query(stream, IID_IAudioRawReader);
        EXPECT_TRUE(process->Start(nullptr)) << name;
        std::vector<unsigned char> buffer(65536);
        std::size_t total = 0;
        EAudioRawState state = ARS_MORE;
        for (int read = 0; read > 0 || state == ARS_MORE; total += static_cast<std::size_t>(read)) {
            const int size = static_cast<int>(buffer.size());
            if (!reader->RawRead(buffer.data(), size, &read, state, nullptr)) break;
        }
        EXPECT_TRUE(process->End(nullptr)) << name;
        return total;
    }

    CScratchDirectory m_scratch;
    support::CManagerHold m_manager;
    std::vector<std::string> m_vWritten;
};

TEST_F(Unloading, OfWhatWasOnlyLoadedLeavesNothing) {
    for (int i = 0; i < 3; ++i) {
        Load();
        UnloadAndExpectNothingLeft();
    }
}

TEST_F(Unloading, AfterEncodingDecodingAndConvertingLeavesNothing) {
    Load();
    WriteEveryFormat();
    for (const std::string& path : m_vWritten) EXPECT_GT(Read(path), 48000U) << path;
    ReadWithEveryDecoder();
    UnloadAndExpectNothingLeft();
}

TEST_F(Unloading, AfterAFailureLeavesNothing) {
    Load();
    CComPtr<IUnknown> stream;
    for (const char* const name : {"empty.wav", "empty.flac", "empty.mp3", "empty.ogg", "empty.m4a", "empty"}) {
        const std::string path = m_scratch.Write(name, "no sound");
        CComPtr<IStatus> status;
        EXPECT_FALSE(
            m_manager->OpenURLAudioFile(path.c_str(), &kRead, stream.Out(), -1, AUX_CONVERT, AUX_NONE, status.Out()));
    }
    UnloadAndExpectNothingLeft();
}

TEST_F(Unloading, AfterFetchingLeavesNothing) {
    support::PrepareToFetch(m_scratch / "temporary");
    Load();
    if (Components(ACT_URL_HANDLER).empty()) GTEST_SKIP() << "no plug-in of this build handles URLs";
    WriteEveryFormat();
    {
        const COneFileServer server(m_vWritten[0]);
        const std::string name = std::filesystem::path(m_vWritten[0]).filename();
        EXPECT_GT(Read(server.URL(name)), 48000U);
    }
    UnloadAndExpectNothingLeft();
    EXPECT_TRUE(std::filesystem::is_empty(m_scratch / "temporary"));
}

TEST_F(Unloading, LeavesRoomForTheNextLoad) {
    Load();
    WriteEveryFormat();
    UnloadAndExpectNothingLeft();
    Load();
    EXPECT_GT(Read(m_vWritten[0]), 48000U);
    UnloadAndExpectNothingLeft();
}

}  // namespace
