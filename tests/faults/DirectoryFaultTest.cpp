// Directories, paths and the manager over system calls that fail.
#include <errno.h>

#include <memory>
#include <set>

#include "pluginmgr/AudioPluginMgr.h"
#include "portable/DirEntry.h"
#include "portable/PortableFile.h"
#include "tests/faults/FaultFixture.h"
#include "tests/pluginmgr/LoadedManager.h"
#include "tests/support/ManagerHold.h"
#include "tests/support/ScratchRoot.h"

namespace {

class DirectoryFault : public CFaultTest {
protected:
    DirectoryFault() {
        for (const char* const name : {"a.txt", "b.txt", "c.txt"}) m_scratch.Write(name, "text");
    }

    std::set<std::string> List() const {
        std::set<std::string> names;
        const std::unique_ptr<CDirEntry> search(CPortableFile::FindFirst((m_scratch / "*.txt").c_str(), 0, 0, 0, 2));
        for (; search->IsValid() != 0; search->Next()) {
            names.insert(std::filesystem::path(search->GetFile().GetName()).filename().string());
        }
        EXPECT_EQ(search->GetFile().FileExists(), 0);
        EXPECT_EQ(search->Next(), 0);
        return names;
    }
};

}  // namespace

TEST_F(DirectoryFault, AReadErrorEndsTheListing) {
    for (int call = 1; call <= 5; ++call) {
        const CFaultyCall fault({ECall::ReadDirectory, EIO, call});
        EXPECT_LT(List().size(), static_cast<std::size_t>(call));
        EXPECT_EQ(fault.GetCount(), call);
    }
    EXPECT_EQ(List(), (std::set<std::string>{"a.txt", "b.txt", "c.txt"}));
}

TEST_F(DirectoryFault, ADirectoryThatCannotBeOpenedHasNoEntries) {
    const CFaultyCall fault({ECall::OpenDirectory, EMFILE});
    EXPECT_EQ(List(), std::set<std::string>{});
}

TEST_F(DirectoryFault, AnyFailedResolutionListsNothingWrong) {
    int failed = 0;
    for (bool struck = true; struck;) {
        const CFaultyCall fault({ECall::ResolvePath, EACCES, failed + 1, 1});
        for (const std::string& name : List()) EXPECT_TRUE(std::filesystem::exists(m_scratch / name)) << name;
        struck = fault.GetCount() > failed;
        failed += struck ? 1 : 0;
    }
    EXPECT_GT(failed, 0);
}

TEST_F(DirectoryFault, APathWhoseDirectoryCannotBeResolvedIsEmpty) {
    const CFaultyCall fault({ECall::ResolvePath, EACCES});
    EXPECT_TRUE(CPortableFile::MakeAbsolute((m_scratch / "a.txt").c_str()).IsEmpty());
}

TEST_F(DirectoryFault, ACurrentDirectoryThatCannotBeToldLeavesTheTextAlone) {
    const CFaultyCall fault({ECall::CurrentDirectory, EACCES});
    char buffer[8] = "kept";
    EXPECT_EQ(CPortableFile::GetCurrentDirectory(sizeof(buffer), buffer), 0);
    EXPECT_STREQ(buffer, "kept");
    CBasicString<char> text("kept");
    EXPECT_EQ(CPortableFile::GetCurrentDirectory(text), 1);
    EXPECT_STREQ(text.GetText(), "kept");
    EXPECT_EQ(text.GetLength(), 4);
}

TEST_F(DirectoryFault, WithoutATemporaryFileTheLargestLengthIsTheSmallestAnswer) {
    for (const int error : {EROFS, EINTR, ENOSPC, EIO}) {
        const CFaultyCall fault({ECall::MakeTemporary, error});
        long maximum = 0;
        EXPECT_EQ(CPortableFile::GetMaximumFileLength((m_scratch / "a.txt").c_str(), maximum), 1);
        EXPECT_EQ(maximum, 0x7FFFFFFF);
    }
}

TEST_F(DirectoryFault, SeeksThatFailLowerTheLargestLengthAndLeaveNoFile) {
    {
        const CFaultyCall fault({ECall::Seek, EINVAL});
        long maximum = 0;
        EXPECT_EQ(CPortableFile::GetMaximumFileLength((m_scratch / "a.txt").c_str(), maximum), 1);
        EXPECT_EQ(maximum, 0x7FFFFFFF);
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_scratch.Path()), {}), 3);
}

TEST_F(DirectoryFault, TheLargestLengthIsTheLargestOffsetThatAnySeekReached) {
    const struct {
        int m_nFirst;  // of the seeks that fail, of four
        int m_nTimes;
        long m_nMaximum;
    } rows[] = {{1, 1, 0x3FFFFFFFF}, {2, 3, 0x7FFFFFFF},  {3, 2, 0xFFFFFFFF}, {4, 1, 0x1FFFFFFFF},
                {2, 2, 0x3FFFFFFFF}, {2, 1, 0x3FFFFFFFF}, {5, 1, 0x3FFFFFFFF}};
    for (const auto& row : rows) {
        const CFaultyCall fault({ECall::Seek, EINVAL, row.m_nFirst, row.m_nTimes});
        long maximum = 0;
        EXPECT_EQ(CPortableFile::GetMaximumFileLength((m_scratch / "a.txt").c_str(), maximum), 1);
        EXPECT_EQ(maximum, row.m_nMaximum) << row.m_nFirst << " " << row.m_nTimes;
        EXPECT_EQ(fault.GetCalls(), (std::vector<ECall>{ECall::MakeTemporary, ECall::Seek, ECall::Seek, ECall::Seek,
                                                        ECall::Seek, ECall::Close, ECall::RemoveName}));
    }
}

TEST_F(DirectoryFault, FreeSpaceIsWhatUnprivilegedUsersMayFillInBlocks) {
    struct statfs64 status = {};
    status.f_bsize = 0x10000;
    status.f_frsize = 0x200;
    status.f_blocks = 9;
    status.f_bfree = 8;
    status.f_bavail = 0x300000000;
    const CFileSystemAnswer answer(status);
    EXPECT_EQ(CPortableFile::GetDiscFreeSpace(m_scratch.Path().c_str()), 0x3000000000000u);
}

TEST_F(DirectoryFault, WithoutATemporaryNameTheTemporaryPathIsEmpty) {
    const CFaultyCall fault({ECall::NameTemporary, EINVAL});
    EXPECT_STREQ(CPortableFile::GetTempPath().GetText(), "");
    EXPECT_STREQ(CPortableFile::CreateTempName(m_scratch.Path().c_str(), "kelo").GetText(), "");
    EXPECT_EQ(fault.GetCount(), 2);
}

TEST_F(DirectoryFault, ATreeWithAFileThatStaysIsRemovedApartFromIt) {
    RunInScratchRoot([](const CScratchRoot& root) {
        std::filesystem::create_directories(root / "tree/branch");
        for (const char* const name : {"tree/a", "tree/b", "tree/branch/c"}) std::ofstream(root / name) << "text";
        {
            const CFaultyCall fault({ECall::RemoveFile, EIO, 2, 1});
            EXPECT_EQ(CPortableFile::DeleteDirectoryTree((root / "tree").c_str()), 0);
            EXPECT_EQ(fault.GetCount(), 3);
        }
        EXPECT_EQ(CPortableFile::DeleteDirectoryTree((root / "tree").c_str()), 1);
    });
}

TEST_F(DirectoryFault, ATreeThatCannotBeListedIsNotRemoved) {
    RunInScratchRoot([](const CScratchRoot& root) {
        std::filesystem::create_directories(root / "tree/branch");
        std::ofstream(root / "tree/branch/a") << "text";
        for (const ECall call : {ECall::OpenDirectory, ECall::ReadDirectory, ECall::RemoveDirectory}) {
            const CFaultyCall fault({call, EIO, 2});
            EXPECT_EQ(CPortableFile::DeleteDirectoryTree((root / "tree").c_str()), 0);
            EXPECT_TRUE(std::filesystem::exists(root / "tree"));
        }
    });
}

TEST_F(DirectoryFault, ASourceThatCannotBeOpenedTellsTheSystemsReason) {
    const support::CManagerHold manager;
    const CFaultyCall fault({ECall::Open, EMFILE});
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    EXPECT_FALSE(
        manager->OpenURLAudioFile((m_scratch / "a.txt").c_str(), stream.Out(), -1, AUX_NONE, AUX_NONE, status.Out()));
    ASSERT_TRUE(status);
    EXPECT_EQ(status->GetSysError(), static_cast<unsigned int>(EMFILE));
}

TEST_F(DirectoryFault, APluginDirectoryThatCannotBeListedLoadsNothing) {
    const CPluginDirectory plugins({"decoder"});
    EXPECT_EQ(CLoadedManager(plugins)->GetCount(), 1);
    for (const ECall call : {ECall::OpenDirectory, ECall::ReadDirectory, ECall::ResolvePath}) {
        const auto before = std::filesystem::current_path();
        const support::CManagerHold manager;
        const CFaultyCall fault({call, EIO});
        manager->SetPluginDirectory(plugins.Path().c_str());
        EXPECT_TRUE(manager->LoadPlugins());
        EXPECT_GT(fault.GetCount(), 0);
        EXPECT_EQ(manager->GetCount(), 0);
        EXPECT_TRUE(manager->UnloadPlugins());
        EXPECT_EQ(std::filesystem::current_path(), before);
    }
}
