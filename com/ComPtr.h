// The smart pointer for interface references.
#pragma once

#include <cstddef>

// Owns one reference to a `T`, which has AddRef, Release and QueryInterface. One object belongs to one thread at a
// time. The destructor releases without clearing the pointer first: an object that is reached again from inside that
// Release still finds its members.
template <typename T>
class CComPtr {
public:
    CComPtr() = default;

    // Empty, as the default is.
    CComPtr(std::nullptr_t) {}

    // Takes a further reference.
    explicit CComPtr(T* object) : m_pObject(object) {
        if (m_pObject != nullptr) m_pObject->AddRef();
    }
    CComPtr(const CComPtr& other) : CComPtr(other.m_pObject) {}
    CComPtr(CComPtr&& other) noexcept : m_pObject(other.Detach()) {}
    ~CComPtr() {
        if (m_pObject != nullptr) m_pObject->Release();
    }

    // Releases what the pointer held; a copy takes a further reference, a move takes the other's over.
    CComPtr& operator=(const CComPtr& other) {
        CComPtr(other).Swap(*this);
        return *this;
    }

    // The other is empty afterwards.
    CComPtr& operator=(CComPtr&& other) noexcept {
        CComPtr(static_cast<CComPtr&&>(other)).Swap(*this);
        return *this;
    }

    // Takes over a reference that the caller owns.
    static CComPtr Adopt(T* object) {
        CComPtr adopted;
        adopted.m_pObject = object;
        return adopted;
    }

    // Asks `object`, which may be null, for an interface; empty when it has none of that identity.
    template <typename U>
    static CComPtr Query(U* object, unsigned long identity) {
        void* face = nullptr;
        if (object == nullptr || object->QueryInterface(identity, &face) != 0) return nullptr;
        return Adopt(static_cast<T*>(face));
    }

    // The object, lent; null when the pointer is empty.
    T* Get() const { return m_pObject; }
    T* operator->() const { return m_pObject; }
    T& operator*() const { return *m_pObject; }
    explicit operator bool() const { return m_pObject != nullptr; }

    // Gives the reference up to the caller.
    T* Detach() {
        T* const object = m_pObject;
        m_pObject = nullptr;
        return object;
    }

    // Releases what the pointer holds, then empties it.
    void Reset() {
        if (m_pObject != nullptr) m_pObject->Release();
        m_pObject = nullptr;
    }

    // The address for an out-parameter that hands a reference over; what the pointer held is released first.
    T** Out() {
        Reset();
        return &m_pObject;
    }

    // Exchanges the objects; counts nothing.
    void Swap(CComPtr& other) noexcept {
        T* const object = m_pObject;
        m_pObject = other.m_pObject;
        other.m_pObject = object;
    }

private:
    T* m_pObject = nullptr;
};
