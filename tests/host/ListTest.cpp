// keloaudio list.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/host/KeloAudio.h"

namespace {

class List : public CKeloAudio {
protected:
    nlohmann::json Components(const std::vector<std::string>& arguments) const {
        const SRunResult result = Run(arguments);
        EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
        return nlohmann::json::parse(result.m_strOut).at("components");
    }

    // The first component of this type.
    nlohmann::json SoundComponent(const std::string& type) const {
        const nlohmann::json components = Components({"list", "--json"});
        for (const nlohmann::json& component : components) {
            if (component.at("type") == type) return component;
        }
        return {};
    }

    static bool Holds(const nlohmann::json& list, const std::string& text) {
        return std::find(list.begin(), list.end(), text) != list.end();
    }
};

}  // namespace

TEST_F(List, NamesTypeNamePlaceAndVendorOfEachComponent) {
    UseFixture("ScriptedDecoder.so");
    const SRunResult result = RunWithChosen({"list"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(
        result.m_strOut.rfind("decoder  Scripted Decoder  ScriptedDecoder.so 0  -\n    extensions    endless, ", 0), 0u)
        << result.m_strOut;
    EXPECT_NE(result.m_strOut.find("\n    can           converting-source\n"), std::string::npos) << result.m_strOut;
}

TEST_F(List, ComponentThatOffersNothingHasOneLine) {
    UseFixture("NamelessDecoder.so");
    UseFixture("CountedConvertor.so");
    const SRunResult result = RunWithChosen({"list"});
    EXPECT_NE(result.m_strOut.find("convertor  Counted Convertor  CountedConvertor.so 0  -\n    can           "
                                   "convertor-factory\n"),
              std::string::npos)
        << result.m_strOut;
}

TEST_F(List, ReferencePluginsAreFoundByTheProgramItself) {
    // The build tree's owner need not be the one who runs the tests.
    const SRunResult result = RunPlain({"list", "--trust-plugins"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    for (const char* const text :
         {"decoder ", "encoder ", "convertor ", "sndfile.so 0", "sndfile.so 1", "soxr.so 0", "Kelo Audio"}) {
        EXPECT_NE(result.m_strOut.find(text), std::string::npos) << text;
    }
}

TEST_F(List, JsonHoldsThePlaceAndTheExtensionsOfTheDecoder) {
    const nlohmann::json decoder = SoundComponent("decoder");
    EXPECT_EQ(decoder.at("name"), "libsndfile Decoder");
    EXPECT_EQ(decoder.at("vendor"), "Kelo Audio");
    EXPECT_EQ(decoder.at("file"), "sndfile.so");
    EXPECT_EQ(decoder.at("index"), 0);
    EXPECT_TRUE(Holds(decoder.at("extensions"), "wav"));
    EXPECT_TRUE(Holds(decoder.at("capabilities"), "converting-source"));
    EXPECT_TRUE(Holds(decoder.at("capabilities"), "about"));
}

TEST_F(List, JsonHoldsTheSettingsOfTheConvertor) {
    const nlohmann::json convertor = SoundComponent("convertor");
    ASSERT_FALSE(convertor.at("settings").empty());
    const nlohmann::json& quality = convertor.at("settings").at(0);
    EXPECT_EQ(quality.at("name"), "quality");
    EXPECT_EQ(quality.at("takes"), "quick|high|very-high");
    EXPECT_EQ(quality.at("value"), "high");
    EXPECT_TRUE(Holds(convertor.at("capabilities"), "configurable"));
    EXPECT_TRUE(Holds(convertor.at("capabilities"), "convertor-factory"));
}

TEST_F(List, JsonHoldsSettingsAndTagsOfTheEncoderByExtension) {
    const nlohmann::json encoder = SoundComponent("encoder");
    bool found = false;
    for (const nlohmann::json& target : encoder.at("targets")) {
        if (target.at("extension") != "flac") continue;
        found = true;
        EXPECT_EQ(target.at("settings").at(0).at("name"), "compression");
        EXPECT_TRUE(Holds(target.at("tags"), "title"));
    }
    EXPECT_TRUE(found);
    EXPECT_TRUE(Holds(encoder.at("capabilities"), "target"));
}

TEST_F(List, UrlHandlerTellsItsProtocols) {
    UseFixture("CountedFetch.so");
    const nlohmann::json components = Components({"list", "--json", "--plugins", PluginDirectory()});
    EXPECT_EQ(components.at(0).at("type"), "url-handler");
    EXPECT_EQ(components.at(0).at("protocols"), nlohmann::json::array({"http"}));
    EXPECT_NE(RunWithChosen({"list"}).m_strOut.find("\n    protocols     http\n"), std::string::npos);
}
