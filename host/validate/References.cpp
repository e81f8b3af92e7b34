// The reference count of an object, as seen from outside.
#include "host/validate/References.h"

#include <string>

#include "host/validate/Outcome.h"
#include "host/validate/Steps.h"

unsigned int CountOf(IUnknown& object) {
    TellStep("AddRef and Release");
    const unsigned int count = object.AddRef();
    object.Release();
    return count - 1;
}

void ExpectOwnReference(IUnknown& object) {
    TellStep("AddRef");
    const unsigned int count = object.AddRef();
    Expect(count >= 2, "one reference more makes " + std::to_string(count) + ", so none came with the object");
}

void ExpectLastRelease(IUnknown* object) {
    TellStep("the last Release");
    const unsigned int left = object->Release();
    Expect(left == 0, "the only reference is given up and " + std::to_string(left) + " are left");
}
