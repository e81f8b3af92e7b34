// Discovery, loading and unloading of plug-ins.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "com/InterfaceIds.h"
#include "pluginmgr/AudioPluginLib.h"
#include "pluginmgr/CreationLock.h"
#include "pluginmgr/GiveUp.h"
#include "portable/DirEntry.h"
#include "portable/DynamicLibrary.h"
#include "portable/PortableFile.h"
#include "stream/LiveAggregators.h"

namespace {

// What the component stores counts, whatever result it gives.
template <typename T>
void QueryInto(IAudioComponent& component, unsigned long identity, CComPtr<T>& member) {
    void* face = nullptr;
    component.QueryInterface(identity, &face);
    member = CComPtr<T>::Adopt(static_cast<T*>(face));
}

// Takes a reference to `object` again, at its end, and puts it back into the member.
template <typename T>
class CReturnedReference {
public:
    CReturnedReference(CComPtr<T>& member, T* object) : m_member(member), m_pObject(object) {}
    ~CReturnedReference() {
        if (m_pObject != nullptr) m_member = CComPtr<T>(m_pObject);
    }

    CReturnedReference(const CReturnedReference&) = delete;
    CReturnedReference& operator=(const CReturnedReference&) = delete;

private:
    CComPtr<T>& m_member;
    T* m_pObject;
};

struct SModuleCloser {
    void operator()(void* module) const noexcept { FreeLibrary(module); }
};

// After an int of a library's static initialisers: glibc keeps such a library, and would give it out uninitialised when
// it is opened again. Its lock stays with this thread, which goes on loading; dlopen in another thread does not return.
void CloseUninitialized(const char* path) {
    void* const module = LoadLibrary(path);
    if (module == nullptr) return;
    FreeLibrary(module);
    FreeLibrary(module);  // the handle that the exception kept from the caller
}

// Makes `directory` the current one and returns to the old one at its end, be it one that has no name any more.
class CCurrentDirectory {
public:
    explicit CCurrentDirectory(const char* directory)
        : m_nDescriptor(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)),
          m_bSaved(CPortableFile::GetCurrentDirectory(sizeof m_szSaved, m_szSaved) != 0),
          m_bEntered(CPortableFile::SetCurrentDirectory(directory) != 0) {}
    ~CCurrentDirectory() {
        const bool returned = m_bSaved && CPortableFile::SetCurrentDirectory(m_szSaved) != 0;
        if (m_nDescriptor == -1) return;
        if (!returned) static_cast<void>(fchdir(m_nDescriptor) == 0);
        close(m_nDescriptor);
    }

    CCurrentDirectory(const CCurrentDirectory&) = delete;
    CCurrentDirectory& operator=(const CCurrentDirectory&) = delete;

    bool IsEntered() const { return m_bEntered; }

private:
    int m_nDescriptor;
    char m_szSaved[4096];
    bool m_bSaved;
    bool m_bEntered;
};

}  // namespace

bool CAudioPluginMgr::SetPluginDirectory(const char* directory) {
    if (m_loads.Value() != 0) return false;
    m_strPluginDirectory = directory;
    return true;
}

bool CAudioPluginMgr::LoadPlugins() {
    if (m_loads.Value() != 0) {
        m_loads.Increment();
        return true;
    }
    m_sectPMCreation.Lock(kInfiniteTimeout);
    if (m_strPluginDirectory.IsEmpty()) m_strPluginDirectory = ".";
    // A plug-in's exception passes with the lock still held: deliberate.
    DoLoadPlugins();
    m_loads.Increment();
    m_sectPMCreation.Unlock();
    return true;
}

void CAudioPluginMgr::DoLoadPlugins() {
    CanUnloadPlugins();  // deliberate, like the one below: nobody asks for the result
    const CCurrentDirectory directory(m_strPluginDirectory.GetText());
    if (directory.IsEntered()) ScanPluginDirectory();
    InitializeComponents();
    CanUnloadPlugins();
}

void CAudioPluginMgr::ScanPluginDirectory() {
    const std::unique_ptr<CDirEntry> search(CPortableFile::FindFirst("*.so", 0, 0, 0, 2));
    // An entry's name is its full path.
    for (; search->IsValid() != 0; search->Next()) LoadPluginFile(search->GetFile().GetName());
}

void CAudioPluginMgr::LoadPluginFile(const char* path) {
    const std::size_t componentsBefore = m_vComponents.size();
    const std::size_t librariesBefore = m_vLibraries.size();
    m_vLibraries.reserve(librariesBefore + 1);
    try {
        std::unique_ptr<void, SModuleCloser> module(LoadLibrary(path));
        // Listed before it is asked: a library whose code throws something other than an int must stay open, since the
        // exception may live in it.
        m_vLibraries.push_back(new CAudioPluginLib(path, module.get()));
        static_cast<void>(module.release());
        if (!m_vLibraries.back()->IsOK()) throw 0;
        RegisterPrimaryComponent(*m_vLibraries.back());
    } catch (int) {
        if (m_vLibraries.size() == librariesBefore) {
            CloseUninitialized(path);
        } else {
            DiscardLastLibrary(componentsBefore);
        }
    }
}

void CAudioPluginMgr::RegisterPrimaryComponent(CAudioPluginLib& library) {
    IAudioComponent* component = nullptr;
    if (!library.GetPrimaryAudioObject(&component) || component == nullptr) return;
    AddComponent(component, library.GetFileName(), 0);
}

void CAudioPluginMgr::DiscardLastLibrary(std::size_t componentsBefore) {
    for (; m_vComponents.size() > componentsBefore; EraseComponent(m_vComponents.size() - 1)) {
        try {
            m_vComponents.back()->Release();
        } catch (int) {
            // The component is forgotten all the same: its code is about to leave the process.
        }
    }
    delete m_vLibraries.back();
    m_vLibraries.pop_back();
}

void CAudioPluginMgr::InitializeComponents() {
    std::size_t count = m_vComponents.size();
    for (std::size_t position = 0; position < count;) {
        IAudioComponent* const component = m_vComponents[position];
        CComPtr<IStatus> status;  // released last, unread
        if (component != nullptr && InitializeComponent(*component, status.Out())) {
            ++position;
            continue;
        }
        if (component != nullptr) component->Release();
        EraseComponent(position);
        --count;
    }
}

bool CAudioPluginMgr::InitializeComponent(IAudioComponent& component, IStatus** status) {
    if (!component.Initialize(this, status)) return false;
    if (component.GetType() == ACT_CONVERTOR && !m_pConvertorFactory) {
        QueryInto(component, IID_IConvertorFactory, m_pConvertorFactory);
    }
    if (component.GetType() == ACT_URL_HANDLER && !m_pURLSourceHandler) {
        QueryInto(component, IID_IURLSourceHandler, m_pURLSourceHandler);
    }
    return true;
}

void CAudioPluginMgr::EraseComponent(std::size_t position) {
    const auto offset = static_cast<std::ptrdiff_t>(position);
    m_vComponents.erase(m_vComponents.begin() + offset);
    m_vIdentities.erase(m_vIdentities.begin() + offset);
}

bool CAudioPluginMgr::CanUnloadPlugins() {
    const bool loaded = m_loads.Value() != 0;
    const bool streaming = AnyAggregatorAlive();
    if (!loaded || streaming) return false;

    // The plug-ins are asked while the manager itself holds nothing of theirs but components. Deliberate: an object
    // that nobody else holds ends here.
    IConvertorFactory* const factory = GiveUp(m_pConvertorFactory);
    IURLSourceHandler* const handler = GiveUp(m_pURLSourceHandler);
    const CCreationLock lock;
    const CReturnedReference<IURLSourceHandler> handlerReturns(m_pURLSourceHandler, handler);
    const CReturnedReference<IConvertorFactory> factoryReturns(m_pConvertorFactory, factory);
    return std::all_of(m_vLibraries.begin(), m_vLibraries.end(),
                       [](CAudioPluginLib* library) { return library->ReadyToFinish(); });
}

bool CAudioPluginMgr::UnloadPlugins() {
    if (m_loads.Value() == 0 || !CanUnloadPlugins()) return false;
    if (m_loads.Decrement() != 0) return true;

    const CCreationLock lock;
    // Whoever installed the factory: the host's own is released here as well.
    GiveUp(m_pConvertorFactory);
    GiveUp(m_pURLSourceHandler);
    // By position: a component's code may call the manager meanwhile, and finds no component that has been released.
    for (std::size_t position = 0; position < m_vComponents.size(); ++position) {
        if (m_vComponents[position] == nullptr) continue;
        m_vComponents[position]->Terminate();
        std::exchange(m_vComponents[position], nullptr)->Release();
    }
    m_vIdentities.clear();
    for (CAudioPluginLib* const library : m_vLibraries) delete library;
    m_vComponents.clear();
    m_vLibraries.clear();
    return true;
}
