// The entry symbols of a plug-in.
#pragma once

#include "com/AudioComponent.h"
#include "portable/Export.h"
#include "sdk/Guard.h"
#include "sdk/LiveObject.h"

// Stores the plug-in's one TComponent with one reference that the caller owns. [host set-up]
template <typename TComponent>
bool GivePrimaryComponent(IAudioComponent** component) noexcept {
    return Guarded(nullptr, "", [&] {
        if (component == nullptr) return false;
        static TComponent primary;
        primary.AddRef();
        *component = &primary;
        return true;
    });
}

// Once in a plug-in, with its component or collection of components: defines what the manager looks for. The plug-in is
// ready to finish while none of its streams, targets and convertors is alive.
#define KELO_PLUGIN(TComponent)                                                                  \
    extern "C" KELO_EXPORT bool KELO_PLUGIN_GetPrimaryAudioObject(IAudioComponent** component);  \
    extern "C" KELO_EXPORT bool KELO_PLUGIN_GetPrimaryAudioObject(IAudioComponent** component) { \
        return GivePrimaryComponent<TComponent>(component);                                      \
    }                                                                                            \
    extern "C" KELO_EXPORT bool KELO_PLUGIN_ReadyToFinish();                                     \
    extern "C" KELO_EXPORT bool KELO_PLUGIN_ReadyToFinish() { return !CLiveObject::AnyAlive(); } \
    static_assert(true, "for the semicolon")
