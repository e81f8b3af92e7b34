// Artist and title of real files under each of the manager's settings.
#include <filesystem>

#include "tests/plugins/metadata/OpenedSource.h"
#include "tests/plugins/sndfile/AudioFiles.h"

namespace {

constexpr const char* kFormats[] = {"flac", "mp3", "ogg"};

// What the files named "Band - Song" say, by the tags that they have; the tags are "Tag Artist" and "Tag Title".
struct SSettings {
    int m_nTagSourceMode;
    int m_nFileNameOrder;
    const char* m_pszBoth;
    const char* m_pszTitleOnly;
    const char* m_pszArtistOnly;
    const char* m_pszNone;
};

constexpr SSettings kSettings[] = {
    {0, 0, "Tag Artist|Tag Title", "Band|Song", "Band|Song", "Band|Song"},
    {0, 1, "Tag Artist|Tag Title", "Song|Band", "Song|Band", "Song|Band"},
    {0, 2, "Tag Artist|Tag Title", "|Band - Song", "|Band - Song", "|Band - Song"},
    {0, 3, "Tag Artist|Tag Title", "|Tag Title", "Tag Artist|", "|"},
    {1, 0, "Tag Artist|Tag Title", "|Tag Title", "Tag Artist|", "|"},
    {1, 1, "Tag Artist|Tag Title", "|Tag Title", "Tag Artist|", "|"},
    {1, 2, "Tag Artist|Tag Title", "|Tag Title", "Tag Artist|", "|"},
    {1, 3, "Tag Artist|Tag Title", "|Tag Title", "Tag Artist|", "|"},
    {2, 0, "Band|Song", "Band|Song", "Band|Song", "Band|Song"},
    {2, 1, "Song|Band", "Song|Band", "Song|Band", "Song|Band"},
    {2, 2, "|Band - Song", "|Band - Song", "|Band - Song", "|Band - Song"},
    {2, 3, "|", "|", "|", "|"},
};

std::string EncoderLine(const std::string& format, bool title, bool artist) {
    if (format == "flac") {
        return std::string("flac -s -f") + (title ? " --tag='TITLE=Tag Title'" : "") +
               (artist ? " --tag='ARTIST=Tag Artist'" : "") + " " + kVoice + " -o ";
    }
    if (format == "mp3") {
        return std::string("lame --quiet") + (title ? " --tt 'Tag Title'" : "") + (artist ? " --ta 'Tag Artist'" : "") +
               " " + kVoice + " ";
    }
    return std::string("oggenc -Q") + (title ? " -t 'Tag Title'" : "") + (artist ? " -a 'Tag Artist'" : "") + " " +
           kVoice + " -o ";
}

// "Band - Song" in a directory of its own.
std::string MakeFile(const CScratchDirectory& scratch, const std::string& format, bool title, bool artist) {
    const std::string directory = scratch / (format + (title ? "-title" : "") + (artist ? "-artist" : ""));
    std::filesystem::create_directory(directory);
    std::string path = directory + "/Band - Song." + format;
    RunTool(EncoderLine(format, title, artist) + "'" + path + "'");
    return path;
}

void Apply(const CLoadedPlugins& plugins, const SSettings& settings) {
    plugins.Manager().SetTagSourceMode(settings.m_nTagSourceMode);
    plugins.Manager().SetFileNameOrder(settings.m_nFileNameOrder);
}

struct SFileName {
    const char* m_pszName;
    const char* m_pszArtistFirst;
    const char* m_pszTitleFirst;
    const char* m_pszWhole;
};

constexpr SFileName kFileNames[] = {
    {"Band - Song.wav", "Band|Song", "Song|Band", "|Band - Song"},
    {"Band_Song.wav", "Band|Song", "Song|Band", "|Band_Song"},
    {"Band_Song Live.wav", "Band|Song Live", "Song Live|Band", "|Band_Song Live"},
    {"Band Song.wav", "|Band Song", "|Band Song", "|Band Song"},
    {"Track01.wav", "|Track01", "|Track01", "|Track01"},
    {"a--b.wav", "a|b", "b|a", "|a--b"},
    {"Rock'n Roll Band.wav", "|Rock'n Roll Band", "|Rock'n Roll Band", "|Rock'n Roll Band"},
};

}  // namespace

TEST(TaggedFiles, FollowsModeAndOrderForEachFormatAndSetOfTags) {
    const CScratchDirectory scratch;
    const CLoadedPlugins plugins;
    for (const char* const format : kFormats) {
        SCOPED_TRACE(format);
        const SOpenedSource both(plugins, MakeFile(scratch, format, true, true));
        const SOpenedSource titleOnly(plugins, MakeFile(scratch, format, true, false));
        const SOpenedSource artistOnly(plugins, MakeFile(scratch, format, false, true));
        const SOpenedSource none(plugins, MakeFile(scratch, format, false, false));
        for (const SSettings& settings : kSettings) {
            SCOPED_TRACE("mode " + std::to_string(settings.m_nTagSourceMode) + ", order " +
                         std::to_string(settings.m_nFileNameOrder));
            Apply(plugins, settings);
            EXPECT_EQ(both.ArtistTitle(), settings.m_pszBoth);
            EXPECT_EQ(titleOnly.ArtistTitle(), settings.m_pszTitleOnly);
            EXPECT_EQ(artistOnly.ArtistTitle(), settings.m_pszArtistOnly);
            EXPECT_EQ(none.ArtistTitle(), settings.m_pszNone);
        }
    }
}

TEST(TaggedFiles, OfUntaggedFilesComesFromTheirNames) {
    const CScratchDirectory scratch;
    const CLoadedPlugins plugins;
    for (const SFileName& file : kFileNames) {
        SCOPED_TRACE(file.m_pszName);
        std::filesystem::copy_file(kVoice, scratch / file.m_pszName);
        const SOpenedSource source(plugins, scratch / file.m_pszName);
        for (const int mode : {0, 2}) {
            Apply(plugins, {mode, 0, "", "", "", ""});
            EXPECT_EQ(source.ArtistTitle(), file.m_pszArtistFirst);
            Apply(plugins, {mode, 1, "", "", "", ""});
            // A name in one part is the first part: the title in either order.
            EXPECT_EQ(source.ArtistTitle(), file.m_pszTitleFirst);
            Apply(plugins, {mode, 2, "", "", "", ""});
            EXPECT_EQ(source.ArtistTitle(), file.m_pszWhole);
        }
    }
}

TEST(TaggedFiles, IsTheSameWhileAConversionRuns) {
    const CScratchDirectory scratch;
    const CLoadedPlugins plugins;
    const SWavFormat wanted{8000, 16, 2};
    const SOpenedSource source(plugins, MakeFile(scratch, "flac", true, false), &wanted);
    ASSERT_TRUE(source.m_process->Start(nullptr));
    EXPECT_EQ(source.ArtistTitle(), "Band|Song");
    EXPECT_TRUE(source.m_process->End(nullptr));
}

TEST(TaggedFiles, LeavesNoReferenceBehind) {
    const CScratchDirectory scratch;
    const CLoadedPlugins plugins;
    const std::string path = MakeFile(scratch, "flac", true, false);
    for (const int order : {0, 1, 2, 3}) {
        for (const int mode : {0, 1, 2}) {
            Apply(plugins, {mode, order, "", "", "", ""});
            const SOpenedSource source(plugins, path);
            const unsigned int before = source.m_stream->AddRef();
            EXPECT_NE(source.m_info->GetTitle(), nullptr);
            EXPECT_EQ(source.m_stream->Release(), before - 1);
        }
    }
    EXPECT_TRUE(plugins.Manager().CanUnloadPlugins());
}
