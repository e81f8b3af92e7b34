// Files that the decoder does not claim, and the reasons that it gives.
#include <sys/stat.h>

#include <cstring>

#include "tests/plugins/libav/DecoderUnderTest.h"
#include "tests/plugins/libav/WrittenFiles.h"
#include "tests/support/ScratchDirectory.h"

namespace {

class LibavRefusal : public testing::Test {
protected:
    // The reason against a file of this content, without the file's name in front.
    std::string Refusal(const std::string& name, const std::string& content) {
        return WithoutName(name, RefusalOf(m_scratch.Write(name, content)));
    }

    static std::string WithoutName(const std::string& name, const std::string& reason) {
        EXPECT_EQ(reason.substr(0, name.size() + 2), name + ": ");
        return reason.substr(std::min(reason.size(), name.size() + 2));
    }

    CScratchDirectory m_scratch;
};

std::string Repeated(const std::string& text, int times) {
    std::string repeated;
    for (int i = 0; i < times; ++i) repeated += text;
    return repeated;
}

TEST_F(LibavRefusal, TextIsNoSoundWhateverItsName) {
    const std::string text = Repeated("A song without sound.\n", 5000);
    for (const char* const name : {"x.mp2", "x.aac", "x.m4a", "x.ts", "x.shn", "x.txt"}) {
        EXPECT_EQ(Refusal(name, text), "not readable as audio: unknown format") << name;
        EXPECT_EQ(Refusal(name, "x"), "not readable as audio: unknown format") << name;
    }
}

TEST_F(LibavRefusal, BytesWithoutAPatternAreNoSound) {
    for (const char* const name : {"x.mp2", "x.aac", "x.ac3"}) {
        EXPECT_EQ(Refusal(name, RandomBytes(1 << 20)), "not readable as audio: unknown format") << name;
    }
}

TEST_F(LibavRefusal, PlaylistsDoNotLeadToOtherFiles) {
    const std::string sound = Media("aac.m4a");
    const std::string hls = "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXTINF:4,\n" + Media("video.ts") + "\n#EXT-X-ENDLIST\n";
    EXPECT_EQ(Refusal("x.ts", hls), "not readable as audio: Apple HTTP Live Streaming");
    EXPECT_EQ(Refusal("x.m3u8", hls), "not readable as audio: Apple HTTP Live Streaming");
    EXPECT_EQ(Refusal("x.mka", "ffconcat version 1.0\nfile " + sound + "\n"),
              "not readable as audio: Virtual concatenation script");
    EXPECT_EQ(Refusal("x.pls", "[playlist]\nFile1=" + sound + "\n"), "not readable as audio: unknown format");
    EXPECT_NE(Refusal("x.mp4",
                      "<?xml version=\"1.0\"?>\n<MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" "
                      "profiles=\"urn:mpeg:dash:profile:isoff-on-demand:2011\"><Period><BaseURL>" +
                          sound + "</BaseURL></Period></MPD>\n"),
              "");
}

TEST_F(LibavRefusal, PicturesAreNoSound) {
    for (const char* const name : {"x.png", "x.jpg", "x.gif", "x.bmp"}) {
        RunTool("ffmpeg -f lavfi -i testsrc=size=64x64 -frames:v 1 " + m_scratch / name);
        EXPECT_THAT(RefusalOf(m_scratch / name), testing::HasSubstr(": not readable as audio: ")) << name;
    }
}

TEST_F(LibavRefusal, FilmsWithoutASoundTrackSaySo) {
    EXPECT_EQ(RefusalOf(Media("silent.mp4")), "silent.mp4: no audio stream in this QuickTime / MOV file");
    EXPECT_EQ(RefusalOf(Media("silent.mkv")), "silent.mkv: no audio stream in this Matroska / WebM file");
    EXPECT_EQ(RefusalOf(Media("silent.flv")), "silent.flv: no audio stream in this FLV (Flash Video) file");
    EXPECT_EQ(RefusalOf(Media("silent.ts")),
              "silent.ts: no audio stream in this MPEG-TS (MPEG-2 Transport Stream) file");
    EXPECT_EQ(RefusalOf(Media("silent.vob")),
              "silent.vob: no audio stream in this MPEG-PS (MPEG-2 Program Stream) file");
}

TEST_F(LibavRefusal, HeadersWithoutTheRestNameTheFormat) {
    const std::string start = Content(Media("alac.m4a")).substr(0, 200);
    EXPECT_EQ(Refusal("x.m4a", start), "not readable as QuickTime / MOV: Invalid data found when processing input");
    EXPECT_THAT(Refusal("x.tta", Content(Media("source.tta")).substr(0, 60)),
                testing::HasSubstr("not readable as TTA (True Audio)"));
}

TEST_F(LibavRefusal, WhatIsNoFileOrCannotBeOpenedSaysSo) {
    EXPECT_EQ(Refusal("x.m4a", ""), "not readable as audio: the file is empty");
    EXPECT_EQ(RefusalOf(m_scratch / "no.m4a"), "no.m4a: No such file or directory");
    EXPECT_EQ(RefusalOf(m_scratch.Path()), m_scratch.Path().filename().string() + ": Is a directory");
    EXPECT_EQ(RefusalOf("/dev/zero"), "zero: not readable as audio: not a regular file");
    ASSERT_EQ(mkfifo((m_scratch / "pipe.aac").c_str(), 0600), 0);
    EXPECT_EQ(RefusalOf(m_scratch / "pipe.aac"), "pipe.aac: not readable as audio: not a regular file");
}

TEST_F(LibavRefusal, AbsentArgumentsAreBadOnes) {
    const auto opener = CComPtr<IAudioFileOpener>::Query(Decoder().Get(), IID_IAudioFileOpener);
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    EXPECT_FALSE(opener->Open(nullptr, stream.Out(), AUX_NONE, AUX_NONE, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
    EXPECT_FALSE(opener->Open(Media("aac.m4a").c_str(), nullptr, AUX_NONE, AUX_NONE, nullptr));
}

// A track that is scrambled or of a codec that the library lacks.
TEST_F(LibavRefusal, SoundThatHasNoDecoderNamesTheCodec) {
    std::string film = Content(Media("alac.m4a"));
    for (std::size_t at = film.find("alac"); at != std::string::npos; at = film.find("alac", at)) {
        film.replace(at, 4, "drms");
    }
    EXPECT_EQ(Refusal("x.m4a", film), "no decoder for none audio in this QuickTime / MOV file");
}

TEST_F(LibavRefusal, SoundWithoutASampleRateSaysSo) {
    const auto bytesOf = [](double rate) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &rate, sizeof bits);
        return BigEndian(bits, 8);
    };
    for (const std::string name : {"x.mkv", "x.caf"}) {
        RunTool("ffmpeg -i '" + Media("source.wav") + "' -t 0.1 -c:a pcm_s16be " + m_scratch / name);
        const std::string whole = Content(m_scratch / name);
        for (const double rate : {0.0, 0.4}) {
            std::string broken = whole;
            broken.replace(broken.find(bytesOf(44100)), 8, bytesOf(rate));
            EXPECT_THAT(Refusal(name, broken), testing::EndsWith(": sound without a sample rate")) << name << rate;
        }
    }
}

// The formats' own messages belong to a log that is the host's.
TEST_F(LibavRefusal, NothingIsWrittenToTheStandardError) {
    testing::internal::CaptureStderr();
    const std::string whole = Content(Media("aac.m4a"));
    RefusalOf(m_scratch.Write("text.aac", Repeated("text\n", 9999)));
    RefusalOf(m_scratch.Write("start.m4a", whole.substr(0, whole.size() / 2)));
    for (const char* const name :
         {"adts.aac", "video.ts", "two.wma", "deep.wv", "vorbis.webm", "video.avi", "aac.m4a"}) {
        std::string damaged = Content(Media(name));
        for (std::size_t at = damaged.size() / 3; at < damaged.size() / 2; at += 511) damaged[at] ^= 0x55;
        SSource source(m_scratch.Write(name, damaged));
        source.ReadOn();
        source.m_seekable->Seek(70000, nullptr);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
