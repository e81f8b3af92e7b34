// Where a file ends by its own account.
#include "plugins/libav/DeclaredEnd.h"

#include <string_view>

#include "plugins/shared/FileBytes.h"

namespace {

// Some writers count the padding of the last part and leave it out.
constexpr std::uint64_t kPadding = 16;

constexpr std::uint64_t kUnknown = ~std::uint64_t{0};

// Behind so many parts a file is taken for whole: no writer makes them, and a look at each takes time.
constexpr int kMostParts = 100000;

// RIFF: "RIFF" or its continuation in long AVI files, then the size of what follows in 32 bits.
std::uint64_t EndOfRiffPart(CFileBytes& file, std::uint64_t offset) {
    const std::string_view header = file.At(offset, 8);
    if (header.size() < 8 || header.substr(0, 4) != "RIFF") return kUnknown;
    const std::uint64_t size = FromLittleEndian(header.substr(4));
    if (size == 0 || size == 0xFFFFFFFF) return kUnknown;
    return offset + 8 + size;
}

// ISO/IEC 14496-12, 4.2: the size of the whole box in 32 bits, or 1 and 64 bits behind the type; 0 reaches to the end.
std::uint64_t EndOfBox(CFileBytes& file, std::uint64_t offset) {
    const std::string_view header = file.At(offset, 16);
    if (header.size() < 8) return kUnknown;
    const std::uint64_t size = FromBigEndian(header.substr(0, 4));
    if (size != 1) return size < 8 ? kUnknown : offset + size;
    const std::uint64_t longSize = FromBigEndian(header.substr(8));
    return longSize < 16 ? kUnknown : offset + longSize;
}

// RFC 8794, 4 and 5: an identity and a size, each with its length in bytes told by the first byte's leading zeros.
std::uint64_t EndOfElement(CFileBytes& file, std::uint64_t offset) {
    const auto lengthAt = [&file](std::uint64_t at) -> std::size_t {
        const std::string_view first = file.At(at, 1);
        return first.empty() || first[0] == 0
                   ? 0
                   : static_cast<std::size_t>(__builtin_clz(static_cast<unsigned char>(first[0])) - 23);
    };
    const std::size_t identity = lengthAt(offset);
    const std::size_t length = identity != 0 ? lengthAt(offset + identity) : 0;
    if (length == 0) return kUnknown;
    const std::uint64_t ones = (std::uint64_t{1} << (7 * length)) - 1;
    const std::uint64_t size = FromBigEndian(file.At(offset + identity, length)) & ones;
    return size == ones ? kUnknown : offset + identity + length + size;
}

using CEndOfPart = std::uint64_t (*)(CFileBytes&, std::uint64_t);

CEndOfPart PartsOf(CFileBytes& file) {
    const std::string_view start = file.At(0, 8);
    if (start.substr(0, 4) == "RIFF") return EndOfRiffPart;
    if (start.substr(0, 4) == "\x1A\x45\xDF\xA3") return EndOfElement;
    return start.size() == 8 && start.substr(4) == "ftyp" ? EndOfBox : nullptr;
}

}  // namespace

bool IsCutShort(const CInputFile& input) {
    CFileBytes file(input.Descriptor());
    const CEndOfPart endOfPart = PartsOf(file);
    if (endOfPart == nullptr) return false;
    std::uint64_t offset = 0;
    for (int part = 0; offset < file.Size(); ++part) {
        const std::uint64_t end = endOfPart(file, offset);
        if (end == kUnknown || end <= offset || part == kMostParts) return false;
        offset = end;
    }
    return offset > file.Size() + kPadding;
}
