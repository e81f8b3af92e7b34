// An open media file and its sound track.
#include "plugins/libav/Container.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "plugins/libav/Damage.h"
#include "plugins/libav/Silence.h"
#include "sdk/Guard.h"

namespace {

// Some formats announce their streams by the packets; a sound track comes within this many.
constexpr int kAwaitedPackets = 5000;

// Enough for the first frames of any codec.
constexpr std::int64_t kProbedBytes = 1 << 20;

// A format context has no levels of its own to add as codec contexts have: its class is told to find them in the
// pointer that is the caller's.
void Silence(AVFormatContext& context) {
    static const AVClass silent = [&context] {
        AVClass changed = *context.av_class;
        changed.log_level_offset_offset = offsetof(AVFormatContext, opaque);
        return changed;
    }();
    context.av_class = &silent;
    context.opaque = reinterpret_cast<void*>(std::intptr_t{kSilentLevels});
}

int RefuseToOpen(AVFormatContext* /*context*/, AVIOContext** /*io*/, const char* /*url*/, int /*flags*/,
                 AVDictionary** /*options*/) {
    return AVERROR(EACCES);
}

// The options of one opening.
class COptions {
public:
    COptions() = default;
    ~COptions() { av_dict_free(&m_pOptions); }

    COptions(const COptions&) = delete;
    COptions& operator=(const COptions&) = delete;

    void Set(const char* name, const char* value) {
        if (av_dict_set(&m_pOptions, name, value, 0) < 0) throw std::bad_alloc();
    }
    AVDictionary** Get() { return &m_pOptions; }

private:
    AVDictionary* m_pOptions = nullptr;
};

// Greater is better: what most listeners want to hear.
int RankOf(const AVStream& stream) {
    constexpr int kSpecial = AV_DISPOSITION_HEARING_IMPAIRED | AV_DISPOSITION_VISUAL_IMPAIRED | AV_DISPOSITION_COMMENT;
    return ((stream.disposition & kSpecial) == 0 ? 2 : 0) +
           ((stream.disposition & AV_DISPOSITION_DEFAULT) != 0 ? 1 : 0);
}

bool IsAudio(const AVStream& stream) { return stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO; }

}  // namespace

CContainer::CContainer(std::shared_ptr<const CInputFile> file) : CContainer(std::move(file), true) {}

CContainer::CContainer(std::shared_ptr<const CInputFile> file, bool edits)
    : m_reader(std::move(file)), m_context(Allocated(avformat_alloc_context())) {
    Silence(*m_context);
    m_context->flags |= AVFMT_FLAG_CUSTOM_IO;
    m_context->pb = m_reader.Context();
    m_context->io_open = RefuseToOpen;
    Recognise();
    Open(edits);
    ChooseStream();
    m_nDuration = m_pStream->duration;
    m_pGuide = m_pFormat->m_eTrait == FT_PICTURE_INDEX ? PictureStream() : nullptr;
    if (m_pGuide == nullptr) m_pGuide = m_pStream;
    CompleteParameters();
}

std::int64_t CContainer::DurationWithoutEdits(std::shared_ptr<const CInputFile> file) {
    const CContainer container(std::move(file), false);
    return container.Duration();
}

void CContainer::Recognise() {
    const int score = av_probe_input_buffer2(m_context->pb, &m_pDemuxer, "", m_context.get(), 0, 0);
    if (score < 0 && m_context->pb->error == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (score < 0 && m_context->pb->error < 0 && m_context->pb->error != AVERROR_EOF) {
        Refuse("not readable: " + LibavReason(m_context->pb->error));
    }
    // By fewer points random bytes pass for audio.
    if (score < AVPROBE_SCORE_RETRY || m_pDemuxer == nullptr) Refuse("not readable as audio: unknown format");
    m_pFormat = FindKnownFormat(*m_pDemuxer);
    if (m_pFormat == nullptr) Refuse(std::string("not readable as audio: ") + m_pDemuxer->long_name);
}

void CContainer::Open(bool edits) {
    COptions options;
    options.Set("protocol_whitelist", "");
    options.Set("format_whitelist", m_pDemuxer->name);
    if (!edits) options.Set("ignore_editlist", "1");
    // A context that cannot be opened is freed.
    AVFormatContext* context = m_context.release();
    const int result = avformat_open_input(&context, "", m_pDemuxer, options.Get());
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (result < 0) Refuse(std::string("not readable as ") + m_pDemuxer->long_name + ": " + LibavReason(result));
    m_context.reset(context);
}

void CContainer::ChooseStream() {
    m_pStream = BestStream();
    const bool later = (m_context->ctx_flags & AVFMTCTX_NOHEADER) != 0 || m_pFormat->IsBroadcast();
    if (m_pStream == nullptr && later) m_pStream = AwaitStream();
    if (m_pStream == nullptr) Refuse(std::string("no audio stream in this ") + m_pDemuxer->long_name + " file");
    for (unsigned int i = 0; i < m_context->nb_streams; ++i) {
        AVStream* const stream = m_context->streams[i];
        stream->discard = stream == m_pStream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
}

// Null without an audio stream; throws when none of them has a decoder.
AVStream* CContainer::BestStream() const {
    AVStream* best = nullptr;
    const AVStream* undecodable = nullptr;
    for (unsigned int i = 0; i < m_context->nb_streams; ++i) {
        AVStream* const stream = m_context->streams[i];
        if (!IsAudio(*stream)) continue;
        if (avcodec_find_decoder(stream->codecpar->codec_id) == nullptr) {
            undecodable = stream;
        } else if (best == nullptr || RankOf(*stream) > RankOf(*best)) {
            best = stream;
        }
    }
    if (best == nullptr && undecodable != nullptr) {
        const AVCodecParameters& codec = *undecodable->codecpar;
        Refuse(std::string("no decoder for ") + avcodec_get_name(codec.codec_id) + " audio in this " +
               m_pDemuxer->long_name + " file");
    }
    return best;
}

// Null in a file without moving pictures.
AVStream* CContainer::PictureStream() const {
    for (unsigned int i = 0; i < m_context->nb_streams; ++i) {
        AVStream* const stream = m_context->streams[i];
        const bool moving = (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && moving) return stream;
    }
    return nullptr;
}

AVStream* CContainer::AwaitStream() {
    CPacketPointer packet(Allocated(av_packet_alloc()));
    for (int i = 0; i < kAwaitedPackets && ReadAny(*packet); ++i) {
        AVStream* const stream = BestStream();
        if (stream != nullptr && packet->stream_index == stream->index) m_pending = std::move(packet);
        if (stream != nullptr) return stream;
        av_packet_unref(packet.get());
    }
    return nullptr;
}

// A file that is nothing but a stream tells its parameters by its frames, and has no timestamps without them. TrueHD's
// decoder does not begin without them in any file.
void CContainer::CompleteParameters() {
    const AVCodecParameters& codec = *m_pStream->codecpar;
    if (codec.sample_rate != 0 || (m_context->nb_streams != 1 && codec.codec_id != AV_CODEC_ID_TRUEHD)) return;
    m_context->probesize = kProbedBytes;
    const int result = avformat_find_stream_info(m_context.get(), nullptr);
    if (result < 0) Refuse("not readable as " + Description() + ": " + LibavReason(result));
}

std::string CContainer::Description() const {
    return std::string(m_pDemuxer->long_name) + " audio (" + avcodec_get_name(m_pStream->codecpar->codec_id) + ")";
}

bool CContainer::ReadAny(AVPacket& packet) {
    const int result = av_read_frame(m_context.get(), &packet);
    if (result >= 0) return true;
    if (result != AVERROR_EOF) ThrowDamage(result);
    // Some demuxers take a file that cannot be read for one that has ended.
    if (m_context->pb->error < 0 && m_context->pb->error != AVERROR_EOF) ThrowDamage(m_context->pb->error);
    return false;
}

bool CContainer::ReadPacket(AVPacket& packet) {
    av_packet_unref(&packet);
    if (m_pending != nullptr) {
        av_packet_move_ref(&packet, m_pending.get());
        m_pending.reset();
        return true;
    }
    do {
        av_packet_unref(&packet);
        if (!ReadAny(packet)) return false;
    } while (packet.stream_index != m_pStream->index || IsHeader(packet));
    TellPreSkip(packet);
    if ((packet.flags & AV_PKT_FLAG_CORRUPT) != 0) throw CDamage("a packet is not whole");
    return true;
}

// Where Ogg streams are chained, libavformat hands out the next one's headers: its identification (RFC 7845, 5; the
// manual of Speex, 7) and its comments.
bool CContainer::IsHeader(const AVPacket& packet) {
    const AVCodecID codec = m_pStream->codecpar->codec_id;
    if (codec != AV_CODEC_ID_OPUS && codec != AV_CODEC_ID_SPEEX) return false;
    const std::string_view bytes(reinterpret_cast<const char*>(packet.data), static_cast<std::size_t>(packet.size));
    const bool comments = m_bHeaderBefore && (codec == AV_CODEC_ID_SPEEX || bytes.substr(0, 8) == "OpusTags");
    m_bHeaderBefore = bytes.substr(0, 8) == "OpusHead" || bytes.substr(0, 8) == "Speex   ";
    if (m_bHeaderBefore && codec == AV_CODEC_ID_OPUS && bytes.size() > 11) m_strPreSkip = bytes.substr(10, 2);
    return m_bHeaderBefore || comments;
}

// Of a chained stream: the decoder leaves out what it is told in 32 bits, lowest byte first.
void CContainer::TellPreSkip(AVPacket& packet) {
    if (m_strPreSkip.empty()) return;
    std::uint8_t* const told = Allocated(av_packet_new_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, 10));
    std::fill_n(told, 10, std::uint8_t{0});
    std::copy(m_strPreSkip.begin(), m_strPreSkip.end(), told);
    m_strPreSkip.clear();
}

bool CContainer::Seek(std::int64_t timestamp) {
    m_pending.reset();
    m_bHeaderBefore = false;
    m_strPreSkip.clear();
    m_context->pb->error = 0;
    return SeekBy(*m_pGuide, timestamp) || (m_pGuide != m_pStream && SeekBy(*m_pStream, timestamp));
}

bool CContainer::SeekBy(const AVStream& guide, std::int64_t timestamp) {
    const std::int64_t time = av_rescale_q(timestamp, m_pStream->time_base, guide.time_base);
    return av_seek_frame(m_context.get(), guide.index, time, AVSEEK_FLAG_BACKWARD) >= 0;
}

std::int64_t CContainer::LastIndexed() const {
    const int count = avformat_index_get_entries_count(m_pGuide);
    if (count < 1) return AV_NOPTS_VALUE;
    const std::int64_t time = avformat_index_get_entry(m_pGuide, count - 1)->timestamp;
    return av_rescale_q(time, m_pGuide->time_base, m_pStream->time_base);
}
