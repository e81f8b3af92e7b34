// The values that a fuzz target takes one after another from the bytes of an input.
// One input belongs to one thread. [any thread]
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

// An input that has run out gives zeros and empty texts.
class CFuzzedInput {
public:
    CFuzzedInput(const std::uint8_t* data, std::size_t size) : m_rest(reinterpret_cast<const char*>(data), size) {}

    bool IsEmpty() const { return m_rest.empty(); }

    unsigned int Byte() { return Number<std::uint8_t>(); }

    // Lowest byte first.
    template <typename T>
    T Number() {
        std::make_unsigned_t<T> value = 0;
        const std::string bytes = Bytes(sizeof(T));
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            value = static_cast<std::make_unsigned_t<T>>(
                value | static_cast<std::make_unsigned_t<T>>(static_cast<unsigned char>(bytes[i])) << (8 * i));
        }
        return static_cast<T>(value);
    }

    std::string Bytes(std::size_t count) {
        const std::string bytes(m_rest.substr(0, count));
        m_rest.remove_prefix(bytes.size());
        return bytes;
    }

    // Up to the next zero byte, which is taken too.
    std::string Text() {
        const std::string text = Bytes(std::min(m_rest.find('\0'), m_rest.size()));
        Bytes(1);
        return text;
    }

    // One of the values of an array.
    template <typename T, std::size_t nCount>
    T OneOf(const T (&values)[nCount]) {
        return values[Byte() % nCount];
    }

private:
    std::string_view m_rest;
};

// The text with its terminator in memory that ends there, so that the address sanitizer sees a read beyond it.
template <typename T>
std::vector<T> ExactCopy(const std::basic_string<T>& text) {
    return std::vector<T>(text.c_str(), text.c_str() + text.size() + 1);
}
