// Opening files and reading lines.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "portable/RuntimeFiles.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr int kUntouchedErrno = 77;
constexpr int kOwnerAccess = 0x180;

class RuntimeFiles : public testing::Test {
protected:
    void SetUp() override { errno = kUntouchedErrno; }

    // Makes `content` the standard input of this process.
    void SetStandardInput(const std::string& content) {
        ASSERT_NE(nullptr, freopen(m_scratch.Write("input", content).c_str(), "r", stdin));
        errno = kUntouchedErrno;
    }

    CScratchDirectory m_scratch;
};

}  // namespace

TEST_F(RuntimeFiles, FopenOpensAFile) {
    FILE* file = nullptr;
    const std::string path = m_scratch.Write("a", "xy");
    EXPECT_EQ(0, fopen_s(&file, path.c_str(), "r"));
    ASSERT_NE(nullptr, file);
    EXPECT_EQ('x', fgetc(file));
    fclose(file);
}

TEST_F(RuntimeFiles, FopenReturnsErrnoOfAFailedOpen) {
    FILE* file = stdin;
    EXPECT_EQ(ENOENT, fopen_s(&file, (m_scratch / "absent").c_str(), "r"));
    EXPECT_EQ(nullptr, file);
    EXPECT_EQ(ENOENT, errno);
}

TEST_F(RuntimeFiles, FopenRefusesNullArgumentsAndAnEmptyMode) {
    FILE* file = stdin;
    struct SCase {
        FILE** m_pFile;
        const char* m_pPath;
        const char* m_pMode;
    };
    const SCase cases[] = {{nullptr, "a", "r"}, {&file, nullptr, "r"}, {&file, "a", nullptr}, {&file, "a", ""}};
    for (const SCase& c : cases) {
        errno = 0;
        EXPECT_EQ(EINVAL, fopen_s(c.m_pFile, c.m_pPath, c.m_pMode)) << &c - cases;
        EXPECT_EQ(EINVAL, errno) << &c - cases;
    }
    EXPECT_EQ(stdin, file);
}

TEST_F(RuntimeFiles, SopenReturnsErrnoEvenOnSuccess) {
    int descriptor = -1;
    const std::string path = m_scratch.Write("a", "xy");
    EXPECT_EQ(kUntouchedErrno, sopen_s(&descriptor, path.c_str(), O_RDONLY, 0x40, 0));
    ASSERT_GE(descriptor, 0);
    close(descriptor);
    errno = 0;
    EXPECT_EQ(0, sopen_s(&descriptor, path.c_str(), O_RDONLY, 0, kOwnerAccess));
    ASSERT_GE(descriptor, 0);
    close(descriptor);
}

TEST_F(RuntimeFiles, SopenCreatesWithTheOwnersBits) {
    int descriptor = -1;
    const std::string path = m_scratch / "new";
    sopen_s(&descriptor, path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0, kOwnerAccess);
    ASSERT_GE(descriptor, 0);
    struct stat status = {};
    ASSERT_EQ(0, fstat(descriptor, &status));
    close(descriptor);
    EXPECT_EQ(0600u, status.st_mode & 0777u);
}

TEST_F(RuntimeFiles, SopenReturnsErrnoOfAFailedOpen) {
    int descriptor = 5;
    EXPECT_EQ(ENOENT, sopen_s(&descriptor, (m_scratch / "absent").c_str(), O_RDONLY, 0, 0));
    EXPECT_EQ(-1, descriptor);
}

TEST_F(RuntimeFiles, SopenRefusesNullAndOtherModeBits) {
    EXPECT_EQ(EINVAL, sopen_s(nullptr, "a", O_RDONLY, 0, 0));
    int descriptor = 5;
    EXPECT_EQ(EINVAL, sopen_s(&descriptor, nullptr, O_RDONLY, 0, 0));
    EXPECT_EQ(-1, descriptor);
    const std::string path = m_scratch.Write("a", "");
    for (const int mode : {0x40, 0x1, 0600 | 0040, 0x200}) {
        descriptor = 5;
        EXPECT_EQ(EINVAL, sopen_s(&descriptor, path.c_str(), O_RDONLY, 0, mode)) << mode;
        EXPECT_EQ(-1, descriptor) << mode;
    }
    EXPECT_EQ(kUntouchedErrno, errno);
}

TEST_F(RuntimeFiles, GetsReturnsLinesWithoutTheirNewline) {
    SetStandardInput("one\n\n\nlast");
    char line[16];
    EXPECT_EQ(line, gets_s(line, sizeof line));
    EXPECT_STREQ("one", line);
    EXPECT_EQ(line, gets_s(line, sizeof line));
    EXPECT_STREQ("", line);
    EXPECT_EQ(line, gets_s(line, sizeof line));
    EXPECT_STREQ("", line);
    EXPECT_EQ(line, gets_s(line, sizeof line));
    EXPECT_STREQ("last", line);
    EXPECT_EQ(nullptr, gets_s(line, sizeof line));
}

TEST_F(RuntimeFiles, GetsCutsALongLine) {
    SetStandardInput("abcdef\n");
    char line[4];
    EXPECT_EQ(line, gets_s(line, sizeof line));
    EXPECT_STREQ("abc", line);
    EXPECT_EQ(line, gets_s(line, sizeof line));
    EXPECT_STREQ("def", line);
}

TEST_F(RuntimeFiles, GetsRefusesNullAndSizeZero) {
    SetStandardInput("abc\n");
    char line[4] = "#";
    EXPECT_EQ(nullptr, gets_s(nullptr, 4));
    EXPECT_EQ(EINVAL, errno);
    errno = 0;
    EXPECT_EQ(nullptr, gets_s(line, 0));
    EXPECT_EQ(EINVAL, errno);
    EXPECT_STREQ("#", line);
}
