// A sound file opened for reading.
#include "plugins/sndfile/SoundFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>

#include "sdk/Guard.h"

namespace {

struct SSignature {
    const char* m_strStart;
    const char* m_strForm;  // at byte 8; empty when the start is enough
    const char* m_strName;
};

constexpr SSignature kSignatures[] = {
    {"RIFF", "WAVE", "WAV"},       {"RIFX", "WAVE", "WAV"},      {"RF64", "WAVE", "WAV"},
    {"FORM", "AIFF", "AIFF"},      {"FORM", "AIFC", "AIFC"},     {"FORM", "8SVX", "IFF"},
    {"FORM", "16SV", "IFF"},       {".snd", "", "AU"},           {"dns.", "", "AU"},
    {"caff", "", "CAF"},           {"riff", "", "W64"},          {"fLaC", "", "FLAC"},
    {"OggS", "", "Ogg"},           {"ID3", "", "MP3"},           {"Creative Voice", "", "VOC"},
    {"NIST_1A", "", "NIST"},       {"2BIT", "", "AVR"},          {"PVF1", "", "PVF"},
    {" paf", "", "PAF"},           {"fap ", "", "PAF"},          {"MATLAB 5.0", "", "MAT5"},
    {"Extended Instru", "", "XI"}, {"ALawSoundFile", "", "WVE"}, {"\xF0\x7E", "", "SDS"},
};

std::string FormatNameOf(int descriptor) {
    char start[16] = {};
    if (::pread(descriptor, start, sizeof start, 0) <= 0) return {};
    for (const SSignature& signature : kSignatures) {
        if (std::memcmp(start, signature.m_strStart, std::strlen(signature.m_strStart)) == 0 &&
            std::memcmp(start + 8, signature.m_strForm, std::strlen(signature.m_strForm)) == 0) {
            return signature.m_strName;
        }
    }
    return {};
}

// Throws what is wrong with the file before a codec looks at it.
void RequireFile(const CFileDescriptor& descriptor) {
    struct stat facts = {};
    if (!descriptor.IsOpen() || ::fstat(descriptor.Get(), &facts) != 0) Refuse(SystemReason(errno));
    if (S_ISDIR(facts.st_mode)) Refuse(SystemReason(EISDIR));
    // libsndfile 1.2.0 reads outside its memory when MPEG audio comes out of a pipe.
    if (!descriptor.IsSeekable()) Refuse("not readable as audio: a pipe is no file");
    if (S_ISREG(facts.st_mode) && facts.st_size == 0) Refuse("not readable as audio: the file is empty");
}

// libsndfile 1.2.0 closes the descriptor of a file that it refuses, even one that it is told to leave open: it gets one
// of its own, and closes that in any case. Both have the same position. By virtual I/O it would misread what an ID3 tag
// precedes.
SNDFILE* OpenFromStart(int descriptor, SF_INFO& info) {
    if (::lseek(descriptor, 0, SEEK_SET) != 0) Refuse(SystemReason(errno));
    const int own = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (own < 0) Refuse(SystemReason(errno));
    return sf_open_fd(own, SFM_READ, &info, SF_TRUE);
}

// Bytes of one sample in codings that have no frames of their own; 0 for the others.
int SampleBytesOf(int coding) {
    switch (coding) {
        case SF_FORMAT_PCM_S8:
        case SF_FORMAT_PCM_U8:
        case SF_FORMAT_ULAW:
        case SF_FORMAT_ALAW:
            return 1;
        case SF_FORMAT_PCM_16:
            return 2;
        case SF_FORMAT_PCM_24:
            return 3;
        case SF_FORMAT_PCM_32:
        case SF_FORMAT_FLOAT:
            return 4;
        case SF_FORMAT_DOUBLE:
            return 8;
        default:
            return 0;
    }
}

}  // namespace

std::unique_ptr<CSoundFile> CSoundFile::Open(const std::string& path) {
    // Without blocking, for a pipe that nobody writes to.
    CFileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    RequireFile(descriptor);
    std::string formatName = FormatNameOf(descriptor.Get());
    auto file = std::make_unique<CSoundFile>(std::move(descriptor), std::move(formatName));
    file->OpenHandle();
    file->Promise();
    return file;
}

CSoundFile::CSoundFile(CFileDescriptor descriptor, std::string formatName)
    : m_descriptor(std::move(descriptor)),
      m_strFormatName(std::move(formatName)),
      m_survey(SurveyOf(m_descriptor.Get(), m_strFormatName)) {
    if (m_survey.m_splice) m_spliced = std::make_unique<CSplicedFile>(m_descriptor.Get(), *m_survey.m_splice);
}

// The codec gets no name: by some names it would take any bytes for headerless audio.
void CSoundFile::OpenHandle() {
    if (m_survey.m_bChained)
        Refuse("not readable as Ogg audio: a chain of streams, of which only the first would be heard");
    if (m_survey.m_extent && m_survey.m_extent->m_bTooLong)
        Refuse("not readable as " + m_strFormatName + " audio: longer than its header can tell");
    m_info = {};
    m_handle.reset(m_spliced != nullptr ? m_spliced->OpenHandle(m_info) : OpenFromStart(m_descriptor.Get(), m_info));
    if (m_handle != nullptr) return;
    // libsndfile keeps this error for the whole process: of two failures at once, one may show the other's reason.
    const std::string reason = m_survey.m_strRefusal.empty() ? sf_strerror(nullptr) : m_survey.m_strRefusal;
    Refuse("not readable as " + (m_strFormatName.empty() ? "" : m_strFormatName + " ") + "audio: " + reason);
}

void CSoundFile::Reopen() {
    m_handle.reset();
    OpenHandle();
}

CChannelOrder CSoundFile::ChannelOrder() const {
    const int coding = m_info.format & SF_FORMAT_SUBMASK;
    const bool vorbis = coding == SF_FORMAT_VORBIS || (coding == SF_FORMAT_OPUS && m_survey.m_bSpeakersKnown);
    return vorbis ? CChannelOrder::OfVorbis(m_info.channels) : CChannelOrder::OfFile(Handle(), m_info.channels);
}

// libsndfile tells an unknown length by the greatest count, and believes what the last page of an Ogg file says.
sf_count_t CSoundFile::KnownLength() const {
    constexpr sf_count_t kMostBytes = SF_COUNT_MAX >> 28;  // so that the samples' bytes can be counted too
    constexpr sf_count_t kMostFramesPerByte = 65536;       // silence in FLAC, the densest there is, has less
    const auto bytes = static_cast<sf_count_t>(CFileBytes(m_descriptor.Get()).Size());
    const bool plausible = bytes == 0 || m_info.frames <= std::min(bytes, kMostBytes) * kMostFramesPerByte;
    return plausible && m_info.frames > 0 && m_info.frames < SF_COUNT_MAX ? m_info.frames : 0;
}

// libsndfile 1.2.0 takes the last page of Vorbis for longer than it is, since its granule position leaves padding out.
sf_count_t CSoundFile::LastSureFrame() const {
    if ((m_info.format & SF_FORMAT_SUBMASK) != SF_FORMAT_VORBIS) return SF_COUNT_MAX;
    const std::uint64_t frames = static_cast<std::uint64_t>(m_info.frames);
    if (!m_survey.m_lastPage || *m_survey.m_lastPage > frames) return 0;
    return static_cast<sf_count_t>(frames - *m_survey.m_lastPage);
}

// What the survey could not tell without the codec. Throws where the codec would deliver less than was counted.
void CSoundFile::Promise() {
    const int container = m_info.format & SF_FORMAT_TYPEMASK;
    if (container == SF_FORMAT_MPEG && m_info.frames < m_survey.m_nCounted) {
        Refuse("not readable as MPEG audio: the codec would deliver " + std::to_string(m_info.frames) + " of " +
               std::to_string(m_survey.m_nCounted) + " frames");
    }
    // Behind the frames that a header counts, other bytes may follow.
    if (m_survey.m_nPromised > 0) m_info.frames = std::min(m_info.frames, m_survey.m_nPromised);
    const bool counted = container == SF_FORMAT_FLAC || (container == SF_FORMAT_MPEG && m_survey.m_splice);
    if (counted && m_survey.m_nPromised == 0 && m_info.frames < SF_COUNT_MAX) m_survey.m_nPromised = m_info.frames;

    if (!m_survey.m_extent) return;
    const int frameBytes = SampleBytesOf(m_info.format & SF_FORMAT_SUBMASK) * m_info.channels;
    const auto declared = static_cast<sf_count_t>(m_survey.m_extent->m_nDeclared);
    // sox declares a few bytes less than it writes to VOC.
    if (frameBytes == 0 || container == SF_FORMAT_VOC) {
        m_survey.m_bEndMissing = m_survey.m_extent->IsCutShort();
    } else if (m_survey.m_extent->IsCutShort()) {
        m_survey.m_nPromised = declared / frameBytes;
    } else if ((container == SF_FORMAT_SVX || container == SF_FORMAT_AU) && declared != 0) {
        // libsndfile 1.2.0 counts the byte that pads odd samples among them. Behind those of an AU file, whose size it
        // may not know, other bytes may follow.
        m_info.frames = std::min(m_info.frames, declared / frameBytes);
    }
}

std::string CSoundFile::ShortfallAt(sf_count_t frames) const {
    const bool fewer = frames < m_survey.m_nPromised;
    if (!fewer && !m_survey.m_bEndMissing) return {};
    const std::string there = std::to_string(frames);
    const std::string of = there + " of " + std::to_string(m_survey.m_nPromised) + " frames";
    if (!fewer) return "cut short: the end is missing, " + there + " frames are there";
    // Frames of MPEG audio that were counted are there, whatever the codec makes of them.
    const bool counted = (m_info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_MPEG && !m_survey.m_bEndMissing;
    return counted ? "only " + of + " can be decoded" : "cut short: " + of + " are there";
}
