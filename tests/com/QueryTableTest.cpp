// The rules that every QueryInterface of the library keeps.
#include <gtest/gtest.h>

#include "com/QueryTable.h"

namespace {

struct SCounted {
    unsigned int AddRef() { return ++m_nAdded; }

    unsigned int m_nAdded = 0;
};

class QueryTable : public testing::Test {
protected:
    int Ask(unsigned long identity) {
        return AnswerQuery(m_object, identity, &m_pFace,
                           {{16, &m_first}, {19, &m_second}, {16, &m_third}, {48, nullptr}});
    }

    SCounted m_object;
    int m_first = 0;
    int m_second = 0;
    int m_third = 0;
    void* m_pFace = &m_object;
};

TEST(QueryResults, HaveTheirNumbers) {
    EXPECT_EQ(kInterfaceFound, 0);
    EXPECT_EQ(kInterfaceMissing, 2);
    EXPECT_EQ(kInterfaceNoOutPointer, 3);
}

TEST_F(QueryTable, StoresTheFaceOfTheIdentityAndReturnsZero) {
    EXPECT_EQ(Ask(19), 0);
    EXPECT_EQ(m_pFace, &m_second);
}

TEST_F(QueryTable, TheFirstLineOfAnIdentityWins) {
    EXPECT_EQ(Ask(16), 0);
    EXPECT_EQ(m_pFace, &m_first);
}

TEST_F(QueryTable, ASuccessAddsExactlyOneReference) {
    Ask(16);
    EXPECT_EQ(m_object.m_nAdded, 1U);
}

TEST_F(QueryTable, AnUnknownIdentityReturnsTwoAndStoresNull) {
    EXPECT_EQ(Ask(17), 2);
    EXPECT_EQ(m_pFace, nullptr);
    EXPECT_EQ(m_object.m_nAdded, 0U);
}

TEST_F(QueryTable, AFaceThatIsNotOfferedCountsAsUnknown) {
    EXPECT_EQ(Ask(48), 2);
    EXPECT_EQ(m_pFace, nullptr);
    EXPECT_EQ(m_object.m_nAdded, 0U);
}

TEST_F(QueryTable, ANullOutPointerReturnsThreeBeforeAnyComparison) {
    EXPECT_EQ(AnswerQuery(m_object, 16, nullptr, {{16, &m_first}}), 3);
    EXPECT_EQ(AnswerQuery(m_object, 17, nullptr, {{16, &m_first}}), 3);
    EXPECT_EQ(m_object.m_nAdded, 0U);
}

TEST_F(QueryTable, AnEmptyTableAnswersNothing) {
    EXPECT_EQ(AnswerQuery(m_object, 0, &m_pFace, {}), 2);
    EXPECT_EQ(m_pFace, nullptr);
}

}  // namespace
