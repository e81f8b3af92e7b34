// Opening of sources through fake components, for the tests of this folder.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/FakeComponents.h"
#include "tests/support/FakeDecoder.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/StreamQueries.h"

namespace support {

// Derived fixtures own the components; a test registers those it needs, in the order in which they are tried.
class COpeningFixture : public testing::Test {
protected:
    ~COpeningFixture() override { CloseStream(); }

    void Register(const std::initializer_list<CFakeComponent*>& components) {
        for (CFakeComponent* const component : components) {
            m_manager.Register(*component);
            m_vRegistered.push_back(component);
        }
    }

    // Makes a decoder component write to the common log and hand out decoders.
    void Prepare(CFakeDecoderComponent& component) {
        component.m_opener.m_pLog = &m_log;
        component.m_opener.m_newStream = [this] { return NewDecoder(m_decoder); };
    }

    bool Open(const std::string& url, int pass = -1, IStatus** status = nullptr) {
        CloseStream();
        return m_manager->OpenURLAudioFile(url.c_str(), &m_pStream, pass, m_eRequired, m_eExcluded, status);
    }

    // With a wanted format.
    bool OpenWanted(const std::string& url, const SWavFormat* wanted, IStatus** status = nullptr) {
        CloseStream();
        return m_manager->OpenURLAudioFile(url.c_str(), wanted, &m_pStream, -1, m_eRequired, m_eExcluded, status);
    }

    // The decoders that an open with `pass` tries, in order, when all of them refuse.
    std::vector<std::string> Tried(const std::string& path, int pass) {
        m_log.Clear();
        EXPECT_FALSE(Open(path, pass));
        return m_log.After("open ");
    }

    // Only the registry's own references are left, and no opener or handler is held.
    void ExpectNothingHeld() {
        for (CFakeComponent* const component : m_vRegistered) {
            EXPECT_EQ(component->References(), 1U) << component->GetName();
            EXPECT_EQ(component->FaceReferences(), 0U) << component->GetName();
        }
        EXPECT_EQ(CCountedStatus::Alive(), 0);
    }

    void CloseStream() {
        if (m_pStream != nullptr && m_pStream != Untouched()) m_pStream->Release();
        m_pStream = nullptr;
    }

    // A value that no open stores.
    IUnknown* Untouched() { return reinterpret_cast<IUnknown*>(this); }

    CScratchDirectory m_directory;
    std::string m_song = m_directory.Write("Song.WaV", "x");
    CCallLog m_log;
    SDecoderScript m_decoder;
    CManagerHold m_manager;
    std::vector<CFakeComponent*> m_vRegistered;
    IUnknown* m_pStream = nullptr;
    EAuxFlags m_eRequired = AUX_NONE;
    EAuxFlags m_eExcluded = AUX_NONE;
};

}  // namespace support
