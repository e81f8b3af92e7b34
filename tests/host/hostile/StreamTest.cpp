// Exceptions of plug-ins on the library's border: which end there, and that none leaves anything behind.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "com/InterfaceIds.h"
#include "pluginmgr/AudioPluginMgr.h"
#include "stream/AudioTargetOpener.h"
#include "stream/LiveAggregators.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/RawWriter.h"
#include "stream/SourceDetails.h"
#include "stream/URLAudioTargetFactory.h"
#include "tests/support/CreationLockState.h"
#include "tests/support/ExpectedLeaks.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr const char* kSound = "/usr/share/sounds/alsa/Front_Center.wav";

// A host that uses everything once and writes down where it ended: "open refused", "read throws" and the like.
class CHost {
public:
    explicit CHost(const std::string& directory) : m_strTarget(directory + "/out.wav") {
        m_manager->SetPluginDirectory(directory.c_str());
    }

    std::string Run() {
        try {
            return Load() && Source() && Target() ? "fine" : m_strStep + " refused";
        } catch (...) {
            return m_strStep + " throws";
        }
    }

    bool Unload() const { return m_manager->UnloadPlugins(); }

private:
    bool Step(const char* name, const std::function<bool()>& run) {
        m_strStep = name;
        return run();
    }

    bool Load() {
        return Step("load", [&] { return m_manager->LoadPlugins(); });
    }

    bool Source() {
        CComPtr<IUnknown> stream;
        const bool opened = Step("open", [&] {
            return static_cast<IAudioPluginMgr*>(m_manager.Get())
                ->OpenURLAudioFile(kSound, nullptr, stream.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr);
        });
        if (!opened) return false;
        const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
        return Step("start", [&] { return process->Start(nullptr); }) && Read(stream.Get()) && Ask(stream.Get()) &&
               Step("end", [&] { return process->End(nullptr); });
    }

    bool Read(IUnknown* stream) {
        return Step("read", [&] {
            const auto reader = CComPtr<IAudioRawReader>::Query(stream, IID_IAudioRawReader);
            unsigned char buffer[4096];
            int read = 0;
            EAudioRawState state = ARS_MORE;
            return reader->RawRead(buffer, sizeof(buffer), &read, state, nullptr);
        });
    }

    bool Ask(IUnknown* stream) {
        return Step("ask", [&] {
            const auto reader = CComPtr<IAudioRawReader>::Query(stream, IID_IAudioRawReader);
            const auto info = CComPtr<IAudioRawBlockInfo>::Query(stream, IID_IAudioRawBlockInfo);
            const auto seekable = CComPtr<ISeekable>::Query(stream, IID_ISeekable);
            const auto tags = CComPtr<IInfoReader>::Query(stream, IID_IInfoReader);
            const auto points = CComPtr<IIndexArray>::Query(stream, IID_IIndexArray);
            reader->GetRawLen();
            info->GetPos();
            info->GetDataLength();
            tags->GetTitle();
            points->GetIndexNumber();
            return seekable->Seek(0, nullptr);
        });
    }

    bool Target() {
        CComPtr<IAudioComponent> encoder;
        m_manager->GetComponent(1, encoder.Out());
        const auto opener = CComPtr<IAudioTargetOpener>::Query(encoder.Get(), IID_IAudioTargetOpener);
        CComPtr<IAudioTarget> target;
        if (!Step("target", [&] { return opener->OpenTarget(m_strTarget.c_str(), "wav", target.Out(), nullptr); })) {
            return false;
        }
        CComPtr<IUnknown> stream;
        const bool created = Step("create", [&] {
            return m_manager->CreateURLAudioTarget(target->GetTargetFactory(), stream.Out(), {48000, 16, 1}, nullptr);
        });
        return created && Write(stream.Get());
    }

    bool Write(IUnknown* stream) {
        const auto process = CComPtr<IProcess>::Query(stream, IID_IProcess);
        const auto writer = CComPtr<IAudioRawWriter>::Query(stream, IID_IAudioRawWriter);
        unsigned char block[16] = {};
        EAudioRawState state = ARS_MORE;
        return Step("target start", [&] { return process->Start(nullptr); }) &&
               Step("write", [&] { return writer->RawWrite(block, sizeof(block), state, nullptr); }) &&
               Step("target end", [&] { return process->End(nullptr); });
    }

    support::CManagerHold m_manager;
    std::string m_strTarget;
    std::string m_strStep;
};

struct SReach {
    const char* m_szOperation;
    const char* m_szEnd;
};

void PrintTo(const SReach& reach, std::ostream* out) { *out << reach.m_szOperation; }

class ThrowingOperation : public testing::TestWithParam<SReach> {
protected:
    // The plug-in in a directory of its own.
    static void UseIn(const std::string& directory, const std::string& name) {
        std::filesystem::create_symlink(KELO_HOSTILE_FIXTURE, directory + "/" + name + ".so");
    }
};

}  // namespace

TEST_P(ThrowingOperation, EndsWhereItShouldAndLeavesNothingBehind) {
    for (const std::string what : {"Int", "Error", "Other"}) {
        const std::string name = "Throws" + what + "In" + GetParam().m_szOperation;
        SCOPED_TRACE(name);
        const CScratchDirectory directory;
        UseIn(directory.Path().string(), name);
        CHost host(directory.Path().string());
        EXPECT_EQ(host.Run(), GetParam().m_szEnd);
        EXPECT_EQ(g_lAggregators, 0);
        EXPECT_TRUE(IsCreationLockFree());
        EXPECT_TRUE(host.Unload());
    }
}

INSTANTIATE_TEST_SUITE_P(Library, ThrowingOperation,
                         testing::Values(SReach{"Nowhere", "fine"}, SReach{"Open", "open refused"},
                                         SReach{"SetAggregator", "open throws"}, SReach{"GetRawFormat", "open throws"},
                                         SReach{"GetAuxFlags", "open throws"}, SReach{"GetOpenerState", "open throws"},
                                         SReach{"GetCount", "open throws"}, SReach{"GetAt", "open throws"},
                                         SReach{"QueryInterface", "open throws"}, SReach{"Start", "start refused"},
                                         SReach{"RawRead", "read throws"}, SReach{"GetRawLen", "ask throws"},
                                         SReach{"GetPos", "ask throws"}, SReach{"GetDataLength", "ask throws"},
                                         SReach{"Seek", "ask throws"}, SReach{"GetTitle", "ask throws"},
                                         SReach{"GetIndexNumber", "ask throws"}, SReach{"End", "end refused"},
                                         SReach{"OpenTarget", "target throws"},
                                         SReach{"EncoderStart", "target start refused"},
                                         SReach{"RawWrite", "write throws"},
                                         SReach{"EncoderEnd", "target end refused"}),
                         [](const auto& test) { return std::string(test.param.m_szOperation); });

TEST(HostilePlugins, ARefusalToFinishKeepsThemLoadedAndNothingLocked) {
    const CScratchDirectory directory;
    std::filesystem::create_symlink(KELO_HOSTILE_FIXTURE, directory.Path() / "NeverReady.so");
    const CExpectedLeaks leaks;  // the library never gets unloaded
    CHost host(directory.Path().string());
    EXPECT_EQ(host.Run(), "fine");
    EXPECT_FALSE(host.Unload());
    EXPECT_TRUE(IsCreationLockFree());
    EXPECT_EQ(host.Run(), "fine");
}

TEST(HostilePlugins, AnOpeningWithoutAStreamIsRefused) {
    const CScratchDirectory directory;
    std::filesystem::create_symlink(KELO_HOSTILE_FIXTURE, directory.Path() / "OpensNothing.so");
    CHost host(directory.Path().string());
    EXPECT_EQ(host.Run(), "open refused");
    EXPECT_TRUE(host.Unload());
}
