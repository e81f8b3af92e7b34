// Tags on their way from one file format to another.
#include <nlohmann/json.hpp>

#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class Tags : public CKeloAudio {
protected:
    nlohmann::json TagsOf(const std::string& path) const {
        const SRunResult result = Run({"info", path, "--json"});
        EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
        return nlohmann::json::parse(result.m_strOut).at("sources").at(0).at("tags");
    }

    void WriteTagged(const std::string& name) const {
        RunTool({"flac", "-s", "--no-utf8-convert", "-T", "TITLE=Grüße", "-T", "ARTIST=Vorn", "-T", "ALBUM=Räume", "-T",
                 "DATE=1999", "-T", "GENRE=Speech", "-o", InWork(name), kFrontCenter});
    }
};

const nlohmann::json kAll = {
    {"title", "Grüße"}, {"artist", "Vorn"}, {"album", "Räume"}, {"year", "1999"}, {"genre", "Speech"}};

}  // namespace

TEST_F(Tags, TravelIntoEveryFormatThatHasAPlaceForThem) {
    WriteTagged("in.flac");
    for (const std::string extension : {"flac", "ogg", "opus", "wav"}) {
        SCOPED_TRACE(extension);
        ExpectConverted(Run({"convert", "in.flac", "out." + extension}), "out." + extension);
        EXPECT_EQ(TagsOf("out." + extension), kAll);
    }
}

TEST_F(Tags, AreThereForOtherPrograms) {
    WriteTagged("in.flac");
    ExpectConverted(Run({"convert", "in.flac", "out.flac", "--rate", "44100"}), "out.flac");
    EXPECT_EQ(RunTool({"metaflac", "--no-utf8-convert", "--show-tag=title", "--show-tag=genre", InWork("out.flac")}),
              "title=Grüße\ngenre=Speech\n");
}

TEST_F(Tags, WithoutAPlaceStayBehind) {
    WriteTagged("in.flac");
    ExpectConverted(Run({"convert", "in.flac", "out.au"}), "out.au");
    EXPECT_TRUE(TagsOf("out.au").empty());
}

TEST_F(Tags, ThatTheEncoderRefusesStayBehindWithAWord) {
    const std::string longTitle(5000, 'x');
    RunTool({"flac", "-s", "-T", "TITLE=" + longTitle, "-T", "ARTIST=Vorn", "-o", InWork("in.flac"), kFrontCenter});
    const SRunResult result = Run({"convert", "in.flac", "out.ogg"});
    EXPECT_EQ(result.m_nExit, 0);
    EXPECT_EQ(result.m_strErr.rfind("keloaudio: in.flac: the title is left out: ", 0), 0u) << result.m_strErr;
    EXPECT_TRUE(IsOneLine(result.m_strErr)) << result.m_strErr;
    EXPECT_EQ(TagsOf("out.ogg"), (nlohmann::json{{"artist", "Vorn"}}));
}

TEST_F(Tags, AreNotMadeUpFromTheFileName) {
    std::filesystem::copy_file(kFrontCenter, InWork("Band - Song.wav"));
    ExpectConverted(Run({"convert", "Band - Song.wav", "out.flac"}), "out.flac");
    EXPECT_TRUE(TagsOf("out.flac").empty());
}

TEST_F(Tags, OfEachFileOfABatchGoIntoItsOwnOutput) {
    for (int i = 0; i < 8; ++i) {
        const std::string number = std::to_string(i);
        RunTool({"flac", "-s", "-T", "TITLE=Number " + number, "-o", InWork("in" + number + ".flac"), kFrontCenter});
    }
    EXPECT_EQ(Run({"convert", ".", "-r", "--to", "ogg", "--out-dir", "out", "-j", "8"}).m_nExit, 0);
    for (int i = 0; i < 8; ++i) {
        const std::string number = std::to_string(i);
        EXPECT_EQ(TagsOf("out/in" + number + ".ogg").at("title"), "Number " + number);
    }
}
