// The plug-in's entry symbols.
#include "plugins/soxr/ConvertorComponent.h"
#include "plugins/soxr/LiveConvertors.h"
#include "portable/Export.h"

namespace {

CConvertorComponent g_component;

}  // namespace

extern "C" {

// Stores the component with one reference that the caller owns. [host set-up]
KELO_EXPORT bool KELO_PLUGIN_GetPrimaryAudioObject(IAudioComponent** component) {
    if (component == nullptr) return false;
    g_component.AddRef();
    *component = &g_component;
    return true;
}

// True while no convertor of this plug-in is alive. [any thread]
KELO_EXPORT bool KELO_PLUGIN_ReadyToFinish() { return !CLiveConvertor::AnyAlive(); }
}
