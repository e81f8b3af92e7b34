// The settings dialog without memory for what the library itself allocates.
#include "tests/dialog/DialogFixture.h"
#include "tests/faults/EachLibraryAllocation.h"

namespace {

class DialogAllocation : public DialogTest {};

}  // namespace

TEST_F(DialogAllocation, ADialogWithoutMemoryForAComponentShowsTheOthers) {
    const std::string file(300, 'f');
    CDialogComponent& first = Add("First", ACT_DECODER, file.c_str());
    CDialogComponent& second = Add("Second", ACT_DECODER, file.c_str());
    const unsigned int references = m_manager->AddRef();
    const int allocations = FailEachLibraryAllocation([&] { Build(); },
                                                      [&](bool thrown) {
                                                          EXPECT_FALSE(thrown);
                                                          ASSERT_NE(m_pDialog, nullptr);
                                                          EXPECT_LE(Page(0).Rows(), 2);
                                                          Destroy();
                                                          EXPECT_EQ(m_pDialog, nullptr);
                                                          EXPECT_EQ(m_manager->AddRef(), references + 1);
                                                          EXPECT_EQ(m_manager->Release(), references);
                                                          EXPECT_EQ(first.m_nReferences, second.m_nReferences);
                                                      });
    EXPECT_GE(allocations, 4);
    {
        const CFailingLibraryAllocation failing(2);
        Build();
    }
    ASSERT_NE(m_pDialog, nullptr);
    EXPECT_EQ(Page(0).Rows(), 1);
    EXPECT_EQ(Page(0).Text(0, 1), "Second");
    m_manager->Release();
}
