// Exceptions of plug-ins on the library's border: which end there, and that none leaves anything behind.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "com/FeatureSupport.h"
#include "com/InterfaceIds.h"
#include "pluginmgr/AudioPluginMgr.h"
#include "stream/AudioTargetOpener.h"
#include "stream/LiveAggregators.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/RawWriter.h"
#include "stream/SourceDetails.h"
#include "stream/URLAudioTargetFactory.h"
#include "tests/host/hostile/MarkedSound.h"
#include "tests/support/CreationLockState.h"
#include "tests/support/ExpectedLeaks.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"

namespace {

// A host that uses everything once and writes down where it ended: "open refused", "read throws" and the like.
class CHost {
public:
    explicit CHost(const CScratchDirectory& directory, const SWavFormat* wanted = nullptr)
        : m_strSound(directory.Write("in.wav", MarkedSound())), m_strTarget(directory / "out.wav"), m_pWanted(wanted) {
        m_manager->SetPluginDirectory(directory.Path().c_str());
    }

    std::string Run() {
        try {
            return Load() && Enable() && Source() && Target() ? "fine" : m_strStep + " refused";
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

    // Advanced formats stay off where no convertor takes them.
    bool Enable() {
        return Step("enable", [&] {
            const bool enabled = m_manager->EnableSupport(AF_BASIC, true);
            m_manager->EnableSupport(AF_ADVANCED_FORMATS, true);
            return enabled;
        });
    }

    bool Source() {
        CComPtr<IUnknown> stream;
        const bool opened = Step("open", [&] {
            return static_cast<IAudioPluginMgr*>(m_manager.Get())
                ->OpenURLAudioFile(m_strSound.c_str(), m_pWanted, stream.Out(), -1, AUX_CONVERT, AUX_NONE, nullptr);
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
            const auto process = CComPtr<IProcess>::Query(stream, IID_IProcess);
            const auto reader = CComPtr<IAudioRawReader>::Query(stream, IID_IAudioRawReader);
            const auto info = CComPtr<IAudioRawBlockInfo>::Query(stream, IID_IAudioRawBlockInfo);
            const auto seekable = CComPtr<ISeekable>::Query(stream, IID_ISeekable);
            const auto tags = CComPtr<IInfoReader>::Query(stream, IID_IInfoReader);
            const auto points = CComPtr<IIndexArray>::Query(stream, IID_IIndexArray);
            reader->GetRawLen();
            info->GetPos();
            info->GetDataLength();
            tags->GetTitle();
            tags->GetArtist();
            tags->GetAlbum();
            tags->GetYear();
            tags->GetGenre();
            points->GetIndexNumber();
            points->GetIndex(0);
            process->IsInProcess();
            return seekable->Seek(0, nullptr);
        });
    }

    bool Target() {
        const auto opener = FindEncoder();
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

    CComPtr<IAudioTargetOpener> FindEncoder() {
        CComPtr<IAudioTargetOpener> opener;
        for (int i = 0; i < m_manager->GetCount() && !opener; ++i) {
            CComPtr<IAudioComponent> component;
            m_manager->GetComponent(i, component.Out());
            opener = CComPtr<IAudioTargetOpener>::Query(component.Get(), IID_IAudioTargetOpener);
        }
        return opener;
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
    std::string m_strSound;
    std::string m_strTarget;
    const SWavFormat* m_pWanted;
    std::string m_strStep;
};

struct SReach {
    const char* m_szOperation;
    const char* m_szEnd;
};

void PrintTo(const SReach& reach, std::ostream* out) { *out << reach.m_szOperation; }

class CThrowing : public testing::TestWithParam<SReach> {
protected:
    // With a plug-in that throws from the operation, and with another one where there is one.
    static void ExpectEnd(const char* module, const SWavFormat* wanted = nullptr, const char* other = nullptr) {
        for (const std::string what : {"Int", "Error", "Other"}) {
            const std::string name = "Throws" + what + "In" + GetParam().m_szOperation;
            SCOPED_TRACE(name);
            const CScratchDirectory directory;
            std::filesystem::create_symlink(module, directory / (name + ".so"));
            if (other != nullptr) std::filesystem::create_symlink(other, directory / "Harmless.so");
            CHost host(directory, wanted);
            EXPECT_EQ(host.Run(), GetParam().m_szEnd);
            EXPECT_EQ(g_lAggregators, 0);
            EXPECT_TRUE(IsCreationLockFree());
            EXPECT_TRUE(host.Unload());
        }
    }
};

std::string NameOf(const testing::TestParamInfo<SReach>& test) { return test.param.m_szOperation; }

class ThrowingOperation : public CThrowing {};
class ThrowingAdvancedOperation : public CThrowing {};
class ThrowingConversion : public CThrowing {};

constexpr SWavFormat kHalfRate = {24000, 16, 2};

}  // namespace

TEST_P(ThrowingOperation, EndsWhereItShouldAndLeavesNothingBehind) { ExpectEnd(KELO_HOSTILE_FIXTURE); }

INSTANTIATE_TEST_SUITE_P(
    Library, ThrowingOperation,
    testing::Values(
        SReach{"Nowhere", "fine"}, SReach{"Open", "open refused"}, SReach{"SetAggregator", "open throws"},
        SReach{"GetRawFormat", "open throws"}, SReach{"GetAuxFlags", "open throws"},
        SReach{"GetOpenerState", "open throws"}, SReach{"GetCount", "open throws"}, SReach{"GetAt", "open throws"},
        SReach{"QueryInterface", "open throws"}, SReach{"Start", "start refused"}, SReach{"RawRead", "read throws"},
        SReach{"GetRawLen", "ask throws"}, SReach{"GetPos", "ask throws"}, SReach{"GetDataLength", "ask throws"},
        SReach{"Seek", "ask throws"}, SReach{"GetTitle", "ask throws"}, SReach{"GetArtist", "ask throws"},
        SReach{"GetSourceName", "ask throws"}, SReach{"GetAlbum", "ask throws"}, SReach{"GetYear", "ask throws"},
        SReach{"GetGenre", "ask throws"}, SReach{"GetIndexNumber", "ask throws"}, SReach{"GetIndex", "ask throws"},
        SReach{"IsInProcess", "ask throws"}, SReach{"End", "end refused"}, SReach{"OpenTarget", "target throws"},
        SReach{"GetTargetFactory", "create throws"}, SReach{"CreateTarget", "create refused"},
        SReach{"EncoderGetRawFormat", "target start refused"}, SReach{"EncoderSetAggregator", "create throws"},
        SReach{"EncoderStart", "target start refused"}, SReach{"RawWrite", "write throws"},
        SReach{"EncoderEnd", "target end refused"}),
    NameOf);

TEST_P(ThrowingAdvancedOperation, EndsWhereItShouldAndLeavesNothingBehind) {
    ExpectEnd(KELO_HOSTILE_FIXTURE, nullptr, KELO_HOSTILE_CONVERTOR);
}

INSTANTIATE_TEST_SUITE_P(Library, ThrowingAdvancedOperation,
                         testing::Values(SReach{"Nowhere", "fine"}, SReach{"GetAdvancedFormat", "open throws"}),
                         NameOf);

TEST_P(ThrowingConversion, EndsWhereItShouldAndLeavesNothingBehind) {
    ExpectEnd(KELO_HOSTILE_CONVERTOR, &kHalfRate, KELO_HOSTILE_FIXTURE);
}

INSTANTIATE_TEST_SUITE_P(Library, ThrowingConversion,
                         testing::Values(SReach{"Nowhere", "fine"}, SReach{"IsSupported", "enable throws"},
                                         SReach{"CreateConvertor", "start refused"}, SReach{"Convert", "read throws"},
                                         SReach{"GetOutputLength", "read throws"},
                                         SReach{"GetOutputData", "read throws"}),
                         NameOf);

TEST(HostilePlugins, ARefusalToFinishKeepsThemLoadedAndNothingLocked) {
    const CScratchDirectory directory;
    std::filesystem::create_symlink(KELO_HOSTILE_FIXTURE, directory.Path() / "NeverReady.so");
    const CExpectedLeaks leaks;  // the library never gets unloaded
    CHost host(directory);
    EXPECT_EQ(host.Run(), "fine");
    EXPECT_FALSE(host.Unload());
    EXPECT_TRUE(IsCreationLockFree());
    EXPECT_EQ(host.Run(), "fine");
}

TEST(HostilePlugins, AnOpeningWithoutAStreamIsRefused) {
    const CScratchDirectory directory;
    std::filesystem::create_symlink(KELO_HOSTILE_FIXTURE, directory.Path() / "OpensNothing.so");
    CHost host(directory);
    EXPECT_EQ(host.Run(), "open refused");
    EXPECT_TRUE(host.Unload());
}
