// libavformat, libavcodec and libavutil, loaded at their first use.
#include "plugins/libav/LibavLoading.h"

#include "plugins/libav/LibavObjects.h"
#include "sdk/Guard.h"

// Generated: fills the jump stubs. Empty, or the reason why the libraries cannot be had.
std::string DelayLoad_libav();

namespace {

std::string VersionText(unsigned version) {
    return std::to_string(AV_VERSION_MAJOR(version)) + "." + std::to_string(AV_VERSION_MINOR(version)) + "." +
           std::to_string(AV_VERSION_MICRO(version));
}

// The layout of the libraries' structures holds for one major version and grows with the minor one.
void RequireVersion(const char* library, unsigned present, unsigned built) {
    if (AV_VERSION_MAJOR(present) == AV_VERSION_MAJOR(built) && present >= built) return;
    Refuse(std::string(library) + " " + VersionText(present) + " is in use, this plug-in was built for " +
           VersionText(built));
}

}  // namespace

void RequireLibav() {
    const std::string reason = DelayLoad_libav();
    if (!reason.empty()) Refuse("libavformat cannot be used: " + reason);
    RequireVersion("libavformat", avformat_version(), LIBAVFORMAT_VERSION_INT);
    RequireVersion("libavcodec", avcodec_version(), LIBAVCODEC_VERSION_INT);
    RequireVersion("libavutil", avutil_version(), LIBAVUTIL_VERSION_INT);
}

std::string LibavName() {
    try {
        RequireLibav();
        return "libavformat " + VersionText(avformat_version());
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}
