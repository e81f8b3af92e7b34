// The manager's life: construction, destruction, reference count and faces.
#include "pluginmgr/AudioPluginMgr.h"

#include "com/QueryTable.h"
#include "pluginmgr/CreationLock.h"

CPosixMutex m_sectPMCreation(0);
CAudioPluginMgr* g_pAudioPluginMgr = nullptr;

CAudioPluginMgr::CAudioPluginMgr()
    : m_references(0),
      m_loads(0),
      m_mtxReceivers(0),
      m_pAppWindow(nullptr),
      m_bFeatureBasic(false),
      m_bFeatureAdvancedFormats(false),
      m_mtxComponentOrder(0) {
    const CCreationLock lock;
    g_pAudioPluginMgr = this;
    g_pMetadataSettings = &m_metadataSettings;
}

// Plug-ins stay loaded and components keep their references: giving them back is UnloadPlugins' work alone.
CAudioPluginMgr::~CAudioPluginMgr() { Withdraw(); }

void CAudioPluginMgr::Withdraw() {
    const CCreationLock lock;
    if (g_pAudioPluginMgr != this) return;
    g_pAudioPluginMgr = nullptr;
    g_pMetadataSettings = nullptr;
}

// Between the count's step to 0 and the lock another thread may have been handed the manager again, or have ended it.
bool CAudioPluginMgr::WithdrawUnreferenced(CAudioPluginMgr* manager) {
    const CCreationLock lock;
    if (g_pAudioPluginMgr != manager || manager->m_references.Value() != 0) return false;
    manager->Withdraw();
    return true;
}

unsigned int CAudioPluginMgr::AddRef() { return m_references.Increment(); }

unsigned int CAudioPluginMgr::Release() {
    const unsigned int count = m_references.Decrement();
    if (count == 0 && WithdrawUnreferenced(this)) delete this;
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
