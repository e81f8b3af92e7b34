// Sources without memory: opening, starting, reading.
#include "tests/faults/EachLibraryAllocation.h"
#include "tests/faults/StreamsLeft.h"
#include "tests/stream/OpeningFixture.h"
#include "tests/stream/SourceFixture.h"

namespace {

using support::kStudio;

class OpeningAllocation : public support::COpeningFixture {
protected:
    OpeningAllocation() {
        Prepare(m_refusing);
        Prepare(m_opening);
        m_refusing.m_opener.m_open.m_eOutcome = support::EOutcome::Fails;
        m_handler.m_localPath = m_song;
        Register({&m_refusing, &m_opening, &m_handler});
        m_eRequired = AUX_CONVERT;
    }

    void ExpectAllBack() {
        CloseStream();
        ExpectNoStreamLeft();
        ExpectNothingHeld();
    }

    support::CFakeDecoderComponent m_refusing{"refusing", {"wav"}};
    support::CFakeDecoderComponent m_opening{"opening", {"wav"}};
    support::CFakeURLHandler m_handler{"handler", URL_HTTP};
};

class SourceAllocation : public support::CSourceFixture {};

}  // namespace

TEST_F(OpeningAllocation, OfALocalFileLeavesNothingHeld) {
    const int allocations = FailEachLibraryAllocation(
        [&] {
            CComPtr<IStatus> status;
            OpenWanted(m_song, &kStudio, status.Out());
        },
        [&](bool /*thrown*/) { ExpectAllBack(); });
    EXPECT_GT(allocations, 5);
}

TEST_F(OpeningAllocation, OfARemoteFileLeavesNothingHeld) {
    FailEachLibraryAllocation(
        [&] {
            CComPtr<IStatus> status;
            OpenWanted("http://host/song.wav", &kStudio, status.Out());
        },
        [&](bool /*thrown*/) { ExpectAllBack(); });
}

TEST_F(OpeningAllocation, ThatIsRefusedLeavesNothingHeld) {
    m_opening.m_opener.m_open.m_eOutcome = support::EOutcome::Fails;
    for (const std::string& name : {m_song, std::string("/missing.wav"), std::string("nothing known")}) {
        FailEachLibraryAllocation(
            [&] {
                CComPtr<IStatus> status;
                OpenWanted(name, &kStudio, status.Out());
            },
            [&](bool /*thrown*/) { ExpectAllBack(); });
    }
}

TEST_F(SourceAllocation, AStartWithoutMemoryEndsTheDecoderAndTheNextSucceeds) {
    InstallFactory();
    ASSERT_TRUE(Wrap(kStudio));
    const int allocations = FailEachLibraryAllocation([&] { m_pAggregator->Start(nullptr); },
                                                      [&](bool thrown) {
                                                          EXPECT_FALSE(thrown);
                                                          m_pAggregator->End(nullptr);
                                                          EXPECT_EQ(m_factory.m_convertor.m_nAlive, 0);
                                                      });
    EXPECT_EQ(allocations, 1);
    const CFailingLibraryAllocation failing(1);
    EXPECT_FALSE(m_pAggregator->Start(nullptr));
    EXPECT_TRUE(m_pAggregator->Start(nullptr));
    EXPECT_TRUE(m_pAggregator->End(nullptr));
}

TEST_F(SourceAllocation, ReadingNeedsNoMemory) {
    StartConverting(kStudio);
    unsigned char buffer[4096];
    int read = 0;
    EAudioRawState state = ARS_MORE;
    const CFailingLibraryAllocation failing(1, true);
    EXPECT_TRUE(m_pAggregator->RawRead(buffer, sizeof(buffer), &read, state, nullptr));
    EXPECT_EQ(failing.GetCount(), 0);
}

TEST_F(SourceAllocation, AReasonWithoutMemoryIsAnExceptionAndLeavesNothing) {
    ASSERT_TRUE(Wrap(kStudio));
    const int allocations = FailEachLibraryAllocation([&] {
        CComPtr<IStatus> status;
        int read = 0;
        EAudioRawState state = ARS_MORE;
        m_pAggregator->RawRead(nullptr, 0, &read, state, status.Out());
    });
    EXPECT_GT(allocations, 0);
}

TEST_F(SourceAllocation, ArtistAndTitleWithoutMemoryLeaveNothing) {
    m_script.m_denied = {IID_IAdvancedFormat};
    m_script.m_pSourceName = "/music/A band with a long name - A song with a long name.wav";
    const int allocations = FailEachLibraryAllocation(
        [&] {
            ASSERT_TRUE(Wrap(kStudio));
            m_pAggregator->GetArtist();
            m_pAggregator->GetTitle();
        },
        [&](bool /*thrown*/) {
            Close();
            ExpectNoStreamLeft();
        });
    EXPECT_GT(allocations, 5);
}
