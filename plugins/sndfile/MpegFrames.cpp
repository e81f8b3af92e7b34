// The frames of an MPEG audio file, counted by their headers.
#include "plugins/sndfile/MpegFrames.h"

#include <algorithm>

namespace {

// Headers in a row that are taken for frames and not for chance.
constexpr int kLinksAtStart = 2;
constexpr int kLinksBehindOtherBytes = 3;

// Bytes behind a tag in which the first frame is looked for.
constexpr std::uint64_t kStartSearch = 65536;

// id3.org, ID3v2.4.0 3.1: a header of 10 bytes, whose last four hold 7 bits of the size each; flag 0x10 adds a footer.
constexpr std::size_t kTagHeaderBytes = 10;

std::uint64_t SkipTags(CFileBytes& file) {
    std::uint64_t at = 0;
    for (;;) {
        const std::string_view header = file.At(at, kTagHeaderBytes);
        if (header.size() < kTagHeaderBytes || header.substr(0, 3) != "ID3") return at;
        std::uint64_t size = 0;
        for (const char byte : header.substr(6)) size = size << 7 | (static_cast<unsigned char>(byte) & 0x7F);
        const bool footer = (header[5] & 0x10) != 0;
        at += kTagHeaderBytes + size + (footer ? kTagHeaderBytes : 0);
    }
}

// Whether `links` frames akin to `header` follow one another from `at`, or, where that is enough, fewer up to the end.
bool FramesFollow(CFileBytes& file, const CMpegHeader& kin, std::uint64_t at, std::uint64_t end, int links,
                  bool endIsEnough = true) {
    for (int link = 0; link < links; ++link) {
        if (at >= end) return endIsEnough && link > 0;
        const auto header = CMpegHeader::Parse(file.At(at, kMpegHeaderBytes));
        if (!header || !header->IsAkinTo(kin)) return false;
        at += header->FrameBytes();
    }
    return true;
}

// The next frame of the stream from `at` on; `end` when there is none.
std::uint64_t FindNextFrame(CFileBytes& file, const CMpegHeader& kin, std::uint64_t at, std::uint64_t end) {
    while (at < end && !FramesFollow(file, kin, at, end, kLinksBehindOtherBytes)) ++at;
    return at;
}

// A frame where the last one ended; of another kind only with more of its kind behind it.
std::optional<CMpegHeader> FrameAt(CFileBytes& file, const CMpegHeader& kin, std::uint64_t at, std::uint64_t end) {
    const auto header = CMpegHeader::Parse(file.At(at, kMpegHeaderBytes));
    if (!header || header->IsAkinTo(kin)) return header;
    return FramesFollow(file, *header, at, end, kLinksBehindOtherBytes) ? header : std::nullopt;
}

}  // namespace

std::optional<SMpegStart> FindMpegStart(CFileBytes& file) {
    const std::uint64_t from = SkipTags(file);
    const std::uint64_t end = MpegAudioEnd(file);
    const auto first = CMpegHeader::Parse(file.At(from, kMpegHeaderBytes));
    if (!first) return std::nullopt;
    if (FramesFollow(file, *first, from, end, kLinksAtStart)) return SMpegStart{from, *first};
    for (std::uint64_t at = from + 1; at < std::min(end, from + kStartSearch); ++at) {
        const auto header = CMpegHeader::Parse(file.At(at, kMpegHeaderBytes));
        if (header && FramesFollow(file, *header, at, end, kLinksBehindOtherBytes, false)) {
            return SMpegStart{at, *header};
        }
    }
    return std::nullopt;
}

// id3.org, ID3v1: 128 bytes that begin with "TAG".
std::uint64_t MpegAudioEnd(CFileBytes& file) {
    const std::uint64_t size = file.Size();
    return size >= 128 && file.At(size - 128, 3) == "TAG" ? size - 128 : size;
}

SMpegCount CountMpegFrames(CFileBytes& file, const SMpegStart& start, std::uint64_t from) {
    const std::uint64_t end = MpegAudioEnd(file);
    SMpegCount count;
    count.m_nEnd = from;
    for (std::uint64_t at = from; at < end;) {
        const auto header = FrameAt(file, start.m_header, at, end);
        if (!header) {
            at = FindNextFrame(file, start.m_header, at + 1, end);
            continue;
        }
        at += header->FrameBytes();
        count.m_bEndsInFrame = at > end;
        if (count.m_bEndsInFrame) break;
        ++count.m_nFrames;
        count.m_nEnd = at;
    }
    return count;
}
