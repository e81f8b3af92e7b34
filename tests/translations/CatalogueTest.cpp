// The catalogues of the dialogs' texts are complete and follow the sources.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/build/RunCommand.h"

namespace {

constexpr const char* kLanguages[] = {"de", "es", "fr", "ja", "zh_CN"};

const std::string kFolder = KELO_SOURCE_DIRECTORY "/dialog/po/";
const std::string kTemplate = kFolder + "keloaudiopluginmgr.pot";

// What a command line of the shell prints, errors included.
std::string OutputOf(const std::string& command) {
    const SCommandResult result = RunCommand(command + " 2>&1");
    EXPECT_EQ(result.m_nStatus, 0) << command << "\n" << result.m_strOutput;
    return result.m_strOutput;
}

// The texts of a catalogue's content; each stands on one line.
std::set<std::string> TextsOf(const std::string& content) {
    const std::string key = "msgid ";
    std::set<std::string> texts;
    for (const std::string& line : Lines(content)) {
        if (line.compare(0, key.size(), key) == 0 && line != "msgid \"\"") texts.insert(line.substr(key.size()));
    }
    return texts;
}

// The texts that the sources below `root` pass to dgettext.
std::set<std::string> TextsOfSources(const std::string& root) {
    return TextsOf(OutputOf("cd " + Quoted(root) +
                            " && find dialog plugins -name '*.cpp' | " KELO_XGETTEXT
                            " --files-from=- --language=C++ --from-code=UTF-8 --omit-header --no-location --no-wrap"
                            " --output=-"));
}

}  // namespace

TEST(Catalogues, AreCompleteAndWellFormed) {
    const std::size_t count = TextsOf(OutputOf("cat " + Quoted(kTemplate))).size();
    ASSERT_GE(count, 17u);
    for (const char* const language : kLanguages) {
        EXPECT_EQ(OutputOf(KELO_MSGFMT " --check --check-accelerators=_ --statistics --output-file=/dev/null " +
                           Quoted(kFolder + language + ".po")),
                  std::to_string(count) + " translated messages.\n")
            << language;
        EXPECT_EQ(OutputOf(KELO_MSGCMP " " + Quoted(kFolder + language + ".po") + " " + Quoted(kTemplate)), "")
            << language;
    }
}

TEST(Catalogues, TemplateHoldsTheTextsOfTheSources) {
    const std::set<std::string> texts = TextsOfSources(KELO_SOURCE_DIRECTORY);
    EXPECT_EQ(texts, TextsOf(OutputOf("cat " + Quoted(kTemplate))));
    for (const char* const text : {"\"Decoders\"", "\"_Close\"", "\"Audio Format Settings\"", "\"Plug-in Name\"",
                                   "\"Configure...\"", "\"Resampling Quality\"", "\"Reads sound files with %s.\""}) {
        EXPECT_EQ(texts.count(text), 1u) << text;
    }
}

TEST(Catalogues, ThereIsOneForEachLanguageAndNoOther) {
    std::set<std::string> expected;
    for (const char* const language : kLanguages) expected.insert(std::string(language) + ".po");
    const std::vector<std::string> found = Lines(OutputOf("cd " + Quoted(kFolder) + " && ls *.po"));
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()), expected);
}
