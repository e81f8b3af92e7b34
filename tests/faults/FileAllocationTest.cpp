// The portability layer without memory.
#include <memory>

#include "portable/BasicString.h"
#include "portable/DirEntry.h"
#include "portable/PortableFile.h"
#include "tests/faults/EachLibraryAllocation.h"
#include "tests/support/ProcessUse.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/ScratchRoot.h"

namespace {

class FileAllocation : public testing::Test {
protected:
    FileAllocation() {
        for (const char* const name : {"a.txt", "b.txt"}) m_scratch.Write(name, "text");
    }
    // No failure leaves a descriptor open.
    ~FileAllocation() override { EXPECT_EQ(support::MeasureUse().m_nDescriptors, m_nDescriptors); }

    CScratchDirectory m_scratch;
    std::size_t m_nDescriptors = support::MeasureUse().m_nDescriptors;
};

}  // namespace

TEST_F(FileAllocation, AListingLeavesNothing) {
    const std::string mask = m_scratch / "*.txt";
    const int allocations = FailEachLibraryAllocation([&] {
        const std::unique_ptr<CDirEntry> search(CPortableFile::FindFirst(mask.c_str(), 0, 0, 0, 2));
        while (search->IsValid() != 0) search->Next();
    });
    EXPECT_GT(allocations, 10);
}

TEST_F(FileAllocation, TheSizeOfATreeLeavesNothing) {
    std::filesystem::create_directories(m_scratch.Path() / "tree/branch");
    m_scratch.Write("tree/branch/leaf.txt", "text");
    FailEachLibraryAllocation(
        [&] { CPortableFile::GetDirectoryContentSize(m_scratch.Path().c_str(), "*.txt", 0, 0, 0, 2); });
    EXPECT_EQ(CPortableFile::GetDirectoryContentSize(m_scratch.Path().c_str(), "*.txt", 0, 0, 0, 2), 12);
}

TEST_F(FileAllocation, ATreeThatIsNotRemovedWholeCanBeRemovedLater) {
    RunInScratchRoot([](const CScratchRoot& root) {
        const auto grow = [&] {
            std::filesystem::create_directories(root / "tree/branch");
            std::ofstream(root / "tree/branch/leaf") << "text";
        };
        grow();
        FailEachLibraryAllocation([&] { CPortableFile::DeleteDirectoryTree((root / "tree").c_str()); },
                                  [&](bool thrown) {
                                      const int removed = CPortableFile::DeleteDirectoryTree((root / "tree").c_str());
                                      EXPECT_EQ(removed, thrown ? 1 : 0);
                                      EXPECT_FALSE(std::filesystem::exists(root / "tree"));
                                      grow();
                                  });
    });
}

TEST_F(FileAllocation, FilesLeaveNothing) {
    const std::string path = m_scratch / "a.txt";
    std::filesystem::create_symlink("a.txt", m_scratch / "link");
    FailEachLibraryAllocation([&] {
        CPortableFile file(path.c_str(), CPortableFile::OM_READ);
        char buffer[4];
        unsigned int done = 0;
        file.Read(buffer, sizeof(buffer), &done);
        const std::unique_ptr<CPortableFile> clone(file.Clone());
        const CPortableFile link((m_scratch / "link").c_str(), CPortableFile::OM_READ);
        link.ReadLink();
        long maximum = 0;
        CPortableFile::GetMaximumFileLength(path.c_str(), maximum);
        CPortableFile::GetTempPath();
        CBasicString<char> directory;
        CPortableFile::GetCurrentDirectory(directory);
    });
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_scratch.Path()), {}), 3);
}

TEST_F(FileAllocation, AStringKeepsItsTextOrTakesTheNew) {
    const std::string words(500, 'w');
    CBasicString<char> text("short");
    FailEachLibraryAllocation(
        [&] {
            text += words.c_str();
            text = words.c_str();
            CBasicString<char> other(text);
            other.Format("%s %s", words.c_str(), words.c_str());
            text = other;
        },
        [&](bool /*thrown*/) {
            EXPECT_EQ(static_cast<std::size_t>(text.GetLength()), std::string(text.GetText()).size());
            text.~CBasicString();
            new (&text) CBasicString<char>("short");
        });
}
