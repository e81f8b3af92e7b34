// The manager: plug-ins, registry, settings, events, auxiliary objects and streams of one process.
#pragma once

#include <memory>
#include <vector>

#include "com/AppWindow.h"
#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/ComponentEnum.h"
#include "com/ComponentInfo.h"
#include "com/ComponentOrder.h"
#include "com/Configurable.h"
#include "com/EventReceiver.h"
#include "com/FeatureSupport.h"
#include "com/Profile.h"
#include "com/ReferenceCount.h"
#include "portable/BasicString.h"
#include "portable/Export.h"
#include "portable/PosixMutex.h"
#include "stream/AudioPluginMgrInterface.h"
#include "stream/Convertor.h"
#include "stream/MetadataSettings.h"
#include "stream/URLSourceHandler.h"

class CAudioPluginLib;
class CAudioPluginMgr;

// Serialises creation and destruction of the manager and the loading and unloading of plug-ins. Recursive.
extern KELO_EXPORT CPosixMutex m_sectPMCreation;

// The process's manager, null while there is none. Written under m_sectPMCreation only.
extern KELO_EXPORT CAudioPluginMgr* g_pAudioPluginMgr;

// At most one exists in a process; GetAudioPluginMgr makes it. Its count starts at 0 and the last Release destroys it,
// without unloading plug-ins: hosts call UnloadPlugins as often as LoadPlugins before.
// The thread rules of the operations are those of the interfaces.
class KELO_EXPORT CAudioPluginMgr : public IAudioPluginMgr,
                                    public IComponentEnum,
                                    public IProfile,
                                    public IConfigurable,
                                    public IAudioPluginMgrInternal,
                                    public IComponentOrderMgr,
                                    public IAppWindow,
                                    public IFeatureSupport {
public:
    CAudioPluginMgr();

    CAudioPluginMgr(const CAudioPluginMgr&) = delete;
    CAudioPluginMgr& operator=(const CAudioPluginMgr&) = delete;

    unsigned int AddRef() override;
    unsigned int Release() override;
    int QueryInterface(unsigned long identity, void** face) override;

    bool SetPluginDirectory(const char* directory) override;
    bool SetImagesDirectory(const char* directory) override;
    const char* GetImagesDirectory() override;
    bool LoadPlugins() override;
    bool CanUnloadPlugins() override;
    bool UnloadPlugins() override;
    bool SetConvertor(IConvertorFactory* factory, IStatus** status) override;
    bool GetConvertor(IConvertorFactory** factory) override;
    bool GetUnsupportedComponents(IComponentEnum** components) override;
    bool SendEvent(unsigned int event, IUnknown* parameter) override;
    bool SubscribeToEvents(IEventReceiver* receiver) override;
    bool UnsubscribeToEvents(IEventReceiver* receiver) override;
    bool OpenURLAudioFile(const char* url, const SWavFormat* wanted, IUnknown** stream, int pass, EAuxFlags required,
                          EAuxFlags excluded, IStatus** status) override;
    bool CreateURLAudioTarget(IURLAudioTargetFactory* factory, IUnknown** stream, const SWavFormat& format,
                              IStatus** status) override;
    bool AttachAuxObject(void* key, IUnknown* object) override;
    bool DetachAuxObject(void* key) override;
    bool GetAuxObject(void* key, IUnknown** object) override;

    virtual ~CAudioPluginMgr();

    int GetCount() override;
    bool GetComponent(int index, IAudioComponent** component) override;
    bool SetVendor(const char* vendor, IStatus** status) override;
    const char* GetVendor() override;
    bool SetProduct(const char* product, IStatus** status) override;
    const char* GetProduct() override;
    bool Configure() override;
    bool GetComponentInfo(IAudioComponent* component, COMPONENT_INFO* info) override;
    bool Set(IAudioComponent** components, int count) override;
    bool Get(EAudioComponentType type, IComponentEnum** components) override;
    void SetAppWindow(_GtkWindow* window) override;
    _GtkWindow* GetAppWindow() override;
    bool IsSupported(EAudioFeature feature) override;
    bool EnableSupport(EAudioFeature feature, bool enable) override;

    // Registers a component, or the members of a collection, and takes over the caller's reference.
    virtual void AddComponent(IAudioComponent* component, const char* libraryFileName, int index);

    // Scans the plug-in directory and initialises what it finds; called by LoadPlugins under m_sectPMCreation.
    virtual void DoLoadPlugins();

    // Place of a receiver in the order of subscription, -1 when it is not subscribed. Takes no lock.
    virtual int GetReceiverNumber(IEventReceiver* receiver);

    // An EURLType.
    virtual int GetURLType(const char* url);

    // "%s*%d" of a component's COMPONENT_INFO; "*0" for an unknown component.
    virtual CBasicString<char> GetComponentStringID(IAudioComponent* component);

    // As the operation of IAudioPluginMgr, without wrapping the decoder.
    virtual bool OpenURLAudioFile(const char* url, IUnknown** stream, int pass, EAuxFlags required, EAuxFlags excluded,
                                  IStatus** status);

    // For hosts that hold this class: an ETagSourceMode and an EFileNameOrder, both 0 at first. [host set-up]
    void SetTagSourceMode(int mode);
    void SetFileNameOrder(int order);

    // String identities in the order in which Get is to list the decoders; the list is copied, and Get drops entries
    // that name no decoder. [host set-up]
    void SetComponentOrder(const char* const* identities, int count);

    // One entry of the table of auxiliary objects: one reference to an object under a key that is never dereferenced.
    class AUXOBJECT {
    public:
        // Takes a reference of its own; so does each copy.
        AUXOBJECT(void* key, IUnknown* object);
        AUXOBJECT(const AUXOBJECT& other);
        AUXOBJECT& operator=(const AUXOBJECT& other);
        virtual ~AUXOBJECT();

        void* pKey;
        CComPtr<IUnknown> pObject;
    };

private:
    KELO_HIDDEN void Withdraw();
    KELO_HIDDEN static bool WithdrawUnreferenced(CAudioPluginMgr* manager);
    KELO_HIDDEN void ScanPluginDirectory();
    KELO_HIDDEN void LoadPluginFile(const char* path);
    KELO_HIDDEN void RegisterPrimaryComponent(CAudioPluginLib& library);
    KELO_HIDDEN void DiscardLastLibrary(std::size_t componentsBefore);
    KELO_HIDDEN void InitializeComponents();
    KELO_HIDDEN bool InitializeComponent(IAudioComponent& component, IStatus** status);
    KELO_HIDDEN void EraseComponent(std::size_t position);
    KELO_HIDDEN void RegisterMembers(IAudioComponent* collection, const char* libraryFileName);
    KELO_HIDDEN std::vector<CComPtr<IAudioComponent>> ListDecoders();
    KELO_HIDDEN bool SetProfileText(CBasicString<char>& member, const char* text, IStatus** status);
    KELO_HIDDEN bool EnableAdvancedFormats();
    KELO_HIDDEN bool OpenLocal(const char* path, IUnknown** stream, int pass, EAuxFlags required, EAuxFlags excluded,
                               IStatus** status);
    KELO_HIDDEN bool OpenRemote(const char* url, IUnknown** stream, int pass, EAuxFlags required, EAuxFlags excluded,
                                IStatus** status);
    KELO_HIDDEN std::vector<AUXOBJECT>::iterator FindAuxObject(void* key);

    CReferenceCount m_references;
    CReferenceCount m_loads;
    CBasicString<char> m_strPluginDirectory;
    CBasicString<char> m_strImagesDirectory;
    std::vector<IAudioComponent*> m_vComponents;                 // one reference each while loaded
    std::vector<CAudioPluginLib*> m_vLibraries;                  // owned while loaded
    std::vector<std::unique_ptr<COMPONENT_INFO>> m_vIdentities;  // same positions as m_vComponents
    CComPtr<IConvertorFactory> m_pConvertorFactory;
    CComPtr<IURLSourceHandler> m_pURLSourceHandler;
    std::vector<AUXOBJECT> m_vAuxObjects;
    std::vector<IEventReceiver*> m_vReceivers;  // borrowed
    CPosixMutex m_mtxReceivers;
    CBasicString<char> m_strVendor;
    CBasicString<char> m_strProduct;
    std::vector<CBasicString<char>> m_vComponentOrder;
    SMetadataSettings m_metadataSettings;
    _GtkWindow* m_pAppWindow;  // borrowed
    bool m_bFeatureBasic;
    bool m_bFeatureAdvancedFormats;
    CPosixMutex m_mtxComponentOrder;
};
