// Copies over system calls that fail or do half of their work.
#include <errno.h>

#include <algorithm>

#include "portable/PortableFile.h"
#include "tests/faults/FaultFixture.h"

namespace {

constexpr std::size_t kSize = 100000;  // four blocks

class CopyFault : public CFaultTest {
protected:
    CopyFault() {
        for (std::size_t i = 0; i < kSize; ++i) m_strContent += static_cast<char>(i * 31 % 251);
        m_scratch.Write("source", m_strContent);
    }

    int Copy(int failIfExists = 0) const {
        return CPortableFile::CopyFile((m_scratch / "source").c_str(), (m_scratch / "target").c_str(), failIfExists);
    }

    // What is there of the target is right.
    void ExpectBeginningCopied() const {
        EXPECT_EQ(Content(m_scratch / "source"), m_strContent);
        const std::string copied = Content(m_scratch / "target");
        EXPECT_EQ(copied, m_strContent.substr(0, copied.size()));
    }

    std::string m_strContent;
};

}  // namespace

TEST_F(CopyFault, ReadsInPartCopyEverything) {
    const CFaultyCall fault({ECall::Read, 0, 1, INT_MAX, 333});
    EXPECT_EQ(Copy(), 1);
    EXPECT_EQ(Content(m_scratch / "target"), m_strContent);
}

TEST_F(CopyFault, WritesInPartCopyEverything) {
    const CFaultyCall fault({ECall::Write, 0, 1, INT_MAX, 333});
    EXPECT_EQ(Copy(), 1);
    EXPECT_EQ(Content(m_scratch / "target"), m_strContent);
}

TEST_F(CopyFault, AnyReadThatFailsFailsTheCopy) {
    for (const int error : {EIO, EINTR}) {
        int call = 1;
        for (bool struck = true; struck; ++call) {
            const CFaultyCall fault({ECall::Read, error, call, 1});
            const int copied = Copy();
            struck = fault.GetCount() >= call;
            EXPECT_EQ(copied, struck ? 0 : 1) << "read " << call;
            ExpectBeginningCopied();
        }
        EXPECT_EQ(call, 7);  // four blocks and the end
    }
}

TEST_F(CopyFault, AnyWriteThatFailsFailsTheCopy) {
    for (const int error : {ENOSPC, EIO, EINTR}) {
        int call = 1;
        for (bool struck = true; struck; ++call) {
            const CFaultyCall fault({ECall::Write, error, call, 1});
            const int copied = Copy();
            struck = fault.GetCount() >= call;
            EXPECT_EQ(copied, struck ? 0 : 1) << "write " << call;
            ExpectBeginningCopied();
        }
        EXPECT_EQ(call, 6);
    }
}

TEST_F(CopyFault, ADiskThatFillsUpInTheMiddleOfABlockFailsTheCopy) {
    {
        const CFaultyCall fault({ECall::Write, ENOSPC, 2});
        EXPECT_EQ(Copy(), 0);
        EXPECT_EQ(fault.GetCount(), 2);
    }
    ExpectBeginningCopied();
    EXPECT_EQ(Content(m_scratch / "target").size(), 32768u);
}

TEST_F(CopyFault, AFailedWriteEndsTheCopyAfterOneMoreRead) {
    const CFaultyCall fault({ECall::Write, ENOSPC, 1, 1});
    EXPECT_EQ(Copy(), 0);
    EXPECT_EQ(fault.GetCalls(), (std::vector<ECall>{ECall::Open, ECall::Open, ECall::Read, ECall::Write, ECall::Read,
                                                    ECall::Close, ECall::Close}));
}

TEST_F(CopyFault, ASourceThatCannotBeOpenedLeavesNoTarget) {
    for (const int error : {EMFILE, EINTR, EIO}) {
        const CFaultyCall fault({ECall::Open, error});
        EXPECT_EQ(Copy(), 0);
        EXPECT_FALSE(std::filesystem::exists(m_scratch / "target"));
    }
}

TEST_F(CopyFault, ATargetThatCannotBeOpenedClosesTheSource) {
    m_scratch.Write("target", "as it was");
    for (const int error : {EMFILE, EINTR, ENOSPC, EIO}) {
        const CFaultyCall fault({ECall::Open, error, 2});
        EXPECT_EQ(Copy(), 0);
        EXPECT_EQ(Content(m_scratch / "target"), "as it was");
    }
}
