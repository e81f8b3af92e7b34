// What a shared object says about being unloaded.
#include "host/validate/ElfFile.h"

#include <elf.h>

#include <cstring>

#include "host/validate/SampleSound.h"

namespace {

// Bounds-checked view of the file.
class CElfView {
public:
    explicit CElfView(const std::string& path) : m_bytes(ReadFile(path)) {
        const Elf64_Ehdr* const header = At<Elf64_Ehdr>(0);
        m_bIsElf = header != nullptr && std::memcmp(header->e_ident, ELFMAG, SELFMAG) == 0 &&
                   header->e_ident[EI_CLASS] == ELFCLASS64;
    }

    // Null where the file is too short.
    template <typename TRecord>
    const TRecord* At(std::size_t offset) const {
        if (offset > m_bytes.size() || m_bytes.size() - offset < sizeof(TRecord)) return nullptr;
        return reinterpret_cast<const TRecord*>(m_bytes.data() + offset);
    }

    // Zero-terminated by the end of the file at the latest.
    std::string TextAt(std::size_t offset) const {
        std::string text;
        for (; offset < m_bytes.size() && m_bytes[offset] != 0; ++offset) text += static_cast<char>(m_bytes[offset]);
        return text;
    }

    const Elf64_Shdr* Section(std::size_t index) const {
        if (!m_bIsElf) return nullptr;
        const Elf64_Ehdr* const header = At<Elf64_Ehdr>(0);
        return index < header->e_shnum ? At<Elf64_Shdr>(header->e_shoff + index * sizeof(Elf64_Shdr)) : nullptr;
    }

    const Elf64_Shdr* SectionOfType(Elf64_Word type) const {
        for (std::size_t i = 0;; ++i) {
            const Elf64_Shdr* const section = Section(i);
            if (section == nullptr || section->sh_type == type) return section;
        }
    }

private:
    CBytes m_bytes;
    bool m_bIsElf;
};

}  // namespace

std::vector<std::string> UniqueSymbols(const std::string& path) {
    const CElfView view(path);
    const Elf64_Shdr* const symbols = view.SectionOfType(SHT_DYNSYM);
    const Elf64_Shdr* const names = symbols != nullptr ? view.Section(symbols->sh_link) : nullptr;
    std::vector<std::string> unique;
    if (names == nullptr) return unique;
    for (std::size_t place = 0; place + sizeof(Elf64_Sym) <= symbols->sh_size; place += sizeof(Elf64_Sym)) {
        const auto* const symbol = view.At<Elf64_Sym>(symbols->sh_offset + place);
        if (symbol == nullptr) break;
        const bool isUnique = ELF64_ST_BIND(symbol->st_info) == STB_GNU_UNIQUE && symbol->st_shndx != SHN_UNDEF;
        if (isUnique) unique.push_back(view.TextAt(names->sh_offset + symbol->st_name));
    }
    return unique;
}

bool AsksToStay(const std::string& path) {
    const CElfView view(path);
    const Elf64_Shdr* const dynamic = view.SectionOfType(SHT_DYNAMIC);
    if (dynamic == nullptr) return false;
    for (std::size_t place = 0; place + sizeof(Elf64_Dyn) <= dynamic->sh_size; place += sizeof(Elf64_Dyn)) {
        const auto* const entry = view.At<Elf64_Dyn>(dynamic->sh_offset + place);
        if (entry == nullptr || entry->d_tag == DT_NULL) break;
        if (entry->d_tag == DT_FLAGS_1 && (entry->d_un.d_val & DF_1_NODELETE) != 0) return true;
    }
    return false;
}
