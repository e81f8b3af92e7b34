// What the tests of the templates stand on: the templates as they were built on their own, loaded by the manager.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/SourceDetails.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/StreamQueries.h"

constexpr std::size_t kTitleBytes = 64;
constexpr SWavFormat kFormat{48000, 16, 2};

// A plain file of 16-bit samples that count up.
inline std::string PlainFile(int frames, const std::string& title = "A title") {
    std::string file = "PLN1";
    file += std::string("\x80\xBB\0\0", 4) + std::string("\x02\0\x10\0", 4) + title;
    file.resize(12 + kTitleBytes);
    for (int i = 0; i < 2 * frames; ++i) {
        file += static_cast<char>(i);
        file += static_cast<char>(i >> 8);
    }
    return file;
}

inline std::string SamplesOf(const std::string& file) { return file.substr(12 + kTitleBytes); }

inline std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Each test loads the templates that it adds.
class CExamplesTest : public testing::Test {
protected:
    ~CExamplesTest() override { m_manager->UnloadPlugins(); }

    // Puts built templates into the plug-in directory.
    void Add(const std::string& folder, const std::string& plugin) const {
        std::filesystem::create_directories(m_scratch.Path() / "plugins");
        std::filesystem::copy_file(std::filesystem::path(KELO_EXAMPLES) / folder / (plugin + ".so"),
                                   PluginDirectory() / (plugin + ".so"));
    }

    std::filesystem::path PluginDirectory() const { return m_scratch.Path() / "plugins"; }

    void Load() const {
        m_manager->SetPluginDirectory(PluginDirectory().c_str());
        m_manager->LoadPlugins();
        ASSERT_EQ(m_manager->GetCount(), std::distance(std::filesystem::directory_iterator(PluginDirectory()), {}));
    }

    CComPtr<IUnknown> Open(const std::string& source, const SWavFormat* wanted = nullptr) const {
        CComPtr<IUnknown> stream;
        CComPtr<IStatus> status;
        EXPECT_TRUE(
            m_manager->OpenURLAudioFile(source.c_str(), wanted, stream.Out(), -1, AUX_CONVERT, AUX_NONE, status.Out()))
            << support::TextOf(status);
        return stream;
    }

    // The decoder's own stream.
    CComPtr<IUnknown> OpenBare(const std::string& path) const {
        CComPtr<IUnknown> bare;
        EXPECT_TRUE(m_manager->OpenURLAudioFile(path.c_str(), nullptr, bare.Out(), -1, AUX_NONE, AUX_NONE, nullptr));
        return bare;
    }

    // A source takes the title from the file's name where there is no artist.
    std::string TitleOf(const std::string& path) const {
        return CComPtr<IInfoReader>::Query(OpenBare(path).Get(), IID_IInfoReader)->GetTitle();
    }

    // The reason why the manager does not open it.
    std::string RefusalOf(const std::string& path) const {
        CComPtr<IUnknown> stream;
        CComPtr<IStatus> status;
        EXPECT_FALSE(
            m_manager->OpenURLAudioFile(path.c_str(), nullptr, stream.Out(), -1, AUX_NONE, AUX_NONE, status.Out()));
        return support::TextOf(status);
    }

    static std::string ReadAll(const CComPtr<IUnknown>& stream) {
        const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
        EXPECT_TRUE(process->Start(nullptr));
        std::string samples = ReadOn(stream);
        EXPECT_TRUE(process->End(nullptr));
        return samples;
    }

    // From where a started stream is.
    static std::string ReadOn(const CComPtr<IUnknown>& stream) {
        const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
        std::string samples;
        std::vector<unsigned char> buffer(1200);
        EAudioRawState state = ARS_MORE;
        for (int read = 1; read > 0 || state == ARS_MORE;) {
            if (!reader->RawRead(buffer.data(), 1200, &read, state, nullptr)) {
                ADD_FAILURE() << "after " << samples.size() << " bytes";
                break;
            }
            samples.append(reinterpret_cast<const char*>(buffer.data()), static_cast<std::size_t>(read));
        }
        return samples;
    }

    CScratchDirectory m_scratch;
    support::CManagerHold m_manager;
};
