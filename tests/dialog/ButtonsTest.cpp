// Selecting rows and pressing buttons.
#include "tests/dialog/DialogFixture.h"

namespace {

class Buttons : public DialogTest {
protected:
    // The manager's window as a component finds it while its own dialog is open.
    void NoteWindow(CDialogComponent& component) {
        component.m_during = [this] { m_pSeen = m_manager->GetAppWindow(); };
    }

    static void Click(GtkWidget* button) { gtk_button_clicked(GTK_BUTTON(button)); }

    GtkWindow* m_pSeen = nullptr;
};

TEST_F(Buttons, FollowTheSelectedRow) {
    Add("both", ACT_DECODER).m_bConfigurable = true;
    m_components[0]->m_bOffersAbout = true;
    m_components[0]->m_bHasAbout = true;
    Add("configurable", ACT_DECODER).m_bConfigurable = true;
    Add("about", ACT_DECODER).m_bOffersAbout = true;
    m_components[2]->m_bHasAbout = true;
    Add("neither", ACT_DECODER);
    Build();
    const SPageUnderTest page = Page(0);
    const struct {
        bool m_bConfigure;
        bool m_bAbout;
    } kExpected[] = {{true, true}, {true, false}, {false, true}, {false, false}};
    for (int row = 0; row < 4; ++row) {
        page.Select(row);
        EXPECT_EQ(page.CanConfigure(), kExpected[row].m_bConfigure) << row;
        EXPECT_EQ(page.CanAbout(), kExpected[row].m_bAbout) << row;
    }
    page.Select(0);
    page.Unselect();
    EXPECT_FALSE(page.CanConfigure());
    EXPECT_FALSE(page.CanAbout());
}

TEST_F(Buttons, OfOtherPagesStayAsTheyAre) {
    for (const EAudioComponentType type : {ACT_DECODER, ACT_ENCODER, ACT_CONVERTOR}) {
        Add("component", type).m_bConfigurable = true;
    }
    Build();
    for (int selected = 0; selected < 3; ++selected) {
        Page(selected).Select(0);
        for (int page = 0; page < 3; ++page) EXPECT_EQ(Page(page).CanConfigure(), page <= selected) << page;
    }
}

TEST_F(Buttons, ConfigureTheSelectedComponentWithTheDialogAsItsWindow) {
    Add("other", ACT_ENCODER).m_bConfigurable = true;
    CDialogComponent& component = Add("encoder", ACT_ENCODER);
    component.m_bConfigurable = true;
    NoteWindow(component);
    Build();
    Page(1).Select(1);
    Click(Page(1).m_pConfigure);
    EXPECT_EQ(component.m_nConfigured, 1);
    EXPECT_EQ(m_components[0]->m_nConfigured, 0);
    EXPECT_EQ(m_pSeen, GTK_WINDOW(m_pDialog));
    EXPECT_EQ(m_manager->GetAppWindow(), nullptr);
    EXPECT_EQ(component.m_nReferences, 1U);
}

TEST_F(Buttons, ShowTheAboutBoxWithTheDialogAsItsWindow) {
    CDialogComponent& component = Add("convertor", ACT_CONVERTOR);
    component.m_bOffersAbout = true;
    component.m_bHasAbout = true;
    NoteWindow(component);
    Build();
    Page(2).Select(0);
    Click(Page(2).m_pAbout);
    EXPECT_EQ(component.m_nAbout, 1);
    EXPECT_EQ(m_pSeen, GTK_WINDOW(m_pDialog));
    EXPECT_EQ(component.m_nReferences, 1U);
}

TEST_F(Buttons, HoldTheComponentDuringItsDialogs) {
    CDialogComponent& component = Add("decoder", ACT_DECODER);
    component.m_bConfigurable = true;
    component.m_bOffersAbout = true;
    component.m_bHasAbout = true;
    component.m_during = [&component] { EXPECT_EQ(component.m_nReferences, 3U); };  // and the interface that is called
    Build();
    Page(0).Select(0);
    Click(Page(0).m_pConfigure);
    Click(Page(0).m_pAbout);
    EXPECT_EQ(component.m_nConfigured + component.m_nAbout, 2);
    EXPECT_EQ(component.m_nReferences, 1U);
}

TEST_F(Buttons, LeaveNoWindowWhateverTheHostHadSet) {
    CDialogComponent& component = Add("decoder", ACT_DECODER);
    component.m_bOffersAbout = true;
    component.m_bHasAbout = true;
    component.m_bConfigurable = true;
    GtkWidget* const own = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    Build();
    for (GtkWidget* const button : {Page(0).m_pConfigure, Page(0).m_pAbout}) {
        m_manager->SetAppWindow(GTK_WINDOW(own));
        EXPECT_EQ(m_manager->GetAppWindow(), GTK_WINDOW(own));
        Page(0).Select(0);
        Click(button);
        EXPECT_EQ(m_manager->GetAppWindow(), nullptr);
    }
    gtk_widget_destroy(own);
}

TEST_F(Buttons, DoNothingWithoutASelectedRow) {
    CDialogComponent& component = Add("decoder", ACT_DECODER);
    component.m_bConfigurable = true;
    component.m_bOffersAbout = true;
    component.m_bHasAbout = true;
    GtkWidget* const own = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    m_manager->SetAppWindow(GTK_WINDOW(own));
    Build();
    Page(0).Unselect();
    for (GtkWidget* const button : {Page(0).m_pConfigure, Page(0).m_pAbout}) {
        gtk_widget_set_sensitive(button, TRUE);
        Click(button);
    }
    EXPECT_EQ(component.m_nConfigured + component.m_nAbout, 0);
    EXPECT_EQ(m_manager->GetAppWindow(), GTK_WINDOW(own));
    m_manager->SetAppWindow(nullptr);
    gtk_widget_destroy(own);
}

TEST_F(Buttons, SetAndResetTheWindowForAComponentWithoutTheInterfaceToo) {
    Add("decoder", ACT_DECODER);
    GtkWidget* const own = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    Build();
    for (GtkWidget* const button : {Page(0).m_pConfigure, Page(0).m_pAbout}) {
        m_manager->SetAppWindow(GTK_WINDOW(own));
        Page(0).Select(0);
        gtk_widget_set_sensitive(button, TRUE);
        Click(button);
        EXPECT_EQ(m_manager->GetAppWindow(), nullptr);
    }
    gtk_widget_destroy(own);
}

TEST_F(Buttons, AskForTheAboutBoxAgainWhenTheyArePressed) {
    CDialogComponent& component = Add("decoder", ACT_DECODER);
    component.m_bOffersAbout = true;
    component.m_bHasAbout = true;
    Build();
    Page(0).Select(0);
    component.m_bHasAbout = false;
    Click(Page(0).m_pAbout);
    EXPECT_EQ(component.m_nAbout, 0);
}

TEST_F(Buttons, KeepAComponentsExceptionFromTheToolkit) {
    CDialogComponent& component = Add("decoder", ACT_DECODER);
    component.m_bConfigurable = true;
    component.m_during = [] { throw std::runtime_error("no"); };
    Build();
    Page(0).Select(0);
    Click(Page(0).m_pConfigure);
    EXPECT_EQ(component.m_nConfigured, 1);
    EXPECT_EQ(m_manager->GetAppWindow(), nullptr);
    EXPECT_EQ(component.m_nReferences, 1U);
}

}  // namespace
