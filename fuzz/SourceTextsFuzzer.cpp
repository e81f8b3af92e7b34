// Artist and title of a source: tag source mode, order of names, which tags there are; the tags and the source's name.
#include <cctype>
#include <memory>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "fuzz/FuzzedInput.h"
#include "fuzz/Require.h"
#include "stream/SrcConvAggregator.h"
#include "tests/support/FakeDecoder.h"
#include "tests/support/ManagerHold.h"

namespace {

struct STexts {
    std::string m_strArtist;
    std::string m_strTitle;
};

struct SCase {
    int m_nMode;
    int m_nOrder;
    bool m_bHasArtist;
    bool m_bHasTitle;
    bool m_bHasName;
    STexts m_tags;
    std::string m_strName;
};

// Without directory and extension; the names here are of no existing directory.
std::string BareName(const std::string& path) {
    std::string name = path;
    if (!name.empty() && name.back() == '/' && name.find_first_not_of('/') != std::string::npos) name.pop_back();
    name = name.substr(name.rfind('/') + 1);
    return name.substr(0, name.rfind('.'));
}

std::string ModelSeparator(const std::string& name) {
    int hyphens = 0;
    int underscores = 0;
    int spaces = 0;
    std::string last;
    for (const char character : name) {
        hyphens += character == '-' ? 1 : 0;
        underscores += character == '_' ? 1 : 0;
        spaces += character == ' ' ? 1 : 0;
        const bool part = std::isalnum(static_cast<unsigned char>(character)) != 0;
        if (!part && character != ' ' && character != '\'') last = character;
    }
    if (hyphens > 0) return "-";
    return spaces == 0 && underscores > 0 ? "_" : last;
}

std::string Trimmed(std::string text) {
    const auto isBlank = [](char character) { return std::string("\t\r\n ").find(character) != std::string::npos; };
    while (!text.empty() && isBlank(text.back())) text.pop_back();
    while (!text.empty() && isBlank(text.front())) text.erase(0, 1);
    return text;
}

STexts NameTexts(const SCase& asked, const STexts& tags) {
    const std::string name = BareName(asked.m_strName);
    if (asked.m_nOrder == 2) return {"", name};
    const bool complete = !tags.m_strArtist.empty() && !tags.m_strTitle.empty();
    if (complete || (asked.m_nOrder != 0 && asked.m_nOrder != 1)) return tags;

    const std::string separator = ModelSeparator(name);
    std::string first;
    std::size_t at = 0;
    while (at < name.size() && separator.find(name[at]) == std::string::npos) first += name[at++];
    while (at < name.size() && separator.find(name[at]) != std::string::npos) ++at;
    const std::string second = name.substr(at);
    if (asked.m_nOrder == 1) return {second, first};
    return second.empty() ? STexts{"", first} : STexts{first, second};
}

STexts ModelTexts(const SCase& asked) {
    STexts texts{asked.m_bHasArtist ? asked.m_tags.m_strArtist : "", asked.m_bHasTitle ? asked.m_tags.m_strTitle : ""};
    if (asked.m_nMode != 0 && asked.m_nMode != 2) return texts;
    if (asked.m_nMode == 2) texts = {};
    if (!texts.m_strArtist.empty() && !texts.m_strTitle.empty()) return texts;
    if (!asked.m_bHasName || asked.m_strName.empty()) return texts;
    texts = NameTexts(asked, texts);
    return {Trimmed(texts.m_strArtist), Trimmed(texts.m_strTitle)};
}

SCase CaseOf(CFuzzedInput& input) {
    SCase asked;
    asked.m_nMode = input.Number<signed char>() % 4;
    asked.m_nOrder = input.Number<signed char>() % 5;
    const unsigned int present = input.Byte();
    asked.m_bHasArtist = (present & 1) != 0;
    asked.m_bHasTitle = (present & 2) != 0;
    asked.m_bHasName = (present & 4) == 0;
    asked.m_tags.m_strArtist = input.Text();
    asked.m_tags.m_strTitle = input.Text();
    asked.m_strName = "/no-such-folder/" + input.Text();
    if ((present & 8) != 0) asked.m_strName.clear();
    return asked;
}

// A source over a decoder that has the case's tags and name.
class CSource {
public:
    explicit CSource(const SCase& asked)
        : m_artist(ExactCopy(asked.m_tags.m_strArtist)),
          m_title(ExactCopy(asked.m_tags.m_strTitle)),
          m_name(ExactCopy(asked.m_strName)) {
        m_script.m_denied.erase(IID_ISourceName);
        m_script.m_pArtist = asked.m_bHasArtist ? m_artist.data() : nullptr;
        m_script.m_pTitle = asked.m_bHasTitle ? m_title.data() : nullptr;
        m_script.m_pSourceName = asked.m_bHasName ? m_name.data() : nullptr;
        m_manager->SetTagSourceMode(asked.m_nMode);
        m_manager->SetFileNameOrder(asked.m_nOrder);
        m_pStream = support::NewDecoder(m_script);
        auto source = std::make_unique<CSrcConvAggregator>(m_manager.Get(), &m_pStream, nullptr);
        fuzz::Require(source->IsValid(), "the decoder is wrapped");
        m_pSource = source.release();
    }
    ~CSource() { m_pStream->Release(); }

    CSource(const CSource&) = delete;
    CSource& operator=(const CSource&) = delete;

    CSrcConvAggregator* operator->() const { return m_pSource; }

private:
    std::vector<char> m_artist;
    std::vector<char> m_title;
    std::vector<char> m_name;
    support::SDecoderScript m_script;
    support::CManagerHold m_manager;
    IUnknown* m_pStream = nullptr;
    CSrcConvAggregator* m_pSource = nullptr;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const support::CManagerHold manager;
    CFuzzedInput input(data, size);
    const SCase asked = CaseOf(input);
    const STexts expected = ModelTexts(asked);
    const CSource source(asked);
    fuzz::RequireEqual("the artist", std::string(source->GetArtist()), expected.m_strArtist);
    fuzz::RequireEqual("the title", std::string(source->GetTitle()), expected.m_strTitle);
    return 0;
}
