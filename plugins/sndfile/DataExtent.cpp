// How many bytes of samples the header of a sound file declares, and how many are there.
#include "plugins/sndfile/DataExtent.h"

#include <algorithm>

namespace {

using CNumberReader = std::uint64_t (*)(std::string_view);

// A container of chunks: where they begin, and what each begins with.
struct SChunkLayout {
    std::uint64_t m_nFirst;
    std::size_t m_nNameBytes;
    std::size_t m_nSizeBytes;
    std::uint64_t m_nSizeCounts;  // bytes of its own header that a chunk's size includes
    std::uint64_t m_nAlignment;
    CNumberReader m_pNumber;
};

struct SChunk {
    std::uint64_t m_nSizeField;
    std::uint64_t m_nContent;
    std::uint64_t m_nSize;  // of the content
};

// What a file declares of its samples' chunk, and where.
struct SDeclaredSize {
    std::uint64_t m_nSize;
    std::uint64_t m_nField;
    std::size_t m_nFieldBytes;
};

struct SFormatLayout {
    const char* m_strFormat;
    SChunkLayout m_layout;
    const char* m_strData;        // the chunk of the samples
    std::uint64_t m_nDataHeader;  // bytes before the samples in it
};

// Names of W64 chunks are GUIDs that begin with the name of RIFF.
constexpr SChunkLayout kRiff = {12, 4, 4, 0, 2, FromLittleEndian};
constexpr SChunkLayout kBigRiff = {12, 4, 4, 0, 2, FromBigEndian};
constexpr SChunkLayout kW64 = {40, 16, 8, 24, 8, FromLittleEndian};
constexpr SChunkLayout kCaf = {8, 4, 8, 0, 1, FromBigEndian};
// Creative Voice File: blocks that begin with their type and 24 bits of size. The codec refuses a file of the older
// types of sound that is cut short; 9 is the one that it does not.
constexpr SChunkLayout kVoc = {26, 1, 3, 0, 1, FromLittleEndian};
constexpr SFormatLayout kFormats[] = {{"WAV", kRiff, "data", 0},     {"AIFF", kBigRiff, "SSND", 8},
                                      {"AIFC", kBigRiff, "SSND", 8}, {"IFF", kBigRiff, "BODY", 0},
                                      {"W64", kW64, "data", 0},      {"CAF", kCaf, "data", 4},
                                      {"VOC", kVoc, "\x09", 12}};

// Up to where the next chunk begins.
std::uint64_t PaddedSize(const SChunkLayout& layout, std::uint64_t size) {
    return size + (layout.m_nAlignment - size % layout.m_nAlignment) % layout.m_nAlignment;
}

// The first chunk of that name.
std::optional<SChunk> FindChunk(CFileBytes& file, const SChunkLayout& layout, std::string_view name) {
    const std::size_t headerBytes = layout.m_nNameBytes + layout.m_nSizeBytes;
    for (std::uint64_t at = layout.m_nFirst;;) {
        const std::string_view header = file.At(at, headerBytes);
        if (header.size() < headerBytes) return std::nullopt;
        const std::uint64_t size = layout.m_pNumber(header.substr(layout.m_nNameBytes));
        if (size < layout.m_nSizeCounts) return std::nullopt;
        const SChunk chunk{at + layout.m_nNameBytes, at + headerBytes, size - layout.m_nSizeCounts};
        if (header.substr(0, name.size()) == name) return chunk;
        if (chunk.m_nSize >= file.Size() - chunk.m_nContent) return std::nullopt;
        at = chunk.m_nContent + PaddedSize(layout, chunk.m_nSize);
    }
}

// What writers to a pipe put where a size belongs: nothing, all ones, the greatest signed number, or a number just
// below the greatest one that is a whole count of frames (sox: 0x7F000000 in AIFF, 0x7FFFF000 in WAV).
bool IsUnknown(std::uint64_t size) {
    constexpr std::uint64_t kSlack = 0x10000;
    const auto isBelow = [size](std::uint64_t limit) { return size <= limit && size > limit - kSlack; };
    return size == 0 || isBelow(0xFFFFFFFF) || isBelow(0x80000000) || isBelow(0x7F000000 + 0x100) || size >> 62 != 0;
}

std::string SizeBytes(std::uint64_t size, std::size_t count, CNumberReader order) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) bytes += static_cast<char>(size >> (8 * i));
    if (order == FromBigEndian) std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

// Four printable characters, as all names of chunks begin, and a size that fits the file.
bool IsChunk(CFileBytes& file, const SChunkLayout& layout, std::uint64_t at) {
    const std::size_t headerBytes = layout.m_nNameBytes + layout.m_nSizeBytes;
    const std::string_view header = file.At(at, headerBytes);
    return header.size() == headerBytes &&
           std::all_of(header.begin(), header.begin() + 4, [](char name) { return name >= ' ' && name <= '~'; }) &&
           layout.m_pNumber(header.substr(layout.m_nNameBytes)) <= file.Size() - at;
}

// Whether `size` bytes of content from `start` on end with the file or, maybe after padding, before a chunk.
bool EndsWell(CFileBytes& file, const SChunkLayout& layout, std::uint64_t start, std::uint64_t size) {
    if (start > file.Size() || size > file.Size() - start) return false;
    const std::uint64_t end = start + size;
    return file.Size() - end < layout.m_nAlignment || IsChunk(file, layout, end) ||
           IsChunk(file, layout, start + PaddedSize(layout, size));
}

// With room for what the size counts besides.
bool Holds(std::size_t fieldBytes, std::uint64_t size) {
    return fieldBytes == 8 || size < (std::uint64_t{1} << 8 * fieldBytes) - 0x10000;
}

// EBU Tech 3306: the sizes of an RF64 file are in a chunk of their own, that of the samples its second. Where it
// comes before them, the codec asks no other.
SDeclaredSize DeclaredSize(CFileBytes& file, const SChunkLayout& layout, const SChunk& data) {
    const bool isLong = file.At(0, 4) == "RF64";
    const auto sizes = isLong ? FindChunk(file, kRiff, "ds64") : std::nullopt;
    if (!sizes || sizes->m_nContent + 16 > data.m_nSizeField) {
        return {data.m_nSize, data.m_nSizeField, layout.m_nSizeBytes};
    }
    const std::uint64_t field = sizes->m_nContent + 8;
    return {FromLittleEndian(file.At(field, 8)), field, 8};
}

// What a WAV file has up to and with the size of its samples, as RF64: its first chunk tells the sizes of the file and
// of the samples, and no frames and no table. None where more comes before than a header has.
std::optional<SSplice> LongHeader(CFileBytes& file, std::uint64_t sizeField, std::uint64_t present) {
    constexpr std::uint64_t kMostBytes = 1 << 20;
    constexpr std::uint64_t kChunkBytes = 28;
    constexpr std::uint64_t kAdded = 8 + kChunkBytes;
    constexpr auto kOrder = FromLittleEndian;
    if (sizeField > kMostBytes) return std::nullopt;
    const std::string chunks(file.At(12, sizeField - 12));
    const std::string unknown = SizeBytes(UINT32_MAX, 4, kOrder);
    const std::string sizes = SizeBytes(file.Size() + kAdded - 8, 8, kOrder) + SizeBytes(present, 8, kOrder);
    return SSplice{0, sizeField + 4,
                   "RF64" + unknown + "WAVEds64" + SizeBytes(kChunkBytes, 4, kOrder) + sizes +
                       std::string(kChunkBytes - sizes.size(), '\0') + chunks + unknown};
}

// By which the codec finds `present` bytes of samples, where a size says `counted`. None where no header lets it.
std::optional<SSplice> SpliceFor(CFileBytes& file, const SChunkLayout& layout, const SDeclaredSize& declared,
                                 std::uint64_t present, std::uint64_t counted) {
    const auto inField = [&](std::uint64_t size) {
        return SSplice{declared.m_nField, declared.m_nFieldBytes,
                       SizeBytes(size, declared.m_nFieldBytes, layout.m_pNumber)};
    };
    if (Holds(declared.m_nFieldBytes, present)) return inField(counted);
    if (file.At(0, 4) == "RIFF") return LongHeader(file, declared.m_nField, present);
    // libsndfile 1.2.0 takes it for all that is there.
    if (file.At(8, 3) == "AIF") return inField(0);
    return std::nullopt;
}

// .snd, offset of the samples, their size (Sun's audio(5)); .snd turned round, lowest bytes first. libsndfile 1.2.0
// takes sizes from 2 GiB on for negative ones, but for all ones, with which it goes by the size of the file.
std::optional<SDataExtent> FindAuExtent(CFileBytes& file) {
    const SChunkLayout& layout = file.At(0, 1) == "." ? kBigRiff : kRiff;
    const std::string_view header = file.At(0, 12);
    if (header.size() < 12) return std::nullopt;
    const std::uint64_t start = layout.m_pNumber(header.substr(4, 4));
    const std::uint64_t size = layout.m_pNumber(header.substr(8));
    const std::uint64_t present = file.Size() > start ? file.Size() - start : 0;
    const std::uint64_t known = IsUnknown(size) ? 0 : size;
    const bool misleading = (known == 0 || size > INT32_MAX) && present != 0;
    return SDataExtent{known, present, misleading, false, SSplice{8, 4, SizeBytes(UINT32_MAX, 4, layout.m_pNumber)}};
}

}  // namespace

std::optional<SDataExtent> FindDataExtent(CFileBytes& file, const std::string& formatName) {
    if (formatName == "AU") return FindAuExtent(file);
    const auto format = std::find_if(std::begin(kFormats), std::end(kFormats),
                                     [&](const SFormatLayout& entry) { return formatName == entry.m_strFormat; });
    if (format == std::end(kFormats)) return std::nullopt;
    const SChunkLayout& layout = file.At(0, 4) == "RIFX" ? kBigRiff : format->m_layout;
    const auto data = FindChunk(file, layout, format->m_strData);
    if (!data) return std::nullopt;

    std::uint64_t header = format->m_nDataHeader;
    // AIFF 1.3: the samples begin behind as many bytes as the first word says.
    if (format->m_strData[0] == 'S') header += FromBigEndian(file.At(data->m_nContent, 4));
    const SDeclaredSize declared = DeclaredSize(file, layout, *data);
    const std::uint64_t size = declared.m_nSize;

    const std::uint64_t start = data->m_nContent + header;
    const std::uint64_t present = file.Size() > start ? file.Size() - start : 0;
    const bool isW64 = formatName == "W64";
    const bool endsWell = size <= header ? IsChunk(file, layout, start)
                                         : (isW64 || IsUnknown(size)) && EndsWell(file, layout, data->m_nContent, size);
    const bool open = !endsWell && (size <= header || IsUnknown(size));
    const std::uint64_t known = open || size < header ? 0 : size - header;
    // libsndfile 1.2.0 takes all that follows, be it padding or chunks, for samples.
    if (isW64 && endsWell && known < present) {
        return SDataExtent{known, present, true, false, SSplice{start + known, present - known, ""}};
    }
    const auto splice = SpliceFor(file, layout, declared, present, present + header + layout.m_nSizeCounts);
    // The codec does not need the size of VOC.
    const bool tooLong = open && !splice && format->m_layout.m_nSizeBytes == 4;
    return SDataExtent{known, present, open && splice && present != 0, tooLong, splice.value_or(SSplice())};
}
