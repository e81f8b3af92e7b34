// How many frames a sound file declares where its header counts frames and not bytes.
#include "plugins/sndfile/DeclaredFrames.h"

#include <algorithm>
#include <charconv>

namespace {

// NIST SPHERE: lines of text in the first kilobyte, up to one that is "end_head".
std::uint64_t CountOfNist(CFileBytes& file) {
    constexpr std::string_view kField = "\nsample_count -i ";
    std::string_view header = file.At(0, 1024);
    header = header.substr(0, header.find("\nend_head"));
    const std::size_t at = header.find(kField);
    std::uint64_t count = 0;
    if (at != std::string_view::npos) {
        std::from_chars(header.data() + at + kField.size(), header.data() + header.size(), count);
    }
    return count;
}

std::uint64_t NumberAt(CFileBytes& file, std::uint64_t offset) {
    const std::string_view field = file.At(offset, 4);
    return field.size() == 4 ? FromBigEndian(field) : 0;
}

// MIDI 1.0, Sample Dump Standard: a header of 21 bytes, of which 6 is the width and 10 to 12 the count, with seven bits
// in each and the lowest first; then packets of 127 bytes with 120 of samples, each sample in as many sevens as it
// needs.
constexpr std::uint64_t kDumpHeaderBytes = 21;
constexpr std::uint64_t kDumpCount = 10;
constexpr std::uint64_t kDumpPacketBytes = 127;
constexpr std::uint64_t kMostDumpCount = 0x1FFFFF;

std::string SevenBitBytes(std::uint64_t number) {
    std::string bytes;
    for (int shift = 0; shift < 21; shift += 7) bytes += static_cast<char>(number >> shift & 0x7F);
    return bytes;
}

// libsndfile 1.2.0 takes a missing packet for the one before it, and a packet that is not full for silence.
SDeclaredFrames FramesOfDump(CFileBytes& file) {
    const std::string header(file.At(0, kDumpHeaderBytes));
    if (header.size() < kDumpHeaderBytes) return {};
    const int bits = static_cast<unsigned char>(header[6]);
    const std::uint64_t perPacket = bits < 14 ? 60 : bits < 21 ? 40 : 30;
    std::uint64_t declared = 0;
    for (std::size_t i = 3; i-- > 0;) declared = declared << 7 | (header[kDumpCount + i] & 0x7F);
    const std::uint64_t packets = (file.Size() - kDumpHeaderBytes) / kDumpPacketBytes;
    const std::uint64_t wanted = declared != 0 ? (declared + perPacket - 1) / perPacket : packets;
    const std::uint64_t shown = std::min(std::min(wanted, packets) * perPacket, kMostDumpCount);
    return {declared, SSplice{kDumpCount, 3, SevenBitBytes(shown)}};
}

}  // namespace

SDeclaredFrames FindDeclaredFrames(CFileBytes& file, const std::string& formatName) {
    if (formatName == "NIST") return {CountOfNist(file), {}};
    if (formatName == "AVR") return {NumberAt(file, 26), {}};
    if (formatName == "WVE") return {NumberAt(file, 18), {}};
    if (formatName == "SDS") return FramesOfDump(file);
    return {};
}
