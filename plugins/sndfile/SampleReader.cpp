// Whole frames of a sound file as packed little-endian PCM.
#include "plugins/sndfile/SampleReader.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

// Samples per piece; a piece always holds at least one frame.
constexpr sf_count_t kPieceSamples = 16384;

// The upper `bytes` bytes of each sample, lowest first; 8-bit samples are unsigned in the output.
void PackIntegers(const int* samples, std::size_t count, int bytes, unsigned char* out) {
    const std::uint32_t flip = bytes == 1 ? 0x80000000u : 0u;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t sample = static_cast<std::uint32_t>(samples[i]) ^ flip;
        for (int byte = 4 - bytes; byte < 4; ++byte) *out++ = static_cast<unsigned char>(sample >> (8 * byte));
    }
}

std::int16_t RoundedTo16(float sample) {
    const float scaled = sample * 32768.0f;
    if (scaled >= 32767.0f) return 32767;
    if (scaled > -32768.0f) return static_cast<std::int16_t>(std::lrintf(scaled));
    return static_cast<std::int16_t>(std::isnan(scaled) ? 0 : -32768);
}

void PackFloats(const float* samples, std::size_t count, unsigned char* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto sample = static_cast<std::uint16_t>(RoundedTo16(samples[i]));
        *out++ = static_cast<unsigned char>(sample);
        *out++ = static_cast<unsigned char>(sample >> 8);
    }
}

template <typename T>
bool IsAligned(const unsigned char* buffer) {
    return reinterpret_cast<std::uintptr_t>(buffer) % alignof(T) == 0;
}

// libsndfile tells an unknown length by the greatest count.
sf_count_t KnownLength(const SF_INFO& info) { return info.frames > 0 && info.frames < SF_COUNT_MAX ? info.frames : 0; }

}  // namespace

CSampleReader::CSampleReader(std::unique_ptr<CSoundFile> file)
    : m_file(std::move(file)),
      m_source(SourceFormatOf(m_file->Info())),
      m_nLength(KnownLength(m_file->Info())),
      m_nPieceFrames(std::max<sf_count_t>(1, kPieceSamples / m_source.m_format.nChannels)) {
    const auto samples = static_cast<std::size_t>(m_nPieceFrames * m_source.m_format.nChannels);
    if (m_source.m_eRoad == SR_INTEGER) {
        m_vIntegers.resize(samples);
    } else {
        m_vFloats.resize(samples);
    }
}

sf_count_t CSampleReader::Read(unsigned char* buffer, sf_count_t frames) {
    if (m_bDamaged) return kFailed;
    // Beyond the last frame a codec may stumble over a tag at the end of the file.
    const sf_count_t wanted = m_nLength != 0 ? std::min(frames, m_nLength - m_nPosition) : frames;
    const sf_count_t count = ReadPieces(buffer, wanted);
    m_nPosition += count;
    if (count != 0) return count;
    if (m_bDamaged) return kFailed;
    m_nLength = m_nPosition;
    return m_file->ShortfallAt(m_nPosition).empty() ? 0 : kFailed;
}

std::string CSampleReader::Failure() const {
    if (!m_bDamaged) return m_file->ShortfallAt(m_nPosition);
    const std::string& format = m_file->FormatName();
    return "damaged " + (format.empty() ? "" : format + " ") + "audio after frame " + std::to_string(m_nPosition) +
           ": " + m_strDamage;
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

// The codec writes its own integers straight into the caller's buffer where they lie right for it.
bool CSampleReader::ReadsDirectly(const unsigned char* buffer) const {
    if (m_source.m_eRoad != SR_INTEGER) return false;
    if (m_source.m_format.nBitsPerSample == 16) return IsAligned<short>(buffer);
    return m_source.m_format.nBitsPerSample == 32 && IsAligned<int>(buffer);
}

sf_count_t CSampleReader::ReadDirectly(unsigned char* buffer, sf_count_t frames) {
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
        PackIntegers(m_vIntegers.data(), samplesOf(count), m_source.m_format.nBitsPerSample / 8, out);
        return count;
    }
    const sf_count_t count = sf_readf_float(m_file->Handle(), m_vFloats.data(), frames);
    PackFloats(m_vFloats.data(), samplesOf(count), out);
    return count;
}

bool CSampleReader::Rewind() {
    if (m_nPosition == 0 && !m_bDamaged) return true;
    return m_file->IsSeekable() ? Seek(0) : Reopen();
}

bool CSampleReader::Seek(sf_count_t position) {
    if (!m_file->IsSeekable() || position < 0 || (m_nLength != 0 && position > m_nLength)) return false;
    const sf_count_t before = m_nPosition;
    if ((!m_bDamaged || Reopen()) && MoveTo(position)) return true;
    // Some codecs are of no use after damage or a failed seek.
    if (!Reopen() || !MoveTo(before)) NoteDamage(sf_strerror(m_file->Handle()));
    return false;
}

bool CSampleReader::Reopen() {
    if (!m_file->Reopen()) return false;
    m_bDamaged = false;
    m_nPosition = 0;
    return true;
}

bool CSampleReader::MoveTo(sf_count_t position) {
    // In Vorbis, libsndfile's own seek reports the right position and may deliver the samples of another.
    const bool vorbis = (m_file->Info().format & SF_FORMAT_SUBMASK) == SF_FORMAT_VORBIS;
    if (vorbis && position >= m_nPosition) return SkipTo(position);
    const sf_count_t target = vorbis ? 0 : position;
    if (sf_seek(m_file->Handle(), target, SEEK_SET) != target) return false;
    m_nPosition = target;
    return SkipTo(position);
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
