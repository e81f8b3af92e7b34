// The widgets of the settings dialog, step by step.
#include <dlfcn.h>

#include "tests/dialog/DialogFixture.h"

namespace {

// What the dialog said of its separator; the toolkit has none by default, so that only the call can be seen.
std::vector<gboolean>& SeparatorCalls() {
    static std::vector<gboolean> calls;
    return calls;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void gtk_dialog_set_has_separator(GtkDialog* dialog,
                                                                                    gboolean setting) {
    SeparatorCalls().push_back(setting);
    using CSet = void(GtkDialog*, gboolean);
    reinterpret_cast<CSet*>(dlsym(RTLD_NEXT, "gtk_dialog_set_has_separator"))(dialog, setting);
}

namespace {

struct SPacking {
    gboolean m_bExpand;
    gboolean m_bFill;
    guint m_nPadding;
    GtkPackType m_eType;

    bool operator==(const SPacking& other) const {
        return m_bExpand == other.m_bExpand && m_bFill == other.m_bFill && m_nPadding == other.m_nPadding &&
               m_eType == other.m_eType;
    }
};

SPacking PackingOf(GtkWidget* box, GtkWidget* child) {
    SPacking packing{};
    gtk_box_query_child_packing(GTK_BOX(box), child, &packing.m_bExpand, &packing.m_bFill, &packing.m_nPadding,
                                &packing.m_eType);
    return packing;
}

const SPacking kFilling{TRUE, TRUE, 0, GTK_PACK_START};
const SPacking kNarrow{FALSE, TRUE, 0, GTK_PACK_START};

class Building : public DialogTest {
protected:
    Building() { Build(); }

    GtkTreeViewColumn* Column(int page, int number) const {
        return gtk_tree_view_get_column(Page(page).m_pView, number);
    }

    static GtkCellRenderer* Renderer(GtkTreeViewColumn* column, guint number) {
        GList* const renderers = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(column));
        auto* const renderer = static_cast<GtkCellRenderer*>(g_list_nth_data(renderers, number));
        g_list_free(renderers);
        return renderer;
    }
};

constexpr int kPages = 3;

TEST_F(Building, MakesADialogWithoutSeparator) {
    ASSERT_TRUE(GTK_IS_DIALOG(m_pDialog));
    EXPECT_FALSE(gtk_dialog_get_has_separator(GTK_DIALOG(m_pDialog)));
    EXPECT_EQ(SeparatorCalls(), std::vector<gboolean>{FALSE});
    EXPECT_FALSE(gtk_widget_get_visible(m_pDialog)) << "the caller shows it";
}

TEST_F(Building, TitlesAndSizesTheDialog) {
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(m_pDialog)), "Audio Format Settings");
    int width = 0;
    int height = 0;
    gtk_window_get_default_size(GTK_WINDOW(m_pDialog), &width, &height);
    EXPECT_EQ(width, 600);
    EXPECT_EQ(height, 350);
}

TEST_F(Building, FillsTheDialogWithANotebook) {
    ASSERT_TRUE(GTK_IS_NOTEBOOK(Notebook()));
    EXPECT_TRUE(gtk_widget_get_visible(Notebook()));
    EXPECT_EQ(PackingOf(gtk_dialog_get_content_area(GTK_DIALOG(m_pDialog)), Notebook()), kFilling);
}

TEST_F(Building, LabelsThreePagesInOrder) {
    auto* const notebook = GTK_NOTEBOOK(Notebook());
    ASSERT_EQ(gtk_notebook_get_n_pages(notebook), kPages);
    const char* const labels[] = {"Decoders", "Encoders", "Convertors"};
    for (int page = 0; page < kPages; ++page) {
        EXPECT_STREQ(gtk_notebook_get_tab_label_text(notebook, Page(page).m_pBox), labels[page]);
    }
}

TEST_F(Building, StacksAListAndAButtonBoxOnEachPage) {
    for (int number = 0; number < kPages; ++number) {
        const SPageUnderTest page = Page(number);
        ASSERT_TRUE(GTK_IS_VBOX(page.m_pBox));
        EXPECT_FALSE(gtk_box_get_homogeneous(GTK_BOX(page.m_pBox)));
        EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(page.m_pBox)), 5);
        EXPECT_EQ(gtk_container_get_border_width(GTK_CONTAINER(page.m_pBox)), 5U);
        EXPECT_TRUE(gtk_widget_get_visible(page.m_pBox));
        EXPECT_EQ(ChildCount(page.m_pBox), 2U);

        ASSERT_TRUE(GTK_IS_SCROLLED_WINDOW(page.m_pScroller));
        GtkPolicyType horizontal = GTK_POLICY_NEVER;
        GtkPolicyType vertical = GTK_POLICY_NEVER;
        gtk_scrolled_window_get_policy(GTK_SCROLLED_WINDOW(page.m_pScroller), &horizontal, &vertical);
        EXPECT_EQ(horizontal, GTK_POLICY_AUTOMATIC);
        EXPECT_EQ(vertical, GTK_POLICY_AUTOMATIC);
        EXPECT_EQ(PackingOf(page.m_pBox, page.m_pScroller), kFilling);
        EXPECT_TRUE(gtk_widget_get_visible(page.m_pScroller));
        EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(page.m_pView)));

        ASSERT_TRUE(GTK_IS_HBUTTON_BOX(page.m_pButtonBox));
        EXPECT_EQ(gtk_button_box_get_layout(GTK_BUTTON_BOX(page.m_pButtonBox)), GTK_BUTTONBOX_START);
        EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(page.m_pButtonBox)), 5);
        EXPECT_EQ(PackingOf(page.m_pBox, page.m_pButtonBox), kNarrow);
        EXPECT_TRUE(gtk_widget_get_visible(page.m_pButtonBox));
    }
}

TEST_F(Building, GivesEachPageAStoreOfSevenColumnsThatItsViewOwns) {
    const GType types[] = {GDK_TYPE_PIXBUF, G_TYPE_STRING,  G_TYPE_STRING, G_TYPE_STRING,
                           G_TYPE_BOOLEAN,  G_TYPE_BOOLEAN, G_TYPE_POINTER};
    for (int number = 0; number < kPages; ++number) {
        GtkTreeModel* const model = Page(number).Model();
        ASSERT_TRUE(GTK_IS_LIST_STORE(model));
        ASSERT_EQ(gtk_tree_model_get_n_columns(model), 7);
        for (int column = 0; column < 7; ++column) {
            EXPECT_EQ(gtk_tree_model_get_column_type(model, column), types[column]) << column;
        }
        EXPECT_EQ(G_OBJECT(model)->ref_count, 1U);
    }
}

TEST_F(Building, ShowsNameVendorAndFileNameInExpandingColumns) {
    const char* const titles[] = {"Plug-in Name", "Vendor", "File Name"};
    for (int page = 0; page < kPages; ++page) {
        for (int number = 0; number < 3; ++number) {
            EXPECT_STREQ(gtk_tree_view_column_get_title(Column(page, number)), titles[number]);
            EXPECT_TRUE(gtk_tree_view_column_get_expand(Column(page, number)));
        }
        EXPECT_EQ(Column(page, 3), nullptr);
    }
}

TEST_F(Building, PutsAnIconBeforeTheName) {
    GtkTreeViewColumn* const name = Column(0, 0);
    GtkCellRenderer* const icon = Renderer(name, 0);
    GtkCellRenderer* const text = Renderer(name, 1);
    ASSERT_TRUE(GTK_IS_CELL_RENDERER_PIXBUF(icon));
    ASSERT_TRUE(GTK_IS_CELL_RENDERER_TEXT(text));
    guint padding = 0;
    g_object_get(icon, "xpad", &padding, nullptr);
    EXPECT_EQ(padding, 2U);
    ASSERT_TRUE(GTK_IS_CELL_RENDERER_TEXT(Renderer(Column(0, 1), 0)));
    ASSERT_TRUE(GTK_IS_CELL_RENDERER_TEXT(Renderer(Column(0, 2), 0)));
    EXPECT_EQ(Renderer(Column(0, 1), 1), nullptr);
}

// Packing has no getter; a renderer that expands gets a share of what the column has to spare.
TEST_F(Building, GivesSpareWidthToTheTextAndNotToTheIcon) {
    Add("Decoder", ACT_DECODER);
    Destroy();
    Build();
    gtk_widget_show(m_pDialog);
    while (gtk_events_pending() != FALSE) gtk_main_iteration();
    GtkTreeViewColumn* const column = Column(0, 0);
    GtkTreeIter row;
    gtk_tree_model_get_iter_first(Page(0).Model(), &row);
    gtk_tree_view_column_cell_set_cell_data(column, Page(0).Model(), &row, FALSE, FALSE);
    int begin[2] = {};
    int width[2] = {};
    for (const guint number : {0U, 1U}) {
        ASSERT_TRUE(
            gtk_tree_view_column_cell_get_position(column, Renderer(column, number), &begin[number], &width[number]));
    }
    EXPECT_EQ(begin[0], 0) << "the icon is packed first";
    EXPECT_LT(width[0], 40);
    EXPECT_GT(width[1], gtk_tree_view_column_get_width(column) - 60);
}

TEST_F(Building, LetsTheIconComeFromTheFirstColumn) {
    Add("Decoder", ACT_DECODER);
    Destroy();
    Build();
    GtkTreeIter row;
    gtk_tree_model_get_iter_first(Page(0).Model(), &row);
    GdkPixbuf* const icon = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, 16, 16);
    gtk_list_store_set(GTK_LIST_STORE(Page(0).Model()), &row, 0, icon, -1);
    gtk_tree_view_column_cell_set_cell_data(Column(0, 0), Page(0).Model(), &row, FALSE, FALSE);
    GdkPixbuf* shown = nullptr;
    g_object_get(Renderer(Column(0, 0), 0), "pixbuf", &shown, nullptr);
    EXPECT_EQ(shown, icon);
    g_object_unref(shown);
    g_object_unref(icon);
}

TEST_F(Building, LetsEachColumnReadItsOwnValue) {
    Add("Decoder", ACT_DECODER, "file.so").m_bOffersAbout = true;
    Destroy();
    Build();
    GtkTreeIter row;
    gtk_tree_model_get_iter_first(Page(0).Model(), &row);
    const char* const expected[] = {"Decoder", "Vendor", "file.so"};
    for (int number = 0; number < 3; ++number) {
        gtk_tree_view_column_cell_set_cell_data(Column(0, number), Page(0).Model(), &row, FALSE, FALSE);
        gchar* text = nullptr;
        g_object_get(Renderer(Column(0, number), number == 0 ? 1 : 0), "text", &text, nullptr);
        EXPECT_STREQ(text, expected[number]);
        g_free(text);
    }
}

TEST_F(Building, MakesTwoButtonsPerPageInsensitiveAndTiedToTheirView) {
    for (int number = 0; number < kPages; ++number) {
        const SPageUnderTest page = Page(number);
        EXPECT_EQ(ChildCount(page.m_pButtonBox), 2U);
        EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(page.m_pConfigure)), "Configure...");
        EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(page.m_pAbout)), "About...");
        for (GtkWidget* const button : {page.m_pConfigure, page.m_pAbout}) {
            EXPECT_TRUE(gtk_button_get_use_underline(GTK_BUTTON(button)));
            EXPECT_EQ(PackingOf(page.m_pButtonBox, button), kNarrow);
            EXPECT_FALSE(gtk_widget_get_sensitive(button));
            EXPECT_TRUE(gtk_widget_get_visible(button));
            EXPECT_EQ(g_object_get_data(G_OBJECT(button), "kelo_tree_view"), page.m_pView);
        }
    }
}

TEST_F(Building, EndsWithACloseButton) {
    GtkWidget* const close = CloseButton();
    EXPECT_EQ(ChildCount(gtk_dialog_get_action_area(GTK_DIALOG(m_pDialog))), 1U);
    EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(close)), "_Close");
    EXPECT_TRUE(gtk_button_get_use_underline(GTK_BUTTON(close)));
    EXPECT_EQ(gtk_dialog_get_response_for_widget(GTK_DIALOG(m_pDialog), close), -5);
    EXPECT_TRUE(gtk_widget_get_visible(close));
}

TEST_F(Building, WidensEveryButtonByFiftyPixels) {
    std::vector<GtkWidget*> buttons = {CloseButton()};
    for (int page = 0; page < kPages; ++page) {
        buttons.push_back(Page(page).m_pConfigure);
        buttons.push_back(Page(page).m_pAbout);
    }
    for (GtkWidget* const button : buttons) {
        GtkRequisition natural{};
        GTK_WIDGET_GET_CLASS(button)->size_request(button, &natural);
        GtkRequisition widened{};
        gtk_widget_size_request(button, &widened);
        EXPECT_EQ(widened.width, natural.width + 50) << gtk_button_get_label(GTK_BUTTON(button));
        EXPECT_EQ(widened.height, natural.height) << gtk_button_get_label(GTK_BUTTON(button));
    }
}

TEST_F(Building, LeavesThreeEmptyPagesWithoutComponents) {
    for (int page = 0; page < kPages; ++page) {
        EXPECT_EQ(Page(page).Rows(), 0);
        EXPECT_FALSE(Page(page).CanConfigure());
        EXPECT_FALSE(Page(page).CanAbout());
    }
}

TEST_F(Building, IsTransientForAParentThatIsAWindow) {
    EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(m_pDialog)), nullptr);
    Destroy();
    GtkWidget* const parent = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    Build(GTK_WINDOW(parent));
    EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(m_pDialog)), GTK_WINDOW(parent));
    EXPECT_TRUE(gtk_window_get_destroy_with_parent(GTK_WINDOW(m_pDialog)));
    gtk_widget_destroy(parent);
    EXPECT_EQ(m_pDialog, nullptr);
}

TEST_F(Building, IgnoresAParentThatIsNoWindow) {
    Destroy();
    GtkWidget* const label = g_object_ref_sink(gtk_label_new("label"));
    Build(reinterpret_cast<GtkWindow*>(label));
    ASSERT_NE(m_pDialog, nullptr);
    EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(m_pDialog)), nullptr);
    EXPECT_FALSE(gtk_window_get_destroy_with_parent(GTK_WINDOW(m_pDialog)));
    g_object_unref(label);
}

TEST_F(Building, HoldsTheManagerUntilTheDialogIsDestroyed) {
    EXPECT_EQ(m_manager->AddRef(), 3U);
    EXPECT_EQ(m_manager->Release(), 2U);
    Destroy();
    EXPECT_EQ(m_manager->AddRef(), 2U);
    EXPECT_EQ(m_manager->Release(), 1U);
}

}  // namespace
