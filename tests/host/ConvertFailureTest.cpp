// Failed conversions: one line, the reason, no trace.
#include "tests/host/KeloAudio.h"

namespace {

class ConvertFailure : public CKeloAudio {};

}  // namespace

TEST_F(ConvertFailure, MissingInput) {
    ExpectCleanFailure("missing.wav", "out.wav", {"missing.wav: No such file or directory"});
}

TEST_F(ConvertFailure, DirectoryAsInput) {
    std::filesystem::create_directory(InWork("folder.wav"));
    ExpectCleanFailure("folder.wav", "out.wav", {"folder.wav: Is a directory"});
}

TEST_F(ConvertFailure, EmptyInput) {
    m_scratch.Write("work/empty.wav", "");
    ExpectCleanFailure("empty.wav", "out.wav", {"empty.wav: the file is empty"});
}

TEST_F(ConvertFailure, NobodyIsSaidToBeAskedWhereNobodyWas) {
    std::filesystem::create_directory(InWork("folder.wav"));
    m_scratch.Write("work/empty.wav", "");
    for (const std::string input : {"missing.wav", "folder.wav", "empty.wav"}) {
        EXPECT_EQ(Run({"convert", input, "out.wav"}).m_strErr.find("asked"), std::string::npos) << input;
    }
}

TEST_F(ConvertFailure, WavCutInsideItsHeader) {
    m_scratch.Write("work/cut.wav", ReadWholeFile(kFrontCenter).substr(0, 30));
    ExpectCleanFailure("cut.wav", "out.flac", {"keloaudio: cut.wav: ", "(asked: libsndfile Decoder; plug-ins from "});
}

TEST_F(ConvertFailure, WavCutInsideItsAudio) {
    m_scratch.Write("work/cut.wav", ReadWholeFile(kFrontCenter).substr(0, 100000));
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{}, {"--rate", "8000"}, {"--channels", "2"}}) {
        ExpectCleanFailure("cut.wav", "out.wav",
                           {"keloaudio: cut.wav: reading failed: ", " (asked: libsndfile Decoder; plug-ins from "},
                           options);
    }
}

TEST_F(ConvertFailure, FlacCutInsideItsAudio) {
    Run({"convert", kFrontCenter, "cut.flac"});
    std::filesystem::resize_file(InWork("cut.flac"), 20000);
    ExpectCleanFailure("cut.flac", "out.wav",
                       {"keloaudio: cut.flac: reading failed: ", " (asked: libsndfile Decoder; plug-ins from "});
}

TEST_F(ConvertFailure, TextNamedAsSound) {
    m_scratch.Write("work/text.wav", "These are words, not samples.\n");
    ExpectCleanFailure("text.wav", "out.wav", {"keloaudio: text.wav: ", "(asked: libsndfile Decoder; plug-ins from "});
}

TEST_F(ConvertFailure, TextWithAnExtensionThatNoDecoderLists) {
    m_scratch.Write("work/mix.xyz", "These are words, not samples.\n");
    ExpectCleanFailure("mix.xyz", "out.wav",
                       {"keloaudio: mix.xyz: no decoder opened it (asked: libsndfile Decoder; plug-ins from "});
}

TEST_F(ConvertFailure, LineBreakInANameStaysOneLine) {
    ExpectCleanFailure("two\nlines.wav", "out.wav", {"two?lines.wav: No such file or directory"});
}

TEST_F(ConvertFailure, RemoteInputWithoutAUrlHandler) {
    ExpectCleanFailure("http://localhost/x.wav", "out.wav", {"http://localhost/x.wav: no plug-in fetched it"});
}

TEST_F(ConvertFailure, AddressOfAProtocolThatIsNotTaken) {
    const std::string reason = ": https:// addresses are not fetched, only http:// and ftp:// ones\n";
    const std::string address = "https://localhost/x.wav";
    ExpectCleanFailure(address, "out.wav", {"keloaudio: " + address + reason});
    ExpectCleanFailure(address, "out.wav", {"keloaudio: " + address + reason}, {"--dry-run"});
    EXPECT_EQ(Run({"info", address}).m_strErr, "keloaudio: " + address + reason);
    std::filesystem::create_directories(InWork("https:/localhost"));
    std::filesystem::copy_file(kFrontCenter, InWork("https:/localhost/x.wav"));
    EXPECT_EQ(Run({"info", address}).m_nExit, 0);
}

TEST_F(ConvertFailure, UnknownOutputExtension) {
    ExpectCleanFailure(kFrontCenter, "out.xyz", {"out.xyz: no encoder lists \".xyz\" (listed: ", "wav", "flac"});
}

TEST_F(ConvertFailure, OutputWithoutExtension) {
    ExpectCleanFailure(kFrontCenter, "out", {"out: no extension to choose an encoder by (listed: "});
}

TEST_F(ConvertFailure, ChannelsThatNoConvertorMaps) {
    ExpectCleanFailure(kFrontCenter, "out.wav",
                       {"Front_Center.wav: no conversion from 48000 Hz, 16 bits, 1 channel to "}, {"--channels", "63"});
}

TEST_F(ConvertFailure, InputAsItsOwnOutput) {
    std::filesystem::copy_file(kFrontCenter, InWork("same.wav"));
    std::filesystem::create_hard_link(InWork("same.wav"), InWork("link.wav"));
    const std::string content = ReadWholeFile(kFrontCenter);
    for (const std::string output : {"same.wav", "./same.wav", "link.wav"}) {
        ExpectFailure(Run({"convert", "same.wav", output}), {output + ": the output is the input file itself"});
        EXPECT_EQ(ReadWholeFile(InWork("same.wav")), content);
    }
    EXPECT_EQ(NamesIn(WorkDirectory()), (std::vector<std::string>{"link.wav", "same.wav"}));
}

TEST_F(ConvertFailure, MissingOutputDirectory) {
    ExpectFailure(Run({"convert", kFrontCenter, "nowhere/out.wav"}),
                  {"nowhere/out.wav: no file can be made in ", "/work/nowhere: No such file or directory"});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{});
}

TEST_F(ConvertFailure, DirectoryAsOutput) {
    std::filesystem::create_directory(InWork("folder.wav"));
    ExpectFailure(Run({"convert", kFrontCenter, "folder.wav"}), {"folder.wav: Is a directory"});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{"folder.wav"});
}

TEST_F(ConvertFailure, DeviceAsOutput) {
    std::filesystem::create_symlink("/dev/null", InWork("out.wav"));
    ExpectFailure(Run({"convert", kFrontCenter, "out.wav"}), {"out.wav: not a regular file"});
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(ConvertFailure, FileSizeLimitWhileWriting) {
    m_scratch.Write("work/out.wav", "the old content");
    const std::string command = std::string("ulimit -f 64; exec '") + KELOAUDIO + "' convert " + kFrontCenter +
                                " out.wav --plugins " + SoundPluginDirectory();
    ExpectFailure(RunProgram({"bash", "-c", command}, WorkDirectory()), {"out.wav: writing failed", "File too large"});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{"out.wav"});
    EXPECT_EQ(ReadWholeFile(InWork("out.wav")), "the old content");
}

TEST_F(ConvertFailure, StandardOutputThatTakesNothing) {
    const std::string command =
        std::string("exec '") + KELOAUDIO + "' list --plugins " + SoundPluginDirectory() + " >/dev/full";
    ExpectFailure(RunProgram({"bash", "-c", command}), {"standard output: No space left on device"});
}
