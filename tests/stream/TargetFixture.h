// A target over a fake encoder, for the tests of this folder.
#pragma once

#include <gtest/gtest.h>

#include "stream/TargetAggregator.h"
#include "tests/support/FakeConvertor.h"
#include "tests/support/FakeEncoder.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/StreamQueries.h"

namespace support {

// The test's body writes the script, then creates; what is still open at the end is released.
class CTargetFixture : public testing::Test {
protected:
    CTargetFixture() {
        m_targets.m_pEncoder = &m_script;
        m_factory.m_convertor.m_pLog = &m_script.m_log;
    }
    ~CTargetFixture() override { Close(); }

    // Through the manager; on success m_pTarget stands.
    bool Create(const SWavFormat& format, IStatus** status = nullptr) {
        if (!m_manager->CreateURLAudioTarget(&m_targets, &m_pStream, format, status)) return false;
        m_pTarget = static_cast<CTargetAggregator*>(static_cast<IAudioRawWriter*>(m_pStream));
        return true;
    }

    // Gives back the host's reference.
    unsigned int Close() {
        m_pTarget = nullptr;
        IUnknown* const stream = m_pStream;
        m_pStream = nullptr;
        return stream != nullptr ? stream->Release() : 0;
    }

    // Installs the factory with references for `starts` converting starts of the host.
    void InstallFactory(int starts = 1) {
        for (int i = 0; i < starts; ++i) m_factory.AddRef();
        ASSERT_TRUE(m_manager->SetConvertor(&m_factory, nullptr));
    }

    void StartConverting(const SWavFormat& format) {
        InstallFactory();
        ASSERT_TRUE(Create(format));
        ASSERT_TRUE(m_pTarget->Start(nullptr));
        ASSERT_EQ(m_factory.m_convertor.m_nAlive, 1);
    }

    SEncoderScript m_script;
    CFakeTargetFactory m_targets;
    CFakeConvertorFactory m_factory;
    CManagerHold m_manager;
    IUnknown* m_pStream = nullptr;
    CTargetAggregator* m_pTarget = nullptr;
};

constexpr SWavFormat kCompactDisc{44100, 16, 2};
constexpr SWavFormat kStudio{48000, 24, 2};

}  // namespace support
