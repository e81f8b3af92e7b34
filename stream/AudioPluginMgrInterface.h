// The manager as hosts and plug-ins see it.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"
#include "stream/WavFormat.h"

class IComponentEnum;
class IConvertorFactory;
class IEventReceiver;
class IURLAudioTargetFactory;

// Implemented by CAudioPluginMgr; obtained from GetAudioPluginMgr and from a component's Initialize.
// QueryInterface does not give this face. It answers IUnknown with IComponentEnum.
class IAudioPluginMgr : public IUnknown {
public:
    // Directory to load from, copied; "." when never set. False while plug-ins are loaded. [host set-up]
    virtual bool SetPluginDirectory(const char* directory) = 0;

    // Directory of the settings dialog's icons, copied. Always true. [host set-up]
    virtual bool SetImagesDirectory(const char* directory) = 0;

    // Never null; valid until the next set or the manager's end. [any thread]
    virtual const char* GetImagesDirectory() = 0;

    // Loads at the first call, counts at the others. Always true. The process's current directory changes while it
    // loads. [host set-up]
    virtual bool LoadPlugins() = 0;

    // False while nothing is loaded, a stream is alive or a plug-in is not ready. [host set-up]
    virtual bool CanUnloadPlugins() = 0;

    // Takes one load back; the last one unloads. False, with nothing changed, when CanUnloadPlugins says no.
    // [host set-up]
    virtual bool UnloadPlugins() = 0;

    // Installs `factory` with a reference of the manager's own. Null is refused with AE_BAD_ARGUMENT.
    // A target stream that converts takes one reference of the installed factory at each Start, and the last
    // UnloadPlugins releases the installed factory: the host keeps references of its own. [host set-up]
    virtual bool SetConvertor(IConvertorFactory* factory, IStatus** status) = 0;

    // Stores the installed factory, which may be null, without a reference. False only for a null `factory`.
    // [any thread]
    virtual bool GetConvertor(IConvertorFactory** factory) = 0;

    // No such list is kept: always false.
    virtual bool GetUnsupportedComponents(IComponentEnum** components) = 0;

    // Calls every subscribed receiver in the order of subscription, on this thread. Always true. [any thread]
    virtual bool SendEvent(unsigned int event, IUnknown* parameter) = 0;

    // The receiver is borrowed and must unsubscribe before it ends; subscribing twice counts once. Always true.
    // [any thread]
    virtual bool SubscribeToEvents(IEventReceiver* receiver) = 0;

    // False for a receiver that is not subscribed. [any thread]
    virtual bool UnsubscribeToEvents(IEventReceiver* receiver) = 0;

    // Opens a source: an absolute path, an "http://" or an "ftp://" URL.
    // `wanted` is the format to deliver, null for the decoder's own; it counts only when `required` holds AUX_CONVERT.
    // `pass` 0 tries the decoders that list the file's extension, 1 the others, -1 both in this order.
    // Stores the stream with one reference that the caller owns. False: the reason goes out through `status`; when a
    // decoder was opened but could not be wrapped, `*stream` is that decoder and the caller releases it.
    // [any thread] while nobody loads or unloads plug-ins.
    virtual bool OpenURLAudioFile(const char* url, const SWavFormat* wanted, IUnknown** stream, int pass,
                                  EAuxFlags required, EAuxFlags excluded, IStatus** status) = 0;

    // Creates an encoder stream through `factory` and wraps it in a target that accepts `format`.
    // Stores the target with one reference that the caller owns. False: as for OpenURLAudioFile. [any thread]
    virtual bool CreateURLAudioTarget(IURLAudioTargetFactory* factory, IUnknown** stream, const SWavFormat& format,
                                      IStatus** status) = 0;

    // Keeps `object`, which may be null, under `key` with one reference. False when the key is taken. [host set-up]
    virtual bool AttachAuxObject(void* key, IUnknown* object) = 0;

    // Forgets the key and releases its object. False for an unknown key. [host set-up]
    virtual bool DetachAuxObject(void* key) = 0;

    // Stores the object of `key` with one reference that the caller owns; a null `object` only asks whether the key is
    // there. False for an unknown key. [any thread] while nobody attaches or detaches.
    virtual bool GetAuxObject(void* key, IUnknown** object) = 0;

protected:
    ~IAudioPluginMgr() = default;
};
