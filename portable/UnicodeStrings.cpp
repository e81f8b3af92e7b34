// Measuring, copying, comparing and converting text of the three element types.
#include "portable/UnicodeStrings.h"

#include <string.h>

#include <memory>
#include <type_traits>

#include "portable/CodePage.h"

namespace {

constexpr unsigned int kLocaleCodePage = 1;

// The order of two elements, of which a terminator comes first.
int CompareElements(signed char a, signed char b) {
    if (a == b) return 0;
    if (a == 0) return -1;
    if (b == 0) return 1;
    return a < b ? -1 : 1;
}

}  // namespace

template <typename T>
unsigned long UnicodeStringLen(const T* text) {
    unsigned long length = 0;
    if (text == nullptr) return length;
    while (text[length] != T()) ++length;
    return length;
}

template <typename TSrc, typename TDst>
TDst* ConvertUnicodeGeneric(const TSrc* src, TDst* dst, int max) {
    if (src == nullptr) return nullptr;
    const unsigned long length = UnicodeStringLen(src);
    if (dst == nullptr) dst = new TDst[length + 1];
    const unsigned long limit = static_cast<unsigned long>(max);
    const unsigned long count = max == -1 || limit >= length ? length : limit;
    // char to unsigned short extends the sign (0xE9 becomes 0xFFE9); plug-ins rely on it.
    for (unsigned long i = 0; i < count; ++i) dst[i] = static_cast<TDst>(src[i]);
    dst[count] = TDst();
    return dst;
}

template <typename TSrc, typename TDst>
TDst* ConvertUnicodeWithCodePage([[maybe_unused]] unsigned int codePage, const TSrc* src, TDst* dst, int max) {
    if constexpr (std::is_same<TSrc, unsigned short>::value && std::is_same<TDst, char>::value) {
        char* const converted = ConvertUnicodeToMultiByte(codePage, src, dst);
        if (converted != nullptr) return converted;
    }
    return ConvertUnicodeGeneric(src, dst, max);
}

template <typename TSrc, typename TDst>
TDst* ConvertUnicode(const TSrc* src, TDst* dst, int max) {
    return ConvertUnicodeWithCodePage(kLocaleCodePage, src, dst, max);
}

template <typename T>
char* ConvertUnicodeToMultiByte(unsigned int codePage, const T* src, char* dst) {
    const std::unique_ptr<unsigned short[]> wide(ConvertUnicodeGeneric<T, unsigned short>(src, nullptr, -1));
    if (wide == nullptr) return nullptr;
    const int size = WideCharToMultiByte(codePage, 0, wide.get(), -1, nullptr, 0, nullptr, nullptr);
    if (size == 0) return nullptr;
    std::unique_ptr<char[]> text(new char[static_cast<unsigned int>(size)]);
    WideCharToMultiByte(codePage, 0, wide.get(), -1, text.get(), size, nullptr, nullptr);
    return dst != nullptr ? strcpy(dst, text.get()) : text.release();
}

template <typename T>
T* ConvertUnicodeFromMultiByte(unsigned int codePage, const char* src, T* dst, int max) {
    if (src == nullptr) return nullptr;
    // A source shorter than `max` ends at its terminator.
    const int bytes = max < 0 ? -1 : static_cast<int>(strnlen(src, static_cast<unsigned int>(max)));
    const int size = MultiByteToWideChar(codePage, 0, src, bytes, nullptr, 0);
    if (size == 0) return nullptr;
    const std::unique_ptr<unsigned short[]> wide(new unsigned short[static_cast<unsigned int>(size) + 1]());
    if (MultiByteToWideChar(codePage, 0, src, bytes, wide.get(), size) == 0) return nullptr;
    return ConvertUnicodeGeneric(wide.get(), dst, max);
}

template <typename T>
T* UnicodeStrCpy(T* dst, const T* src, int max) {
    return ConvertUnicode(src, dst, max);
}

template <typename T>
T* UnicodeStrCat(T* dst, const T* src) {
    return UnicodeStrCpy(dst + UnicodeStringLen(dst), src, -1);
}

template <typename T>
int UnicodeStringCmp(const T* a, const T* b, int n) {
    if (a == nullptr || b == nullptr) return a == b ? 0 : (a == nullptr ? -1 : 1);
    if (n < -1) return 0;
    for (int i = 0; n == -1 || i < n; ++i) {
        const int order = CompareElements(static_cast<signed char>(a[i]), static_cast<signed char>(b[i]));
        if (order != 0 || a[i] == T()) return order;
    }
    return 0;
}

template unsigned long UnicodeStringLen(const char*);
template unsigned long UnicodeStringLen(const unsigned short*);
template unsigned long UnicodeStringLen(const wchar_t*);

template unsigned short* ConvertUnicodeGeneric(const char*, unsigned short*, int);
template unsigned short* ConvertUnicodeGeneric(const unsigned short*, unsigned short*, int);
template char* ConvertUnicodeGeneric(const char*, char*, int);
template char* ConvertUnicodeGeneric(const unsigned short*, char*, int);
template unsigned short* ConvertUnicodeGeneric(const wchar_t*, unsigned short*, int);
template wchar_t* ConvertUnicodeGeneric(const unsigned short*, wchar_t*, int);

template char* ConvertUnicodeWithCodePage(unsigned int, const char*, char*, int);
template char* ConvertUnicodeWithCodePage(unsigned int, const unsigned short*, char*, int);
template unsigned short* ConvertUnicodeWithCodePage(unsigned int, const wchar_t*, unsigned short*, int);
template wchar_t* ConvertUnicodeWithCodePage(unsigned int, const unsigned short*, wchar_t*, int);

template char* ConvertUnicode(const char*, char*, int);
template char* ConvertUnicode(const unsigned short*, char*, int);
template unsigned short* ConvertUnicode(const wchar_t*, unsigned short*, int);
template wchar_t* ConvertUnicode(const unsigned short*, wchar_t*, int);

template char* ConvertUnicodeToMultiByte(unsigned int, const char*, char*);
template char* ConvertUnicodeToMultiByte(unsigned int, const unsigned short*, char*);
template char* ConvertUnicodeToMultiByte(unsigned int, const wchar_t*, char*);

template char* ConvertUnicodeFromMultiByte(unsigned int, const char*, char*, int);
template unsigned short* ConvertUnicodeFromMultiByte(unsigned int, const char*, unsigned short*, int);
template wchar_t* ConvertUnicodeFromMultiByte(unsigned int, const char*, wchar_t*, int);

template char* UnicodeStrCpy(char*, const char*, int);
template char* UnicodeStrCat(char*, const char*);
template int UnicodeStringCmp(const char*, const char*, int);
