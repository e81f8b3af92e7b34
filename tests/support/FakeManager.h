// A manager that is not the process's one and offers nothing beyond a convertor factory.
#pragma once

#include "com/QueryTable.h"
#include "stream/AudioPluginMgrInterface.h"
#include "tests/support/PlainCount.h"

namespace support {

// Owned by its test; every operation but GetConvertor refuses. [stream-thread]
class CFakeManager : public IAudioPluginMgr {
public:
    unsigned int AddRef() override { return m_references.Increment(); }
    unsigned int Release() override { return m_references.Decrement(); }
    int QueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face, {{IID_IUnknown, this}});
    }
    bool SetPluginDirectory(const char*) override { return false; }
    bool SetImagesDirectory(const char*) override { return false; }
    const char* GetImagesDirectory() override { return ""; }
    bool LoadPlugins() override { return false; }
    bool CanUnloadPlugins() override { return false; }
    bool UnloadPlugins() override { return false; }
    bool SetConvertor(IConvertorFactory*, IStatus**) override { return false; }
    bool GetConvertor(IConvertorFactory** factory) override {
        *factory = m_pFactory;
        return true;
    }
    bool GetUnsupportedComponents(IComponentEnum**) override { return false; }
    bool SendEvent(unsigned int, IUnknown*) override { return false; }
    bool SubscribeToEvents(IEventReceiver*) override { return false; }
    bool UnsubscribeToEvents(IEventReceiver*) override { return false; }
    bool OpenURLAudioFile(const char*, const SWavFormat*, IUnknown**, int, EAuxFlags, EAuxFlags, IStatus**) override {
        return false;
    }
    bool CreateURLAudioTarget(IURLAudioTargetFactory*, IUnknown**, const SWavFormat&, IStatus**) override {
        return false;
    }
    bool AttachAuxObject(void*, IUnknown*) override { return false; }
    bool DetachAuxObject(void*) override { return false; }
    bool GetAuxObject(void*, IUnknown**) override { return false; }

    unsigned int References() const { return m_references.Value(); }

    IConvertorFactory* m_pFactory = nullptr;

private:
    CPlainCount m_references;
};

}  // namespace support
