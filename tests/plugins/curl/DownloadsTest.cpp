// The private directory and the files in it. Trees are removed here, so that each case has a root of its own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>

#include <fstream>
#include <map>
#include <set>

#include "plugins/curl/Downloads.h"
#include "tests/support/ScratchRoot.h"

namespace {

namespace fs = std::filesystem;

void Put(const fs::path& path, const std::string& content) { std::ofstream(path, std::ios::binary) << content; }

std::string Content(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string MakeFile(CDownloads& downloads, const std::string& name = "song.wav") {
    const auto download = downloads.Begin();
    EXPECT_EQ(download->Write("song", 4), 0);
    EXPECT_EQ(download->Size(), 4);
    return download->Keep(name);
}

fs::path DirectoryOf(const std::string& file) { return fs::path(file).parent_path().parent_path(); }

// No descriptor from `most` on can be opened while it lives.
class CDescriptorLimit {
public:
    explicit CDescriptorLimit(rlim_t most) {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit limit = {most, m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~CDescriptorLimit() { setrlimit(RLIMIT_NOFILE, &m_before); }

    CDescriptorLimit(const CDescriptorLimit&) = delete;
    CDescriptorLimit& operator=(const CDescriptorLimit&) = delete;

private:
    rlimit m_before = {};
};

// Whether there was a descriptor for each step.
bool BeginsWithin(rlim_t most, CDownloads& downloads) {
    const CDescriptorLimit limit(most);
    try {
        downloads.Begin();
        return true;
    } catch (const std::runtime_error& failure) {
        EXPECT_THAT(failure.what(), testing::HasSubstr("Too many open files"));
        return false;
    }
}

// Runs the body with an empty directory that TMPDIR names.
template <typename TBody>
void RunWithTemporary(TBody body) {
    RunInScratchRoot([&](const CScratchRoot& root) {
        const fs::path temporary = root / "tmp";
        fs::create_directory(temporary);
        setenv("TMPDIR", temporary.c_str(), 1);
        body(temporary);
    });
}

TEST(Downloads, KeepWhatIsComplete) {
    RunWithTemporary([](const fs::path& temporary) {
        CDownloads downloads;
        const std::string file = MakeFile(downloads);
        EXPECT_EQ(Content(file), "song");
        EXPECT_EQ(DirectoryOf(file).parent_path(), temporary);
        EXPECT_EQ(fs::path(file).filename(), "song.wav");
    });
}

TEST(Downloads, KeepNothingThatIsNotComplete) {
    RunWithTemporary([](const fs::path&) {
        CDownloads downloads;
        const std::string earlier = MakeFile(downloads);
        downloads.Begin()->Write("so", 2);
        EXPECT_TRUE(fs::exists(earlier));
        const fs::directory_iterator folders(DirectoryOf(earlier));
        EXPECT_EQ(std::distance(begin(folders), end(folders)), 1);
    });
}

TEST(Downloads, MakeNoDirectoryBeforeTheFirst) {
    RunWithTemporary([](const fs::path& temporary) {
        CDownloads downloads;
        EXPECT_TRUE(fs::is_empty(temporary));
        MakeFile(downloads);
        EXPECT_FALSE(fs::is_empty(temporary));
    });
}

TEST(Downloads, ShareOneDirectoryUntilItIsRemoved) {
    RunWithTemporary([](const fs::path& temporary) {
        CDownloads downloads;
        const fs::path first = DirectoryOf(MakeFile(downloads));
        EXPECT_EQ(DirectoryOf(MakeFile(downloads)), first);
        downloads.Remove();
        EXPECT_TRUE(fs::is_empty(temporary));
        downloads.Remove();
        EXPECT_TRUE(fs::is_directory(DirectoryOf(MakeFile(downloads))));
    });
}

TEST(Downloads, AreRemovedWithTheirOwner) {
    RunWithTemporary([](const fs::path& temporary) {
        MakeFile(*std::make_unique<CDownloads>());
        EXPECT_TRUE(fs::is_empty(temporary));
    });
}

TEST(Downloads, MakeANewDirectoryWhereTheirsWasRemoved) {
    RunWithTemporary([](const fs::path& temporary) {
        CDownloads downloads;
        const fs::path first = DirectoryOf(MakeFile(downloads));
        fs::remove_all(first);
        const std::string file = MakeFile(downloads);
        EXPECT_EQ(Content(file), "song");
        EXPECT_NE(DirectoryOf(file), first);
        downloads.Remove();
        EXPECT_TRUE(fs::is_empty(temporary));
    });
}

TEST(Downloads, GoOnWhereSomebodyRemovedAFile) {
    RunWithTemporary([](const fs::path& temporary) {
        CDownloads downloads;
        fs::remove_all(fs::path(MakeFile(downloads)).parent_path());
        EXPECT_EQ(Content(MakeFile(downloads)), "song");
        downloads.Remove();
        EXPECT_TRUE(fs::is_empty(temporary));
    });
}

TEST(Downloads, LeaveAForeignDirectoryInTheirPlaceAlone) {
    RunWithTemporary([](const fs::path&) {
        CDownloads downloads;
        const fs::path first = DirectoryOf(MakeFile(downloads));
        fs::remove_all(first);
        fs::create_directory(first);
        Put(first / "foreign", "kept");
        downloads.Remove();
        EXPECT_EQ(Content(first / "foreign"), "kept");
    });
}

TEST(Downloads, FollowNoLinkInTheirPlace) {
    RunWithTemporary([](const fs::path& temporary) {
        const fs::path elsewhere = temporary.parent_path() / "elsewhere";
        fs::create_directory(elsewhere);
        Put(elsewhere / "foreign", "kept");
        CDownloads downloads;
        const fs::path first = DirectoryOf(MakeFile(downloads));
        fs::rename(first, temporary / "moved");
        fs::create_directory_symlink(elsewhere, first);
        EXPECT_NE(DirectoryOf(MakeFile(downloads)), first);
        downloads.Remove();
        EXPECT_EQ(Content(elsewhere / "foreign"), "kept");
        EXPECT_TRUE(fs::is_symlink(first));
    });
}

TEST(Downloads, KeepTheirFileInTheDirectoryThatItWasBegunIn) {
    RunWithTemporary([](const fs::path& temporary) {
        const fs::path elsewhere = temporary.parent_path() / "elsewhere";
        CDownloads downloads;
        const auto download = downloads.Begin();
        EXPECT_EQ(download->Write("song", 4), 0);
        const fs::path directory = fs::directory_iterator(temporary)->path();
        const fs::path folder = fs::directory_iterator(directory)->path().filename();
        fs::create_directories(elsewhere / folder);
        Put(elsewhere / folder / "unfinished", "foreign");
        fs::rename(directory, temporary / "moved");
        fs::create_directory_symlink(elsewhere, directory);
        download->Keep("song.wav");
        EXPECT_EQ(Content(elsewhere / folder / "unfinished"), "foreign");
        EXPECT_FALSE(fs::exists(elsewhere / folder / "song.wav"));
        EXPECT_EQ(Content(temporary / "moved" / folder / "song.wav"), "song");
    });
}

TEST(Downloads, FollowNoLinkAmongTheirFiles) {
    RunWithTemporary([](const fs::path& temporary) {
        const fs::path elsewhere = temporary.parent_path() / "elsewhere";
        fs::create_directory(elsewhere);
        Put(elsewhere / "foreign", "kept");
        CDownloads downloads;
        const fs::path file = MakeFile(downloads);
        fs::create_directory_symlink(elsewhere, file.parent_path() / "link");
        fs::create_directory_symlink(elsewhere, DirectoryOf(file) / "link");
        fs::remove(file);
        fs::create_symlink(elsewhere / "foreign", file);
        downloads.Remove();
        EXPECT_EQ(Content(elsewhere / "foreign"), "kept");
        EXPECT_TRUE(fs::is_empty(temporary));
    });
}

TEST(Downloads, WriteThroughNoLink) {
    RunWithTemporary([](const fs::path& temporary) {
        const fs::path elsewhere = temporary.parent_path() / "elsewhere";
        fs::create_directory(elsewhere);
        CDownloads downloads;
        const fs::path directory = DirectoryOf(MakeFile(downloads));
        // The next folder's name is known beforehand.
        fs::create_directory_symlink(elsewhere, directory / "2");
        EXPECT_THROW(downloads.Begin(), std::runtime_error);
        EXPECT_TRUE(fs::is_empty(elsewhere));
    });
}

TEST(Downloads, RefuseAPathThatIsTooLongForTheCaller) {
    RunWithTemporary([](const fs::path& temporary) {
        fs::path deep = temporary;
        while (deep.string().size() < 4000) deep /= std::string(200, 'd');
        fs::create_directories(deep);
        setenv("TMPDIR", deep.c_str(), 1);
        CDownloads downloads;
        const std::string fitting = MakeFile(downloads, "short");
        EXPECT_EQ(Content(fitting), "song");
        try {
            MakeFile(downloads, std::string(200, 'n'));
            ADD_FAILURE() << "nothing was refused";
        } catch (const std::runtime_error& failure) {
            EXPECT_THAT(failure.what(), testing::StartsWith("the path of the local file is too long: "));
        }
        const fs::directory_iterator folders(DirectoryOf(fitting));
        EXPECT_EQ(std::distance(begin(folders), end(folders)), 1);
    });
}

TEST(Downloads, HaveAnAbsolutePathBelowARelativeDirectory) {
    RunWithTemporary([](const fs::path& temporary) {
        fs::current_path(temporary.parent_path());
        setenv("TMPDIR", "tmp", 1);
        CDownloads downloads;
        const fs::path file = MakeFile(downloads);
        EXPECT_TRUE(file.is_absolute()) << file;
        EXPECT_EQ(Content(file), "song");
    });
}

TEST(Downloads, NameTheTemporaryDirectoryThatIsMissing) {
    RunWithTemporary([](const fs::path& temporary) {
        CDownloads downloads;
        Put(temporary / "file", "");
        const std::map<fs::path, std::string> reasons = {{temporary / "none", "No such file or directory"},
                                                         {temporary / "file", "Not a directory"}};
        for (const auto& [place, reason] : reasons) {
            setenv("TMPDIR", place.c_str(), 1);
            try {
                MakeFile(downloads);
                ADD_FAILURE() << "a file in " << place;
            } catch (const std::runtime_error& failure) {
                EXPECT_EQ(failure.what(), place.string() + ": there is no temporary directory (TMPDIR): " + reason);
            }
        }
    });
}

TEST(Downloads, TakeAnEmptyVariableForNone) {
    RunWithTemporary([](const fs::path& temporary) {
        const fs::path other = temporary / "other";
        fs::create_directory(other);
        setenv("TMPDIR", "", 1);
        setenv("TMP", other.c_str(), 1);
        CDownloads downloads;
        EXPECT_EQ(DirectoryOf(MakeFile(downloads)).parent_path(), other);
    });
}

TEST(Downloads, LeaveNothingBehindWhileDescriptorsAreShort) {
    RunWithTemporary([](const fs::path& temporary) {
        bool begun = false;
        for (rlim_t most = 0; !begun; ++most) {
            ASSERT_LT(most, 100U);
            CDownloads downloads;
            begun = BeginsWithin(most, downloads);
            // The directory itself waits for the next.
            for (const fs::directory_entry& entry : fs::recursive_directory_iterator(temporary)) {
                EXPECT_EQ(entry.path().parent_path(), temporary) << most;
            }
            downloads.Remove();
            EXPECT_TRUE(fs::is_empty(temporary)) << most;
        }
    });
}

TEST(Downloads, TellWhyWritingFails) {
    RunWithTemporary([](const fs::path&) {
        CDownloads downloads;
        const auto download = downloads.Begin();
        signal(SIGXFSZ, SIG_IGN);
        rlimit before = {};
        ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
        const rlimit limit = {4, before.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        const int error = download->Write("songs", 5);
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(error, EFBIG);
    });
}

}  // namespace
