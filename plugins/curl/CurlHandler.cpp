// The plug-in's component: fetches "http://" and "ftp://" sources.
#include "plugins/curl/CurlHandler.h"

#include <libintl.h>

#include <memory>
#include <stdexcept>

#include "plugins/curl/FetchLimits.h"
#include "plugins/curl/FileName.h"
#include "plugins/curl/Transfer.h"
#include "plugins/curl/URLText.h"
#include "plugins/shared/Gtk.h"

CCurlHandler::CCurlHandler() : CURLHandlerComponent("libcurl URL Handler", URL_HTTP | URL_FTP) {}

bool CCurlHandler::HasAbout() { return CanShowDialogs(); }

void CCurlHandler::About() {
    if (!HasAbout()) return;
    ShowAboutBox(AppWindowOf(Manager()), GetName(), dgettext(kTextDomain, "Fetches remote files with %s."),
                 m_library.Name().c_str());
}

void CCurlHandler::End() noexcept {
    m_downloads.Remove();
    m_library.Finish();
}

std::string CCurlHandler::FetchFile(const std::string& url) {
    try {
        if (!IsHttp(url) && !IsFtp(url)) Refuse("neither an http:// nor an ftp:// address");
        const SFetchLimits limits = ReadFetchLimits();
        m_library.Use();
        const std::unique_ptr<CDownload> download = m_downloads.Begin();
        const SNameSources sources = CTransfer(url, limits, *download).Run();
        return download->Keep(ChooseFileName(sources));
    } catch (const std::runtime_error& failure) {
        Refuse(WithoutCredentials(url) + ": " + failure.what());
    }
}
