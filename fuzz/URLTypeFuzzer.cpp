// Classes of source names: the whole input is one name.
#include <cstring>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "fuzz/FuzzedInput.h"
#include "fuzz/Require.h"
#include "tests/support/ManagerHold.h"

namespace {

enum EModelType { MT_UNKNOWN = 0, MT_LOCAL_PATH = 1, MT_HTTP = 2, MT_FTP = 4 };

std::string Lowered(std::string text) {
    for (char& character : text) {
        if (std::strchr("ABCDEFGHIJKLMNOPQRSTUVWXYZ", character) != nullptr && character != '\0')
            character += 'a' - 'A';
    }
    return text;
}

EModelType ModelType(const std::string& url) {
    const std::string lowered = Lowered(url);
    if (url.size() >= 8 && lowered.substr(0, 7) == "http://") return MT_HTTP;
    if (url.size() >= 7 && lowered.substr(0, 6) == "ftp://") return MT_FTP;
    return url.size() >= 2 && url[0] == '/' ? MT_LOCAL_PATH : MT_UNKNOWN;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const support::CManagerHold manager;
    const std::string url = CFuzzedInput(data, size).Text();
    fuzz::RequireEqual<int>("the class", manager->GetURLType(ExactCopy(url).data()), ModelType(url));
    return 0;
}
