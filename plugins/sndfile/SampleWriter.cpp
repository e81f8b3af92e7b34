// Packed little-endian PCM into a sound file.
#include "plugins/sndfile/SampleWriter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "plugins/sndfile/Id3Tag.h"
#include "plugins/sndfile/OutputSettings.h"
#include "plugins/sndfile/SamplePacking.h"
#include "plugins/sndfile/Tags.h"
#include "plugins/sndfile/WrittenHeader.h"

namespace {

// Samples per piece; a piece always holds at least one frame.
constexpr sf_count_t kPieceSamples = 16384;

template <typename T>
bool IsAligned(const unsigned char* data) {
    return reinterpret_cast<std::uintptr_t>(data) % alignof(T) == 0;
}

CChannelOrder OrderOf(EOutputCoding coding, int channels) {
    return coding == OC_VORBIS || coding == OC_OPUS ? CChannelOrder::OfVorbis(channels) : CChannelOrder();
}

// libsndfile 1.2.0 scales integers a little too high for Vorbis and drops half of each block of 16-bit stereo for MP3.
bool TakesFloats(const SOutputFormat& output, const STargetRequest& request) {
    const bool lossless = output.m_eCoding == OC_PCM || output.m_eCoding == OC_FLAC;
    return !lossless || WantsFloat(request.m_settings);
}

// Some encoders write their header with the first frame only, and none for a sound without any.
void WriteHeader(SNDFILE* file, EOutputCoding coding) {
    if (coding == OC_VORBIS || coding == OC_OPUS) return;  // these do so at the end
    sf_command(file, SFC_UPDATE_HEADER_NOW, nullptr, 0);
}

std::unique_ptr<COutputFile> Create(const SOutputFormat& output, const STargetRequest& request,
                                    const SWavFormat& accepted) {
    const bool mp3 = output.m_eCoding == OC_MP3;
    auto file = std::make_unique<COutputFile>(request.m_strPath, mp3 ? Id3Tag(request.m_tags) : "",
                                              OutputInfo(output, accepted, WantsFloat(request.m_settings)));
    ApplySettings(file->Handle(), output, request.m_settings, accepted);
    if (!mp3) SetTags(file->Handle(), request.m_tags);
    if (output.m_nFormat == SF_FORMAT_WAV) ReserveLongSizes(file->Handle());
    WriteHeader(file->Handle(), output.m_eCoding);
    const std::string reason = file->Reason();
    if (!reason.empty()) Refuse(reason);
    return file;
}

}  // namespace

CSampleWriter::CSampleWriter(const SOutputFormat& output, const STargetRequest& request, const SWavFormat& accepted)
    : m_output(output),
      m_format(accepted),
      m_bFloat(TakesFloats(output, request)),
      m_bPacked(!m_bFloat && HoldsPackedPcm(output.m_nFormat)),
      m_order(OrderOf(output.m_eCoding, accepted.nChannels)),
      m_nPieceFrames(std::max<sf_count_t>(1, kPieceSamples / accepted.nChannels)) {
    const auto samples = static_cast<std::size_t>(m_nPieceFrames * accepted.nChannels);
    if (m_bFloat) {
        m_vFloats.resize(samples);
    } else if (!m_bPacked) {
        m_vIntegers.resize(samples);
    }
    try {
        m_file = Create(output, request, accepted);
    } catch (const std::runtime_error& reason) {
        Refuse(std::string("cannot be written: ") + reason.what());
    }
}

CSampleWriter::~CSampleWriter() {
    if (m_file == nullptr) return;
    try {
        Complete();
    } catch (const std::exception&) {
        // Nobody is there to be told.
    }
}

void CSampleWriter::Write(const unsigned char* data, std::int64_t frames) {
    RequireRoom(frames);
    const std::int64_t written = WritesDirectly(data) ? WriteDirectly(data, frames) : WritePieces(data, frames);
    m_nFrames += written;
    const std::string reason = m_file->Reason();
    if (!reason.empty()) Refuse("cannot be written: " + reason);
    if (written != frames) {
        Refuse("cannot be written: the codec took " + std::to_string(written) + " of " + std::to_string(frames) +
               " frames");
    }
}

void CSampleWriter::RequireRoom(std::int64_t frames) const {
    const auto bytes = static_cast<std::uint64_t>((m_nFrames + frames) * BlockSizeOf(m_format));
    if (m_output.m_nMostBytes == 0 || bytes <= m_output.m_nMostBytes) return;
    Refuse(std::string("an ") + m_output.m_strName + " file holds at most 4 GiB; try CAF");
}

bool CSampleWriter::WritesDirectly(const unsigned char* data) const {
    if (m_bFloat || m_bPacked) return m_bPacked;
    if (m_format.nBitsPerSample == 16) return IsAligned<short>(data);
    return m_format.nBitsPerSample == 32 && IsAligned<int>(data);
}

sf_count_t CSampleWriter::WriteDirectly(const unsigned char* data, sf_count_t frames) {
    SNDFILE* const file = m_file->Handle();
    if (m_bPacked) {
        const sf_count_t frameBytes = BlockSizeOf(m_format);
        return sf_write_raw(file, data, frames * frameBytes) / frameBytes;
    }
    return m_format.nBitsPerSample == 16 ? sf_writef_short(file, reinterpret_cast<const short*>(data), frames)
                                         : sf_writef_int(file, reinterpret_cast<const int*>(data), frames);
}

sf_count_t CSampleWriter::WritePieces(const unsigned char* data, sf_count_t frames) {
    sf_count_t total = 0;
    while (total < frames) {
        const sf_count_t wanted = std::min(frames - total, m_nPieceFrames);
        const sf_count_t count = WritePiece(data + total * BlockSizeOf(m_format), wanted);
        total += count;
        if (count < wanted) break;
    }
    return total;
}

sf_count_t CSampleWriter::WritePiece(const unsigned char* data, sf_count_t frames) {
    const auto samples = static_cast<std::size_t>(frames * m_format.nChannels);
    const int bytes = m_format.nBitsPerSample / 8;
    if (!m_bFloat) {
        UnpackIntegers(data, samples, bytes, m_vIntegers.data());
        return sf_writef_int(m_file->Handle(), m_vIntegers.data(), frames);
    }
    UnpackFloats(data, samples, bytes, m_vFloats.data());
    m_order.FromWave(m_vFloats.data(), static_cast<std::size_t>(frames));
    return sf_writef_float(m_file->Handle(), m_vFloats.data(), frames);
}

void CSampleWriter::Finish() {
    const std::string reason = Complete();
    if (!reason.empty()) Refuse("not written completely: " + reason);
}

// Closes the file in any case. Empty, or what went wrong with it from creation on.
std::string CSampleWriter::Complete() {
    m_file->CloseHandle();
    CorrectHeader();
    m_file->Close();
    std::string reason = m_file->Reason();
    m_file.reset();
    // libsndfile would leave headers that no decoder takes.
    if (reason.empty() && m_nFrames == 0 && m_output.m_eCoding == OC_OPUS) return "Opus has no sounds without a frame";
    return reason;
}

void CSampleWriter::CorrectHeader() {
    const SWrittenSizes sizes{m_file->Size(), static_cast<std::uint64_t>(m_nFrames * BlockSizeOf(m_format)),
                              static_cast<std::uint64_t>(m_nFrames)};
    if (m_output.m_nFormat == SF_FORMAT_WAV) m_file->ReplaceStart(CorrectedWavHeader(m_file->Header(), sizes));
    if (m_output.m_nFormat == SF_FORMAT_AIFF) m_file->ReplaceStart(CorrectedAiffHeader(m_file->Header(), sizes));
}
