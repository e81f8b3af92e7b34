// Bytes of an open file by offset, for a look at its headers.
#include "plugins/shared/FileBytes.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

constexpr std::size_t kBlockBytes = 65536;

std::uint64_t SizeOf(int descriptor) {
    struct stat facts = {};
    return ::fstat(descriptor, &facts) == 0 ? static_cast<std::uint64_t>(facts.st_size) : 0;
}

}  // namespace

CFileBytes::CFileBytes(int descriptor) : m_nDescriptor(descriptor), m_nSize(SizeOf(descriptor)) {}

std::string_view CFileBytes::At(std::uint64_t offset, std::size_t count) {
    if (offset >= m_nSize) return {};
    const std::size_t present = static_cast<std::size_t>(std::min<std::uint64_t>(count, m_nSize - offset));
    if (offset < m_nBlockStart || offset + present > m_nBlockStart + m_nBlockBytes) Fill(offset, present);
    if (offset >= m_nBlockStart + m_nBlockBytes) return {};
    const auto skipped = static_cast<std::size_t>(offset - m_nBlockStart);
    return {m_vBlock.data() + skipped, std::min(present, m_nBlockBytes - skipped)};
}

void CFileBytes::Fill(std::uint64_t offset, std::size_t count) {
    m_vBlock.resize(std::max({m_vBlock.size(), kBlockBytes, count}));
    const ssize_t bytes = ReadFully(m_nDescriptor, m_vBlock.data(), m_vBlock.size(), offset);
    m_nBlockStart = offset;
    m_nBlockBytes = static_cast<std::size_t>(std::max<ssize_t>(bytes, 0));
}

ssize_t ReadFully(int descriptor, void* buffer, std::size_t count, std::uint64_t offset) {
    std::size_t total = 0;
    while (total < count) {
        const ssize_t step =
            ::pread(descriptor, static_cast<char*>(buffer) + total, count - total, static_cast<off_t>(offset + total));
        if (step < 0 && errno == EINTR) continue;
        if (step < 0 && total == 0) return -1;
        if (step <= 0) break;
        total += static_cast<std::size_t>(step);
    }
    return static_cast<ssize_t>(total);
}

std::uint64_t FromLittleEndian(std::string_view bytes) {
    std::uint64_t value = 0;
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte)
        value = value << 8 | static_cast<unsigned char>(*byte);
    return value;
}

std::uint64_t FromBigEndian(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}
