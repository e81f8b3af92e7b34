// How long a sound is.
#include "plugins/libav/SoundLength.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>

namespace {

// The coarsest unit that edit lists are written in is 1/600 of a second.
constexpr std::int64_t kEditUnitsPerSecond = 600;

// The last page's time may hold a codec's delay.
constexpr std::int64_t kTimesPerSecond = 10;

// More than a codec delivers of padding: frames of one packet and of the filters behind it.
constexpr std::int64_t kMostPadding = 8192;

// A time of the stream in frames. With the second rate of SBR a unit is two frames; 0 where units are longer still.
std::int64_t FramesOf(const CPositionedTrack& track, std::int64_t time) {
    const AVRational base = track.Track().Container().Stream().time_base;
    const std::int64_t rate = track.Block().sample_rate;
    if (time == AV_NOPTS_VALUE || 2 * std::int64_t{base.den} < rate * base.num) return 0;
    return av_rescale_q(time, base, {1, static_cast<int>(rate)});
}

// Times of Opus in Ogg count what is left out at the beginning (RFC 7845, 4.3).
std::int64_t PreSkipOf(const AVStream& stream) {
    return stream.codecpar->codec_id == AV_CODEC_ID_OPUS ? stream.codecpar->initial_padding : 0;
}

// What encoders note in MP4 files: after three numbers, of which two are delay and padding, the length of the sound,
// all in hexadecimal. 0 without.
std::int64_t NotedLength(const AVFormatContext& context) {
    const AVDictionaryEntry* const note = av_dict_get(context.metadata, "iTunSMPB", nullptr, 0);
    unsigned long length = 0;
    if (note == nullptr || std::sscanf(note->value, "%*x %*x %*x %lx", &length) != 1) return 0;
    return static_cast<std::int64_t>(std::min<unsigned long>(length, INT64_MAX));
}

// An edit list tells the duration in a unit of its own, often milliseconds. Where the track's header means the same
// time, its count of frames is the true one.
std::int64_t EditedLength(const std::shared_ptr<const CInputFile>& file, const CPositionedTrack& track) {
    const std::int64_t edited = FramesOf(track, track.Track().Container().Duration());
    const std::int64_t delay = std::max<std::int64_t>(0, -FramesOf(track, track.Track().FirstTimestamp()));
    const std::int64_t counted = FramesOf(track, CContainer::DurationWithoutEdits(file)) - delay;
    return std::abs(counted - edited) <= track.Block().sample_rate / kEditUnitsPerSecond + 1 ? counted : edited;
}

std::int64_t DeclaredLength(const std::shared_ptr<const CInputFile>& file, const CPositionedTrack& track) {
    const std::int64_t noted = NotedLength(track.Track().Container().Context());
    return noted != 0 ? noted : EditedLength(file, track);
}

// A damaged end tells nothing here: the reading will report it.
SSoundEnd EndOf(CPositionedTrack& track) {
    std::optional<SSoundEnd> end;
    try {
        end = track.FindEnd();
    } catch (const std::runtime_error&) {
    }
    track.Restart();
    return end.value_or(SSoundEnd());
}

}  // namespace

// What a joined file declares is the length of one of its recordings. What it declares with gaps stays promised.
SSoundLength LengthOf(const std::shared_ptr<const CInputFile>& file, CPositionedTrack& track) {
    const SKnownFormat& format = track.Track().Container().Format();
    const std::int64_t told = FramesOf(track, track.Track().Container().Duration());
    if (format.m_eLength == LS_FRAMES && told > 0 && !track.IsJoined()) return {told, false, true};
    const std::int64_t timed = told - PreSkipOf(track.Track().Container().Stream());
    if (format.m_eLength == LS_TIME && timed > 0 && !track.IsJoined()) {
        return {timed, false, true, track.Block().sample_rate / kTimesPerSecond};
    }
    const SSoundEnd end = EndOf(track);
    const std::int64_t declared = format.m_eLength == LS_EDITS ? DeclaredLength(file, track) : 0;
    const bool padded = declared > 0 && declared < end.m_nPosition && end.m_nPosition - declared <= kMostPadding;
    return {padded ? declared : end.m_nPosition, padded, false, 0, end.m_bByTimes};
}
