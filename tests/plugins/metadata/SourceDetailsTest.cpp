// The other tags and the index points of real files, through the manager.
#include "tests/plugins/metadata/OpenedSource.h"
#include "tests/plugins/sndfile/AudioFiles.h"

namespace {

constexpr SWavFormat kMono{44100, 16, 1};

// A cue point of a WAV file.
std::string Cue(std::uint32_t number, std::uint32_t position) {
    return LittleEndian(number, 4) + LittleEndian(position, 4) + "data" + LittleEndian(0, 4) + LittleEndian(0, 4) +
           LittleEndian(position, 4);
}

}  // namespace

TEST(SourceTags, AlbumYearAndGenrePassThroughWhateverTheSettings) {
    const CScratchDirectory scratch;
    const CLoadedPlugins plugins;
    const std::string path = scratch / "Band - Song.ogg";
    RunTool("oggenc -Q -l 'An Album' -d 1999 -G Rock " + kVoice + " -o '" + path + "'");
    const SOpenedSource source(plugins, path);
    ASSERT_TRUE(source.m_info);
    for (const int mode : {0, 1, 2}) {
        plugins.Manager().SetTagSourceMode(mode);
        EXPECT_STREQ(source.m_info->GetAlbum(), "An Album");
        EXPECT_STREQ(source.m_info->GetYear(), "1999");
        EXPECT_STREQ(source.m_info->GetGenre(), "Rock");
    }
}

TEST(SourceIndex, CuePointsAreRescaledWhileAConversionRuns) {
    const CScratchDirectory scratch;
    const CLoadedPlugins plugins;
    const std::string cues = Chunk("cue ", LittleEndian(2, 4) + Cue(1, 1000) + Cue(2, 8001));
    const std::string path = scratch.Write("x.wav", WavFile(kMono, RandomBytes(20000), 1, cues));
    const SWavFormat wanted{22050, 16, 1};
    const SOpenedSource source(plugins, path, &wanted);
    ASSERT_TRUE(source.m_index);
    ASSERT_EQ(source.m_index->GetIndexNumber(), 2);
    EXPECT_EQ(source.m_index->GetIndex(1), 8001u);
    ASSERT_TRUE(source.m_process->Start(nullptr));
    EXPECT_EQ(source.m_index->GetIndex(0), 500u);
    EXPECT_EQ(source.m_index->GetIndex(1), 4000u);
    EXPECT_EQ(source.m_index->GetIndex(2), ~std::uint64_t{0});
    EXPECT_TRUE(source.m_process->End(nullptr));
    EXPECT_EQ(source.m_index->GetIndex(1), 8001u);
}

TEST(SourceIndex, FileWithoutCuePointsHasNone) {
    const CLoadedPlugins plugins;
    const SOpenedSource source(plugins, kVoice);
    ASSERT_TRUE(source.m_index);
    EXPECT_EQ(source.m_index->GetIndexNumber(), 0);
    EXPECT_EQ(source.m_index->GetIndex(0), ~std::uint64_t{0});
}
