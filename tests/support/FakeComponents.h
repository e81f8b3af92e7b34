// Decoder and URL handler components that do what their test says. The test owns them; they outlive the manager.
#pragma once

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "com/AudioComponent.h"
#include "com/QueryTable.h"
#include "stream/FileOpener.h"
#include "stream/URLSourceHandler.h"
#include "tests/support/CallLog.h"
#include "tests/support/LoggedFace.h"
#include "tests/support/PlainCount.h"
#include "tests/support/ScriptedCall.h"

namespace support {

// What an opener was asked for.
struct SOpenCall {
    std::string m_path;
    IUnknown** m_ppStream;
    EAuxFlags m_eRequired;
    EAuxFlags m_eExcluded;
    bool m_bHadStatus;
};

// Both faces in one object, which has references of its own. [stream-thread]
class CFakeFileOpener final : public IAudioFileOpener {
public:
    unsigned int AddRef() override { return m_references.Increment(); }
    unsigned int Release() override { return m_references.Decrement(); }
    int QueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face, {{IID_IUnknown, static_cast<IAudioFileOpenerControl*>(this)}});
    }
    EAuxFlags GetAuxFlags() override {
        Tell("capabilities");
        ++m_nFlagCalls;
        return m_eCapabilities;
    }
    bool Open(const char* path, IUnknown** stream, EAuxFlags required, EAuxFlags excluded, IStatus** status) override {
        m_openCalls.push_back({path, stream, required, excluded, status != nullptr});
        if (m_pLog != nullptr) m_pLog->Note("open " + m_name);
        if (!Play(m_open, status)) return false;
        *stream = m_newStream ? m_newStream() : nullptr;
        return true;
    }
    unsigned int GetOpenerState() override {
        Tell("opener state");
        return m_nState;
    }

    unsigned int References() const { return m_references.Value(); }

    std::function<void(const char*)> m_onCall;  // told "capabilities" and "opener state" before these are answered
    std::string m_name;
    CCallLog* m_pLog = nullptr;
    unsigned int m_nState = kOpenerEnabled;
    EAuxFlags m_eCapabilities = AUX_CONVERT;
    SScriptedCall m_open;
    std::function<IUnknown*()> m_newStream;
    std::vector<SOpenCall> m_openCalls;
    int m_nFlagCalls = 0;

private:
    void Tell(const char* call) const {
        if (m_onCall) m_onCall(call);
    }

    CPlainCount m_references;
};

// The plain part of a component.
class CFakeComponent : public IAudioComponent {
public:
    CFakeComponent(std::string name, EAudioComponentType type) : m_eType(type), m_name(std::move(name)) {}

    CFakeComponent(const CFakeComponent&) = delete;
    CFakeComponent& operator=(const CFakeComponent&) = delete;

    unsigned int AddRef() override { return m_references.Increment(); }
    unsigned int Release() override {
        Tell("release component");
        return m_references.Decrement();
    }
    int QueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face, {{IID_IUnknown, static_cast<IAudioComponent*>(this)}});
    }
    const char* GetName() override { return m_name.c_str(); }
    EAudioComponentType GetType() override { return m_eType; }
    bool Initialize(IAudioPluginMgr* /*manager*/, IStatus** status) override { return Play(m_initialize, status); }
    void Terminate() override { ++m_nTerminations; }

    unsigned int References() const { return m_references.Value(); }

    // Those on a face that has references of its own.
    virtual unsigned int FaceReferences() const { return 0; }

    EAudioComponentType m_eType;
    SScriptedCall m_initialize;
    int m_nTerminations = 0;
    // Told "release component", "query" and "extension", "protocols" and "fetch" of a handler, "release handler", and
    // what an opener tells, before these are answered.
    std::function<void(const char*)> m_onCall;

protected:
    ~CFakeComponent() = default;

    void Tell(const char* call) const {
        if (m_onCall) m_onCall(call);
    }

private:
    std::string m_name;
    CPlainCount m_references;
};

// A component with nothing beyond the plain part.
class CFakePlainComponent final : public CFakeComponent {
public:
    using CFakeComponent::CFakeComponent;
};

class CFakeDecoderComponent final : public CFakeComponent, public IExtensionList {
public:
    CFakeDecoderComponent(const std::string& name, std::vector<const char*> extensions)
        : CFakeComponent(name, ACT_DECODER), m_extensions(std::move(extensions)) {
        m_opener.m_name = name;
        m_opener.m_onCall = [this](const char* call) { Tell(call); };
    }

    unsigned int AddRef() override { return CFakeComponent::AddRef(); }
    unsigned int Release() override { return CFakeComponent::Release(); }
    int QueryInterface(unsigned long identity, void** face) override {
        Tell(identity == IID_IExtensionList ? "query extensions" : "query");
        if (identity == IID_IAudioFileOpener && m_bOffersOpener && face != nullptr) {
            m_opener.AddRef();
            *face = static_cast<IAudioFileOpenerOperations*>(&m_opener);
            return kInterfaceFound;
        }
        IExtensionList* const extensions = m_bOffersExtensions ? this : nullptr;
        return AnswerQuery(*this, identity, face,
                           {{IID_IUnknown, static_cast<IAudioComponent*>(this)}, {IID_IExtensionList, extensions}});
    }
    int GetCount() override { return static_cast<int>(m_extensions.size()); }
    const char* GetAt(int n) override {
        Tell("extension");
        ++m_nGetAtCalls;
        return m_extensions[static_cast<std::size_t>(n)];
    }
    unsigned int FaceReferences() const override { return m_opener.References(); }

    CFakeFileOpener m_opener;
    std::vector<const char*> m_extensions;
    bool m_bOffersOpener = true;
    bool m_bOffersExtensions = true;
    int m_nGetAtCalls = 0;
};

class CFakeURLHandler final : public CFakeComponent {
public:
    CFakeURLHandler(const std::string& name, unsigned int protocols)
        : CFakeComponent(name, ACT_URL_HANDLER), m_nProtocols(protocols), m_face(*this, "release handler") {}

    int QueryInterface(unsigned long identity, void** face) override {
        Tell("query");
        if (identity != IID_IURLSourceHandler || !m_bOffersHandler || face == nullptr) {
            return CFakeComponent::QueryInterface(identity, face);
        }
        m_face.AddRef();
        *face = static_cast<IURLSourceHandler*>(&m_face);
        return kInterfaceFound;
    }
    unsigned int FaceReferences() const override { return m_faceReferences.Value(); }

    void NoteRelease(const char* call) const { Tell(call); }
    unsigned int CountUp() { return m_faceReferences.Increment(); }
    unsigned int CountDown() { return m_faceReferences.Decrement(); }

    unsigned int m_nProtocols;
    bool m_bOffersHandler = true;
    SScriptedCall m_fetch;
    std::string m_localPath;
    std::vector<std::string> m_urls;
    int m_nReserved = -1;
    IStatus** m_ppStatus = nullptr;

private:
    class CHandlerFace final : public CLoggedFace<IURLSourceHandler, CFakeURLHandler> {
    public:
        using CLoggedFace::CLoggedFace;
        unsigned int GetProtocols() override {
            m_owner.Tell("protocols");
            return m_owner.m_nProtocols;
        }
        bool Fetch(const char* url, char* localPath, int reserved, IStatus** status) override {
            m_owner.Tell("fetch");
            m_owner.m_urls.emplace_back(url);
            m_owner.m_nReserved = reserved;
            m_owner.m_ppStatus = status;
            std::memset(localPath, 0, kLocalPathCapacity);
            m_owner.m_localPath.copy(localPath, kLocalPathCapacity - 1);
            return Play(m_owner.m_fetch, status);
        }
    };

    CPlainCount m_faceReferences;
    CHandlerFace m_face;
};

}  // namespace support
