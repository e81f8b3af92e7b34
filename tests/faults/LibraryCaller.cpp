// Whether a call comes from the library under test.
#include "tests/faults/LibraryCaller.h"

#include <link.h>

#include <cstdint>
#include <cstring>

namespace {

struct SRange {
    std::uintptr_t m_nBegin = 0;
    std::uintptr_t m_nEnd = 0;
};

int TakeLibrary(dl_phdr_info* object, std::size_t /*size*/, void* result) {
    if (std::strstr(object->dlpi_name, "/libKeloAudioPluginMgr.so") == nullptr) return 0;
    auto& range = *static_cast<SRange*>(result);
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        const auto& segment = object->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_X) == 0) continue;
        range.m_nBegin = object->dlpi_addr + segment.p_vaddr;
        range.m_nEnd = range.m_nBegin + segment.p_memsz;
    }
    return 1;
}

SRange FindLibrary() {
    SRange range;
    dl_iterate_phdr(TakeLibrary, &range);
    return range;
}

}  // namespace

bool IsInLibrary(const void* address) {
    static const SRange library = FindLibrary();
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    return place >= library.m_nBegin && place < library.m_nEnd;
}
