// What the pages list.
#include "tests/dialog/DialogFixture.h"
#include "tests/support/ScratchDirectory.h"

namespace {

enum : int { kIcon, kName, kVendor, kFileName, kConfigurable, kHasAbout, kComponent };

// A 16-pixel icon file of one colour.
void WriteIcon(const std::string& path) {
    GdkPixbuf* const icon = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, 16, 16);
    gdk_pixbuf_fill(icon, 0xff0000ff);
    ASSERT_TRUE(gdk_pixbuf_save(icon, path.c_str(), "png", nullptr, nullptr));
    g_object_unref(icon);
}

class Rows : public DialogTest {
protected:
    bool HasIcon(int page, int row) const {
        GtkTreeIter iter;
        gtk_tree_model_iter_nth_child(Page(page).Model(), &iter, nullptr, row);
        GdkPixbuf* icon = nullptr;
        gtk_tree_model_get(Page(page).Model(), &iter, kIcon, &icon, -1);
        if (icon == nullptr) return false;
        EXPECT_EQ(gdk_pixbuf_get_width(icon), 16);
        EXPECT_EQ(G_OBJECT(icon)->ref_count, 2U) << "the store's and this test's";
        g_object_unref(icon);
        return true;
    }
};

TEST_F(Rows, GoToThePageOfTheirTypeInRegistryOrder) {
    Add("first decoder", ACT_DECODER);
    Add("convertor", ACT_CONVERTOR);
    Add("encoder", ACT_ENCODER);
    Add("second decoder", ACT_DECODER);
    Build();
    ASSERT_EQ(Page(0).Rows(), 2);
    EXPECT_EQ(Page(0).Text(0, kName), "first decoder");
    EXPECT_EQ(Page(0).Text(1, kName), "second decoder");
    ASSERT_EQ(Page(1).Rows(), 1);
    EXPECT_EQ(Page(1).Text(0, kName), "encoder");
    ASSERT_EQ(Page(2).Rows(), 1);
    EXPECT_EQ(Page(2).Text(0, kName), "convertor");
}

TEST_F(Rows, LeaveOtherTypesOut) {
    Add("handler", ACT_URL_HANDLER);
    Add("unknown", static_cast<EAudioComponentType>(7));
    Add("decoder", ACT_DECODER);
    Build();
    EXPECT_EQ(Page(0).Rows() + Page(1).Rows() + Page(2).Rows(), 1);
}

TEST_F(Rows, TellVendorAndAboutOfAComponentThatOffersThem) {
    CDialogComponent& with = Add("with", ACT_DECODER);
    with.m_bOffersAbout = true;
    with.m_bHasAbout = true;
    with.m_pVendor = "A Vendor";
    CDialogComponent& quiet = Add("quiet", ACT_DECODER);
    quiet.m_bOffersAbout = true;
    Add("without", ACT_DECODER);
    Build();
    EXPECT_EQ(Page(0).Text(0, kVendor), "A Vendor");
    EXPECT_TRUE(Page(0).Flag(0, kHasAbout));
    EXPECT_EQ(Page(0).Text(1, kVendor), "Vendor");
    EXPECT_FALSE(Page(0).Flag(1, kHasAbout));
    EXPECT_EQ(Page(0).Text(2, kVendor), "(none)");
    EXPECT_FALSE(Page(0).Flag(2, kHasAbout));
}

TEST_F(Rows, TellWhoIsConfigurable) {
    Add("with", ACT_DECODER).m_bConfigurable = true;
    Add("without", ACT_DECODER);
    Build();
    EXPECT_TRUE(Page(0).Flag(0, kConfigurable));
    EXPECT_FALSE(Page(0).Flag(1, kConfigurable));
}

TEST_F(Rows, TellThePluginFile) {
    Add("decoder", ACT_DECODER, "dec.so");
    Build();
    EXPECT_EQ(Page(0).Text(0, kFileName), "dec.so");
}

TEST_F(Rows, KeepTheComponentWithoutAReference) {
    CDialogComponent& component = Add("decoder", ACT_DECODER);
    component.m_bOffersAbout = true;
    component.m_bConfigurable = true;
    Build();
    EXPECT_EQ(component.m_nReferences, 1U);
    GtkTreeIter row;
    gtk_tree_model_get_iter_first(Page(0).Model(), &row);
    gpointer stored = nullptr;
    gtk_tree_model_get(Page(0).Model(), &row, kComponent, &stored, -1);
    EXPECT_EQ(stored, static_cast<IAudioComponent*>(&component));
}

TEST_F(Rows, ShowTheIconOfTheirKindFromTheImagesDirectory) {
    const CScratchDirectory images;
    WriteIcon(images / "apm-decoder_icon-16.png");
    WriteIcon(images / "apm-encoder_icon-16.png");
    WriteIcon(images / "apm-convertor_icon-16.png");
    m_manager->SetImagesDirectory(images.Path().c_str());
    Add("decoder", ACT_DECODER);
    Add("encoder", ACT_ENCODER);
    Add("convertor", ACT_CONVERTOR);
    Build();
    for (int page = 0; page < 3; ++page) EXPECT_TRUE(HasIcon(page, 0)) << page;
    std::filesystem::remove(images / "apm-encoder_icon-16.png");
    Destroy();
    Build();
    EXPECT_TRUE(HasIcon(0, 0));
    EXPECT_FALSE(HasIcon(1, 0)) << "a missing file is no error";
}

TEST_F(Rows, HaveNoIconWhereTheFileIsNoImage) {
    const CScratchDirectory images;
    images.Write("apm-decoder_icon-16.png", "not an image");
    m_manager->SetImagesDirectory(images.Path().c_str());
    Add("decoder", ACT_DECODER);
    Build();
    ASSERT_EQ(Page(0).Rows(), 1);
    EXPECT_FALSE(HasIcon(0, 0));
}

TEST_F(Rows, AreASnapshot) {
    Add("early", ACT_DECODER);
    Build();
    Add("late", ACT_DECODER);
    EXPECT_EQ(Page(0).Rows(), 1);
}

TEST_F(Rows, OfOthersAreThereBesideAComponentThatThrows) {
    class CThrowing : public CDialogComponent {
    public:
        CThrowing() : CDialogComponent("throwing", ACT_DECODER) {}
        EAudioComponentType GetType() override {
            if (m_bThrows) throw 1;
            return ACT_DECODER;
        }
        bool m_bThrows = false;
    };
    Add("before", ACT_DECODER);
    CThrowing throwing;
    m_manager->AddComponent(&throwing, "x.so", 0);
    throwing.m_bThrows = true;
    Add("behind", ACT_DECODER);
    ASSERT_NE(Build(), nullptr);
    ASSERT_EQ(Page(0).Rows(), 2);
    EXPECT_EQ(Page(0).Text(0, kName), "before");
    EXPECT_EQ(Page(0).Text(1, kName), "behind");
    EXPECT_EQ(throwing.m_nReferences, 1U);
}

}  // namespace
