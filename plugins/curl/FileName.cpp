// The name of the local file for a fetched source.
#include "plugins/curl/FileName.h"

#include <algorithm>
#include <string_view>

#include "plugins/curl/AsciiText.h"
#include "plugins/curl/AudioTypes.h"
#include "plugins/curl/ContentDisposition.h"
#include "plugins/curl/URLText.h"
#include "sdk/Utf8.h"

namespace {

constexpr std::size_t kLongestExtension = 8;

// With the extension still below the 255 bytes of a file system's name.
constexpr std::size_t kLongestStem = 200;

struct SSplitName {
    std::string m_strStem;
    std::string m_strExtension;  // without the dot
};

// "mp3" and "3gp", but neither "2" of "Live 1.2" nor a sentence behind a full stop.
bool IsExtension(std::string_view text) {
    const auto isSane = [](char character) { return IsLetter(character) || IsDigit(character); };
    return text.size() <= kLongestExtension && std::all_of(text.begin(), text.end(), isSane) &&
           std::any_of(text.begin(), text.end(), IsLetter);
}

// Names of the programs and pages that answer; they say nothing about the answer.
bool IsPage(std::string_view extension) {
    constexpr std::string_view kPages[] = {"asp", "aspx", "cgi", "htm", "html", "jsp", "php", "pl"};
    return std::find(std::begin(kPages), std::end(kPages), LowerCase(extension)) != std::end(kPages);
}

// What changes how a terminal or a list shows the rest: control characters of ASCII, those of ISO 6429's C1 set, and
// the marks of Unicode's bidirectional algorithm (UAX #9, 2) that override, embed or isolate.
bool IsControl(std::string_view sequence) {
    const auto lead = static_cast<unsigned char>(sequence.front());
    if (sequence.size() == 1) return lead < 0x20 || lead == 0x7F;
    if (sequence.size() == 2) return lead == 0xC2 && sequence[1] < '\xA0';
    return (sequence >= "\u202A" && sequence <= "\u202E") || (sequence >= "\u2066" && sequence <= "\u2069");
}

// Without slashes, control characters and malformed text; not too long, and not hidden.
std::string Presentable(std::string_view text) {
    std::string clean;
    while (!text.empty()) {
        const std::size_t length = Utf8SequenceLength(text, 0);
        const bool isGood = length > 0 && text.front() != '/' && !IsControl(text.substr(0, length));
        if (clean.size() + length > kLongestStem) break;
        clean += isGood ? text.substr(0, length) : "_";
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    const std::size_t begin = clean.find_first_not_of(". ");
    return begin == std::string::npos ? std::string() : clean.substr(begin, clean.find_last_not_of(' ') - begin + 1);
}

SSplitName SplitName(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || !IsExtension(name.substr(dot + 1))) return {Presentable(name), ""};
    const std::string extension = name.substr(dot + 1);
    return {Presentable(name.substr(0, dot)), IsPage(extension) ? "" : extension};
}

}  // namespace

std::string ChooseFileName(const SNameSources& sources) {
    const SSplitName names[] = {
        SplitName(LastSegment(sources.m_strURL)),
        SplitName(LastSegment(sources.m_strFinalURL)),
        SplitName(FileNameOfDisposition(sources.m_strContentDisposition)),
        {Presentable(HostOf(sources.m_strURL)), std::string(ExtensionOfType(sources.m_strContentType))},
        {"source", ""},
    };
    const auto stem =
        std::find_if(std::begin(names), std::end(names), [](const auto& name) { return !name.m_strStem.empty(); });
    const auto extension =
        std::find_if(std::begin(names), std::end(names), [](const auto& name) { return !name.m_strExtension.empty(); });
    return stem->m_strStem + (extension != std::end(names) ? "." + extension->m_strExtension : std::string());
}
