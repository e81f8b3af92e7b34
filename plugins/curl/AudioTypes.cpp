// File extensions of audio media types.
#include "plugins/curl/AudioTypes.h"

#include <string>

#include "plugins/curl/AsciiText.h"

namespace {

struct SAudioType {
    std::string_view m_type;
    std::string_view m_extension;
};

// The registered names (IANA media types) and those that servers use beside them.
constexpr SAudioType kAudioTypes[] = {
    {"application/ogg", "ogg"},
    {"application/x-flac", "flac"},
    {"audio/3gpp", "3gp"},
    {"audio/aac", "aac"},
    {"audio/aacp", "aac"},
    {"audio/ac3", "ac3"},
    {"audio/aiff", "aiff"},
    {"audio/amr", "amr"},
    {"audio/ape", "ape"},
    {"audio/au", "au"},
    {"audio/basic", "au"},
    {"audio/flac", "flac"},
    {"audio/m4a", "m4a"},
    {"audio/midi", "mid"},
    {"audio/mp3", "mp3"},
    {"audio/mp4", "m4a"},
    {"audio/mpeg", "mp3"},
    {"audio/mpeg3", "mp3"},
    {"audio/ogg", "ogg"},
    {"audio/opus", "opus"},
    {"audio/vnd.dolby.dd-raw", "ac3"},
    {"audio/vnd.wave", "wav"},
    {"audio/vorbis", "ogg"},
    {"audio/wav", "wav"},
    {"audio/wave", "wav"},
    {"audio/webm", "webm"},
    {"audio/x-aac", "aac"},
    {"audio/x-aiff", "aiff"},
    {"audio/x-ape", "ape"},
    {"audio/x-au", "au"},
    {"audio/x-caf", "caf"},
    {"audio/x-flac", "flac"},
    {"audio/x-m4a", "m4a"},
    {"audio/x-matroska", "mka"},
    {"audio/x-midi", "mid"},
    {"audio/x-mp3", "mp3"},
    {"audio/x-mpeg", "mp3"},
    {"audio/x-ms-wma", "wma"},
    {"audio/x-pn-wav", "wav"},
    {"audio/x-tta", "tta"},
    {"audio/x-voc", "voc"},
    {"audio/x-vorbis", "ogg"},
    {"audio/x-vorbis+ogg", "ogg"},
    {"audio/x-wav", "wav"},
    {"audio/x-wavpack", "wv"},
};

}  // namespace

std::string_view ExtensionOfType(std::string_view contentType) {
    const std::string type = LowerCase(Trimmed(contentType.substr(0, contentType.find(';'))));
    for (const SAudioType& known : kAudioTypes) {
        if (known.m_type == type) return known.m_extension;
    }
    return {};
}
