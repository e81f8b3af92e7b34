// WAV files that outgrow 32 bits: RF64.
#include "plugins/sndfile/LongWav.h"

#include "sdk/Guard.h"

namespace {

constexpr std::uint64_t kUnknownSize = 0xFFFFFFFF;
constexpr std::size_t kFirstChunk = 12;  // behind RIFF, size and WAVE
constexpr std::size_t kChunkHeader = 8;

// EBU Tech 3306, 3: the chunk of the long sizes comes first; until it is needed its place is held by one of no meaning.
constexpr const char* kRoomName = "JUNK";
constexpr std::size_t kRoomBytes = 28;

std::string LittleEndian(std::uint64_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
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

bool SWavSizes::NeedLongHeader() const { return m_nFile >= kUnknownSize + kChunkHeader; }

std::string LongHeader(const std::string& header, const SWavSizes& sizes) {
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
