// What the decoder and the encoder share: vendor, about box and the manager for its parent window.
#pragma once

#include <sndfile.h>

#include "com/Configurable.h"
#include "plugins/shared/AboutBox.h"
#include "plugins/shared/Gtk.h"
#include "plugins/sndfile/Component.h"

// [any thread], and HasAbout and About [GTK thread]
template <typename... TFaces>
class CCodecComponent : public CComponent<TFaces..., IComponentAbout> {
public:
    bool Initialize(IAudioPluginMgr* manager, IStatus** /*status*/) override {
        m_pManager = manager;
        return true;
    }
    void Terminate() override { m_pManager = nullptr; }

    const char* GetVendor() override { return kVendor; }
    bool HasAbout() override { return CanShowDialogs(); }
    void About() override {
        ShowAboutBox(AppWindowOf(m_pManager), this->GetName(), AboutFormat(), sf_version_string());
    }

protected:
    ~CCodecComponent() = default;

    // What the component does, translated, with a "%s" for the codec library.
    virtual const char* AboutFormat() const = 0;

private:
    IAudioPluginMgr* m_pManager = nullptr;  // borrowed until Terminate
};
