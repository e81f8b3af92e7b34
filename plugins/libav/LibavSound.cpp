// The sound track of a media file as an SDK sound.
#include "plugins/libav/LibavSound.h"

#include <algorithm>

#include "plugins/libav/Chapters.h"
#include "plugins/libav/Damage.h"
#include "plugins/libav/DeclaredEnd.h"
#include "plugins/libav/OutputFormat.h"
#include "plugins/libav/SamplePacking.h"
#include "plugins/libav/Tags.h"

namespace {

std::string FormatText(const SWavFormat& format) {
    return std::to_string(format.nSampleRate) + " Hz with " + std::to_string(format.nChannels) + " channels";
}

// By the first block's timestamp; 0 where that may be the rounding of the container or of the encoder's delay.
std::int64_t BeginOf(const CPositionedTrack& track) {
    constexpr std::int64_t kRoundingPerSecond = 20;
    const AVFrame& block = track.Block();
    if (block.pts == AV_NOPTS_VALUE) return 0;
    const std::int64_t begin =
        av_rescale_q(block.pts, track.Track().Container().Stream().time_base, {1, block.sample_rate});
    return begin > block.sample_rate / kRoundingPerSecond ? begin : 0;
}

}  // namespace

CLibavSound::CLibavSound(const std::string& path, EAudioFeature level)
    : m_file(std::make_shared<const CInputFile>(path)),
      m_track(m_file),
      m_nSampleFormat(m_track.Block().format),
      m_format(OutputFormatOf(m_track.Track().Codec(), m_track.Block(), level)),
      m_nBegin(BeginOf(m_track)),
      m_length(LengthOf(m_file, m_track)) {}

std::int64_t CLibavSound::Read(unsigned char* buffer, std::int64_t frames) {
    const std::int64_t blockSize = BlockSizeOf(m_format.m_format);
    std::int64_t total = 0;
    while (total < frames && FindSamples()) {
        const std::int64_t count = std::min(frames - total, BlockEnd() - m_nPosition);
        PackSamples(m_track.Block(), m_nPosition - m_track.BlockStart(), count, m_format, buffer + total * blockSize);
        m_nPosition += count;
        total += count;
    }
    if (total == 0 && !m_strFailure.empty()) Refuse(m_strFailure);
    if (total == 0 && m_bPlaceLost) throw std::bad_alloc();
    return total;
}

// Of the current block, without the padding at the sound's end.
std::int64_t CLibavSound::BlockEnd() const {
    return m_length.m_bIsLimit ? std::min(m_track.BlockEnd(), m_length.m_nFrames) : m_track.BlockEnd();
}

// Whether the current block holds samples for the position, after steps forward.
bool CLibavSound::FindSamples() {
    if (m_bPlaceLost || !m_strFailure.empty() || (m_length.m_bIsLimit && m_nPosition >= m_length.m_nFrames))
        return false;
    try {
        while (m_nPosition >= m_track.BlockEnd()) {
            if (!NextBlock()) return false;
        }
        return true;
    } catch (const CDamage& damage) {
        m_bPlaceLost = true;
        m_strFailure = "damaged " + m_track.Track().Container().Description() + " after frame " +
                       std::to_string(m_nPosition) + ": " + damage.what();
        return false;
    } catch (const std::bad_alloc&) {
        // What would have come next is lost.
        m_bPlaceLost = true;
        return false;
    }
}

bool CLibavSound::NextBlock() {
    if (m_track.Next()) {
        RequireSameFormat();
        if (IsLengthDisproved()) m_length = {};
        return true;
    }
    NoteEnd();
    return false;
}

// By what has been read: timestamps that were taken for steady break off, or go back behind a gap.
bool CLibavSound::IsLengthDisproved() {
    return (m_length.m_bByTimes && !m_track.HasSteadyTimes()) || (m_length.m_bPromised && m_track.IsJoined());
}

void CLibavSound::RequireSameFormat() const {
    const AVFrame& block = m_track.Block();
    const SWavFormat& format = m_format.m_format;
    const SWavFormat other{block.sample_rate, format.nBitsPerSample, block.ch_layout.nb_channels};
    if (other.nSampleRate == format.nSampleRate && other.nChannels == format.nChannels &&
        block.format == m_nSampleFormat) {
        return;
    }
    throw CDamage("the sound changes from " + FormatText(format) + " to " + FormatText(other));
}

// A sound that ends before its time is an error, not an end.
void CLibavSound::NoteEnd() {
    const std::string there = std::to_string(m_nPosition);
    if (m_length.IsCutShortAt(m_nPosition)) {
        m_strFailure = "cut short: " + there + " of " + std::to_string(m_length.m_nFrames) + " frames are there";
    } else if (IsCutShort(*m_file)) {
        m_strFailure = "cut short: the end is missing, " + there + " frames are there";
    } else {
        m_length.m_nFrames = m_nPosition;
    }
}

void CLibavSound::Seek(std::uint64_t frame) {
    const std::int64_t before = m_nPosition;
    const std::string failure = m_strFailure;
    try {
        MoveTo(static_cast<std::int64_t>(std::min<std::uint64_t>(frame, INT64_MAX)));
    } catch (const std::runtime_error& error) {
        ReturnTo(before, failure);
        Refuse("cannot seek to frame " + std::to_string(frame) + ": " + error.what());
    } catch (const std::bad_alloc&) {
        ReturnTo(before, failure);
        throw;
    }
}

void CLibavSound::MoveTo(std::int64_t position) {
    const bool ahead = !m_bPlaceLost && m_strFailure.empty() && position >= m_nPosition &&
                       position - m_nPosition <= m_format.m_format.nSampleRate;
    m_bPlaceLost = true;
    if (!ahead && !Approach(position)) m_track.Restart();
    DecodeTo(position);
    m_bPlaceLost = false;
    m_nPosition = position;
    m_strFailure.clear();
}

// The last block stands for the end, which no block holds.
bool CLibavSound::Approach(std::int64_t position) {
    const std::int64_t held = position == m_length.m_nFrames ? position - 1 : position;
    return held > m_format.m_format.nSampleRate / 2 && m_track.Approach(held);
}

void CLibavSound::DecodeTo(std::int64_t position) {
    while (m_track.BlockEnd() <= position && m_track.Next()) {
    }
    if (m_track.BlockEnd() < position) Refuse("the sound ends after " + std::to_string(m_track.BlockEnd()) + " frames");
    if (m_track.BlockEnd() > position) RequireSameFormat();
}

// After a seek that failed. What could not be read before cannot be read after it. Without memory the place stays lost,
// and nothing is read until a seek.
void CLibavSound::ReturnTo(std::int64_t position, const std::string& failure) {
    m_nPosition = position;
    try {
        m_strFailure = failure;
        if (failure.empty()) MoveTo(position);
    } catch (const std::runtime_error& error) {
        m_strFailure = error.what();
    } catch (const std::bad_alloc&) {
    }
}

STags CLibavSound::GetTags() const {
    return TagsOf(m_track.Track().Container().Context(), m_track.Track().Container().Stream());
}

std::vector<std::uint64_t> CLibavSound::GetIndexPoints() const {
    std::vector<std::uint64_t> points =
        ChapterStartsOf(m_track.Track().Container().Context(), m_format.m_format.nSampleRate, m_nBegin);
    const auto isBehind = [this](std::uint64_t point) { return m_length.m_nFrames != 0 && point >= GetLength(); };
    points.erase(std::remove_if(points.begin(), points.end(), isBehind), points.end());
    return points;
}
