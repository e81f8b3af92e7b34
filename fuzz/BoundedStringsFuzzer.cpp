// The bounded text functions against their rules: an operation, its sizes, its texts.
#include <ctype.h>
#include <errno.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "fuzz/FuzzedInput.h"
#include "fuzz/Require.h"
#include "portable/BoundedFormat.h"
#include "portable/BoundedStrings.h"
#include "portable/NumberText.h"
#include "portable/StringCase.h"

namespace {

constexpr int kInvalid = 22;
constexpr int kRange = 34;
constexpr int kCut = 80;
constexpr int kUntouched = 4711;  // what errno holds before a call

// What a call has to come to.
template <typename T>
struct SOutcome {
    int m_nResult;
    int m_nErrno = kUntouched;
    std::optional<std::basic_string<T>> m_text;  // in a destination that was given
};

// What the input gives a call: null, or memory that ends with the size that is told. It begins with a text that may
// lack its terminator.
template <typename T>
class CDestination {
public:
    explicit CDestination(CFuzzedInput& input) {
        const unsigned int shape = input.Byte();
        m_nSize = shape % 32;
        m_bNull = shape >= 0xE0;
        m_memory.reset(new T[m_nSize]);
        const std::string text = input.Text();
        for (std::size_t i = 0; i < m_nSize; ++i) {
            m_memory[i] = i < text.size() ? static_cast<T>(static_cast<unsigned char>(text[i])) : T();
        }
    }

    T* Get() const { return m_bNull ? nullptr : m_memory.get(); }
    std::size_t Size() const { return m_nSize; }
    bool IsNull() const { return m_bNull; }
    bool IsUsable() const { return !m_bNull && m_nSize != 0; }
    bool HasTerminator() const { return Text().size() < m_nSize; }

    // Up to the terminator or the end.
    std::basic_string<T> Text() const {
        const T* const begin = m_memory.get();
        return {begin, std::find(begin, begin + m_nSize, T())};
    }

    void Check(const char* function, int result, const SOutcome<T>& expected) const {
        fuzz::RequireEqual("errno", errno, expected.m_nErrno);
        fuzz::RequireEqual(function, result, expected.m_nResult);
        if (!expected.m_text || !IsUsable()) return;
        fuzz::Require(HasTerminator(), "the text has a terminator");
        fuzz::RequireEqual("the text", Text(), *expected.m_text);
    }

private:
    std::unique_ptr<T[]> m_memory;
    std::size_t m_nSize = 0;
    bool m_bNull = false;
};

// A source of the input's choice: null, or a text in memory that ends with its terminator.
template <typename T>
class CSource {
public:
    explicit CSource(CFuzzedInput& input) : m_bNull(input.Byte() >= 0xF0) {
        const std::string text = input.Text();
        for (const char character : text) m_text += static_cast<T>(static_cast<unsigned char>(character));
        m_memory = ExactCopy(m_text);
    }

    const T* Get() const { return m_bNull ? nullptr : m_memory.data(); }
    bool IsNull() const { return m_bNull; }
    const std::basic_string<T>& Text() const { return m_text; }

private:
    bool m_bNull;
    std::basic_string<T> m_text;
    std::vector<T> m_memory;
};

std::size_t Count(CFuzzedInput& input) {
    const unsigned int count = input.Byte();
    return count >= 0xF0 ? _TRUNCATE : count % 48;
}

template <typename T>
SOutcome<T> Refused(int error) {
    return {error, error, std::basic_string<T>()};
}

template <typename T>
SOutcome<T> ModelCopy(const CDestination<T>& dst, const CSource<T>& src) {
    if (!dst.IsUsable() || src.IsNull()) return Refused<T>(kInvalid);
    if (src.Text().size() >= dst.Size()) return Refused<T>(kRange);
    return {0, kUntouched, src.Text()};
}

// `before` and what is added to it, in a destination that has room for all of it or not.
template <typename T>
SOutcome<T> ModelFit(const std::basic_string<T>& before, const std::basic_string<T>& added, std::size_t size,
                     std::size_t count) {
    const std::basic_string<T> whole = before + added.substr(0, count);
    if (whole.size() < size) return {0, kUntouched, whole};
    if (count == _TRUNCATE) return {kCut, kUntouched, whole.substr(0, size - 1)};
    return Refused<T>(kRange);
}

template <typename T>
SOutcome<T> ModelCountedCopy(const CDestination<T>& dst, const CSource<T>& src, std::size_t count) {
    if (dst.IsNull() && dst.Size() == 0 && count == 0) return {0, kUntouched, {}};
    if (!dst.IsUsable()) return Refused<T>(kInvalid);
    if (count == 0) return {0, kUntouched, std::basic_string<T>()};
    if (src.IsNull()) return Refused<T>(kInvalid);
    return ModelFit<T>({}, src.Text(), dst.Size(), count);
}

template <typename T>
void CheckCopy(CFuzzedInput& input, int (*copy)(T*, size_t, const T*)) {
    const CDestination<T> dst(input);
    const CSource<T> src(input);
    const SOutcome<T> expected = ModelCopy(dst, src);
    errno = kUntouched;
    dst.Check("the copy", copy(dst.Get(), dst.Size(), src.Get()), expected);
}

template <typename T>
void CheckCountedCopy(CFuzzedInput& input, int (*copy)(T*, size_t, const T*, size_t)) {
    const CDestination<T> dst(input);
    const CSource<T> src(input);
    const std::size_t count = Count(input);
    const SOutcome<T> expected = ModelCountedCopy(dst, src, count);
    errno = kUntouched;
    dst.Check("the counted copy", copy(dst.Get(), dst.Size(), src.Get(), count), expected);
}

SOutcome<char> ModelAppend(const CDestination<char>& dst, const CSource<char>& src) {
    if (!dst.IsUsable()) return {kInvalid, kUntouched, {}};
    if (src.IsNull() || !dst.HasTerminator()) return {kInvalid, kUntouched, ""};
    const std::string whole = dst.Text() + src.Text();
    if (whole.size() >= dst.Size()) return {kRange, kUntouched, ""};
    return {0, kUntouched, whole};
}

void CheckAppend(CFuzzedInput& input) {
    const CDestination<char> dst(input);
    const CSource<char> src(input);
    const SOutcome<char> expected = ModelAppend(dst, src);
    errno = kUntouched;
    dst.Check("strcat_s", strcat_s(dst.Get(), dst.Size(), src.Get()), expected);
}

SOutcome<char> ModelCountedAppend(const CDestination<char>& dst, const CSource<char>& src, std::size_t count) {
    if (dst.IsNull() && dst.Size() == 0 && count == 0) return {0, kUntouched, {}};
    if (!dst.IsUsable()) return Refused<char>(kInvalid);
    if ((count != 0 && src.IsNull()) || !dst.HasTerminator()) return {kInvalid, kUntouched, ""};
    return ModelFit<char>(dst.Text(), src.IsNull() ? "" : src.Text(), dst.Size(), count);
}

void CheckCountedAppend(CFuzzedInput& input) {
    const CDestination<char> dst(input);
    const CSource<char> src(input);
    const std::size_t count = Count(input);
    const SOutcome<char> expected = ModelCountedAppend(dst, src, count);
    errno = kUntouched;
    dst.Check("strncat_s", strncat_s(dst.Get(), dst.Size(), src.Get(), count), expected);
}

void CheckMemory(CFuzzedInput& input) {
    const CDestination<unsigned short> dst(input);
    const bool wide = (input.Byte() & 1) != 0;
    const bool null = input.Byte() >= 0xF0;
    const std::size_t unit = wide ? 1 : sizeof(unsigned short);
    const std::size_t size = dst.Size() * unit;
    const std::string bytes = input.Bytes(64);
    std::vector<unsigned short> units(bytes.size() / 2);
    if (!units.empty()) std::memcpy(units.data(), bytes.data(), units.size() * 2);
    const std::size_t count = units.size() * unit;
    const unsigned short* const src = null ? nullptr : units.data();

    std::vector<unsigned short> after(dst.Size());
    if (dst.IsUsable()) std::copy_n(dst.Get(), dst.Size(), after.begin());
    SOutcome<unsigned short> expected = {0, kUntouched, {}};
    if (count != 0 && (dst.IsNull() || src == nullptr)) expected.m_nResult = kInvalid;
    if (count != 0 && !dst.IsNull() && src != nullptr && count > size) expected = {kRange, kRange, {}};
    if (expected.m_nResult != 0) std::fill(after.begin(), after.end(), static_cast<unsigned short>(0));
    if (count != 0 && expected.m_nResult == 0) std::copy(units.begin(), units.end(), after.begin());

    errno = kUntouched;
    const int result = wide ? wmemcpy_s(dst.Get(), size, src, count) : memcpy_s(dst.Get(), size, src, count);
    dst.Check("the memory's copy", result, expected);
    if (dst.IsUsable()) fuzz::Require(std::equal(after.begin(), after.end(), dst.Get()), "the memory is as expected");
}

// All tokens of one text.
void CheckTokens(CFuzzedInput& input) {
    std::string delimiters = input.Text();
    for (char& delimiter : delimiters) delimiter = static_cast<char>(delimiter & 0x7F);
    delimiters = delimiters.c_str();
    const std::string text = input.Text();
    std::vector<char> memory = ExactCopy(text);
    char* context = nullptr;
    char* rest = memory.data();
    for (std::size_t at = 0;;) {
        const std::size_t begin = std::min(text.find_first_not_of(delimiters, at), text.size());
        const std::size_t end = std::min(text.find_first_of(delimiters, begin), text.size());
        at = std::min(end + 1, text.size());
        const char* const token = strtok_s(rest, ExactCopy(delimiters).data(), &context);
        fuzz::RequireEqual("whether there is a token", token != nullptr, begin < text.size());
        fuzz::RequireEqual<long>("the place behind it", context - memory.data(), static_cast<long>(at));
        if (token == nullptr) return;
        fuzz::RequireEqual<long>("the token's place", token - memory.data(), static_cast<long>(begin));
        fuzz::RequireEqual("the token", std::string(token), text.substr(begin, end - begin));
        rest = nullptr;
    }
}

void CheckFormat(CFuzzedInput& input) {
    const CDestination<char> dst(input);
    const CSource<char> src(input);
    const int number = input.Number<int>();
    const std::string whole = src.Text() + "<" + std::to_string(number);
    SOutcome<char> expected = {static_cast<int>(whole.size()), kUntouched, whole};
    if (whole.size() >= dst.Size()) expected = {-1, kRange, ""};
    if (!dst.IsUsable()) expected = {-1, kInvalid, {}};
    errno = kUntouched;
    const char* const text = src.Text().c_str();
    dst.Check("sprintf_s", sprintf_s(dst.Get(), dst.Size(), "%s<%d", text, number), expected);
}

SOutcome<char> ModelCountedFormat(const CDestination<char>& dst, const std::string& whole, std::size_t count) {
    if (dst.IsNull() && dst.Size() == 0 && count == 0) return {0, kUntouched, {}};
    if (!dst.IsUsable()) return {-1, kInvalid, {}};
    const std::size_t most = std::min(count, dst.Size() - 1);
    if (whole.size() <= most) return {static_cast<int>(whole.size()), kUntouched, whole};
    if (count < dst.Size() || count == _TRUNCATE) return {-1, kUntouched, whole.substr(0, most)};
    return {-1, kRange, ""};
}

void CheckCountedFormat(CFuzzedInput& input) {
    const CDestination<char> dst(input);
    const CSource<char> src(input);
    const std::size_t count = Count(input);
    const int number = input.Number<int>();
    const std::string whole = std::to_string(number) + ">" + src.Text();
    const SOutcome<char> expected = ModelCountedFormat(dst, whole, count);
    errno = kUntouched;
    const char* const text = src.Text().c_str();
    dst.Check("_snprintf_s", _snprintf_s(dst.Get(), dst.Size(), count, "%d>%s", number, text), expected);
}

// Digits with the sign of the value, least significant first.
std::string ModelDigits(int value, int base) {
    std::string digits;
    for (; value != 0; value /= base) {
        const int digit = value % base;
        digits.insert(digits.begin(), static_cast<char>(digit > 9 ? 'a' + digit - 10 : '0' + digit));
    }
    return digits;
}

SOutcome<char> ModelNumber(const CDestination<char>& dst, int value, int base) {
    if (!dst.IsUsable()) return Refused<char>(kInvalid);
    if (dst.Size() <= (value < 0 && base == 10 ? 2 : 1)) return Refused<char>(kRange);
    if (base < 2 || base > 36) return Refused<char>(kInvalid);
    const std::string digits = ModelDigits(value, base);
    if (digits.size() >= dst.Size()) return Refused<char>(kRange);
    return {0, kUntouched, digits};
}

void CheckNumber(CFuzzedInput& input) {
    const CDestination<char> dst(input);
    const int value = input.Number<int>();
    const int base = input.Number<signed char>();
    const SOutcome<char> expected = ModelNumber(dst, value, base);
    errno = kUntouched;
    dst.Check("_itoa_s", _itoa_s(value, dst.Get(), dst.Size(), base), expected);
    if (base < 2 || base > 36) return;
    const std::unique_ptr<char[]> text(new char[33]);
    fuzz::RequireEqual("_itoa", std::string(_itoa(value, text.get(), base)), ModelDigits(value, base));
}

std::string Mapped(std::string text, int (*convert)(int)) {
    for (char& character : text) character = static_cast<char>(convert(static_cast<unsigned char>(character)));
    return text;
}

void CheckCase(CFuzzedInput& input) {
    const bool upper = (input.Byte() & 1) != 0;
    const CDestination<char> text(input);
    SOutcome<char> expected = {0, kUntouched, Mapped(text.Text(), upper ? toupper : tolower)};
    if (text.IsNull() || !text.HasTerminator()) expected = Refused<char>(kInvalid);
    errno = kUntouched;
    text.Check("the case", (upper ? _strupr_s : _strlwr_s)(text.Get(), text.Size()), expected);
    if (expected.m_nResult != 0) return;
    std::string reversed = text.Text();
    std::reverse(reversed.begin(), reversed.end());
    fuzz::RequireEqual("_strrev", std::string(_strrev(text.Get())), reversed);
    fuzz::RequireEqual("_strlwr", std::string(_strlwr(text.Get())), Mapped(reversed, tolower));
    fuzz::RequireEqual("_strupr", std::string(_strupr(text.Get())), Mapped(reversed, toupper));
}

using CCheck = void (*)(CFuzzedInput&);

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const CCheck kChecks[] = {
        [](CFuzzedInput& input) { CheckCopy<char>(input, strcpy_s); },
        [](CFuzzedInput& input) { CheckCopy<unsigned short>(input, wcscpy_s); },
        [](CFuzzedInput& input) { CheckCountedCopy<char>(input, strncpy_s); },
        [](CFuzzedInput& input) { CheckCountedCopy<unsigned short>(input, wcsncpy_s); },
        CheckAppend,
        CheckCountedAppend,
        CheckMemory,
        CheckTokens,
        CheckFormat,
        CheckCountedFormat,
        CheckNumber,
        CheckCase,
    };
    CFuzzedInput input(data, size);
    input.OneOf(kChecks)(input);
    return 0;
}
