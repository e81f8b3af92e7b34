// The growable string over char.
#include "portable/BasicString.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <limits>
#include <new>

#include "portable/BoundedFormat.h"
#include "portable/SurvivingStore.h"

namespace {

constexpr int kInitialCapacity = 6;
constexpr int kFormatCapacity = 16384;

// The longest text for which the capacity is an int.
constexpr int kMaximumLength = std::numeric_limits<int>::max() / 2 - 1;

int LengthOf(const char* text) {
    const std::size_t length = std::strlen(text);
    if (length > kMaximumLength) throw std::bad_alloc();
    return static_cast<int>(length);
}

}  // namespace

template <typename T>
CBasicString<T>::CBasicString() : m_pBuffer(new T[kInitialCapacity]()), m_nCapacity(kInitialCapacity), m_nLength(0) {}

template <typename T>
CBasicString<T>::CBasicString(const T* src, int len) : CBasicString() {
    if (src == nullptr) return;
    const int length = len == -1 ? LengthOf(src) : std::max(len, 0);
    Reserve(length);
    m_nLength = length;
    // The rest of the buffer is zero from its allocation.
    std::memcpy(m_pBuffer, src, static_cast<std::size_t>(m_nLength));
}

template <typename T>
CBasicString<T>::CBasicString(const CBasicString& other) : CBasicString(other.m_pBuffer, other.m_nLength) {}

template <typename T>
CBasicString<T>::~CBasicString() {
    delete[] m_pBuffer;
    StoreSurvivingNull(m_pBuffer);
}

template <typename T>
CBasicString<T>& CBasicString<T>::operator=(const CBasicString& other) {
    if (this == &other) return *this;
    Reserve(other.m_nLength);
    std::memcpy(m_pBuffer, other.m_pBuffer, static_cast<std::size_t>(other.m_nLength));
    std::fill(m_pBuffer + other.m_nLength, m_pBuffer + m_nCapacity, T());
    m_nLength = other.m_nLength;
    return *this;
}

template <typename T>
CBasicString<T>& CBasicString<T>::operator=(const T* text) {
    if (text == nullptr) return *this;
    const int length = LengthOf(text);
    Reserve(length);
    std::memmove(m_pBuffer, text, static_cast<std::size_t>(length) + 1);
    m_nLength = length;
    return *this;
}

template <typename T>
int CBasicString<T>::Format(const T* fmt, ...) {
    char scratch[kFormatCapacity];
    scratch[0] = T();
    std::va_list args;
    va_start(args, fmt);
    _vsnprintf_s(scratch, kFormatCapacity, kFormatCapacity - 1, fmt, args);
    va_end(args);
    *this = scratch;
    return m_nLength;
}

template <typename T>
void CBasicString<T>::Reserve(int len) {
    if (len > kMaximumLength) throw std::bad_alloc();
    if (m_nCapacity >= len + 2) return;
    const int capacity = 2 * len + 2;
    T* const buffer = new T[static_cast<std::size_t>(capacity)]();
    std::memcpy(buffer, m_pBuffer, static_cast<std::size_t>(m_nCapacity));
    delete[] m_pBuffer;
    m_pBuffer = buffer;
    m_nCapacity = capacity;
}

template <typename T>
void CBasicString<T>::UpdateLength() {
    m_nLength = LengthOf(m_pBuffer);
}

template <typename T>
CBasicString<T>& CBasicString<T>::operator+=(const T* text) {
    if (text == nullptr) return *this;
    const int length = LengthOf(text);
    Reserve(m_nLength + length);  // no overflow: neither is above half an int
    std::memcpy(m_pBuffer + m_nLength, text, static_cast<std::size_t>(length) + 1);
    m_nLength += length;
    return *this;
}

template class CBasicString<char>;
