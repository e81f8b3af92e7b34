// What the decoder and the encoder share: vendor and about box.
#pragma once

#include <sndfile.h>

#include "plugins/shared/AboutBox.h"
#include "plugins/shared/Gtk.h"

// TComponent is a component of the SDK with IComponentAbout among its faces. [any thread], and HasAbout and About
// [GTK thread]
template <typename TComponent>
class CCodecComponent : public TComponent {
public:
    const char* GetVendor() final { return kVendor; }
    bool HasAbout() final { return CanShowDialogs(); }
    void About() final {
        ShowAboutBox(AppWindowOf(this->Manager()), this->GetName(), AboutFormat(), sf_version_string());
    }

protected:
    using TComponent::TComponent;
    ~CCodecComponent() = default;

    // What the component does, translated, with a "%s" for the codec library.
    virtual const char* AboutFormat() const = 0;
};
