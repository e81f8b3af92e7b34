// The growable string against a standard one with the growth rule beside it: a list of operations with their texts.
#include <algorithm>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "fuzz/FuzzedInput.h"
#include "fuzz/Require.h"
#include "portable/BasicString.h"

namespace {

constexpr std::size_t kMostOperations = 64;
constexpr std::size_t kMostFormatted = 16383;
constexpr int kMostReserved = 65536;

struct SModel {
    std::string m_text;
    int m_nCapacity = 6;

    void Store(const std::string& text) {
        Reserve(static_cast<int>(text.size()));
        m_text = text;
    }
    void Reserve(int length) {
        if (m_nCapacity < length + 2) m_nCapacity = 2 * length + 2;
    }
};

void RequireSame(const CBasicString<char>& string, const SModel& model) {
    fuzz::RequireEqual("the length", string.GetLength(), static_cast<int>(model.m_text.size()));
    fuzz::RequireEqual("the capacity", string.GetCapacity(), model.m_nCapacity);
    fuzz::RequireEqual("whether it is empty", string.IsEmpty(), model.m_text.empty());
    // The terminator and a 16-bit one's second half have room.
    fuzz::RequireEqual("the text", std::string(string.GetText(), model.m_text.size() + 1), model.m_text + '\0');
}

// A text that a few bytes make long.
std::string LongText(CFuzzedInput& input) {
    const unsigned int repeated = input.Byte();
    const std::string text = input.Text();
    std::string result = text;
    for (unsigned int i = 0; i < repeated && result.size() < 2 * kMostFormatted; ++i) result += text;
    return result;
}

std::string UpToTerminator(const std::string& text) { return text.substr(0, text.find('\0')); }

class CStringUnderTest {
public:
    void Do(CFuzzedInput& input) {
        switch (input.Byte() % 8) {
            case 0:
                return Construct(input);
            case 1:
                return Assign(LongText(input));
            case 2:
                return Append(LongText(input));
            case 3:
                return Format(input);
            case 4:
                return Copy();
            case 5:
                return Reserve(static_cast<int>(input.Number<unsigned short>()) % kMostReserved);
            case 6:
                return Write(input);
            default:
                return DoNothing();
        }
    }

    void Check() const { RequireSame(m_string, m_model); }

private:
    void Construct(CFuzzedInput& input) {
        const std::string bytes = input.Bytes(input.Byte());
        const bool measured = (input.Byte() & 1) != 0;
        const CBasicString<char> made(ExactCopy(bytes).data(), measured ? -1 : static_cast<int>(bytes.size()));
        SModel model;
        model.Store(measured ? UpToTerminator(bytes) : bytes);
        RequireSame(made, model);
        for (int i = made.GetLength(); i < made.GetCapacity(); ++i) fuzz::Require(made.GetText()[i] == 0, "zero tail");
        m_string = made;
        m_model.Store(model.m_text);
    }

    void Assign(const std::string& text) {
        m_string = ExactCopy(text).data();
        m_model.Store(text);
    }

    void Append(const std::string& text) {
        m_string += ExactCopy(text).data();
        m_model.Store(m_model.m_text + text);
    }

    void Format(CFuzzedInput& input) {
        const int number = input.Number<int>();
        const std::string text = LongText(input);
        const int length = m_string.Format("%d%%%s", number, text.c_str());
        m_model.Store((std::to_string(number) + '%' + text).substr(0, kMostFormatted));
        fuzz::RequireEqual("the new length", length, static_cast<int>(m_model.m_text.size()));
    }

    void Copy() {
        const CBasicString<char> copy(m_string);
        SModel model;
        model.Store(m_model.m_text);
        RequireSame(copy, model);
        m_string = copy;
        m_model.Store(model.m_text);
        const CBasicString<char>& same = m_string;
        m_string = same;
    }

    void Reserve(int length) {
        m_string.Reserve(length);
        m_model.Reserve(length);
    }

    void Write(CFuzzedInput& input) {
        const std::string text = input.Text().substr(0, static_cast<std::size_t>(m_string.GetCapacity()) - 1);
        std::copy_n(text.c_str(), text.size() + 1, m_string.GetBuffer());
        m_string.UpdateLength();
        m_model.m_text = text;
    }

    void DoNothing() {
        m_string = static_cast<const char*>(nullptr);
        m_string += static_cast<const char*>(nullptr);
    }

    CBasicString<char> m_string;
    SModel m_model;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CFuzzedInput input(data, size);
    CStringUnderTest string;
    string.Check();
    for (std::size_t i = 0; i < kMostOperations && !input.IsEmpty(); ++i) {
        string.Do(input);
        string.Check();
    }
    return 0;
}
