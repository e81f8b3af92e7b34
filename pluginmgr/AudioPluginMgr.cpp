// The manager's life: construction, destruction, reference count and faces.
#include "pluginmgr/AudioPluginMgr.h"

#include "com/QueryTable.h"
#include "portable/PosixSingleLock.h"

CPosixMutex m_sectPMCreation(0);
CAudioPluginMgr* g_pAudioPluginMgr = nullptr;

namespace {

void Publish(CAudioPluginMgr* manager, const SMetadataSettings* settings) {
    const CPosixSingleLock lock(&m_sectPMCreation, 1);
    g_pAudioPluginMgr = manager;
    g_pMetadataSettings = settings;
}

}  // namespace

CAudioPluginMgr::CAudioPluginMgr()
    : m_references(0),
      m_loads(0),
      m_mtxReceivers(0),
      m_pAppWindow(nullptr),
      m_bFeatureBasic(false),
      m_bFeatureAdvancedFormats(false) {
    Publish(this, &m_metadataSettings);
}

// Plug-ins stay loaded and components keep their references: giving them back is UnloadPlugins' work alone.
CAudioPluginMgr::~CAudioPluginMgr() { Publish(nullptr, nullptr); }

unsigned int CAudioPluginMgr::AddRef() { return m_references.Increment(); }

unsigned int CAudioPluginMgr::Release() {
    const unsigned int count = m_references.Decrement();
    if (count == 0) delete this;
    return count;
}

int CAudioPluginMgr::QueryInterface(unsigned long identity, void** face) {
    // The primary face is never given, not even for IUnknown.
    return AnswerQuery(*this, identity, face,
                       {{IID_IUnknown, static_cast<IComponentEnum*>(this)},
                        {IID_IComponentEnum, static_cast<IComponentEnum*>(this)},
                        {IID_IProfile, static_cast<IProfile*>(this)},
                        {IID_IConfigurable, static_cast<IConfigurable*>(this)},
                        {IID_IAudioPluginMgrInternal, static_cast<IAudioPluginMgrInternal*>(this)},
                        {IID_IComponentOrderMgr, static_cast<IComponentOrderMgr*>(this)},
                        {IID_IAppWindow, static_cast<IAppWindow*>(this)},
                        {IID_IFeatureSupport, static_cast<IFeatureSupport*>(this)}});
}
