// A process without libcurl, or with its other flavour alone. The libraries' files are hidden in a mount namespace.
#include <dlfcn.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/plugins/curl/FetchTest.h"
#include "tests/support/ManagerHold.h"

namespace {

constexpr int kSkipped = 77;

// Empty where the library is not installed.
std::string FileOf(const char* library) {
    void* const handle = dlopen(library, RTLD_LAZY);
    Dl_info file = {};
    if (handle == nullptr || dladdr(dlsym(handle, "curl_easy_init"), &file) == 0) return {};
    return std::filesystem::canonical(file.dli_fname);
}

bool Hide(const std::vector<std::string>& files) {
    return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           std::all_of(files.begin(), files.end(), [](const std::string& file) {
               return mount("/dev/null", file.c_str(), nullptr, MS_BIND, nullptr) == 0;
           });
}

// Runs the case in a new program, in which none of the libraries has ever been open.
void RunWithout(const std::vector<std::string>& files, const std::string& name) {
    const pid_t child = fork();
    if (child == 0) {
        if (!Hide(files)) _exit(kSkipped);
        execl("/proc/self/exe", "curl_tests", "--gtest_also_run_disabled_tests",
              ("--gtest_filter=LibcurlMissing.DISABLED_" + name).c_str(), static_cast<char*>(nullptr));
        _exit(1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WEXITSTATUS(status) == kSkipped) GTEST_SKIP() << "no mount namespace here";
    EXPECT_EQ(status, 0);
}

class LibcurlMissing : public CFetchTest {};

TEST(WithoutLibcurl, PluginIsListedAndItsFetchNamesTheLibrary) {
    std::vector<std::string> files;
    for (const char* const library : {"libcurl.so.4", "libcurl-gnutls.so.4"}) {
        if (const std::string file = FileOf(library); !file.empty()) files.push_back(file);
    }
    RunWithout(files, "NamesTheLibrary");
}

TEST(WithoutLibcurl, OtherFlavourServesAsWell) {
    if (FileOf("libcurl-gnutls.so.4").empty()) GTEST_SKIP() << "no second flavour (Debian: libcurl3-gnutls)";
    RunWithout({FileOf("libcurl.so.4")}, "TakesTheOtherFlavour");
}

TEST_F(LibcurlMissing, DISABLED_NamesTheLibrary) {
    const support::CManagerHold manager;
    std::filesystem::create_symlink(KELO_CURL_PLUGIN, m_scratch / "curl.so");
    manager->SetPluginDirectory(m_scratch.Path().c_str());
    manager->LoadPlugins();
    EXPECT_EQ(manager->GetCount(), 1);
    for (int i = 0; i < 2; ++i) {
        EXPECT_THAT(Refusal("http://127.0.0.1/song.flac"), testing::HasSubstr("libcurl.so.4: "));
    }
    EXPECT_TRUE(manager->UnloadPlugins());
}

TEST_F(LibcurlMissing, DISABLED_TakesTheOtherFlavour) {
    EXPECT_EQ(NameOfFetched(Http("song.flac")), "song.flac");
    EXPECT_EQ(NameOfFetched(Ftp("song.flac")), "song.flac");
    EXPECT_THAT(Content("/proc/self/maps"), testing::HasSubstr("libcurl-gnutls.so.4"));
    EXPECT_THAT(Content("/proc/self/maps"), testing::Not(testing::HasSubstr("libcurl.so.4")));
}

}  // namespace
