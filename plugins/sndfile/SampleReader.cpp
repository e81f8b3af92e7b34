// An open sound file as packed little-endian PCM.
#include "plugins/sndfile/SampleReader.h"

#include <algorithm>

#include "plugins/sndfile/CuePoints.h"
#include "plugins/sndfile/SamplePacking.h"
#include "plugins/sndfile/Tags.h"

namespace {

// Samples per piece; a piece always holds at least one frame.
constexpr sf_count_t kPieceSamples = 16384;

template <typename T>
bool IsAligned(const unsigned char* buffer) {
    return reinterpret_cast<std::uintptr_t>(buffer) % alignof(T) == 0;
}

}  // namespace

CSampleReader::CSampleReader(std::unique_ptr<CSoundFile> file, EAudioFeature level)
    : m_file(std::move(file)),
      m_source(SourceFormatOf(m_file->Info(), level)),
      m_order(m_file->ChannelOrder()),
      m_bPacked(m_order.MovesNothing() && IsPackedPcm(m_file->Info())),
      m_nLength(m_file->KnownLength()),
      m_nPieceFrames(std::max<sf_count_t>(1, kPieceSamples / m_source.m_format.nChannels)) {
    const auto samples = static_cast<std::size_t>(m_nPieceFrames * m_source.m_format.nChannels);
    if (m_source.m_eRoad != SR_INTEGER) {
        m_vFloats.resize(samples);
    } else if (!m_bPacked) {
        m_vIntegers.resize(samples);
    }
}

std::int32_t CSampleReader::GetFormatQualifier() const {
    return m_source.m_eRoad == SR_FLOAT ? kFloatSamples : kIntegerSamples;
}

std::int64_t CSampleReader::Read(unsigned char* buffer, std::int64_t frames) {
    if (m_bDamaged) RefuseDamage();
    // Beyond the last frame a codec may stumble over a tag at the end of the file.
    const sf_count_t wanted = m_nLength != 0 ? std::min(frames, m_nLength - m_nPosition) : frames;
    const sf_count_t count = ReadPieces(buffer, wanted);
    m_nPosition += count;
    if (count != 0) return count;
    if (m_bDamaged) RefuseDamage();
    m_nLength = m_nPosition;
    const std::string shortfall = m_file->ShortfallAt(m_nPosition);
    if (!shortfall.empty()) Refuse(shortfall);
    return 0;
}

void CSampleReader::RefuseDamage() const {
    const std::string& format = m_file->FormatName();
    Refuse("damaged " + (format.empty() ? "" : format + " ") + "audio after frame " + std::to_string(m_nPosition) +
           ": " + m_strDamage);
}

// A piece in which the codec meets damage is dropped: it does not tell which of its frames are good.
sf_count_t CSampleReader::ReadPieces(unsigned char* buffer, sf_count_t frames) {
    const std::int64_t blockSize = BlockSizeOf(m_source.m_format);
    sf_count_t total = 0;
    while (total < frames) {
        const sf_count_t wanted = std::min(frames - total, m_nPieceFrames);
        unsigned char* const out = buffer + total * blockSize;
        const sf_count_t count = ReadsDirectly(out) ? ReadDirectly(out, wanted) : ReadPiece(out, wanted);
        if (sf_error(m_file->Handle()) != SF_ERR_NO_ERROR) {
            NoteDamage(sf_strerror(m_file->Handle()));
            break;
        }
        total += count;
        if (count < wanted) break;
    }
    return total;
}

void CSampleReader::NoteDamage(const char* reason) {
    m_bDamaged = true;
    m_strDamage = reason;
}

// The codec writes its own samples straight into the caller's buffer where they lie right for it.
bool CSampleReader::ReadsDirectly(const unsigned char* buffer) const {
    if (m_bPacked || !m_order.MovesNothing()) return m_bPacked;
    if (m_source.m_eRoad == SR_FLOAT) return IsAligned<float>(buffer);
    if (m_source.m_eRoad != SR_INTEGER) return false;
    if (m_source.m_format.nBitsPerSample == 16) return IsAligned<short>(buffer);
    return m_source.m_format.nBitsPerSample == 32 && IsAligned<int>(buffer);
}

sf_count_t CSampleReader::ReadDirectly(unsigned char* buffer, sf_count_t frames) {
    if (m_bPacked) {
        const sf_count_t frameBytes = BlockSizeOf(m_source.m_format);
        return sf_read_raw(m_file->Handle(), buffer, frames * frameBytes) / frameBytes;
    }
    if (m_source.m_eRoad == SR_FLOAT) return sf_readf_float(m_file->Handle(), reinterpret_cast<float*>(buffer), frames);
    if (m_source.m_format.nBitsPerSample == 16) {
        return sf_readf_short(m_file->Handle(), reinterpret_cast<short*>(buffer), frames);
    }
    return sf_readf_int(m_file->Handle(), reinterpret_cast<int*>(buffer), frames);
}

sf_count_t CSampleReader::ReadPiece(unsigned char* out, sf_count_t frames) {
    const auto samplesOf = [this](sf_count_t count) {
        return static_cast<std::size_t>(count * m_source.m_format.nChannels);
    };
    if (m_source.m_eRoad == SR_INTEGER) {
        const sf_count_t count = sf_readf_int(m_file->Handle(), m_vIntegers.data(), frames);
        m_order.ToWave(m_vIntegers.data(), static_cast<std::size_t>(count));
        PackIntegers(m_vIntegers.data(), samplesOf(count), m_source.m_format.nBitsPerSample / 8, out);
        return count;
    }
    const sf_count_t count = sf_readf_float(m_file->Handle(), m_vFloats.data(), frames);
    m_order.ToWave(m_vFloats.data(), static_cast<std::size_t>(count));
    const auto pack = m_source.m_eRoad == SR_FLOAT ? PackFloats : PackRounded;
    pack(m_vFloats.data(), samplesOf(count), out);
    return count;
}

void CSampleReader::Rewind() {
    if (m_nPosition == 0 && !m_bDamaged) return;
    if (IsSeekable()) return Seek(0);
    Reopen();
}

void CSampleReader::Seek(std::uint64_t frame) {
    const std::string refusal = "cannot seek to frame " + std::to_string(frame);
    if (!IsSeekable() || frame > static_cast<std::uint64_t>(SF_COUNT_MAX)) Refuse(refusal);
    const sf_count_t before = m_nPosition;
    if (m_bDamaged) Reopen();
    if (MoveTo(static_cast<sf_count_t>(frame))) return;
    // Some codecs are of no use after a failed seek.
    Reopen();
    if (!MoveTo(before)) NoteDamage(sf_strerror(m_file->Handle()));
    Refuse(refusal);
}

void CSampleReader::Reopen() {
    try {
        m_file->Reopen();
    } catch (const std::exception& reason) {
        NoteDamage(reason.what());
        throw;
    }
    m_bDamaged = false;
    m_nPosition = 0;
}

bool CSampleReader::MoveTo(sf_count_t position) {
    const sf_count_t target = std::clamp<sf_count_t>(m_file->LastSureFrame(), 0, position);
    if (!ComesByDecoding(target)) {
        if (sf_seek(m_file->Handle(), target, SEEK_SET) != target) return false;
        m_nPosition = target;
    }
    return SkipTo(position);
}

// In Vorbis, libsndfile's own seek to the near future reports the right position and delivers the samples of another.
bool CSampleReader::ComesByDecoding(sf_count_t position) const {
    constexpr sf_count_t kNearSeconds = 3;  // libsndfile: 2
    const bool vorbis = (m_file->Info().format & SF_FORMAT_SUBMASK) == SF_FORMAT_VORBIS;
    const sf_count_t ahead = position - m_nPosition;
    return vorbis && ahead >= 0 && ahead <= kNearSeconds * m_source.m_format.nSampleRate;
}

// Decodes and drops what lies before `position`.
bool CSampleReader::SkipTo(sf_count_t position) {
    while (m_nPosition < position) {
        const sf_count_t wanted = std::min(position - m_nPosition, m_nPieceFrames);
        const sf_count_t count = sf_readf_float(m_file->Handle(), m_vFloats.data(), wanted);
        if (count <= 0) return false;
        m_nPosition += count;
    }
    return true;
}

STags CSampleReader::GetTags() const { return TagsOf(m_file->Handle()); }

// A cut file, and one whose marks name its end, have some where no frame is.
std::vector<std::uint64_t> CSampleReader::GetIndexPoints() const {
    std::vector<std::uint64_t> points = CuePointsOf(m_file->Handle());
    if (m_nLength != 0) points.erase(std::lower_bound(points.begin(), points.end(), GetLength()), points.end());
    return points;
}
