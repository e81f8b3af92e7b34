// File objects over system calls that fail or do half of their work.
#include <errno.h>

#include "portable/PortableFile.h"
#include "tests/faults/FaultFixture.h"

namespace {

class FileFault : public CFaultTest {
protected:
    std::string m_strPath = m_scratch.Write("file", "0123456789");
    CPortableFile m_file{m_strPath.c_str(), CPortableFile::OM_READ_WRITE};
    char m_buffer[16] = "unread";
    unsigned int m_nDone = 99;

    int Read(unsigned int size) { return m_file.Read(m_buffer, size, &m_nDone); }
    int Write(std::string text) { return m_file.Write(text.data(), static_cast<unsigned int>(text.size()), &m_nDone); }
};

struct SFileCall {
    const char* m_szName;
    int (*m_pCall)(CPortableFile& file);
};

const SFileCall kOpeningCalls[] = {
    {"Read",
     [](CPortableFile& file) {
         char buffer[4];
         unsigned int done = 99;
         const int status = file.Read(buffer, sizeof(buffer), &done);
         EXPECT_EQ(done, 0u);
         return status;
     }},
    {"Write",
     [](CPortableFile& file) {
         char text[] = "text";
         unsigned int done = 99;
         const int status = file.Write(text, 4, &done);
         EXPECT_EQ(done, 0u);
         return status;
     }},
    {"GetFilePos",
     [](CPortableFile& file) {
         long position = 99;
         const int status = file.GetFilePos(&position);
         EXPECT_EQ(position, 0);
         return status;
     }},
    {"SetFilePosBackwards", [](CPortableFile& file) { return file.SetFilePos(PFile::PM_END, -1); }},
    {"OpenFile", [](CPortableFile& file) { return file.OpenFile(CPortableFile::OM_READ_WRITE); }},
};

}  // namespace

TEST_F(FileFault, AnInterruptedReadTellsSoAndLosesNothing) {
    {
        const CFaultyCall fault({ECall::Read, EINTR, 1, 1});
        EXPECT_EQ(Read(4), EINTR);
        EXPECT_EQ(m_nDone, 0u);
        EXPECT_EQ(std::string(m_buffer, 4), std::string(4, '\0'));
        EXPECT_EQ(Read(4), 0);
    }
    EXPECT_EQ(std::string(m_buffer, m_nDone), "0123");
}

TEST_F(FileFault, AReadInPartTellsItsCountAndTheNextGoesOn) {
    const CFaultyCall fault({ECall::Read, 0, 1, 1, 3});
    EXPECT_EQ(Read(8), 0);
    EXPECT_EQ(std::string(m_buffer, 8), std::string("012\0\0\0\0\0", 8));
    EXPECT_EQ(m_nDone, 3u);
    EXPECT_EQ(Read(8), 0);
    EXPECT_EQ(std::string(m_buffer, m_nDone), "3456789");
}

TEST_F(FileFault, AFailedReadLeavesThePosition) {
    EXPECT_EQ(Read(2), 0);
    {
        const CFaultyCall fault({ECall::Read, EIO});
        EXPECT_EQ(Read(4), EIO);
        EXPECT_EQ(m_file.Status(), EIO);
    }
    long position = 0;
    EXPECT_EQ(m_file.GetFilePos(&position), 0);
    EXPECT_EQ(position, 2);
}

TEST_F(FileFault, AWriteInPartTellsItsCountAndTheNextGoesOn) {
    const CFaultyCall fault({ECall::Write, 0, 1, 1, 2});
    EXPECT_EQ(Write("abcd"), 0);
    EXPECT_EQ(m_nDone, 2u);
    EXPECT_EQ(Write("cd"), 0);
    EXPECT_EQ(m_nDone, 2u);
    EXPECT_EQ(Content(m_strPath), "abcd456789");
}

TEST_F(FileFault, AFailedWriteTellsTheReasonAndLeavesTheContent) {
    for (const int error : {ENOSPC, EIO, EINTR, EFBIG}) {
        const CFaultyCall fault({ECall::Write, error});
        EXPECT_EQ(Write("abcd"), error);
        EXPECT_EQ(m_nDone, 0u);
        EXPECT_EQ(m_file.Status(), error);
    }
    EXPECT_EQ(Content(m_strPath), "0123456789");
}

TEST_F(FileFault, EveryLazyOpeningThatFailsTellsTheReasonAndTheNextTriesAgain) {
    for (const SFileCall& call : kOpeningCalls) {
        SCOPED_TRACE(call.m_szName);
        for (const int error : {EMFILE, EINTR, ENOSPC, EIO}) {
            CPortableFile file(m_strPath.c_str(), CPortableFile::OM_READ_WRITE);
            {
                const CFaultyCall fault({ECall::Open, error});
                EXPECT_EQ(call.m_pCall(file), error);
                EXPECT_EQ(fault.GetCount(), 1);
            }
            char byte = 0;
            EXPECT_EQ(file.Read(&byte, 1, &m_nDone), 0);
            EXPECT_EQ(byte, '0');
        }
    }
}

TEST_F(FileFault, AFailedTruncationTellsTheReasonAndKeepsTheContent) {
    const CFaultyCall fault({ECall::Truncate, EIO});
    EXPECT_EQ(m_file.SetEndOfFile(), EIO);
    EXPECT_EQ(Content(m_strPath), "0123456789");
}

TEST_F(FileFault, ATruncationWithoutAPositionCutsNothingAndTellsNothing) {
    const CFaultyCall fault({ECall::Seek, ESPIPE});
    EXPECT_EQ(m_file.SetEndOfFile(), 0);
    EXPECT_EQ(Content(m_strPath), "0123456789");
}

TEST_F(FileFault, ASeekThatFailsIsToldOnlyForANegativeOffset) {
    const CFaultyCall fault({ECall::Seek, EIO});
    EXPECT_EQ(m_file.SetFilePos(PFile::PM_END, 3), 0);
    EXPECT_EQ(m_file.SetFilePos(PFile::PM_END, -3), EIO);
    EXPECT_EQ(m_file.SetFilePos(PFile::PM_CURRENT, -3), EIO);
    long position = 99;
    EXPECT_EQ(m_file.GetFilePos(&position), EIO);
    EXPECT_EQ(position, 0);
}

TEST_F(FileFault, AFailedCloseTellsTheReasonAndClosesNothingTwice) {
    EXPECT_EQ(Write("abcd"), 0);
    const CFaultyCall fault({ECall::Close, EIO});
    EXPECT_EQ(m_file.CloseFile(), EIO);
    EXPECT_EQ(m_file.CloseFile(), 0);
    EXPECT_EQ(fault.GetCount(), 1);
}

TEST_F(FileFault, ALinkThatBringsNothingMoreTheSecondTimeHasTheTextOfThen) {
    std::filesystem::create_symlink("a text", m_scratch / "link");
    const CPortableFile link((m_scratch / "link").c_str(), CPortableFile::OM_READ);
    {
        const CFaultyCall fault({ECall::ReadLink, EIO, 2, 1});
        EXPECT_STREQ(link.ReadLink().GetText(), "");
    }
    {
        const CFaultyCall fault({ECall::ReadLink, 0, 2, 1, 3});
        EXPECT_STREQ(link.ReadLink().GetText(), "a t");
        EXPECT_EQ(fault.GetCount(), 2);
    }
    EXPECT_STREQ(link.ReadLink().GetText(), "a text");
}

TEST_F(FileFault, AFileThatCannotBeRemovedTellsTheReasonAndStays) {
    const CFaultyCall fault({ECall::RemoveFile, EBUSY});
    EXPECT_EQ(m_file.DeleteFile(), EBUSY);
    EXPECT_EQ(Content(m_strPath), "0123456789");
}
