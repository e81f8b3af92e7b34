// The plug-in's component: fetches "http://" and "ftp://" sources.
#pragma once

#include <string>

#include "plugins/curl/CurlLibrary.h"
#include "plugins/curl/Downloads.h"
#include "sdk/URLHandler.h"

// Fetched files live until Terminate. [any thread]
class CCurlHandler final : public CURLHandlerComponent<> {
public:
    CCurlHandler();

private:
    void End() noexcept override;
    std::string FetchFile(const std::string& url) override;

    CCurlLibrary m_library;
    CDownloads m_downloads;
};
