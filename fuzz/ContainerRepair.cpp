// Sizes and checksums of damaged sound files.
#include "fuzz/ContainerRepair.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace {

unsigned int ByteAt(const std::string& file, std::size_t at) {
    return at < file.size() ? static_cast<unsigned char>(file[at]) : 0;
}

std::uint64_t ReadLittle(const std::string& file, std::size_t at, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = count; i-- > 0;) value = value << 8 | ByteAt(file, at + i);
    return value;
}

void WriteLittle(std::string& file, std::size_t at, std::size_t count, std::uint64_t value) {
    for (std::size_t i = 0; i < count && at + i < file.size(); ++i) file[at + i] = static_cast<char>(value >> (8 * i));
}

void WriteBig(std::string& file, std::size_t at, std::size_t count, std::uint64_t value) {
    for (std::size_t i = 0; i < count && at + i < file.size(); ++i) {
        file[at + i] = static_cast<char>(value >> (8 * (count - 1 - i)));
    }
}

bool Begins(const std::string& file, std::size_t at, const char* text) { return file.compare(at, 4, text) == 0; }

// The remainder with the highest bit first.
template <typename T>
T Remainder(const std::string& file, std::size_t begin, std::size_t end, T polynomial) {
    constexpr int kWidth = 8 * sizeof(T);
    std::uint64_t remainder = 0;
    for (std::size_t at = begin; at < end; ++at) {
        remainder ^= static_cast<std::uint64_t>(ByteAt(file, at)) << (kWidth - 8);
        for (int bit = 0; bit < 8; ++bit) {
            const bool carry = (remainder >> (kWidth - 1) & 1) != 0;
            remainder = static_cast<T>(remainder << 1) ^ (carry ? polynomial : 0);
        }
    }
    return static_cast<T>(remainder);
}

// Bytes per frame and per second follow from the other numbers where samples have whole bytes.
void RepairWavFormat(std::string& file, std::size_t at) {
    const std::uint64_t coding = ReadLittle(file, at, 2);
    const bool plain = coding == 1 || coding == 3 || coding == 0xFFFE;
    if (!plain || at + 16 > file.size()) return;
    const std::uint64_t channels = std::max<std::uint64_t>(ReadLittle(file, at + 2, 2), 1);
    const std::uint64_t block = channels * ((ReadLittle(file, at + 14, 2) + 7) / 8);
    WriteLittle(file, at + 2, 2, channels);
    WriteLittle(file, at + 8, 4, block * ReadLittle(file, at + 4, 4));
    WriteLittle(file, at + 12, 2, block);
}

void RepairWav(std::string& file) {
    constexpr std::size_t kChunkHeader = 8;
    WriteLittle(file, 4, 4, file.size() - 8);
    for (std::size_t at = 12; at + kChunkHeader <= file.size();) {
        const std::uint64_t rest = file.size() - at - kChunkHeader;
        if (ReadLittle(file, at + 4, 4) > rest) WriteLittle(file, at + 4, 4, rest);
        if (Begins(file, at, "fmt ")) RepairWavFormat(file, at + kChunkHeader);
        const std::uint64_t size = ReadLittle(file, at + 4, 4);
        at += kChunkHeader + size + size % 2;
    }
}

// RFC 9639, 8.2: sizes of blocks from 16 on, the smallest first; a rate of 20 bits that is not 0.
void RepairStreamInfo(std::string& file, std::size_t at) {
    const auto size = [&file](std::size_t place) {
        return std::max<std::uint64_t>(std::uint64_t{ByteAt(file, place)} << 8 | ByteAt(file, place + 1), 16);
    };
    const std::uint64_t smallest = size(at);
    WriteBig(file, at + 2, 2, std::max(smallest, size(at + 2)));
    WriteBig(file, at, 2, smallest);
    const bool silent = (ByteAt(file, at + 10) | ByteAt(file, at + 11) | (ByteAt(file, at + 12) & 0xF0)) == 0;
    if (silent) WriteBig(file, at + 11, 1, 1);
}

// Where the blocks in front of the first frame end. RFC 9639, 8.1: the highest bit marks the last one.
std::size_t RepairFlacMetadata(std::string& file) {
    constexpr std::size_t kStreamInfoBytes = 34;
    for (std::size_t at = 4; at + 4 <= file.size();) {
        std::uint64_t size = ReadLittle(file, at + 1, 3);
        size = (size & 0xFF) << 16 | (size & 0xFF00) | size >> 16;
        const bool first = at == 4;
        const std::uint64_t rest = file.size() - at - 4;
        if (first) size = kStreamInfoBytes;
        size = std::min(size, rest);
        WriteBig(file, at + 1, 3, size);
        if (first) {
            file[at] = static_cast<char>(ByteAt(file, at) & 0x80);
            RepairStreamInfo(file, at + 4);
        }
        const bool last = (ByteAt(file, at) & 0x80) != 0;
        at += 4 + size;
        if (last) return at;
    }
    return file.size();
}

// The size of a frame's header without its checksum; none where there is no header. RFC 9639, 9.1.
std::optional<std::size_t> FlacHeaderSize(const std::string& file, std::size_t at) {
    const unsigned int codes = ByteAt(file, at + 2);
    const unsigned int shape = ByteAt(file, at + 3);
    const bool sync = ByteAt(file, at) == 0xFF && (ByteAt(file, at + 1) & 0xFE) == 0xF8;
    const unsigned int width = shape >> 1 & 7;
    const bool valid = codes >> 4 != 0 && (codes & 15) != 15 && shape >> 4 < 11 && (shape & 1) == 0 && width != 3;
    if (!sync || !valid) return std::nullopt;

    std::size_t size = 5;
    for (unsigned int mask = 0x40; (ByteAt(file, at + 4) & 0x80) != 0 && (ByteAt(file, at + 4) & mask) != 0; mask >>= 1)
        ++size;
    if (codes >> 4 == 6 || codes >> 4 == 7) size += (codes >> 4) - 5;
    if ((codes & 15) >= 12) size += (codes & 15) == 12 ? 1 : 2;
    return at + size < file.size() ? std::optional(size) : std::nullopt;
}

void RepairFlac(std::string& file) {
    constexpr std::uint8_t kHeaderPolynomial = 0x07;
    constexpr std::uint16_t kFramePolynomial = 0x8005;
    const auto findFrame = [&file](std::size_t at) {
        while (at < file.size() && !FlacHeaderSize(file, at)) ++at;
        return at;
    };
    for (std::size_t at = findFrame(RepairFlacMetadata(file)); at < file.size();) {
        const std::size_t header = *FlacHeaderSize(file, at);
        WriteBig(file, at + header, 1, Remainder(file, at, at + header, kHeaderPolynomial));
        const std::size_t next = findFrame(at + header + 1);
        if (next - at > header + 3) WriteBig(file, next - 2, 2, Remainder(file, at, next - 2, kFramePolynomial));
        at = next;
    }
}

// RFC 3533, 6: the lacing values tell the size of the page, whose checksum is reckoned with zeros in its own place.
std::size_t RepairOggPage(std::string& file, std::size_t at) {
    constexpr std::size_t kHeaderBytes = 27;
    constexpr std::uint32_t kPolynomial = 0x04C11DB7;
    const std::size_t body = at + kHeaderBytes + ByteAt(file, at + 26);
    if (body > file.size()) return file.size();
    std::size_t end = body;
    for (std::size_t lacing = at + kHeaderBytes; lacing < body; ++lacing) {
        const std::size_t size = std::min<std::size_t>(ByteAt(file, lacing), file.size() - end);
        file[lacing] = static_cast<char>(size);
        end += size;
    }
    WriteLittle(file, at + 22, 4, 0);
    WriteLittle(file, at + 22, 4, Remainder(file, at, end, kPolynomial));
    return end;
}

void RepairOgg(std::string& file) {
    for (std::size_t at = 0; at < file.size();) {
        at = RepairOggPage(file, at);
        at = std::min(file.find("OggS", at), file.size());
    }
}

}  // namespace

void RepairContainer(std::string& file) {
    if (file.size() < 12) return;
    if (Begins(file, 0, "RIFF")) RepairWav(file);
    if (Begins(file, 0, "fLaC")) RepairFlac(file);
    if (Begins(file, 0, "OggS")) RepairOgg(file);
}
