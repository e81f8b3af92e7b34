// The growable, zero-terminated string of the library's interfaces.
// A string belongs to one thread at a time. [any thread]
#pragma once

#include "portable/Export.h"

// Every string that the library keeps or returns by value. The text is never null.
// Growth: text of length n needs a capacity of n + 2 (room for a 16-bit terminator), else 2n + 2 bytes are allocated;
// the buffer never shrinks.
template <typename T>
class CBasicString {
public:
    // The empty text in a buffer of 6.
    CBasicString();

    // Copies exactly `len` characters, embedded zeros included; -1 measures up to the terminator.
    // A null `src` leaves the empty text.
    CBasicString(const T* src, int len = -1);

    // Copies the text with its explicit length.
    CBasicString(const CBasicString& other);
    virtual ~CBasicString();

    // Copies the text with its explicit length.
    CBasicString& operator=(const CBasicString& other);

    // Copies up to the terminator; a null `text` leaves the string as it was.
    CBasicString& operator=(const T* text);

    // printf-style formatting; keeps at most 16383 characters. Returns the new length.
    int Format(const T* fmt, ...);

    // The text, valid until the next change of the string or its end.
    const T* GetText() const { return m_pBuffer; }

    // Writable access to the `GetCapacity()` characters of the buffer; call `UpdateLength` after writing.
    T* GetBuffer() { return m_pBuffer; }

    // Characters of the buffer, the terminator's among them.
    int GetCapacity() const { return m_nCapacity; }

    // Characters before the terminator, or the explicit length given at construction.
    int GetLength() const { return m_nLength; }

    // Whether the length is 0.
    bool IsEmpty() const { return m_nLength == 0; }

    // Applies the growth rule for text of `len` characters, keeping the old buffer's content.
    void Reserve(int len);

    // Measures the text again after a write through `GetBuffer`.
    void UpdateLength();

    // Appends up to the terminator of `text`, which must not lie in this string; null appends nothing.
    CBasicString& operator+=(const T* text);

private:
    T* m_pBuffer;
    int m_nCapacity;
    int m_nLength;
};

extern template class KELO_EXPORT CBasicString<char>;
