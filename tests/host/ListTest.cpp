// keloaudio list.
#include <algorithm>

#include "tests/host/KeloAudio.h"

namespace {

class List : public CKeloAudio {};

}  // namespace

TEST_F(List, NamesTypeNamePlaceAndExtensionsOfEachComponent) {
    UseFixture("ScriptedDecoder.so");
    const SRunResult result = RunWithChosen({"list"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(result.m_strOut.rfind("decoder  Scripted Decoder  ScriptedDecoder.so 0  endless, ", 0), 0u)
        << result.m_strOut;
    EXPECT_TRUE(IsOneLine(result.m_strOut));
}

TEST_F(List, ComponentWithoutExtensionsHasADash) {
    UseFixture("CountedConvertor.so");
    EXPECT_EQ(RunWithChosen({"list"}).m_strOut, "convertor  Counted Convertor  CountedConvertor.so 0  -\n");
}

TEST_F(List, ReferencePluginsAreFoundBesideTheProgram) {
    const SRunResult result = Run({"list"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(std::count(result.m_strOut.begin(), result.m_strOut.end(), '\n'), 3);
    for (const char* const text :
         {"decoder    ", "encoder    ", "convertor  ", "sndfile.so 0", "sndfile.so 1", "soxr.so 0"}) {
        EXPECT_NE(result.m_strOut.find(text), std::string::npos) << text;
    }
}
