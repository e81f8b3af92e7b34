// The registry of components, their identities and their order.
#include <algorithm>

#include "com/ComponentList.h"
#include "com/InterfaceIds.h"
#include "pluginmgr/AudioPluginMgr.h"
#include "portable/PosixSingleLock.h"
#include "portable/UnicodeStrings.h"

namespace {

// The next push_back cannot fail. Twice the room, so that many components do not take quadratic time.
template <typename T>
void MakeRoom(std::vector<T>& list) {
    if (list.size() == list.capacity()) list.reserve(2 * list.size() + 1);
}

using CComponentOrder = std::vector<CBasicString<char>>;

CComponentOrder CopyOrder(CPosixMutex& mutex, const CComponentOrder& order) {
    const CPosixSingleLock lock(&mutex, 1);
    return order;
}

bool IsSame(const CBasicString<char>& left, const CBasicString<char>& right) {
    return UnicodeStringCmp<char>(left.GetText(), right.GetText(), -1) == 0;
}

// Keeps the entries that named a decoder, unless somebody set another order meanwhile.
void PruneOrder(CPosixMutex& mutex, CComponentOrder& order, const CComponentOrder& seen, CComponentOrder& kept) {
    const CPosixSingleLock lock(&mutex, 1);
    if (std::equal(order.begin(), order.end(), seen.begin(), seen.end(), IsSame)) order.swap(kept);
}

}  // namespace

void CAudioPluginMgr::AddComponent(IAudioComponent* component, const char* libraryFileName, int index) {
    if (component == nullptr) return;
    if (component->GetType() == ACT_COLLECTION) {
        RegisterMembers(component, libraryFileName);
        return;
    }
    auto identity = std::make_unique<COMPONENT_INFO>();
    identity->m_strLibraryFileName = libraryFileName;
    identity->m_nIndex = index;
    MakeRoom(m_vComponents);
    MakeRoom(m_vIdentities);
    component->AddRef();
    m_vComponents.push_back(component);
    m_vIdentities.push_back(std::move(identity));
    // Deliberate: changes nothing.
    COMPONENT_INFO unused;
    GetComponentInfo(component, &unused);
    component->Release();
}

// The collection itself is not registered, and its own reference is not given back.
void CAudioPluginMgr::RegisterMembers(IAudioComponent* collection, const char* libraryFileName) {
    const auto members = CComPtr<IComponentEnum>::Query(collection, IID_IComponentEnum);
    const int count = members ? members->GetCount() : 0;
    for (int i = 0; i < count; ++i) {
        IAudioComponent* member = nullptr;
        if (members->GetComponent(i, &member)) AddComponent(member, libraryFileName, i);
    }
}

int CAudioPluginMgr::GetCount() { return static_cast<int>(m_vComponents.size()); }

bool CAudioPluginMgr::GetComponent(int index, IAudioComponent** component) {
    if (index < 0 || index >= GetCount()) return false;
    *component = m_vComponents[static_cast<std::size_t>(index)];
    if (*component == nullptr) return false;
    (*component)->AddRef();
    return true;
}

bool CAudioPluginMgr::GetComponentInfo(IAudioComponent* component, COMPONENT_INFO* info) {
    const auto found = std::find(m_vComponents.begin(), m_vComponents.end(), component);
    if (component == nullptr || found == m_vComponents.end()) return false;
    *info = *m_vIdentities[static_cast<std::size_t>(found - m_vComponents.begin())];
    return true;
}

CBasicString<char> CAudioPluginMgr::GetComponentStringID(IAudioComponent* component) {
    COMPONENT_INFO info;
    GetComponentInfo(component, &info);
    CBasicString<char> identity;
    identity.Format("%s*%d", info.m_strLibraryFileName.GetText(), info.m_nIndex);
    return identity;
}

std::vector<CComPtr<IAudioComponent>> CAudioPluginMgr::ListDecoders() {
    const CComPtr<IComponentEnum> registry(static_cast<IComponentEnum*>(this));
    const int count = registry->GetCount();
    std::vector<CComPtr<IAudioComponent>> decoders;
    for (int i = 0; i < count; ++i) {
        CComPtr<IAudioComponent> component;
        if (!registry->GetComponent(i, component.Out())) continue;
        if (component->GetType() == ACT_DECODER) decoders.push_back(std::move(component));
    }
    return decoders;
}

// Components are called without the lock of the order: their code may wait for a thread that wants it.
bool CAudioPluginMgr::Get(EAudioComponentType type, IComponentEnum** components) {
    if (components == nullptr || type != ACT_DECODER) return false;
    auto list = CComPtr<CComponentEnum>::Adopt(new CComponentEnum);
    std::vector<CComPtr<IAudioComponent>> unused = ListDecoders();
    // Without any decoder the order stays as it is.
    const CComponentOrder order =
        unused.empty() ? CComponentOrder() : CopyOrder(m_mtxComponentOrder, m_vComponentOrder);
    CComponentOrder kept;
    for (const CBasicString<char>& wanted : order) {
        const auto match = std::find_if(unused.begin(), unused.end(), [&](const CComPtr<IAudioComponent>& decoder) {
            return IsSame(GetComponentStringID(decoder.Get()), wanted);
        });
        if (match == unused.end()) continue;
        list->Add(match->Get());
        unused.erase(match);
        kept.push_back(wanted);
    }
    for (const CComPtr<IAudioComponent>& decoder : unused) list->Add(decoder.Get());
    PruneOrder(m_mtxComponentOrder, m_vComponentOrder, order, kept);
    *components = list.Detach();
    return true;
}

bool CAudioPluginMgr::Set(IAudioComponent** /*components*/, int /*count*/) { return false; }

bool CAudioPluginMgr::GetUnsupportedComponents(IComponentEnum** /*components*/) { return false; }

void CAudioPluginMgr::SetComponentOrder(const char* const* identities, int count) {
    CComponentOrder order;
    for (int i = 0; i < count; ++i) order.emplace_back(identities[i]);
    const CPosixSingleLock lock(&m_mtxComponentOrder, 1);
    m_vComponentOrder.swap(order);
}
