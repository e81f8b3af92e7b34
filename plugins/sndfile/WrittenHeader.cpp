// Headers of written files where libsndfile's own is not right.
#include "plugins/sndfile/WrittenHeader.h"

#include <algorithm>

#include "sdk/Guard.h"

namespace {

constexpr std::uint64_t kUnknownSize = 0xFFFFFFFF;
constexpr std::size_t kFirstChunk = 12;  // behind RIFF, size and WAVE, or FORM, size and AIFF
constexpr std::size_t kChunkHeader = 8;

// EBU Tech 3306, 3: the chunk of the long sizes comes first; until it is needed its place is held by one of no meaning.
constexpr const char* kRoomName = "JUNK";
constexpr std::size_t kRoomBytes = 28;

std::string LittleEndian(std::uint64_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
    return text;
}

std::string BigEndian(std::uint64_t value, int bytes) {
    std::string text = LittleEndian(value, bytes);
    std::reverse(text.begin(), text.end());
    return text;
}

}  // namespace

void ReserveLongSizes(SNDFILE* file) {
    char nothing[kRoomBytes] = {};
    SF_CHUNK_INFO room = {};
    room.id_size = 4;
    room.datalen = kRoomBytes;
    room.data = nothing;
    std::char_traits<char>::copy(room.id, kRoomName, 4);
    if (sf_set_chunk(file, &room) != SF_ERR_NO_ERROR) Refuse(sf_strerror(file));
}

std::string CorrectedWavHeader(const std::string& header, const SWrittenSizes& sizes) {
    if (sizes.m_nFile < kUnknownSize + kChunkHeader) return {};
    const std::size_t room = header.find(kRoomName + LittleEndian(kRoomBytes, 4), kFirstChunk);
    if (room == std::string::npos) Refuse("the header has no room for sizes beyond 4 GiB");
    const std::string longSizes = "ds64" + LittleEndian(kRoomBytes, 4) + LittleEndian(sizes.m_nFile - kChunkHeader, 8) +
                                  LittleEndian(sizes.m_nData, 8) + LittleEndian(sizes.m_nFrames, 8) +
                                  LittleEndian(0, 4);
    const std::string before = header.substr(kFirstChunk, room - kFirstChunk);
    const std::string behind = header.substr(room + longSizes.size());
    const std::string unknown = LittleEndian(kUnknownSize, 4);
    return "RF64" + unknown + "WAVE" + longSizes + before + behind.substr(0, behind.size() - 4) + unknown;
}

// AIFF 1.3: behind the name and size of COMM stand the channels and then the frames; the last 16 bytes before the
// samples are those of SSND, whose size includes the last 8 of them.
std::string CorrectedAiffHeader(const std::string& header, const SWrittenSizes& sizes) {
    const std::size_t common = header.find("COMM", kFirstChunk);
    if (sizes.m_nData % 2 == 0 || common == std::string::npos) return {};
    std::string corrected = header;
    corrected.replace(common + kChunkHeader + 2, 4, BigEndian(sizes.m_nFrames, 4));
    corrected.replace(header.size() - 12, 4, BigEndian(8 + sizes.m_nData, 4));
    return corrected;
}
