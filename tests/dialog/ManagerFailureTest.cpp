// The dialog over a manager that refuses. The program's own entry point stands before the library's.
#include "tests/dialog/DialogFixture.h"
#include "tests/support/FakeManager.h"

namespace {

enum EMissing { kNothing, kManager, kList, kInfo };

// Lists what its test says.
class CRefusingManager final : public support::CFakeManager, public IComponentEnum, public IAudioPluginMgrInternal {
public:
    unsigned int AddRef() override { return CFakeManager::AddRef(); }
    unsigned int Release() override { return CFakeManager::Release(); }
    int QueryInterface(unsigned long identity, void** face) override {
        IComponentEnum* const list = m_eMissing != kList ? this : nullptr;
        IAudioPluginMgrInternal* const info = m_eMissing != kInfo ? this : nullptr;
        return AnswerQuery(*this, identity, face,
                           {{IID_IUnknown, static_cast<IAudioPluginMgr*>(this)},
                            {IID_IComponentEnum, list},
                            {IID_IAudioPluginMgrInternal, info}});
    }
    int GetCount() override {
        ++m_nCounts;
        return static_cast<int>(m_entries.size());
    }
    bool GetComponent(int index, IAudioComponent** component) override {
        const SEntry& entry = m_entries[static_cast<std::size_t>(index)];
        ++m_nAsked;
        *component = entry.m_pComponent;
        if (*component != nullptr) (*component)->AddRef();
        return entry.m_bResult;
    }
    bool GetComponentInfo(IAudioComponent*, COMPONENT_INFO* info) override {
        if (!m_bKnowsComponents)
            info->m_strLibraryFileName = "left over";
        else
            info->m_strLibraryFileName = "known.so";
        return m_bKnowsComponents;
    }

    struct SEntry {
        IAudioComponent* m_pComponent;
        bool m_bResult;
    };
    std::vector<SEntry> m_entries;
    EMissing m_eMissing = kNothing;
    bool m_bKnowsComponents = true;
    int m_nCounts = 0;
    int m_nAsked = 0;
};

CRefusingManager* g_pManager = nullptr;
int g_nResult = 1;

}  // namespace

int GetAudioPluginMgr(IAudioPluginMgr** manager) {
    *manager = g_pManager;
    if (g_pManager != nullptr) g_pManager->AddRef();
    return g_nResult;
}

namespace {

class ManagerFailure : public testing::Test {
protected:
    ManagerFailure() { g_pManager = &m_manager; }

    void List(IAudioComponent* component, bool result = true) { m_manager.m_entries.push_back({component, result}); }

    // The rows of all pages, after checks that hold for every dialog.
    std::vector<std::string> FileNames() {
        GtkWidget* const dialog = AudioFormatSettingsDialog_New(nullptr);
        EXPECT_NE(dialog, nullptr);
        if (dialog == nullptr) return {};
        EXPECT_EQ(gtk_notebook_get_n_pages(GTK_NOTEBOOK(NotebookOf(dialog))), 3);
        std::vector<std::string> names;
        for (int page = 0; page < 3; ++page) {
            for (int row = 0; row < PageOf(dialog, page).Rows(); ++row) {
                names.push_back(PageOf(dialog, page).Text(row, 3));
            }
        }
        gtk_widget_destroy(dialog);
        for (const CDialogComponent* const component : {&m_first, &m_second, &m_third}) {
            EXPECT_EQ(component->m_nReferences, 1U);
        }
        return names;
    }

    using CNames = std::vector<std::string>;

    CGtkSession m_gtk;
    CDialogComponent m_first{"first", ACT_DECODER};
    CDialogComponent m_second{"second", ACT_ENCODER};
    CDialogComponent m_third{"third", ACT_DECODER};
    CRefusingManager m_manager;
};

TEST_F(ManagerFailure, NoneIsTheOrdinaryCase) {
    List(&m_first);
    List(&m_second);
    EXPECT_EQ(FileNames(), (CNames{"known.so", "known.so"}));
    EXPECT_EQ(m_manager.m_nCounts, 1);
    EXPECT_EQ(m_manager.References(), 0U);
}

TEST_F(ManagerFailure, ToBeHadLeavesThePagesEmpty) {
    List(&m_first);
    g_pManager = nullptr;
    EXPECT_EQ(FileNames(), CNames());
}

TEST_F(ManagerFailure, ToBeHadWithoutSayingSoLeavesThePagesEmpty) {
    List(&m_first);
    g_nResult = 0;
    EXPECT_EQ(FileNames(), CNames());
    EXPECT_EQ(m_manager.References(), 0U);
}

TEST_F(ManagerFailure, ToListComponentsLeavesThePagesEmpty) {
    List(&m_first);
    m_manager.m_eMissing = kList;
    EXPECT_EQ(FileNames(), CNames());
    EXPECT_EQ(m_manager.References(), 0U);
}

TEST_F(ManagerFailure, ToGiveAComponentEndsTheRows) {
    List(&m_first);
    List(&m_second, false);
    List(&m_third);
    EXPECT_EQ(FileNames(), (CNames{"known.so"}));
    EXPECT_EQ(m_manager.m_nAsked, 2);
    EXPECT_EQ(m_manager.References(), 0U);
}

TEST_F(ManagerFailure, ToGiveMoreThanNullEndsTheRows) {
    List(&m_first);
    List(nullptr);
    List(&m_third);
    EXPECT_EQ(FileNames(), (CNames{"known.so"}));
    EXPECT_EQ(m_manager.m_nAsked, 2);
}

TEST_F(ManagerFailure, ToTellPluginFilesLeavesTheirNamesOut) {
    List(&m_first);
    m_manager.m_eMissing = kInfo;
    EXPECT_EQ(FileNames(), (CNames{"(none)"}));
}

TEST_F(ManagerFailure, ToKnowAComponentLeavesItsFileNameOut) {
    List(&m_first);
    m_manager.m_bKnowsComponents = false;
    EXPECT_EQ(FileNames(), (CNames{"(none)"}));
}

}  // namespace
