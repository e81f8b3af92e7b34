// Base of URL handler components.
#pragma once

#include <cstring>
#include <string>
#include <utility>

#include "sdk/Component.h"
#include "sdk/LiveObject.h"

// TFaces are further interfaces of the component. The author keeps the fetched files and removes them in End.
// [any thread]
template <typename... TFaces>
class CURLHandlerComponent : public CComponent<IURLSourceHandler, TFaces...> {
public:
    // As given to the constructor.
    unsigned int GetProtocols() final { return m_nProtocols; }

    // The plug-in is not ready to finish meanwhile.
    bool Fetch(const char* url, char* localPath, int /*reserved*/, IStatus** status) final {
        const CLiveObject busy;
        return Guarded(status, "", [&] {
            if (url == nullptr || localPath == nullptr) throw CBadArgument();
            const std::string path = FetchFile(url);
            if (path.size() >= static_cast<std::size_t>(kLocalPathCapacity)) Refuse("the local path is too long");
            std::memcpy(localPath, path.c_str(), path.size() + 1);
            return true;
        });
    }

protected:
    // `protocols` are URL_HTTP and URL_FTP as bits.
    CURLHandlerComponent(std::string name, unsigned int protocols)
        : CComponent<IURLSourceHandler, TFaces...>(std::move(name), ACT_URL_HANDLER), m_nProtocols(protocols) {}
    ~CURLHandlerComponent() = default;

    // Makes the resource a local file and returns its absolute path, or throws the reason, which names the URL without
    // a password that stands in it. May be called by several threads at once.
    virtual std::string FetchFile(const std::string& url) = 0;

private:
    unsigned int m_nProtocols;
};
