// The decoder component.
#include "plugins/sndfile/Decoder.h"

#include <libintl.h>

#include "plugins/sndfile/SampleReader.h"
#include "plugins/sndfile/SourceFormat.h"

CDecoder::CDecoder() : CCodecComponent("libsndfile Decoder", ReadableExtensions()) {}

std::unique_ptr<CSound> CDecoder::OpenSound(const std::string& path, EAudioFeature level) {
    return std::make_unique<CSampleReader>(CSoundFile::Open(path), level);
}

const char* CDecoder::AboutFormat() const { return dgettext(kTextDomain, "Reads sound files with %s."); }
