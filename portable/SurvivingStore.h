// A store that outlives the object it is made in.
#pragma once

// Sets a pointer member to null so that a caller who arrives after the destructor still reads null.
// The store goes through volatile because a compiler may drop ordinary stores to a dying object.
template <typename T>
void StoreSurvivingNull(T*& pointer) {
    *const_cast<T* volatile*>(&pointer) = nullptr;
}
