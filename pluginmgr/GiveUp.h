// References that the manager gives up while it may be called back.
#pragma once

#include "com/ComPtr.h"

// Empties the member, then releases what it held, and tells which object that was: code of the object's end finds the
// member empty. [host set-up]
template <typename T>
T* GiveUp(CComPtr<T>& member) {
    T* const object = member.Detach();
    if (object != nullptr) object->Release();
    return object;
}
