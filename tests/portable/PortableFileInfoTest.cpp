// The record of a directory entry.
#include <gtest/gtest.h>

#include "portable/PortableFileInfo.h"

TEST(PortableFileInfo, ANewRecordIsEmpty) {
    const CPortableFileInfo info;
    EXPECT_STREQ(info.m_strName.GetText(), "");
    EXPECT_EQ(info.m_nAttributes, 0u);
    EXPECT_EQ(info.m_creationTime.GetTime(), 0);
    EXPECT_EQ(info.m_lastAccessTime.GetTime(), 0);
    EXPECT_EQ(info.m_lastWriteTime.GetTime(), 0);
    EXPECT_EQ(info.m_nLength, 0);
    EXPECT_EQ(info.m_nReserved, 0u);
}

TEST(PortableFileInfo, ACopyIsIndependent) {
    CPortableFileInfo info;
    info.m_strName = "name";
    info.m_lastWriteTime = 5;
    CPortableFileInfo copy(info);
    info.m_strName = "other";
    info.m_lastWriteTime = 6;
    EXPECT_STREQ(copy.m_strName.GetText(), "name");
    EXPECT_EQ(copy.m_lastWriteTime.GetTime(), 5);
}

TEST(PortableFileInfo, AnAssignedRecordIsIndependent) {
    CPortableFileInfo info;
    info.m_strName = "name";
    info.m_lastWriteTime = 5;
    info.m_nLength = 7;
    CPortableFileInfo other;
    other.m_strName = "before";
    other = info;
    info.m_strName = "changed";
    info.m_lastWriteTime = 6;
    EXPECT_STREQ(other.m_strName.GetText(), "name");
    EXPECT_EQ(other.m_lastWriteTime.GetTime(), 5);
    EXPECT_EQ(other.m_nLength, 7);
}
