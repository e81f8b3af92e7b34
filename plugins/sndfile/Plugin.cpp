// The plug-in's two entry points.
#include "plugins/sndfile/Collection.h"
#include "plugins/sndfile/LiveObjects.h"
#include "plugins/sndfile/Refusal.h"
#include "portable/Export.h"

// Stores the primary component with one reference that the caller owns. [host set-up]
extern "C" KELO_EXPORT bool KELO_PLUGIN_GetPrimaryAudioObject(IAudioComponent** component) {
    return Guarded(nullptr, [&] {
        if (component == nullptr) return false;
        static CCollection collection;
        collection.AddRef();
        *component = &collection;
        return true;
    });
}

// Whether no stream and no target of this plug-in is alive. [host set-up]
extern "C" KELO_EXPORT bool KELO_PLUGIN_ReadyToFinish() { return !HasLiveObjects(); }
