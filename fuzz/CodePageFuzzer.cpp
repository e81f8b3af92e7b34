// Conversion between character sets against its rules over iconv: an operation, the locale, a code page, the sizes,
// the text.
#include <iconv.h>
#include <locale.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "fuzz/FuzzedInput.h"
#include "fuzz/Require.h"
#include "portable/CodePage.h"
#include "portable/UnicodeStrings.h"

namespace {

using CUnits = std::basic_string<unsigned short>;

constexpr std::size_t kMostText = 256;

const char* const kCharsets[] = {"UTF-8",      "EUC-JP",     "EUC-KR",      "EUC-TW",     "ISO-8859-1",  "ISO-8859-15",
                                 "ISO-8859-2", "ISO-8859-8", "ISO-8859-13", "SJIS",       "KOI8-R",      "KOI8-U",
                                 "KOI8_T",     "TIS-620",    "ISO-8859-9",  "BIG-5",      "GBK",         "GB2312",
                                 "GB18038",    "ISO-8859-5", "ISO-8859-6",  "ISO-8859-7", "ISO-8895-14", "CP1251",
                                 "CP1255",     "TCVN5712-1", "PT154"};

constexpr unsigned int kUtf7 = 65000;
constexpr unsigned int kUtf8 = 65001;

unsigned int CodePage(CFuzzedInput& input) {
    const unsigned int known[] = {kUtf8, kUtf7, 0, 1, 437, 1252, 932, input.Number<unsigned short>()};
    return input.OneOf(known);
}

// Into the front of `room`; what a failed attempt wrote stays there.
bool Attempt(const char* to, const char* from, std::string source, std::string& room) {
    const iconv_t descriptor = iconv_open(to, from);
    if (descriptor == reinterpret_cast<iconv_t>(-1)) return false;
    char* in = source.data();
    char* out = room.data();
    std::size_t inLeft = source.size();
    std::size_t outLeft = room.size();
    const std::size_t result = iconv(descriptor, &in, &inLeft, &out, &outLeft);
    iconv_close(descriptor);
    return result != static_cast<std::size_t>(-1);
}

template <typename TAttempt>
bool AttemptLocaleAndList(unsigned int codePage, std::string& room, const TAttempt& attempt) {
    if (attempt("")) return true;
    for (const char* const charset : kCharsets) {
        if (codePage == kUtf8 && charset == kCharsets[0]) continue;
        std::fill(room.begin(), room.end(), '\0');
        if (attempt(charset)) return true;
    }
    return false;
}

std::optional<std::wstring> ModelWide(unsigned int codePage, const std::string& source) {
    std::string room(4 * source.size() + 4, '\0');
    const auto attempt = [&](const char* charset) { return Attempt("WCHAR_T", charset, source, room); };
    const bool converted = (codePage == kUtf7 && attempt("UTF-7")) || (codePage == kUtf8 && attempt("UTF-8")) ||
                           AttemptLocaleAndList(codePage, room, attempt);
    if (!converted) return std::nullopt;
    return std::wstring(reinterpret_cast<const wchar_t*>(room.data()));
}

std::optional<std::string> ModelNarrow(unsigned int codePage, const CUnits& units) {
    std::string source;
    for (const unsigned short unit : units) {
        const wchar_t character = unit;
        source.append(reinterpret_cast<const char*>(&character), sizeof character);
    }
    std::string room(source.size(), '\0');
    const auto attempt = [&](const char* charset) { return Attempt(charset, "WCHAR_T", source, room); };
    if (codePage == kUtf7) attempt("UTF-7");
    const bool utf8 = codePage == kUtf7 || codePage == kUtf8;
    const bool converted = (utf8 && attempt("UTF-8")) || AttemptLocaleAndList(codePage, room, attempt);
    if (!converted) return std::nullopt;
    return std::string(room.c_str());
}

CUnits CutUnits(const std::wstring& wide) {
    CUnits units;
    for (const wchar_t character : wide) units += static_cast<unsigned short>(character);
    return units;
}

// UTF-8 of characters below the surrogates, which needs no iconv to be told.
std::string Utf8Of(const CUnits& units) {
    std::string text;
    for (const unsigned short unit : units) {
        if (unit < 0x80) {
            text += static_cast<char>(unit);
        } else if (unit < 0x800) {
            text += {static_cast<char>(0xC0 | unit >> 6), static_cast<char>(0x80 | (unit & 0x3F))};
        } else {
            text += {static_cast<char>(0xE0 | unit >> 12), static_cast<char>(0x80 | (unit >> 6 & 0x3F)),
                     static_cast<char>(0x80 | (unit & 0x3F))};
        }
    }
    return text;
}

// What the caller gives for the result: nothing, or memory that ends with what is told of it.
template <typename T>
class CRoom {
public:
    CRoom(CFuzzedInput& input, std::size_t beyond) : m_nTold(input.Byte() % 80) {
        m_bNull = m_nTold == 79;
        m_memory.reset(new T[m_nTold + beyond]);
        std::fill_n(m_memory.get(), m_nTold + beyond, static_cast<T>(0x55));
    }

    T* Get() const { return m_bNull ? nullptr : m_memory.get(); }
    int Told() const { return static_cast<int>(m_nTold); }
    bool IsFilled() const { return !m_bNull && m_nTold >= 1; }
    const T& operator[](std::size_t i) const { return m_memory[i]; }

private:
    std::unique_ptr<T[]> m_memory;
    std::size_t m_nTold;
    bool m_bNull;
};

void CheckToWide(CFuzzedInput& input) {
    const unsigned int codePage = CodePage(input);
    const CRoom<unsigned short> room(input, 1);
    const bool measured = (input.Byte() & 1) != 0;
    std::string source = input.Bytes(kMostText);
    if (measured) source = source.c_str();
    const std::vector<char> terminated = ExactCopy(source);
    const std::vector<char> bare(source.begin(), source.end());
    const char* const text = measured || source.empty() ? terminated.data() : bare.data();
    const int length = measured ? -1 : static_cast<int>(source.size());

    const std::optional<std::wstring> expected = ModelWide(codePage, source);
    const int result = MultiByteToWideChar(codePage, 0, text, length, room.Get(), room.Told());
    fuzz::RequireEqual("the units", result, expected ? static_cast<int>(expected->size()) + 1 : 0);
    if (!room.IsFilled()) return;
    const auto told = static_cast<std::size_t>(room.Told());
    if (!expected) return fuzz::Require(room[0] == 0x55, "a failure leaves the room alone");
    const CUnits units = CutUnits(*expected).substr(0, told);
    fuzz::RequireEqual("the wide text", CUnits(room.Get(), units.size()), units);
    fuzz::RequireEqual<int>("the terminator", room[units.size()], 0);
    for (std::size_t i = units.size() + 1; i <= told; ++i) fuzz::Require(room[i] == 0x55, "the rest is left alone");
}

CUnits Units(CFuzzedInput& input) {
    const std::string bytes = input.Bytes(2 * kMostText);
    CUnits units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const unsigned int high = static_cast<unsigned char>(bytes[i + 1]);
        units += static_cast<unsigned short>(high << 8 | static_cast<unsigned char>(bytes[i]));
    }
    return units;
}

// Beyond a terminator only zeros are converted.
CUnits Terminated(CUnits units, bool measured) {
    const std::size_t end = std::min(units.find(static_cast<unsigned short>(0)), units.size());
    if (measured) return units.substr(0, end);
    std::fill(units.begin() + static_cast<std::ptrdiff_t>(end), units.end(), static_cast<unsigned short>(0));
    return units;
}

void RequireUtf8(unsigned int codePage, const CUnits& units, const std::string& text) {
    const bool plain = std::all_of(units.begin(), units.end(), [](unsigned short unit) { return unit < 0xD800; });
    if ((codePage != kUtf8 && codePage != kUtf7) || !plain) return;
    const CUnits whole = Terminated(units, true);
    const std::string expected = Utf8Of(whole);
    // A longer text of UTF-7 leaves its end behind.
    if (codePage == kUtf7) return fuzz::RequireEqual("the UTF-8 text", text.substr(0, expected.size()), expected);
    fuzz::RequireEqual("the UTF-8 text", text, expected);
    std::vector<unsigned short> back(text.size() + 2);
    const int count = MultiByteToWideChar(kUtf8, 0, text.c_str(), -1, back.data(), static_cast<int>(text.size()) + 1);
    fuzz::RequireEqual("the text back", CUnits(back.data(), static_cast<std::size_t>(count) - 1), whole);
}

void CheckFromWide(CFuzzedInput& input) {
    const unsigned int codePage = CodePage(input);
    const CRoom<char> room(input, 0);
    const bool measured = (input.Byte() & 1) != 0;
    const CUnits source = Units(input);
    const CUnits units = Terminated(source, measured);
    const std::vector<unsigned short> terminated = ExactCopy(source);
    const std::vector<unsigned short> bare(source.begin(), source.end());
    const unsigned short* const text = measured || source.empty() ? terminated.data() : bare.data();
    const int length = measured ? -1 : static_cast<int>(source.size());

    const std::optional<std::string> expected = ModelNarrow(codePage, units);
    const int result = WideCharToMultiByte(codePage, 0, text, length, room.Get(), room.Told(), nullptr, nullptr);
    fuzz::RequireEqual("the bytes", result, expected ? static_cast<int>(expected->size()) + 1 : 0);
    if (expected) RequireUtf8(codePage, units, *expected);
    if (!room.IsFilled()) return;
    if (!expected) return fuzz::RequireEqual<int>("the first byte after a failure", room[0], 0);
    const auto told = static_cast<std::size_t>(room.Told());
    std::string filled = expected->substr(0, told - 1);
    filled.resize(told);
    fuzz::RequireEqual("the narrow text", std::string(room.Get(), told), filled);
}

// The templates over both.
void CheckTexts(CFuzzedInput& input) {
    const unsigned int codePage = CodePage(input);
    const int most = static_cast<int>(input.Byte()) - 1;
    const std::string text = input.Text().substr(0, kMostText);
    const std::vector<char> exact = ExactCopy(text);
    const std::string limited = most < 0 ? text : text.substr(0, static_cast<std::size_t>(most));
    fuzz::RequireEqual("the length", UnicodeStringLen(exact.data()), text.size());

    CUnits widened;
    for (const char character : limited) widened += static_cast<unsigned short>(character);
    std::unique_ptr<unsigned short[]> wide(new unsigned short[limited.size() + 1]);
    ConvertUnicodeGeneric(exact.data(), wide.get(), most);
    fuzz::RequireEqual("the widened text", CUnits(wide.get()), widened);

    const std::optional<std::wstring> expected = ModelWide(codePage, limited);
    wide.reset(ConvertUnicodeFromMultiByte<unsigned short>(codePage, exact.data(), nullptr, most));
    fuzz::RequireEqual("whether it is converted", wide != nullptr, expected.has_value());
    if (!expected) return;
    CUnits units = CutUnits(*expected);
    units = CUnits(units.c_str());
    if (most >= 0) units = units.substr(0, static_cast<std::size_t>(most));
    fuzz::RequireEqual("the converted text", CUnits(wide.get()), units);

    const std::optional<std::string> narrow = ModelNarrow(codePage, units);
    const std::unique_ptr<char[]> back(ConvertUnicodeToMultiByte(codePage, wide.get(), static_cast<char*>(nullptr)));
    fuzz::RequireEqual("whether it is converted back", back != nullptr, narrow.has_value());
    if (narrow) fuzz::RequireEqual("the text converted back", std::string(back.get()), *narrow);
}

int ModelOrder(const std::string& a, const std::string& b, int n) {
    if (n < 1 && n != -1) return 0;
    const std::size_t most = n == -1 ? std::string::npos : static_cast<std::size_t>(n);
    const std::string left = a.substr(0, most);
    const std::string right = b.substr(0, most);
    for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
        const int difference = static_cast<signed char>(left[i]) - static_cast<signed char>(right[i]);
        if (difference != 0) return difference < 0 ? -1 : 1;
    }
    if (left.size() == right.size()) return 0;
    return left.size() < right.size() ? -1 : 1;
}

void CheckOrder(CFuzzedInput& input) {
    const int n = input.Number<signed char>();
    const unsigned int null = input.Byte();
    const std::string a = input.Text();
    const std::string b = input.Text();
    const std::vector<char> left = ExactCopy(a);
    const std::vector<char> right = ExactCopy(b);
    const bool noLeft = (null & 3) == 3;
    const bool noRight = (null & 12) == 12;
    const int expected = noLeft || noRight ? int{noRight} - int{noLeft} : ModelOrder(a, b, n);
    fuzz::RequireEqual("the order",
                       UnicodeStringCmp<char>(noLeft ? nullptr : left.data(), noRight ? nullptr : right.data(), n),
                       expected);
}

using CCheck = void (*)(CFuzzedInput&);

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const CCheck kChecks[] = {CheckToWide, CheckFromWide, CheckTexts, CheckOrder};
    static const char* const kLocales[] = {"C.UTF-8", "C"};
    CFuzzedInput input(data, size);
    const CCheck check = input.OneOf(kChecks);
    setlocale(LC_CTYPE, input.OneOf(kLocales));
    check(input);
    return 0;
}
