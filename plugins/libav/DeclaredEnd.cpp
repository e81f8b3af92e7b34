// Where a file ends by its own account.
#include "plugins/libav/DeclaredEnd.h"

#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <string>

namespace {

// Some writers count the padding of the last part and leave it out.
constexpr std::uint64_t kPadding = 16;

constexpr std::uint64_t kUnknown = ~std::uint64_t{0};

// Bytes of the file by offset. [stream-thread]
class CFileBytes {
public:
    explicit CFileBytes(const CInputFile& file) : m_nDescriptor(file.Descriptor()) {
        struct stat facts = {};
        if (::fstat(m_nDescriptor, &facts) == 0) m_nSize = static_cast<std::uint64_t>(facts.st_size);
    }

    std::uint64_t Size() const { return m_nSize; }

    // Fewer where the file ends.
    std::string At(std::uint64_t offset, std::size_t count) const {
        std::string bytes(count, '\0');
        const ssize_t read = ::pread(m_nDescriptor, bytes.data(), count, static_cast<off_t>(offset));
        bytes.resize(read > 0 ? static_cast<std::size_t>(read) : 0);
        return bytes;
    }

private:
    int m_nDescriptor;
    std::uint64_t m_nSize = 0;
};

std::uint64_t BigEndian(const std::string& bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

std::uint64_t LittleEndian(const std::string& bytes) { return BigEndian({bytes.rbegin(), bytes.rend()}); }

// RIFF: "RIFF" or its continuation in long AVI files, then the size of what follows in 32 bits.
std::uint64_t EndOfRiffPart(const CFileBytes& file, std::uint64_t offset) {
    const std::string header = file.At(offset, 8);
    const std::uint64_t size = LittleEndian(header.substr(4));
    if (header.substr(0, 4) != "RIFF" || size == 0 || size == 0xFFFFFFFF) return kUnknown;
    return offset + 8 + size;
}

// ISO/IEC 14496-12, 4.2: the size of the whole box in 32 bits, or 1 and 64 bits behind the type; 0 reaches to the end.
std::uint64_t EndOfBox(const CFileBytes& file, std::uint64_t offset) {
    const std::string header = file.At(offset, 16);
    const std::uint64_t size = BigEndian(header.substr(0, 4));
    if (size != 1) return size < 8 ? kUnknown : offset + size;
    const std::uint64_t longSize = BigEndian(header.substr(8));
    return longSize < 16 ? kUnknown : offset + longSize;
}

// RFC 8794, 4 and 5: an identity and a size, each with its length in bytes told by the first byte's leading zeros.
std::uint64_t EndOfElement(const CFileBytes& file, std::uint64_t offset) {
    const auto lengthAt = [&file](std::uint64_t at) -> std::size_t {
        const std::string first = file.At(at, 1);
        return first.empty() || first[0] == 0
                   ? 0
                   : static_cast<std::size_t>(__builtin_clz(static_cast<unsigned char>(first[0])) - 23);
    };
    const std::size_t identity = lengthAt(offset);
    const std::size_t length = identity != 0 ? lengthAt(offset + identity) : 0;
    if (length == 0) return kUnknown;
    const std::uint64_t ones = (std::uint64_t{1} << (7 * length)) - 1;
    const std::uint64_t size = BigEndian(file.At(offset + identity, length)) & ones;
    return size == ones ? kUnknown : offset + identity + length + size;
}

using CEndOfPart = std::uint64_t (*)(const CFileBytes&, std::uint64_t);

CEndOfPart PartsOf(const CFileBytes& file) {
    const std::string start = file.At(0, 8);
    if (start.substr(0, 4) == "RIFF") return EndOfRiffPart;
    if (start.substr(0, 4) == "\x1A\x45\xDF\xA3") return EndOfElement;
    return start.size() == 8 && start.substr(4) == "ftyp" ? EndOfBox : nullptr;
}

}  // namespace

bool IsCutShort(const CInputFile& input) {
    const CFileBytes file(input);
    const CEndOfPart endOfPart = PartsOf(file);
    if (endOfPart == nullptr) return false;
    std::uint64_t offset = 0;
    while (offset < file.Size()) {
        const std::uint64_t end = endOfPart(file, offset);
        if (end == kUnknown || end <= offset) return false;
        offset = end;
    }
    return offset > file.Size() + kPadding;
}
