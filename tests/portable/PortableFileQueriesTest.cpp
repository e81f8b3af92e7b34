// Questions about a named path.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "portable/PortableFile.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr time_t kModified = 1234567890;

// One path of every kind.
class PortableFileQueries : public testing::Test {
protected:
    PortableFileQueries() {
        m_scratch.Write("file", "0123456789");
        std::filesystem::create_directory(m_scratch / "dir");
        std::filesystem::create_symlink("file", m_scratch / "link");
        std::filesystem::create_directory_symlink("dir", m_scratch / "dirlink");
        std::filesystem::create_symlink("nowhere", m_scratch / "dangling");
    }

    CScratchDirectory m_scratch;
};

// Tells an invented length.
class CLongFile : public CPortableFile {
public:
    using CPortableFile::CPortableFile;
    int GetLength(long* length) override {
        *length = 77;
        return 0;
    }
};

// Tells no length at all.
class CSilentFile : public CPortableFile {
public:
    using CPortableFile::CPortableFile;
    int GetLength(long*) override { return 1; }
};

}  // namespace

TEST_F(PortableFileQueries, EveryKindOfPathIsExaminedItself) {
    const struct {
        const char* name;
        int exists;
        int link;
        int directory;
        int attributesResult;
        unsigned int attributes;
    } rows[] = {{"file", 1, 0, 0, 1, 0},    {"dir", 1, 0, 1, 1, 0x10},   {"link", 1, 1, 0, 1, 0},
                {"dirlink", 1, 1, 0, 1, 0}, {"dangling", 1, 1, 0, 1, 0}, {"missing", 0, 0, 0, 0, 0xABCD}};
    for (const auto& row : rows) {
        const CPortableFile file((m_scratch / row.name).c_str(), CPortableFile::OM_READ);
        unsigned int attributes = 0xABCD;
        EXPECT_EQ(file.FileExists(), row.exists) << row.name;
        EXPECT_EQ(file.IsLink(), row.link) << row.name;
        EXPECT_EQ(file.IsDirectory(), row.directory) << row.name;
        EXPECT_EQ(CPortableFile::IsDirectory((m_scratch / row.name).c_str()), row.directory) << row.name;
        EXPECT_EQ(file.GetAttributes_WinStyle(attributes), row.attributesResult) << row.name;
        EXPECT_EQ(attributes, row.attributes) << row.name;
    }
}

TEST_F(PortableFileQueries, NoPathIsNoDirectory) { EXPECT_EQ(CPortableFile::IsDirectory(nullptr), 0); }

TEST_F(PortableFileQueries, SettingAttributesDoesNothing) {
    const CPortableFile file((m_scratch / "file").c_str(), CPortableFile::OM_READ);
    unsigned int attributes = 0xABCD;
    EXPECT_EQ(file.SetAttributes_WinStyle(0x10), 0);
    EXPECT_EQ(file.GetAttributes_WinStyle(attributes), 1);
    EXPECT_EQ(attributes, 0u);
}

TEST_F(PortableFileQueries, TheLengthIsThatOfThePathItself) {
    const struct {
        const char* name;
        int result;
        long length;
    } rows[] = {{"file", 0, 10}, {"link", 0, 4}, {"dangling", 0, 7}, {"missing", 1, 0}};
    for (const auto& row : rows) {
        CPortableFile file((m_scratch / row.name).c_str(), CPortableFile::OM_READ);
        long length = 99;
        EXPECT_EQ(file.GetLength(&length), row.result) << row.name;
        EXPECT_EQ(length, row.length) << row.name;
        EXPECT_EQ(file.FileLength(), row.length) << row.name;
    }
}

TEST_F(PortableFileQueries, TheFileLengthComesFromTheVirtualGetLength) {
    const CLongFile longer((m_scratch / "file").c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(longer.FileLength(), 77);
    const CSilentFile silent((m_scratch / "file").c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(silent.FileLength(), -1);
}

TEST_F(PortableFileQueries, TheStatusStaysWhatItWas) {
    CPortableFile file((m_scratch / "missing").c_str(), CPortableFile::OM_READ);
    ASSERT_EQ(file.OpenFile(CPortableFile::OM_READ), ENOENT);
    m_scratch.Write("missing", "here");
    long length = 0;
    unsigned int attributes = 0;
    EXPECT_EQ(file.GetLength(&length), 0);
    EXPECT_EQ(file.FileExists(), 1);
    EXPECT_EQ(file.GetAttributes_WinStyle(attributes), 1);
    EXPECT_NE(file.GetLastWrite().GetTime(), 0);
    EXPECT_EQ(file.Status(), ENOENT);
}

TEST_F(PortableFileQueries, AllThreeTimesAreTheTimeOfTheLastModification) {
    const timespec times[] = {{kModified - 1000, 0}, {kModified, 500000000}};
    ASSERT_EQ(utimensat(AT_FDCWD, (m_scratch / "file").c_str(), times, 0), 0);
    const CPortableFile file((m_scratch / "file").c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(file.GetLastWrite().GetTime(), kModified);
    EXPECT_EQ(file.GetCreationTime().GetTime(), kModified);
    EXPECT_EQ(file.GetLastAccessTime().GetTime(), kModified);
}

TEST_F(PortableFileQueries, TheTimesOfALinkAreItsOwn) {
    const timespec times[] = {{kModified, 0}, {kModified, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, (m_scratch / "link").c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    const CPortableFile file((m_scratch / "link").c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(file.GetLastWrite().GetTime(), kModified);
}

TEST_F(PortableFileQueries, TheTimesOfAMissingPathAreZero) {
    const CPortableFile file((m_scratch / "missing").c_str(), CPortableFile::OM_READ);
    EXPECT_EQ(file.GetLastWrite().GetTime(), 0);
    EXPECT_EQ(file.GetCreationTime().GetTime(), 0);
    EXPECT_EQ(file.GetLastAccessTime().GetTime(), 0);
}

TEST_F(PortableFileQueries, ALinkIsReadAsItIsWritten) {
    const CPortableFile link((m_scratch / "dangling").c_str(), CPortableFile::OM_READ);
    EXPECT_STREQ(link.ReadLink().GetText(), "nowhere");
    EXPECT_EQ(link.ReadLink().GetLength(), 7);
}

TEST_F(PortableFileQueries, ALongLinkIsReadInFull) {
    for (const std::size_t length : {1022u, 1023u, 1024u, 2047u, 3000u, 4095u}) {
        std::string target;
        while (target.size() < length) target += std::string(std::min<std::size_t>(200, length - target.size()), 't');
        for (std::size_t i = 100; i < target.size(); i += 101) target[i] = '/';
        const std::string name = m_scratch / ("long" + std::to_string(length));
        std::filesystem::create_symlink(target, name);
        const CPortableFile link(name.c_str(), CPortableFile::OM_READ);
        EXPECT_EQ(link.ReadLink().GetText(), target) << length;
    }
}

TEST_F(PortableFileQueries, AnythingButALinkHasNoTarget) {
    for (const char* name : {"file", "dir", "missing"}) {
        const CPortableFile file((m_scratch / name).c_str(), CPortableFile::OM_READ);
        EXPECT_STREQ(file.ReadLink().GetText(), "") << name;
    }
}
