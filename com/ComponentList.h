// The library's own list of components, as handed out by Get.
#pragma once

#include <vector>

#include "com/ComponentEnum.h"
#include "com/ReferenceCount.h"
#include "portable/Export.h"

// Holds one reference per entry; starts with the one reference of its creator. Filled by one thread before it is
// handed out, then read-only. [any thread]
class KELO_EXPORT CComponentEnum final : public IComponentEnum {
public:
    CComponentEnum();
    ~CComponentEnum();

    CComponentEnum(const CComponentEnum&) = delete;
    CComponentEnum& operator=(const CComponentEnum&) = delete;

    unsigned int AddRef() override;
    unsigned int Release() override;
    int QueryInterface(unsigned long identity, void** face) override;
    int GetCount() override;
    bool GetComponent(int index, IAudioComponent** component) override;

    // Appends the component with a reference of its own; null is ignored.
    void Add(IAudioComponent* component);

private:
    std::vector<IAudioComponent*> m_vComponents;
    CReferenceCount m_references;
};
