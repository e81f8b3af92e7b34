// Whether a call comes from the library under test.
#include "tests/faults/LibraryCaller.h"

#include <execinfo.h>
#include <link.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace {

// Where the code of a shared object lies.
struct SCode {
    explicit SCode(const char* file) : m_szFile(file) { dl_iterate_phdr(Take, this); }

    bool Holds(const void* address) const {
        const auto place = reinterpret_cast<std::uintptr_t>(address);
        return place >= m_nBegin && place < m_nEnd;
    }

    static int Take(dl_phdr_info* object, std::size_t /*size*/, void* result) {
        auto& code = *static_cast<SCode*>(result);
        if (std::strstr(object->dlpi_name, code.m_szFile) == nullptr) return 0;
        for (int i = 0; i < object->dlpi_phnum; ++i) {
            const auto& segment = object->dlpi_phdr[i];
            if (segment.p_type != PT_LOAD || (segment.p_flags & PF_X) == 0) continue;
            code.m_nBegin = object->dlpi_addr + segment.p_vaddr;
            code.m_nEnd = code.m_nBegin + segment.p_memsz;
        }
        return 1;
    }

    const char* m_szFile;
    std::uintptr_t m_nBegin = 0;
    std::uintptr_t m_nEnd = 0;
};

}  // namespace

bool IsInLibrary(const void* address) {
    static const SCode library("/libKeloAudioPluginMgr.so");
    return library.Holds(address);
}

bool ServesLibrary(const void* address) {
    static const SCode languageLibrary("/libstdc++.so");
    if (!languageLibrary.Holds(address)) return IsInLibrary(address);
    const auto isLanguageLibrarys = [](const void* frame) { return languageLibrary.Holds(frame); };
    std::array<void*, 32> frames{};
    const auto end = frames.begin() + backtrace(frames.data(), static_cast<int>(frames.size()));
    const auto inner = std::find_if(frames.begin(), end, isLanguageLibrarys);
    const auto outer = std::find_if_not(inner, end, isLanguageLibrarys);
    return outer != end && IsInLibrary(*outer);
}
