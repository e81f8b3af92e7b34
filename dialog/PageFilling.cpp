// The rows of the settings dialog: a snapshot of the manager's components.
#include "dialog/PageFilling.h"

#include <memory>

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/ComponentEnum.h"
#include "com/ComponentInfo.h"
#include "com/Configurable.h"
#include "com/InterfaceIds.h"
#include "pluginmgr/GetAudioPluginMgr.h"
#include "stream/GuardedCall.h"

namespace {

// Which page shows a type of component, and the word in its icon's name.
struct SPageOfType {
    EAudioComponentType m_eType;
    EDialogPage m_ePage;
    const char* m_pIconWord;
};

constexpr SPageOfType kPages[] = {{ACT_DECODER, DP_DECODERS, "decoder"},
                                  {ACT_ENCODER, DP_ENCODERS, "encoder"},
                                  {ACT_CONVERTOR, DP_CONVERTORS, "convertor"}};

struct SUnrefObject {
    void operator()(GdkPixbuf* object) const { g_object_unref(object); }
};
using CPixbuf = std::unique_ptr<GdkPixbuf, SUnrefObject>;

struct SFreeText {
    void operator()(gchar* text) const { g_free(text); }
};

const SPageOfType* FindPage(EAudioComponentType type) {
    for (const SPageOfType& page : kPages) {
        if (page.m_eType == type) return &page;
    }
    return nullptr;
}

CPixbuf LoadIcon(IAudioPluginMgr& manager, const char* word) {
    const char* const directory = manager.GetImagesDirectory();
    const bool isRoot = directory[0] == '/' && directory[1] == '\0';
    const std::unique_ptr<gchar, SFreeText> path(
        g_strdup_printf("%s/apm-%s_icon-16.png", isRoot ? "" : directory, word));
    GError* error = nullptr;
    CPixbuf icon(gdk_pixbuf_new_from_file(path.get(), &error));
    if (error != nullptr) g_error_free(error);
    return icon;
}

// The plug-in's file name, null when the manager does not know the component.
const char* FindFileName(IAudioPluginMgr& manager, IAudioComponent& component, COMPONENT_INFO& info) {
    const auto internal = CComPtr<IAudioPluginMgrInternal>::Query(&manager, IID_IAudioPluginMgrInternal);
    const bool found = internal && internal->GetComponentInfo(&component, &info);
    return found ? info.m_strLibraryFileName.GetText() : nullptr;
}

// Asks the component for everything before the row exists, so that one which throws leaves no half row.
void AppendRow(GtkTreeView* view, IAudioPluginMgr& manager, IAudioComponent& component, const char* iconWord) {
    const CPixbuf icon = LoadIcon(manager, iconWord);
    const auto about = CComPtr<IComponentAbout>::Query(&component, IID_IComponentAbout);
    const gboolean hasAbout = about && about->HasAbout() ? TRUE : FALSE;
    const char* const vendor = about ? about->GetVendor() : nullptr;
    const auto configurable = CComPtr<IConfigurable>::Query(&component, IID_IConfigurable);
    COMPONENT_INFO info;
    const char* const fileName = FindFileName(manager, component, info);
    const char* const name = component.GetName();

    auto* const store = GTK_LIST_STORE(gtk_tree_view_get_model(view));
    GtkTreeIter row;
    gtk_list_store_append(store, &row);
    gtk_list_store_set(store, &row, LC_ICON, icon.get(), LC_NAME, name, LC_VENDOR, vendor, LC_FILE_NAME, fileName,
                       LC_CONFIGURABLE, configurable ? TRUE : FALSE, LC_HAS_ABOUT, hasAbout, LC_COMPONENT, &component,
                       -1);
}

// Components that the dialog has no page for are passed over.
void AddComponent(const SettingsDialogContext& context, IAudioComponent& component) {
    const SPageOfType* const page = FindPage(component.GetType());
    if (page == nullptr) return;
    AppendRow(context.pages[page->m_ePage].pTreeView, *context.pMgr, component, page->m_pIconWord);
}

}  // namespace

void FillPages(SettingsDialogContext& context) {
    if (GetAudioPluginMgr(&context.pMgr) == 0 || context.pMgr == nullptr) return;
    const auto components = CComPtr<IComponentEnum>::Query(context.pMgr, IID_IComponentEnum);
    const int count = components ? components->GetCount() : 0;
    for (int i = 0; i < count; ++i) {
        CComPtr<IAudioComponent> component;
        if (!components->GetComponent(i, component.Out()) || !component) return;
        // A component that throws has no row; the others have theirs.
        CallGuarded([&] { return AddComponent(context, *component), true; });
    }
}
