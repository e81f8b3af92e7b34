// Copying of a file's bytes.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <thread>

#include "portable/PortableFile.h"
#include "tests/support/ScratchDirectory.h"

namespace {

std::string ContentOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

std::string Pattern(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 7 + i / 251);
    return text;
}

// The far end of a named pipe of one page, which nobody empties before the writer has been interrupted.
class CInterruptingReader {
public:
    explicit CInterruptingReader(const std::string& pipe) : m_nPipe(open(pipe.c_str(), O_RDONLY | O_NONBLOCK)) {
        fcntl(m_nPipe, F_SETPIPE_SZ, 4096);
        interrupted = 0;
        struct sigaction action = {};
        action.sa_handler = [](int) { interrupted = 1; };
        sigaction(SIGALRM, &action, &m_previous);

        sigset_t alarms;
        sigemptyset(&alarms);
        sigaddset(&alarms, SIGALRM);
        pthread_sigmask(SIG_BLOCK, &alarms, nullptr);
        m_thread = std::thread([this] { ReadAll(); });
        pthread_sigmask(SIG_UNBLOCK, &alarms, nullptr);
        const itimerval once = {{0, 0}, {0, 50000}};
        setitimer(ITIMER_REAL, &once, nullptr);
    }
    ~CInterruptingReader() {
        const itimerval never = {};
        setitimer(ITIMER_REAL, &never, nullptr);
        close(m_nPipe);
        sigaction(SIGALRM, &m_previous, nullptr);
    }

    // What arrived, once `size` bytes did or the time is over.
    std::string Wait(std::size_t size) {
        m_nWanted = size;
        m_thread.join();
        return m_text;
    }

private:
    void ReadAll() {
        char buffer[4096];
        for (int attempt = 0; attempt < 10000 && m_text.size() < m_nWanted; ++attempt) {
            const ssize_t count = interrupted != 0 ? read(m_nPipe, buffer, sizeof(buffer)) : -1;
            if (count > 0) m_text.append(buffer, static_cast<std::size_t>(count));
            if (count <= 0) usleep(1000);
        }
    }

    static std::atomic<int> interrupted;

    int m_nPipe;
    struct sigaction m_previous = {};
    std::thread m_thread;
    std::string m_text;
    std::atomic<std::size_t> m_nWanted{SIZE_MAX};
};

std::atomic<int> CInterruptingReader::interrupted{0};

}  // namespace

TEST(FileCopy, EveryByteArrives) {
    for (const std::size_t size : {0u, 1u, 32767u, 32768u, 32769u, 100000u}) {
        const CScratchDirectory scratch;
        const std::string content = Pattern(size);
        const std::string source = scratch.Write("source", content);
        EXPECT_EQ(CPortableFile::CopyFile(source.c_str(), (scratch / "target").c_str(), 1), 1) << size;
        EXPECT_EQ(ContentOf(scratch / "target"), content) << size;
    }
}

TEST(FileCopy, ANewTargetBelongsToItsOwner) {
    const CScratchDirectory scratch;
    const mode_t previous = umask(0);
    EXPECT_EQ(CPortableFile::CopyFile(scratch.Write("source", "x").c_str(), (scratch / "target").c_str(), 0), 1);
    umask(previous);
    struct stat status = {};
    ASSERT_EQ(stat((scratch / "target").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u);
}

TEST(FileCopy, AnExistingTargetFailsOnRequest) {
    const CScratchDirectory scratch;
    const std::string source = scratch.Write("source", "new");
    const std::string target = scratch.Write("target", "0123456789");
    EXPECT_EQ(CPortableFile::CopyFile(source.c_str(), target.c_str(), 1), 0);
    EXPECT_EQ(ContentOf(target), "0123456789");
}

TEST(FileCopy, AShorterSourceLeavesTheTailOfALongerTarget) {
    const CScratchDirectory scratch;
    const std::string source = scratch.Write("source", "new");
    const std::string target = scratch.Write("target", "0123456789");
    EXPECT_EQ(CPortableFile::CopyFile(source.c_str(), target.c_str(), 0), 1);
    EXPECT_EQ(ContentOf(target), "new3456789");
}

TEST(FileCopy, AMissingSourceFailsAndCreatesNoTarget) {
    const CScratchDirectory scratch;
    EXPECT_EQ(CPortableFile::CopyFile((scratch / "source").c_str(), (scratch / "target").c_str(), 0), 0);
    EXPECT_FALSE(std::filesystem::exists(scratch / "target"));
}

TEST(FileCopy, AMissingTargetDirectoryFails) {
    const CScratchDirectory scratch;
    const std::string source = scratch.Write("source", "x");
    EXPECT_EQ(CPortableFile::CopyFile(source.c_str(), (scratch / "no/target").c_str(), 0), 0);
}

TEST(FileCopy, AFailedReadFails) {
    const CScratchDirectory scratch;
    std::filesystem::create_directory(scratch / "dir");
    EXPECT_EQ(CPortableFile::CopyFile((scratch / "dir").c_str(), (scratch / "target").c_str(), 0), 0);
}

TEST(FileCopy, AFailedWriteFails) {
    if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full on this system";
    const CScratchDirectory scratch;
    for (const std::size_t size : {1u, 100000u}) {
        EXPECT_EQ(CPortableFile::CopyFile(scratch.Write("source", Pattern(size)).c_str(), "/dev/full", 0), 0) << size;
    }
}

TEST(FileCopy, AWriteThatTakesAPartOnlyIsContinued) {
    const CScratchDirectory scratch;
    const std::string content = Pattern(20000);
    const std::string source = scratch.Write("source", content);
    ASSERT_EQ(mkfifo((scratch / "pipe").c_str(), 0600), 0);
    CInterruptingReader reader(scratch / "pipe");
    EXPECT_EQ(CPortableFile::CopyFile(source.c_str(), (scratch / "pipe").c_str(), 0), 1);
    EXPECT_EQ(reader.Wait(content.size()), content);
}

TEST(FileCopy, NoPathFails) {
    const CScratchDirectory scratch;
    EXPECT_EQ(CPortableFile::CopyFile(nullptr, (scratch / "target").c_str(), 0), 0);
    EXPECT_EQ(CPortableFile::CopyFile(scratch.Write("source", "x").c_str(), nullptr, 0), 0);
}

TEST(FileCopy, NoDescriptorStaysOpen) {
    const CScratchDirectory scratch;
    const std::string source = scratch.Write("source", "x");
    const int before = dup(0);
    close(before);
    CPortableFile::CopyFile(source.c_str(), (scratch / "target").c_str(), 0);
    CPortableFile::CopyFile(source.c_str(), (scratch / "target").c_str(), 1);
    const int after = dup(0);
    close(after);
    EXPECT_EQ(after, before);
}
