// URL handlers.
#include <cstring>
#include <filesystem>
#include <functional>

#include "com/InterfaceIds.h"
#include "host/FailureText.h"
#include "host/validate/Checks.h"
#include "host/validate/FormatRules.h"
#include "host/validate/LoopbackServer.h"
#include "host/validate/Outcome.h"
#include "host/validate/ServedFiles.h"
#include "host/validate/Steps.h"
#include "host/validate/Trial.h"
#include "stream/URLSourceHandler.h"

namespace {

namespace fs = std::filesystem;

constexpr unsigned int kKnownProtocols = URL_HTTP | URL_FTP;
constexpr char kUntouched = '\x5A';

struct SFetchResult {
    bool m_bFetched = false;
    std::string m_strPath;  // empty where none was written
    bool m_bTerminated = true;
    CComPtr<IStatus> m_pStatus;
};

SFetchResult Fetch(IURLSourceHandler& handler, const std::string& url) {
    TellStep("Fetch of " + url);
    std::vector<char> path(kLocalPathCapacity, kUntouched);
    SFetchResult result;
    result.m_bFetched = handler.Fetch(url.c_str(), path.data(), 0, result.m_pStatus.Out());
    const auto* const end = static_cast<const char*>(std::memchr(path.data(), '\0', path.size()));
    result.m_bTerminated = end != nullptr;
    if (path.front() != kUntouched && end != nullptr) result.m_strPath = path.data();
    return result;
}

std::string MustFetch(IURLSourceHandler& handler, const std::string& url) {
    const SFetchResult result = Fetch(handler, url);
    Expect(result.m_bFetched, "Fetch says false: " + StatusText(result.m_pStatus.Get(), "no reason", ""));
    return result.m_strPath;
}

void ForEachHandler(CTrial& trial, const std::function<void(IURLSourceHandler& handler)>& examine) {
    for (const SComponent& component : trial.Components(ACT_URL_HANDLER)) {
        const auto handler = CComPtr<IURLSourceHandler>::Query(component.m_pComponent.Get(), IID_IURLSourceHandler);
        try {
            Expect(static_cast<bool>(handler), "no interface " + std::to_string(IID_IURLSourceHandler));
            examine(*handler);
        } catch (const CFinding& finding) {
            throw CFinding(component.m_strLabel + ": " + finding.what());
        }
    }
}

unsigned int ProtocolOf(const std::string& url) { return url.compare(0, 4, "ftp:") == 0 ? URL_FTP : URL_HTTP; }

// Those that handle the protocol of `url`, which may be empty for none. Skips when nothing is left.
void ForEachHandlerOf(const std::string& url, CTrial& trial,
                      const std::function<void(IURLSourceHandler& handler)>& examine) {
    if (url.empty()) throw CSkipped("no resource for its protocols (--url URL names one)");
    bool found = false;
    ForEachHandler(trial, [&](IURLSourceHandler& handler) {
        if ((handler.GetProtocols() & ProtocolOf(url)) == 0) return;
        found = true;
        examine(handler);
    });
    if (!found) throw CSkipped("no handler for the protocol of " + url);
}

void ForEachFetching(CTrial& trial, const std::function<void(IURLSourceHandler&, const std::string& url)>& examine) {
    const std::string& url = trial.Around().m_strURL;
    ForEachHandlerOf(url, trial, [&](IURLSourceHandler& handler) { examine(handler, url); });
}

// For checks that need more than one resource.
void ForEachServed(CTrial& trial, const std::function<void(IURLSourceHandler&, const std::string& url)>& examine) {
    if (!trial.Around().m_bOwnServer) throw CSkipped("the resource is not the validator's own");
    ForEachFetching(trial, examine);
}

void HandlesKnownProtocols(CTrial& trial) {
    ForEachHandler(trial, [](IURLSourceHandler& handler) {
        TellStep("GetProtocols");
        const unsigned int protocols = handler.GetProtocols();
        Expect(protocols != 0, "it handles no protocol");
        Expect((protocols & ~kKnownProtocols) == 0,
               "protocol flags " + std::to_string(protocols) + " hold other bits than 2 (http) and 4 (ftp)");
    });
}

void Fetches(CTrial& trial) {
    ForEachFetching(trial, [](IURLSourceHandler& handler, const std::string& url) { MustFetch(handler, url); });
}

void GivesAbsolutePath(CTrial& trial) {
    ForEachFetching(trial, [](IURLSourceHandler& handler, const std::string& url) {
        const SFetchResult result = Fetch(handler, url);
        Expect(result.m_bTerminated, "the path has no end within 4096 bytes");
        Expect(!result.m_strPath.empty(), "no path is written");
        Expect(result.m_strPath.front() == '/', "the path " + result.m_strPath + " is not absolute");
    });
}

void GivesFile(CTrial& trial) {
    ForEachFetching(trial, [&](IURLSourceHandler& handler, const std::string& url) {
        const std::string path = MustFetch(handler, url);
        Expect(fs::is_regular_file(path), path + " is no file");
        const CBytes content = ReadFile(path);
        Expect(!content.empty(), path + " is empty");
        if (!trial.Around().m_bOwnServer) return;
        Expect(content == ServedFiles().at(kServedSample),
               "of the resource, " + DifferenceText(ServedFiles().at(kServedSample), content));
    });
}

void KeepsFilesApart(CTrial& trial) {
    ForEachServed(trial, [](IURLSourceHandler& handler, const std::string& url) {
        const std::string other = url.substr(0, url.rfind('/')) + kServedOther;
        const std::string first = MustFetch(handler, url);
        const std::string second = MustFetch(handler, other);
        Expect(ReadFile(first) == ServedFiles().at(kServedSample), "a second Fetch changes the file of the first");
        Expect(ReadFile(second) == ServedFiles().at(kServedOther), "a second Fetch gives another resource's file");
    });
}

void ExpectRefused(IURLSourceHandler& handler, const std::string& url, const std::string& what) {
    const SFetchResult result = Fetch(handler, url);
    Expect(!result.m_bFetched, "fetches " + what);
    Expect(result.m_strPath.empty(), "refuses " + what + " and writes the path " + result.m_strPath);
}

void RefusesMissing(CTrial& trial) {
    ForEachServed(trial, [](IURLSourceHandler& handler, const std::string& url) {
        ExpectRefused(handler, url + ".missing", "a resource that is not there (404)");
    });
}

void RefusesUnreachable(CTrial& trial) {
    ForEachServed(trial, [](IURLSourceHandler& handler, const std::string& /*url*/) {
        ExpectRefused(handler, DeadURL() + kServedSample, "from an address at which nobody listens");
    });
}

void TellsWhy(CTrial& trial) {
    ForEachServed(trial, [](IURLSourceHandler& handler, const std::string& url) {
        Expect(static_cast<bool>(Fetch(handler, url + ".missing").m_pStatus),
               "refuses a resource that is not there without a status");
    });
}

void RefusesWithoutStatus(CTrial& trial) {
    ForEachServed(trial, [](IURLSourceHandler& handler, const std::string& url) {
        TellStep("Fetch with a null status pointer");
        std::vector<char> path(kLocalPathCapacity, '\0');
        Expect(!handler.Fetch((url + ".missing").c_str(), path.data(), 0, nullptr),
               "fetches a resource that is not there when nobody asks for a status");
    });
}

std::vector<std::string> FetchAll(CTrial& trial) {
    std::vector<std::string> paths;
    ForEachFetching(trial, [&](IURLSourceHandler& handler, const std::string& url) {
        paths.push_back(MustFetch(handler, url));
        paths.push_back(MustFetch(handler, url));
    });
    return paths;
}

void KeepsFilesUntilTerminate(CTrial& trial) {
    for (const std::string& path : FetchAll(trial)) {
        Expect(fs::exists(path), "before Terminate " + path + " is gone");
    }
}

void RemovesFilesAtTerminate(CTrial& trial) {
    const std::vector<std::string> paths = FetchAll(trial);
    trial.Plugin().Terminate();
    for (const std::string& path : paths) Expect(!fs::exists(path), "after Terminate " + path + " is still there");
}

}  // namespace

CCheckList HandlerChecks() {
    return {
        {"handler/protocols", "The protocol flags hold 2 for http, 4 for ftp or both.", CONCERN_URL_HANDLER,
         "component/initialize", HandlesKnownProtocols},
        {"handler/fetches", "A resource is fetched.", CONCERN_URL_HANDLER, "handler/protocols", Fetches},
        {"handler/path", "Fetch writes an absolute path that ends within 4096 bytes.", CONCERN_URL_HANDLER,
         "handler/fetches", GivesAbsolutePath},
        {"handler/file", "The path is a file with the content of the resource.", CONCERN_URL_HANDLER, "handler/path",
         GivesFile},
        {"handler/files-apart", "Two resources make two files.", CONCERN_URL_HANDLER, "handler/file", KeepsFilesApart},
        {"handler/keeps-files", "A file that was fetched stays until Terminate.", CONCERN_URL_HANDLER, "handler/file",
         KeepsFilesUntilTerminate},
        {"handler/removes-files", "Terminate removes the files that were fetched.", CONCERN_URL_HANDLER,
         "handler/keeps-files", RemovesFilesAtTerminate},
        {"handler/refuses-missing", "A resource that is not there is refused, and no path is written.",
         CONCERN_URL_HANDLER, "handler/protocols", RefusesMissing},
        {"handler/refuses-unreachable", "A server that is not there is refused, and no path is written.",
         CONCERN_URL_HANDLER, "handler/protocols", RefusesUnreachable},
        {"handler/refusal-status", "A handler that refuses says why through a status.", CONCERN_URL_HANDLER,
         "handler/refuses-missing", TellsWhy},
        {"handler/null-status", "A handler refuses with a null status pointer too.", CONCERN_URL_HANDLER,
         "handler/refuses-missing", RefusesWithoutStatus},
    };
}
