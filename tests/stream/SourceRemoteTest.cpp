// Opening of remote sources through URL handlers.
#include <errno.h>
#include <gtest/gtest.h>

#include "com/StatusObject.h"
#include "stream/SrcConvAggregator.h"
#include "tests/stream/OpeningFixture.h"

namespace {

using support::CFakeDecoderComponent;
using support::CFakePlainComponent;
using support::CFakeURLHandler;
using support::EOutcome;
using support::ErrorOf;
using support::TextOf;

constexpr char kHttp[] = "HTTP://host/song.ogg";
constexpr char kFtp[] = "ftp://host/song.ogg";

class SourceRemote : public support::COpeningFixture {
protected:
    SourceRemote() {
        Prepare(m_wav);
        Prepare(m_ogg);
        m_handler.m_localPath = m_song;
        m_second.m_localPath = m_song;
    }

    unsigned int ManagerReferences() const {
        m_manager->AddRef();
        return m_manager->Release();
    }

    CFakeDecoderComponent m_wav{"wav", {"wav"}};
    CFakeDecoderComponent m_ogg{"ogg", {"ogg"}};
    CFakeURLHandler m_handler{"handler", URL_HTTP | URL_FTP};
    CFakeURLHandler m_second{"second", URL_HTTP | URL_FTP};
};

TEST_F(SourceRemote, TheHandlerGetsTheURLAndTheFetchedFileIsOpened) {
    Register({&m_wav, &m_handler});
    for (const char* const url : {kHttp, kFtp}) {
        EXPECT_TRUE(Open(url)) << url;
        EXPECT_EQ(m_handler.m_urls.back(), url);
        EXPECT_EQ(m_handler.m_nReserved, 0);
        EXPECT_EQ(m_wav.m_opener.m_openCalls.back().m_path, m_song);
        ExpectNothingHeld();
    }
}

TEST_F(SourceRemote, TheExtensionIsThatOfTheFetchedFile) {
    Register({&m_ogg, &m_wav, &m_handler});
    EXPECT_TRUE(Open(kHttp, 0));
    EXPECT_TRUE(m_ogg.m_opener.m_openCalls.empty());
}

TEST_F(SourceRemote, PassAndFlagsGoOnToTheFetchedFile) {
    Register({&m_ogg, &m_wav, &m_handler});
    m_wav.m_opener.m_eCapabilities = static_cast<EAuxFlags>(0x1);
    m_ogg.m_opener.m_eCapabilities = static_cast<EAuxFlags>(0x3);
    EXPECT_TRUE(Open(kHttp, 1));
    EXPECT_EQ(m_log.After("open "), std::vector<std::string>{"ogg"});
    m_log.Clear();
    m_eExcluded = static_cast<EAuxFlags>(0x2);
    EXPECT_FALSE(Open(kHttp, 1));
    EXPECT_TRUE(Open(kHttp, -1));
    EXPECT_EQ(m_log.After("open "), std::vector<std::string>{"wav"});
    m_eRequired = static_cast<EAuxFlags>(0x8);
    EXPECT_FALSE(Open(kHttp, -1));
}

TEST_F(SourceRemote, OnlyHandlersOfTheProtocolAreAsked) {
    Register({&m_wav, &m_handler, &m_second});
    m_handler.m_nProtocols = URL_FTP;
    m_second.m_nProtocols = URL_HTTP;
    EXPECT_TRUE(Open(kHttp));
    EXPECT_TRUE(m_handler.m_urls.empty());
    EXPECT_EQ(m_second.m_urls.size(), 1U);
    EXPECT_TRUE(Open(kFtp));
    EXPECT_EQ(m_handler.m_urls.size(), 1U);
    EXPECT_EQ(m_second.m_urls.size(), 1U);
}

TEST_F(SourceRemote, OtherComponentsAreSkipped) {
    CFakePlainComponent encoder("encoder", ACT_ENCODER);
    Register({&encoder, &m_wav, &m_handler, &m_second});
    m_handler.m_bOffersHandler = false;
    m_second.m_eType = ACT_CONVERTOR;  // offers the interface all the same
    CComPtr<IStatus> status;
    EXPECT_FALSE(Open(kHttp, -1, status.Out()));
    EXPECT_EQ(ErrorOf(status), 0x80000004U);
    EXPECT_TRUE(m_second.m_urls.empty());
    ExpectNothingHeld();
    m_manager.Release();
}

TEST_F(SourceRemote, WithoutAHandlerThereIsNoDecoder) {
    Register({&m_wav});
    CComPtr<IStatus> status;
    m_pStream = Untouched();
    EXPECT_FALSE(m_manager->OpenURLAudioFile(kHttp, &m_pStream, -1, AUX_NONE, AUX_NONE, status.Out()));
    EXPECT_EQ(m_pStream, nullptr);
    EXPECT_EQ(ErrorOf(status), 0x80000004U);
    EXPECT_FALSE(Open(kFtp));
}

TEST_F(SourceRemote, AFailingHandlerPassesTheTurnToTheNext) {
    Register({&m_wav, &m_handler, &m_second});
    m_handler.m_fetch.m_eOutcome = EOutcome::Fails;
    EXPECT_TRUE(Open(kHttp));
    EXPECT_EQ(m_handler.m_urls.size(), 1U);
    EXPECT_EQ(m_second.m_urls.size(), 1U);
    ExpectNothingHeld();
}

TEST_F(SourceRemote, TheFirstHandlerThatFetchesEndsTheWalk) {
    Register({&m_wav, &m_handler, &m_second});
    EXPECT_TRUE(Open(kHttp));
    EXPECT_TRUE(m_second.m_urls.empty());
    m_handler.m_localPath = m_directory / "missing.wav";
    EXPECT_FALSE(Open(kHttp));
    EXPECT_TRUE(m_second.m_urls.empty());
}

TEST_F(SourceRemote, WhenEveryHandlerFailsTheGeneralReasonIsGiven) {
    Register({&m_wav, &m_handler, &m_second});
    m_handler.m_fetch = {EOutcome::Fails, "no route"};
    m_second.m_fetch = {EOutcome::Fails, "no route either"};
    CComPtr<IStatus> status;
    EXPECT_FALSE(Open(kHttp, -1, status.Out()));
    EXPECT_EQ(ErrorOf(status), 0x80000004U);
    EXPECT_STREQ(TextOf(status), "");
    ExpectNothingHeld();
}

TEST_F(SourceRemote, HandlersGetTheCallersStatusPointer) {
    Register({&m_wav, &m_handler});
    EXPECT_TRUE(Open(kHttp));
    EXPECT_EQ(m_handler.m_ppStatus, nullptr);
    const auto before = CComPtr<IStatus>::Adopt(new CStatus("before"));
    IStatus* status = before.Get();
    EXPECT_TRUE(Open(kHttp, -1, &status));
    EXPECT_EQ(m_handler.m_ppStatus, &status);
    EXPECT_EQ(status, before.Get());
    m_handler.m_fetch = {EOutcome::Fails, "gone"};
    EXPECT_FALSE(Open(kHttp, -1, &status));
    EXPECT_EQ(ErrorOf(CComPtr<IStatus>::Adopt(status)), AE_NO_DECODER);
    ExpectNothingHeld();
}

TEST_F(SourceRemote, AStatusOfTheHandlersReachesTheCallerOnSuccess) {
    Register({&m_wav, &m_handler, &m_second});
    m_handler.m_fetch = {EOutcome::Fails, "slow"};
    CComPtr<IStatus> status;
    EXPECT_TRUE(Open(kHttp, -1, status.Out()));
    EXPECT_STREQ(TextOf(status), "slow");
    status.Reset();
    m_second.m_fetch.m_pReason = "from the cache";
    EXPECT_TRUE(Open(kHttp, -1, status.Out()));
    EXPECT_STREQ(TextOf(status), "from the cache");
    status.Reset();
    ExpectNothingHeld();
}

TEST_F(SourceRemote, AHandlerThatClearsTheStatusLeavesNone) {
    Register({&m_wav, &m_handler, &m_second});
    m_handler.m_fetch = {EOutcome::Fails, "slow"};
    IStatus* status = nullptr;
    m_second.m_onCall = [&](const std::string& call) {
        if (call == "fetch") status = nullptr;
    };
    EXPECT_TRUE(Open(kHttp, -1, &status));
    EXPECT_EQ(status, nullptr);
    ExpectNothingHeld();

    m_handler.m_fetch.m_pReason = nullptr;
    const auto before = CComPtr<IStatus>::Adopt(new support::CCountedStatus("before"));
    status = before.Get();
    m_second.m_fetch.m_pReason = "from the cache";
    EXPECT_TRUE(Open(kHttp, -1, &status));
    EXPECT_STREQ(TextOf(CComPtr<IStatus>::Adopt(status)), "from the cache");
    EXPECT_EQ(support::CCountedStatus::Alive(), 1);  // the caller's own
}

TEST_F(SourceRemote, TheFailureOfTheFetchedFileIsTheFailure) {
    Register({&m_wav, &m_handler});
    m_handler.m_fetch.m_pReason = "from the cache";
    m_wav.m_opener.m_open = {EOutcome::Fails, "damaged"};
    CComPtr<IStatus> status;
    EXPECT_FALSE(Open(kHttp, -1, status.Out()));
    EXPECT_STREQ(TextOf(status), "damaged");
    status.Reset();
    m_handler.m_localPath = m_directory / "missing.wav";
    EXPECT_FALSE(Open(kHttp, -1, status.Out()));
    ASSERT_TRUE(status);
    EXPECT_EQ(status->GetSysError(), static_cast<unsigned int>(ENOENT));
    status.Reset();
    m_handler.m_localPath = "relative.wav";
    EXPECT_FALSE(Open(kHttp, -1, status.Out()));
    EXPECT_EQ(ErrorOf(status), 0x80000003U);
    status.Reset();
    ExpectNothingHeld();
}

TEST_F(SourceRemote, AFetchedNameMayBeRemoteAgain) {
    Register({&m_wav, &m_handler, &m_second});
    m_handler.m_nProtocols = URL_HTTP;
    m_handler.m_localPath = kFtp;
    m_handler.m_fetch.m_pReason = "moved";
    m_second.m_nProtocols = URL_FTP;
    m_second.m_fetch.m_pReason = "from the cache";
    CComPtr<IStatus> status;
    EXPECT_TRUE(Open(kHttp, -1, status.Out()));
    EXPECT_EQ(m_second.m_urls.at(0), kFtp);
    EXPECT_STREQ(TextOf(status), "from the cache");
    status.Reset();
    ExpectNothingHeld();
}

TEST_F(SourceRemote, NamesThatNeverBecomeLocalHaveNoDecoder) {
    Register({&m_wav, &m_handler});
    m_handler.m_localPath = kHttp;
    m_handler.m_fetch.m_pReason = "moved";
    CComPtr<IStatus> status;
    EXPECT_FALSE(Open(kHttp, -1, status.Out()));
    EXPECT_EQ(ErrorOf(status), 0x80000004U);
    m_handler.m_localPath = m_song;
    m_handler.m_fetch.m_pReason = nullptr;
    status.Reset();
    EXPECT_TRUE(Open(kHttp, -1, status.Out())) << "the next one starts anew";
    status.Reset();
    ExpectNothingHeld();
}

TEST_F(SourceRemote, TheLocalPathMayFillItsWholeBuffer) {
    Register({&m_wav, &m_handler});
    m_handler.m_localPath = "/" + std::string(kLocalPathCapacity - 2, 'a');
    CComPtr<IStatus> status;
    EXPECT_FALSE(Open(kHttp, -1, status.Out()));
    ASSERT_TRUE(status);
    EXPECT_EQ(status->GetSysError(), static_cast<unsigned int>(ENAMETOOLONG));
}

TEST_F(SourceRemote, AnExceptionOfAHandlerLeavesItsStatusAlone) {
    Register({&m_wav, &m_handler, &m_second});
    m_handler.m_fetch = {EOutcome::Fails, "gone"};
    m_second.m_fetch = {EOutcome::ThrowsInt, "broken"};
    CComPtr<IStatus> status;
    EXPECT_THROW(Open(kHttp, -1, status.Out()), int);
    EXPECT_STREQ(TextOf(status), "broken");
    status.Reset();
    ExpectNothingHeld();
}

TEST_F(SourceRemote, HandlerComponentAndManagerAreHeldUntilTheFileIsOpenedAndReleasedInThisOrder) {
    Register({&m_wav, &m_handler});
    const unsigned int before = ManagerReferences();
    m_handler.m_onCall = [&](const std::string& call) {
        m_log.Note(call + ", " + std::to_string(ManagerReferences() - before) + " of the manager");
    };
    m_wav.m_onCall = [&](const std::string& call) {
        if (call != "opener state") return;
        EXPECT_EQ(m_log.Count("protocols, 1 of the manager"), 1);
        m_log.Clear();
    };
    EXPECT_TRUE(Open(kHttp));
    const std::vector<std::string> expected{"open wav", "release handler, 1 of the manager",
                                            "release component, 1 of the manager"};
    EXPECT_EQ(m_log.Lines(), expected);
    EXPECT_EQ(ManagerReferences(), before);
}

TEST_F(SourceRemote, NothingStaysHeldWhenACallOfAPlugInThrows) {
    Register({&m_wav, &m_handler});
    const std::pair<support::CFakeComponent*, std::string> kTable[] = {
        {&m_handler, "query"}, {&m_handler, "protocols"}, {&m_wav, "query"},           {&m_wav, "opener state"},
        {&m_wav, "extension"}, {&m_wav, "capabilities"},  {&m_wav, "query extensions"}};
    const unsigned int before = ManagerReferences();
    for (const auto& [component, failing] : kTable) {
        SCOPED_TRACE(failing);
        component->m_onCall = [&call = failing](const std::string& made) {
            if (made == call) throw 5;
        };
        EXPECT_THROW(Open(kHttp), int);
        component->m_onCall = nullptr;
        EXPECT_EQ(ManagerReferences(), before);
        ExpectNothingHeld();
    }
}

TEST_F(SourceRemote, AFetchedFileIsWrappedAsALocalOneIs) {
    Register({&m_wav, &m_handler});
    m_eRequired = AUX_CONVERT;
    const SWavFormat wanted{48000, 24, 2};
    EXPECT_TRUE(OpenWanted(kHttp, &wanted));
    EXPECT_TRUE(CComPtr<IRealFormat>::Query(m_pStream, IID_IRealFormat));
}

}  // namespace
