// Every kind of object that a plug-in hands out.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "com/ComPtr.h"
#include "com/Unknown.h"
#include "host/validate/Trial.h"

struct SObject {
    std::string m_strLabel;
    CComPtr<IUnknown> m_pObject;
};

// The components, a source, a target, an encoder stream and a convertor of each that makes them, and the statuses of
// refusals. What other checks have found broken is left out.
std::vector<SObject> EveryObject(CTrial& trial);

// The statuses alone.
std::vector<SObject> EveryStatus(CTrial& trial);

// Findings come out with the object's label.
void ForEachObject(const std::vector<SObject>& objects, const std::function<void(IUnknown& object)>& examine);

// The identities that the object answers to, with the faces; of an opener, whose first table has none, the face with
// the IUnknown operations. The faces carry no references.
struct SFace {
    unsigned long m_nIdentity;
    IUnknown* m_pFace;
};
std::vector<SFace> FacesOf(IUnknown& object);

// The same answer for one identity; null when there is none. A reference that came with it is given back.
IUnknown* FaceFor(IUnknown& object, unsigned long identity);

// "IProcess" for 2.
std::string IdentityText(unsigned long identity);
