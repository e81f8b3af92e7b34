// A source over a fake decoder, for the tests of this folder.
#pragma once

#include <gtest/gtest.h>

#include "stream/SrcConvAggregator.h"
#include "tests/support/FakeConvertor.h"
#include "tests/support/FakeDecoder.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/StreamQueries.h"

namespace support {

// The test's body writes the script, then wraps; what is still open at the end is released.
class CSourceFixture : public testing::Test {
protected:
    CSourceFixture() { m_factory.m_convertor.m_pLog = &m_script.m_log; }
    ~CSourceFixture() override { Close(); }

    // Constructs the aggregator as the manager does; false when construction failed, with the decoder left in
    // m_pStream.
    bool Wrap(const SWavFormat* wanted) {
        m_pStream = NewDecoder(m_script);
        m_pDecoder = m_pStream;
        auto source = std::make_unique<CSrcConvAggregator>(m_manager.Get(), &m_pStream, wanted);
        if (!source->IsValid()) return false;
        m_pAggregator = source.release();
        return true;
    }

    bool Wrap(const SWavFormat& wanted) { return Wrap(&wanted); }

    // Gives back the host's reference.
    unsigned int Close() {
        m_pAggregator = nullptr;
        IUnknown* const stream = m_pStream;
        m_pStream = nullptr;
        return stream != nullptr ? stream->Release() : 0;
    }

    void InstallFactory() { ASSERT_TRUE(m_manager->SetConvertor(&m_factory, nullptr)); }

    // Wraps the decoder in another format and starts.
    void StartConverting(const SWavFormat& wanted) {
        InstallFactory();
        ASSERT_TRUE(Wrap(wanted));
        ASSERT_TRUE(m_pAggregator->Start(nullptr));
        ASSERT_EQ(m_factory.m_convertor.m_nAlive, 1);
    }

    SDecoderScript m_script;
    CFakeConvertorFactory m_factory;
    CManagerHold m_manager;
    IUnknown* m_pStream = nullptr;
    IUnknown* m_pDecoder = nullptr;
    CSrcConvAggregator* m_pAggregator = nullptr;
};

constexpr SWavFormat kCompactDisc{44100, 16, 2};
constexpr SWavFormat kStudio{48000, 24, 2};

}  // namespace support
