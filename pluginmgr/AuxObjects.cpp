// The table of auxiliary objects.
#include <algorithm>

#include "pluginmgr/AudioPluginMgr.h"

CAudioPluginMgr::AUXOBJECT::AUXOBJECT(void* key, IUnknown* object) : pKey(key), pObject(object) {}
CAudioPluginMgr::AUXOBJECT::AUXOBJECT(const AUXOBJECT& other) = default;
CAudioPluginMgr::AUXOBJECT& CAudioPluginMgr::AUXOBJECT::operator=(const AUXOBJECT& other) = default;
CAudioPluginMgr::AUXOBJECT::~AUXOBJECT() = default;

std::vector<CAudioPluginMgr::AUXOBJECT>::iterator CAudioPluginMgr::FindAuxObject(void* key) {
    return std::find_if(m_vAuxObjects.begin(), m_vAuxObjects.end(),
                        [key](const AUXOBJECT& entry) { return entry.pKey == key; });
}

bool CAudioPluginMgr::AttachAuxObject(void* key, IUnknown* object) {
    if (GetAuxObject(key, nullptr)) return false;
    m_vAuxObjects.push_back(AUXOBJECT(key, object));
    return true;
}

bool CAudioPluginMgr::DetachAuxObject(void* key) {
    const auto entry = FindAuxObject(key);
    if (entry == m_vAuxObjects.end()) return false;
    // Its end may call back, and finds the table whole.
    const CComPtr<IUnknown> last(entry->pObject);
    m_vAuxObjects.erase(entry);
    return true;
}

bool CAudioPluginMgr::GetAuxObject(void* key, IUnknown** object) {
    const auto entry = FindAuxObject(key);
    if (entry == m_vAuxObjects.end()) return false;
    if (object != nullptr) *object = CComPtr<IUnknown>(entry->pObject).Detach();
    return true;
}
