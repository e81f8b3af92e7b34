// The decoder component.
#include "plugins/libav/Decoder.h"

#include <libintl.h>

#include "plugins/libav/KnownFormats.h"
#include "plugins/libav/LibavLoading.h"
#include "plugins/libav/LibavSound.h"
#include "plugins/shared/Gtk.h"

CLibavDecoder::CLibavDecoder() : CDecoderComponent("libavcodec Decoder", KnownExtensions()) {}

std::unique_ptr<CSound> CLibavDecoder::OpenSound(const std::string& path, EAudioFeature level) {
    RequireLibav();
    return std::make_unique<CLibavSound>(path, level);
}

bool CLibavDecoder::HasAbout() { return CanShowDialogs(); }

void CLibavDecoder::About() {
    if (!HasAbout()) return;
    ShowAboutBox(AppWindowOf(Manager()), GetName(), dgettext(kTextDomain, "Reads sound files with %s."),
                 LibavName().c_str());
}
