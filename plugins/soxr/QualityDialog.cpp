// The dialog in which a person chooses the resampling quality.
#include "plugins/soxr/QualityDialog.h"

#include <libintl.h>

#include <array>
#include <exception>

#include "plugins/shared/AboutBox.h"
#include "plugins/shared/Gtk.h"

namespace {

constexpr int kModal = 1;            // GTK_DIALOG_MODAL
constexpr int kResponseOk = -5;      // GTK_RESPONSE_OK
constexpr int kResponseCancel = -6;  // GTK_RESPONSE_CANCEL
constexpr int kMargin = 12;          // pixels
constexpr int kSpacing = 6;

// One for each quality, in the order of EResamplingQuality.
using CRadioButtons = std::array<_GtkWidget*, 3>;

_GtkWidget* MakeDialog() {
    const auto make =
        GtkFunction<_GtkWidget*(const char*, _GtkWindow*, int, const char*, ...)>("gtk_dialog_new_with_buttons");
    _GtkWidget* const dialog = make(dgettext(kTextDomain, "Resampling Quality"), nullptr, kModal, "gtk-cancel",
                                    kResponseCancel, "gtk-ok", kResponseOk, static_cast<char*>(nullptr));
    GtkFunction<void(_GtkWidget*, int)>("gtk_dialog_set_default_response")(dialog, kResponseOk);
    GtkFunction<void(_GtkWidget*, int)>("gtk_window_set_resizable")(dialog, 0);
    return dialog;
}

CRadioButtons AddRadioButtons(_GtkWidget* dialog) {
    _GtkWidget* const box = GtkFunction<_GtkWidget*(int, int)>("gtk_vbox_new")(0, kSpacing);
    GtkFunction<void(_GtkWidget*, unsigned)>("gtk_container_set_border_width")(box, kMargin);
    const auto makeButton =
        GtkFunction<_GtkWidget*(_GtkWidget*, const char*)>("gtk_radio_button_new_with_mnemonic_from_widget");
    const auto add = GtkFunction<void(_GtkWidget*, _GtkWidget*)>("gtk_container_add");
    CRadioButtons buttons{};
    buttons[0] = makeButton(nullptr, dgettext(kTextDomain, "_Quick"));
    buttons[1] = makeButton(buttons[0], dgettext(kTextDomain, "_High"));
    buttons[2] = makeButton(buttons[0], dgettext(kTextDomain, "_Very high"));
    for (_GtkWidget* const button : buttons) add(box, button);
    add(GtkFunction<_GtkWidget*(_GtkWidget*)>("gtk_dialog_get_content_area")(dialog), box);
    GtkFunction<void(_GtkWidget*)>("gtk_widget_show_all")(box);
    return buttons;
}

EResamplingQuality ChosenQuality(const CRadioButtons& buttons) {
    const auto isActive = GtkFunction<int(_GtkWidget*)>("gtk_toggle_button_get_active");
    if (isActive(buttons[0]) != 0) return EResamplingQuality::Quick;
    return isActive(buttons[1]) != 0 ? EResamplingQuality::High : EResamplingQuality::VeryHigh;
}

}  // namespace

bool AskResamplingQuality(_GtkWindow* parent, EResamplingQuality& quality) noexcept {
    if (!CanShowDialogs()) return false;
    try {
        CGtkDialog dialog(MakeDialog(), parent);
        const CRadioButtons buttons = AddRadioButtons(dialog.Get());
        const auto setActive = GtkFunction<void(_GtkWidget*, int)>("gtk_toggle_button_set_active");
        setActive(buttons[static_cast<std::size_t>(quality)], 1);
        if (!dialog.Run()) return false;
        quality = ChosenQuality(buttons);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}
