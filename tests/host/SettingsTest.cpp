// keloaudio settings, on a display of the test's own.
#include <limits.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <chrono>
#include <set>
#include <thread>

#include "tests/host/KeloAudio.h"
#include "tests/support/VirtualDisplay.h"

namespace {

constexpr const char* kTitle = "Audio Format Settings";
constexpr const char* kAbout = "About libsndfile Decoder";

const std::set<std::string> kIcons = {"apm-decoder_icon-16.png", "apm-encoder_icon-16.png",
                                      "apm-convertor_icon-16.png"};

// Which files of a directory are opened from here on.
class COpenWatch {
public:
    explicit COpenWatch(const std::string& directory) : m_nDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        EXPECT_GE(inotify_add_watch(m_nDescriptor, directory.c_str(), IN_OPEN), 0) << directory;
    }
    ~COpenWatch() { close(m_nDescriptor); }

    COpenWatch(const COpenWatch&) = delete;
    COpenWatch& operator=(const COpenWatch&) = delete;

    std::set<std::string> OpenedFiles() const {
        std::set<std::string> names;
        alignas(inotify_event) char events[16 * (sizeof(inotify_event) + NAME_MAX + 1)];
        for (ssize_t length = 0; (length = read(m_nDescriptor, events, sizeof events)) > 0;) {
            for (const char* at = events; at < events + length;) {
                const auto* const event = reinterpret_cast<const inotify_event*>(at);
                if (event->len > 0 && (event->mask & IN_ISDIR) == 0) names.insert(event->name);
                at += sizeof(inotify_event) + event->len;
            }
        }
        return names;
    }

private:
    int m_nDescriptor;
};

class Settings : public CKeloAudio {
protected:
    // What GTK and its libraries keep is theirs, and the person's modules have no part in this.
    Settings() {
        setenv("LSAN_OPTIONS", "detect_leaks=0", 1);
        unsetenv("GTK_MODULES");
    }

    std::vector<std::string> Command(std::vector<std::string> options = {}) const {
        options.insert(options.begin(), {KELOAUDIO, "settings"});
        if (options.back() != PluginDirectory()) options.insert(options.end(), {"--plugins", SoundPluginDirectory()});
        return options;
    }

    // The shown window with this title. A search fails when a window goes away under it, so it is asked again.
    static std::string WindowNamed(const std::string& title) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (std::chrono::steady_clock::now() < end) {
            const SRunResult found = RunProgram({"xdotool", "search", "--onlyvisible", "--name", "^" + title + "$"});
            if (found.m_nExit == 0) return found.m_strOut.substr(0, found.m_strOut.find('\n'));
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        ADD_FAILURE() << "no window \"" << title << "\"";
        return "";
    }

    // No window manager gives a window the focus. The window may be gone before the key is released: what the tool says
    // about that is of no interest.
    static void Press(const std::string& window, std::vector<std::string> keys) {
        keys.insert(keys.begin(), {"xdotool", "windowfocus", window, "key", "--delay", "50", "--window", window});
        RunProgram(keys);
    }

    // What the program opens of the directory until its dialog is there.
    static std::set<std::string> OpenedBy(const std::vector<std::string>& command, const std::string& directory) {
        const CVirtualDisplay display;
        const COpenWatch watch(directory);
        CRunningProgram program(command);
        Press(WindowNamed(kTitle), {"alt+c"});
        ExpectEnd(program, 0);
        return watch.OpenedFiles();
    }

    static void ExpectEnd(CRunningProgram& program, int status) {
        const SRunResult result = program.Wait();
        EXPECT_EQ(result.m_nExit, status);
        EXPECT_EQ(result.m_strOut, "");
        EXPECT_EQ(result.m_strErr, "");
    }

    // The library's line alone.
    static void ExpectNoDialog(const SRunResult& result, const std::string& reason) {
        EXPECT_EQ(result.m_nExit, 1);
        EXPECT_EQ(result.m_strOut, "");
        EXPECT_TRUE(IsOneLine(result.m_strErr)) << result.m_strErr;
        EXPECT_NE(result.m_strErr.find(reason), std::string::npos) << result.m_strErr;
    }
};

}  // namespace

TEST_F(Settings, ClosingWithTheButtonSucceeds) {
    const CVirtualDisplay display;
    CRunningProgram program(Command());
    Press(WindowNamed(kTitle), {"alt+c"});
    ExpectEnd(program, 0);
}

TEST_F(Settings, EscapeIsNoAcceptanceAndNoFailureToSpeakOf) {
    const CVirtualDisplay display;
    CRunningProgram program(Command());
    Press(WindowNamed(kTitle), {"Escape"});
    ExpectEnd(program, 1);
}

TEST_F(Settings, SignalsEndTheDialog) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const CVirtualDisplay display;
        CRunningProgram program(Command());
        WindowNamed(kTitle);
        program.Signal(signal);
        ExpectEnd(program, -signal);
    }
}

TEST_F(Settings, ComponentsShowTheirAboutBoxesAboveTheDialog) {
    const CVirtualDisplay display;
    CRunningProgram program(Command());
    const std::string window = WindowNamed(kTitle);
    // From the pages' tabs into the list, its first row, on to the button that is enabled for it.
    Press(window, {"Tab", "space", "Tab", "space"});
    Press(WindowNamed(kAbout), {"Escape"});
    Press(window, {"alt+c"});
    ExpectEnd(program, 0);
}

TEST_F(Settings, IconsComeFromBesideTheProgram) { EXPECT_EQ(OpenedBy(Command(), KELO_IMAGES), kIcons); }

TEST_F(Settings, IconsComeFromTheNamedDirectory) {
    const std::string images = m_scratch / "images";
    std::filesystem::copy(KELO_IMAGES, images);
    EXPECT_EQ(OpenedBy(Command({"--images", images}), images), kIcons);
}

TEST_F(Settings, DirectoryWithoutIconsIsNoFailure) {
    const CVirtualDisplay display;
    CRunningProgram program(Command({"--images", m_scratch / "nothing"}));
    Press(WindowNamed(kTitle), {"alt+c"});
    ExpectEnd(program, 0);
}

TEST_F(Settings, PluginsComeFromTheNamedDirectory) {
    UseFixture("ScriptedDecoder.so");
    const std::string images = m_scratch / "images";
    std::filesystem::copy(KELO_IMAGES, images);
    EXPECT_EQ(OpenedBy(Command({"--images", images, "--plugins", PluginDirectory()}), images),
              std::set<std::string>{"apm-decoder_icon-16.png"});
}

TEST_F(Settings, WithoutADisplayTheLibrarySaysSo) {
    unsetenv("DISPLAY");
    ExpectNoDialog(Run({"settings"}), "display");
    setenv("DISPLAY", ":65000", 1);
    ExpectNoDialog(Run({"settings"}), "display");
}

TEST_F(Settings, BadPluginDirectoriesAreNamed) {
    ExpectFailure(Run({"settings", "--plugins", "missing"}), {"missing"});
    ExpectFailure(RunWithChosen({"settings"}), {PluginDirectory(), "no plug-ins"});
}

TEST_F(Settings, EmptyDirectoryNamesAreWrongUsage) {
    ExpectFailure(Run({"settings", "--images", ""}), {"--images"}, 2);
    ExpectFailure(Run({"settings", "--plugins", ""}), {"--plugins"}, 2);
}

TEST(HostWithoutGtk, NeitherLinksNorIncludesGtk) {
    const SRunResult dynamic = RunProgram({"readelf", "-d", KELOAUDIO});
    EXPECT_NE(dynamic.m_strOut.find("[libKeloAudioPluginMgr.so.0]"), std::string::npos) << dynamic.m_strErr;
    for (const char* const library : {"libgtk", "libgdk", "libglib", "libgobject"}) {
        EXPECT_EQ(dynamic.m_strOut.find(library), std::string::npos) << library;
    }
    const SRunResult found = RunProgram({"grep", "-rniE", "include.*(gtk|gdk|glib)", KELO_SOURCE_DIR "/host"});
    EXPECT_EQ(found.m_nExit, 1) << found.m_strOut << found.m_strErr;
}
