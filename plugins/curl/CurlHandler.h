// The plug-in's component: fetches "http://" and "ftp://" sources.
#pragma once

#include <string>

#include "com/Configurable.h"
#include "plugins/curl/CurlLibrary.h"
#include "plugins/curl/Downloads.h"
#include "plugins/shared/AboutBox.h"
#include "sdk/URLHandler.h"

// Fetched files live until Terminate. [any thread], and HasAbout and About [GTK thread]
class CCurlHandler final : public CURLHandlerComponent<IComponentAbout> {
public:
    CCurlHandler();

    const char* GetVendor() override { return kVendor; }
    bool HasAbout() override;
    void About() override;

private:
    void End() noexcept override;
    std::string FetchFile(const std::string& url) override;

    CCurlLibrary m_library;
    CDownloads m_downloads;
};
