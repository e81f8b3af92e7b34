// Conversion by code page over iconv.
#include "portable/CodePage.h"

#include <iconv.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>
#include <iterator>
#include <vector>

#include "portable/UnicodeStrings.h"

namespace {

constexpr unsigned int kUtf7CodePage = 65000;
constexpr unsigned int kUtf8CodePage = 65001;

constexpr char kWideCharset[] = "WCHAR_T";
constexpr char kLocaleCharset[] = "";

// Tried in this order. The spellings of "KOI8_T", "GB18038" and "ISO-8895-14" are part of the contract; iconv opens
// none of them and they are passed over.
constexpr const char* kFallbackCharsets[] = {
    "UTF-8",      "EUC-JP",      "EUC-KR", "EUC-TW", "ISO-8859-1", "ISO-8859-15", "ISO-8859-2",
    "ISO-8859-8", "ISO-8859-13", "SJIS",   "KOI8-R", "KOI8-U",     "KOI8_T",      "TIS-620",
    "ISO-8859-9", "BIG-5",       "GBK",    "GB2312", "GB18038",    "ISO-8859-5",  "ISO-8859-6",
    "ISO-8859-7", "ISO-8895-14", "CP1251", "CP1255", "TCVN5712-1", "PT154"};

enum class EDirection { ToWide, FromWide };

struct SBytes {
    char* m_pData;
    size_t m_nSize;
};

class CIconv {
public:
    CIconv(const char* to, const char* from) : m_descriptor(iconv_open(to, from)) {}
    ~CIconv() {
        if (IsOpen()) iconv_close(m_descriptor);
    }
    CIconv(const CIconv&) = delete;
    CIconv& operator=(const CIconv&) = delete;

    // True when the whole source was accepted and had room.
    bool Convert(SBytes source, SBytes result) {
        return IsOpen() && iconv(m_descriptor, &source.m_pData, &source.m_nSize, &result.m_pData, &result.m_nSize) !=
                               static_cast<size_t>(-1);
    }

private:
    // iconv_open's mark of failure.
    bool IsOpen() const { return m_descriptor != reinterpret_cast<iconv_t>(-1); }

    iconv_t m_descriptor;
};

bool Convert(const char* charset, EDirection direction, SBytes source, SBytes result) {
    const bool toWide = direction == EDirection::ToWide;
    return CIconv(toWide ? kWideCharset : charset, toWide ? charset : kWideCharset).Convert(source, result);
}

bool ConvertByLocaleOrList(unsigned int codePage, EDirection direction, SBytes source, SBytes result) {
    if (Convert(kLocaleCharset, direction, source, result)) return true;
    const auto convertAfresh = [=](const char* charset) {
        memset(result.m_pData, 0, result.m_nSize);
        return Convert(charset, direction, source, result);
    };
    // UTF-8 leads the list; its code page has tried it already.
    const auto* const first = std::begin(kFallbackCharsets) + (codePage == kUtf8CodePage ? 1 : 0);
    return std::any_of(first, std::end(kFallbackCharsets), convertAfresh);
}

bool ConvertToWide(unsigned int codePage, SBytes source, SBytes result) {
    if (codePage == kUtf7CodePage && Convert("UTF-7", EDirection::ToWide, source, result)) return true;
    if (codePage == kUtf8CodePage && Convert("UTF-8", EDirection::ToWide, source, result)) return true;
    return ConvertByLocaleOrList(codePage, EDirection::ToWide, source, result);
}

bool ConvertFromWide(unsigned int codePage, SBytes source, SBytes result) {
    // UTF-7 is overwritten by UTF-8 in the same, uncleared buffer, and UTF-8 decides: part of the contract.
    if (codePage == kUtf7CodePage) Convert("UTF-7", EDirection::FromWide, source, result);
    const bool wantsUtf8 = codePage == kUtf7CodePage || codePage == kUtf8CodePage;
    if (wantsUtf8 && Convert("UTF-8", EDirection::FromWide, source, result)) return true;
    return ConvertByLocaleOrList(codePage, EDirection::FromWide, source, result);
}

// Exactly `count` characters and a terminator; zeros follow the source's own terminator.
std::vector<wchar_t> Widen(const unsigned short* src, size_t count) {
    std::vector<wchar_t> wide(count + 1);
    for (size_t i = 0; i < count && src[i] != 0; ++i) wide[i] = src[i];
    return wide;
}

}  // namespace

int MultiByteToWideChar(unsigned int nCodePage, unsigned int /*nFlags*/, const char* pszSrc, int cbSrc,
                        unsigned short* pDst, int cchDst) {
    if (pszSrc == nullptr) return MultiByteToWideChar(nCodePage, 0, "", 0, pDst, cchDst);
    const size_t length = cbSrc < 0 ? strlen(pszSrc) : static_cast<size_t>(cbSrc);
    std::vector<wchar_t> work(length + 1);
    // iconv only reads its source.
    const SBytes source{const_cast<char*>(pszSrc), length};
    const SBytes result{reinterpret_cast<char*>(work.data()), length * sizeof(wchar_t)};
    if (!ConvertToWide(nCodePage, source, result)) return 0;

    if (pDst != nullptr && cchDst >= 1) ConvertUnicode<wchar_t, unsigned short>(work.data(), pDst, cchDst);
    return static_cast<int>(wcslen(work.data())) + 1;
}

int WideCharToMultiByte(unsigned int nCodePage, unsigned int /*nFlags*/, const unsigned short* pSrc, int cchSrc,
                        char* pszDst, int cbDst, const char* /*pszDefaultChar*/, int* /*pbUsedDefaultChar*/) {
    const size_t room = pszDst != nullptr && cbDst >= 1 ? static_cast<size_t>(cbDst) : 0;
    if (room != 0) pszDst[0] = '\0';

    const size_t count = pSrc == nullptr || cchSrc < 0 ? UnicodeStringLen(pSrc) : static_cast<size_t>(cchSrc);
    std::vector<wchar_t> wide = Widen(pSrc, count);
    const SBytes source{reinterpret_cast<char*>(wide.data()), count * sizeof(wchar_t)};
    std::vector<char> text(source.m_nSize + 1);
    if (!ConvertFromWide(nCodePage, source, {text.data(), source.m_nSize})) return 0;

    const size_t length = strlen(text.data());
    if (room != 0) {
        memset(pszDst, 0, room);
        memcpy(pszDst, text.data(), std::min(length, room - 1));
    }
    return static_cast<int>(length) + 1;
}

unsigned int _getmbcp() { return 0; }
