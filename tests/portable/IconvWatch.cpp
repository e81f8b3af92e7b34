// Stands between the library and iconv: notes which converters are opened and can refuse to open them.
#include "tests/portable/IconvWatch.h"

#include <dlfcn.h>
#include <errno.h>
#include <iconv.h>

#include "portable/Export.h"

namespace {

template <typename TFunction>
TFunction* NextFunction(const char* name) {
    return reinterpret_cast<TFunction*>(dlsym(RTLD_NEXT, name));
}

bool IsRefused(const char* to, const char* from) {
    const std::set<std::string>& only = IconvWatch().m_onlyCharsets;
    return !only.empty() && only.count(to) == 0 && only.count(from) == 0;
}

}  // namespace

SIconvWatch& IconvWatch() {
    static SIconvWatch watch;
    return watch;
}

extern "C" {

KELO_EXPORT iconv_t iconv_open(const char* to, const char* from) {
    static const auto open = NextFunction<iconv_t(const char*, const char*)>("iconv_open");
    IconvWatch().m_opened.push_back(std::string(to) + "<" + from);
    if (IsRefused(to, from)) {
        errno = EINVAL;
        return reinterpret_cast<iconv_t>(-1);
    }
    const iconv_t descriptor = open(to, from);
    if (descriptor != reinterpret_cast<iconv_t>(-1)) ++IconvWatch().m_nOpen;
    return descriptor;
}

KELO_EXPORT int iconv_close(iconv_t descriptor) {
    static const auto close = NextFunction<int(iconv_t)>("iconv_close");
    --IconvWatch().m_nOpen;
    return close(descriptor);
}
}
