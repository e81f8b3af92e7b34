// The library's own list of components.
#include "com/ComponentList.h"

#include "com/AudioComponent.h"
#include "com/QueryTable.h"

CComponentEnum::CComponentEnum() : m_references(1) {}

CComponentEnum::~CComponentEnum() {
    for (IAudioComponent* const component : m_vComponents) component->Release();
}

unsigned int CComponentEnum::AddRef() { return m_references.Increment(); }

unsigned int CComponentEnum::Release() {
    const unsigned int count = m_references.Decrement();
    if (count == 0) delete this;
    return count;
}

int CComponentEnum::QueryInterface(unsigned long identity, void** face) {
    return AnswerQuery(*this, identity, face, {{IID_IUnknown, this}, {IID_IComponentEnum, this}});
}

int CComponentEnum::GetCount() { return static_cast<int>(m_vComponents.size()); }

bool CComponentEnum::GetComponent(int index, IAudioComponent** component) {
    if (index < 0 || index >= GetCount() || component == nullptr) return false;
    *component = m_vComponents[static_cast<std::size_t>(index)];
    (*component)->AddRef();
    return true;
}

void CComponentEnum::Add(IAudioComponent* component) {
    if (component == nullptr) return;
    m_vComponents.push_back(component);
    component->AddRef();
}
