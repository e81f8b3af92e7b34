// Enumeration of one directory: masks, filters, states.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "portable/DirEntry.h"
#include "tests/support/ProcessState.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using Names = std::vector<std::string>;

std::unique_ptr<CDirEntry> List(const std::string& directory, const char* mask, int skipAll = 0, int required = 0,
                                int excluded = 0, unsigned int flags = 2) {
    const CPortableFile file(directory.c_str(), CPortableFile::OM_READ_WRITE);
    return std::unique_ptr<CDirEntry>(file.OpenDir(mask, skipAll, required, excluded, flags));
}

// The sorted absolute names of what is left of the enumeration.
Names PathsOf(const std::unique_ptr<CDirEntry>& entry) {
    Names names;
    for (; entry->IsValid() != 0; entry->Next()) names.emplace_back(entry->GetFile().GetName());
    std::sort(names.begin(), names.end());
    return names;
}

Names NamesOf(const std::unique_ptr<CDirEntry>& entry) {
    Names names = PathsOf(entry);
    for (std::string& name : names) name = std::filesystem::path(name).filename().string();
    return names;
}

// An enumeration that stands on whatever file its last step made.
class CSteppingEntry : public CDirEntry {
public:
    CSteppingEntry() : CDirEntry(CPortableInvalidFile(), "*", 0, 0, 0, 2) { CSteppingEntry::ReadNextEntry(); }

    const CPortableFileInfo& GetFileInfo() const override { return m_info; }
    CPortableFile& GetFile() override { return m_ownFile; }

    int m_nStepsFromNoFile = 0;
    CPortableInvalidFile m_ownFile;

protected:
    int ReadNextEntry() override {
        if (m_pFile == nullptr) ++m_nStepsFromNoFile;
        m_pFile = std::make_unique<CPortableInvalidFile>();
        return 1;
    }

private:
    CPortableFileInfo m_info;
};

}  // namespace

TEST(DirEntry, AMaskChoosesNames) {
    const CScratchDirectory scratch;
    for (const char* name : {"a.so", "b.So", "c.txt", ".so", ".hidden", "a.so.1", "[x]", "UPPER"}) {
        scratch.Write(name, "");
    }
    const struct {
        const char* mask;
        unsigned int flags;
        Names names;
    } rows[] = {{"*", 2, {".hidden", ".so", "UPPER", "[x]", "a.so", "a.so.1", "b.So", "c.txt"}},
                {".*", 2, {".hidden", ".so"}},
                {"*.SO", 2, {"a.so", "a.so.1", "b.So"}},
                {"*.SO", 1, {}},
                {"*.so", 1, {"a.so", "a.so.1"}},
                {"*.so", 0, {"a.so", "a.so.1", "b.So"}},
                {"*.SO", 3, {}},
                {"?.so", 2, {"a.so", "a.so.1", "b.So"}},
                {"a.so", 2, {"a.so"}},
                {"A.SO", 2, {"a.so"}},
                {"A.SO", 1, {}},
                {"upper", 2, {"UPPER"}},
                {"UPPER", 1, {"UPPER"}},
                {"a.s", 2, {}},
                {"[x]", 2, {"[x]"}},
                {"[a]*", 2, {}},
                {"", 2, {}},
                {nullptr, 2, {}},
                {"c.txt*", 2, {}}};
    for (const auto& row : rows) {
        EXPECT_EQ(NamesOf(List(scratch.Path(), row.mask, 0, 0, 0, row.flags)), row.names)
            << (row.mask ? row.mask : "null") << " " << row.flags;
    }
}

TEST(DirEntry, DotEntriesAreNeverReturned) {
    const CScratchDirectory scratch;
    for (const char* mask : {"*", ".*", ".", "..", "?", "??"}) {
        EXPECT_EQ(NamesOf(List(scratch.Path(), mask)), Names()) << mask;
    }
}

TEST(DirEntry, AttributesFilterEntries) {
    const CScratchDirectory scratch;
    scratch.Write("file", "");
    std::filesystem::create_directory(scratch / "dir");
    std::filesystem::create_directory_symlink("dir", scratch / "dirlink");
    std::filesystem::create_symlink("nowhere", scratch / "dangling");
    const Names all = {"dangling", "dir", "dirlink", "file"};
    const struct {
        int required;
        int excluded;
        Names names;
    } rows[] = {{0, 0, all},
                {0x10, 0, {"dir"}},
                {0, 0x10, {"dangling", "dirlink", "file"}},
                {0x10, 0x10, {}},
                {1, 0, {}},
                {0x11, 0, {}},
                {0, 1, all},
                {0, 0x11, {"dangling", "dirlink", "file"}},
                {-1, 0, {}},
                {0, -1, {"dangling", "dirlink", "file"}}};
    for (const auto& row : rows) {
        EXPECT_EQ(NamesOf(List(scratch.Path(), "*", 0, row.required, row.excluded)), row.names)
            << row.required << " " << row.excluded;
    }
}

TEST(DirEntry, TheSkipAllFlagRejectsEverything) {
    const CScratchDirectory scratch;
    scratch.Write("a.so", "");
    for (const int skipAll : {1, 2, -1}) {
        const auto entry = List(scratch.Path(), "*", skipAll);
        EXPECT_EQ(entry->IsValid(), 0) << skipAll;
        EXPECT_STREQ(entry->GetFile().GetName(), "");
    }
}

TEST(DirEntry, ADirectoryThatCannotBeOpenedHasNoEntries) {
    const CScratchDirectory scratch;
    scratch.Write("file", "");
    for (const std::string& name : {scratch / "missing", scratch / "file", std::string("/no/such/dir")}) {
        const auto entry = List(name, "*");
        EXPECT_EQ(entry->IsValid(), 0) << name;
        EXPECT_EQ(entry->Next(), 0) << name;
        EXPECT_STREQ(entry->GetFile().GetName(), "") << name;
    }
}

TEST(DirEntry, AFileWithoutANameHasNoEntries) {
    const CScratchDirectory scratch;
    scratch.Write("file", "");
    const CScopedCurrentDirectory inside(scratch.Path());
    const CPortableFile file(nullptr, CPortableFile::OM_READ);
    const std::unique_ptr<CDirEntry> entry(file.OpenDir("*", 0, 0, 0, 2));
    EXPECT_EQ(entry->IsValid(), 0);
}

TEST(DirEntry, AnEntryIsAnUnopenedFileInModeFourUnderItsAbsoluteName) {
    const CScratchDirectory scratch;
    scratch.Write("file", "0123456789");
    const auto entry = List(scratch.Path(), "*");
    ASSERT_EQ(entry->IsValid(), 1);
    EXPECT_EQ(entry->GetFile().GetName(), scratch / "file");
    EXPECT_EQ(entry->GetFile().GetAccessMode(), 4);
    EXPECT_EQ(entry->GetFile().FileLength(), 10);
    EXPECT_EQ(&**entry, &entry->GetFile());
    EXPECT_EQ(entry->GetFilePtr(), &entry->GetFile());
}

TEST(DirEntry, ItsOperatorsGoThroughTheVirtualTableAndAStepDropsTheFileFirst) {
    CSteppingEntry entry;
    EXPECT_EQ(&*entry, &entry.m_ownFile);
    EXPECT_EQ(entry.m_nStepsFromNoFile, 1);
    entry.Next();
    EXPECT_EQ(entry.m_nStepsFromNoFile, 2);
}

TEST(DirEntry, AfterTheEndStandsAnInvalidFile) {
    const CScratchDirectory scratch;
    scratch.Write("file", "");
    const auto entry = List(scratch.Path(), "*");
    entry->Next();
    EXPECT_EQ(entry->IsValid(), 0);
    EXPECT_EQ(entry->Next(), 0);
    ASSERT_NE(entry->GetFilePtr(), nullptr);
    EXPECT_NE(dynamic_cast<CPortableInvalidFile*>(entry->GetFilePtr()), nullptr);
    EXPECT_STREQ(entry->GetFile().GetName(), "");
    EXPECT_EQ(entry->GetFile().GetAccessMode(), 4);
    EXPECT_EQ((**entry).FileExists(), 0);
}

TEST(DirEntry, TheFileInfoIsEmptyForEveryEntry) {
    const CScratchDirectory scratch;
    scratch.Write("a", "0123456789");
    scratch.Write("b", "0123456789");
    int entries = 0;
    for (const auto entry = List(scratch.Path(), "*");; entry->Next()) {
        const CPortableFileInfo& info = entry->GetFileInfo();
        EXPECT_STREQ(info.m_strName.GetText(), "");
        EXPECT_EQ(info.m_nAttributes, 0u);
        EXPECT_EQ(info.m_creationTime.GetTime(), 0);
        EXPECT_EQ(info.m_lastAccessTime.GetTime(), 0);
        EXPECT_EQ(info.m_lastWriteTime.GetTime(), 0);
        EXPECT_EQ(info.m_nLength, 0);
        EXPECT_EQ(info.m_nReserved, 0u);
        if (entry->IsValid() == 0) break;
        ++entries;
    }
    EXPECT_EQ(entries, 2);
}

TEST(DirEntry, EntriesOfALinkedDirectoryComeOutResolved) {
    const CScratchDirectory scratch;
    std::filesystem::create_directories(scratch / "sub/deep");
    scratch.Write("sub/file", "");
    std::filesystem::create_symlink("file", scratch / "sub/link");
    std::filesystem::create_directory_symlink("sub", scratch / "outer");
    EXPECT_EQ(PathsOf(List(scratch / "outer", "*")),
              (Names{scratch / "sub/deep", scratch / "sub/file", scratch / "sub/link"}));
}

TEST(DirEntry, NamesAreThoseOfTheFileConstructor) {
    const CScratchDirectory scratch;
    std::filesystem::create_directories(scratch / "real/dir");
    std::filesystem::create_directory_symlink("real", scratch / "linked");
    for (const char* name : {"real/file", "real/two words", "real/...", "real/-", "real/\xc3\xa4"}) {
        scratch.Write(name, "");
    }
    std::filesystem::create_directory_symlink("dir", scratch / "real/inner");
    for (const char* directory : {"real", "linked"}) {
        const auto entry = List(scratch / directory, "*");
        int entries = 0;
        for (; entry->IsValid() != 0; entry->Next(), ++entries) {
            const std::string name = std::filesystem::path(entry->GetFile().GetName()).filename().string();
            CPortableFile constructed((scratch / (std::string(directory) + "/" + name)).c_str(),
                                      CPortableFile::OM_READ_WRITE);
            EXPECT_STREQ(entry->GetFile().GetName(), constructed.GetName());
        }
        EXPECT_EQ(entries, 7) << directory;
    }
}

TEST(DirEntry, EntriesThatVanishedAreSkipped) {
    const CScratchDirectory scratch;
    for (const char* name : {"a", "b", "c"}) scratch.Write(name, "");
    const auto entry = List(scratch.Path(), "*");
    ASSERT_EQ(entry->IsValid(), 1);
    for (const char* name : {"a", "b", "c"}) unlink((scratch / name).c_str());
    entry->Next();
    EXPECT_EQ(entry->IsValid(), 0);
}

TEST(DirEntry, ManyEntriesAllAppearOnce) {
    const CScratchDirectory scratch;
    Names expected;
    for (int i = 0; i < 3000; ++i) expected.push_back(scratch.Write("entry" + std::to_string(10000 + i), ""));
    EXPECT_EQ(PathsOf(List(scratch.Path(), "*")), expected);
}

TEST(DirEntry, TheStreamIsClosedWithTheEnumeration) {
    const CScratchDirectory scratch;
    scratch.Write("a", "");
    const int before = dup(0);
    close(before);
    {
        const auto entry = List(scratch.Path(), "*");
        const int during = dup(0);
        close(during);
        EXPECT_NE(during, before);
    }
    const int after = dup(0);
    close(after);
    EXPECT_EQ(after, before);
}
