// The library's entry point.
#include "pluginmgr/GetAudioPluginMgr.h"

#include <libintl.h>

#include <clocale>

#include "pluginmgr/AudioPluginMgr.h"

namespace {

constexpr char kTextDomain[] = "keloaudiopluginmgr";

}  // namespace

int GetAudioPluginMgr(IAudioPluginMgr** manager) {
    if (manager == nullptr) return 0;
    m_sectPMCreation.Lock(kInfiniteTimeout);
    std::setlocale(LC_ALL, "");
    bindtextdomain(kTextDomain, "/usr/share/locale");
    bind_textdomain_codeset(kTextDomain, "UTF-8");
    // An exception of the construction passes with the lock still held: deliberate.
    *manager = g_pAudioPluginMgr != nullptr ? g_pAudioPluginMgr : new CAudioPluginMgr;
    (*manager)->AddRef();
    m_sectPMCreation.Unlock();
    return 1;
}
