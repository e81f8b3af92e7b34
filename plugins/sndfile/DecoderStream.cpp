// A sound file as a decoder stream.
#include "plugins/sndfile/DecoderStream.h"

#include "com/QueryTable.h"
#include "plugins/sndfile/CuePoints.h"
#include "plugins/sndfile/Refusal.h"

CDecoderStream::CDecoderStream(const char* path, std::unique_ptr<CSoundFile> file)
    : m_strPath(path),
      m_tags(TagsOf(file->Handle())),
      m_vCuePoints(CuePointsOf(file->Handle())),
      m_reader(std::move(file)) {}

int CDecoderStream::InnerQueryInterface(unsigned long identity, void** face) {
    ISeekable* const seekable = m_reader.File().IsSeekable() ? this : nullptr;
    IIndexArray* const index = m_vCuePoints.empty() ? nullptr : this;
    return AnswerQuery(*this, identity, face,
                       {{IID_IUnknown, Identity()},
                        {IID_IAggregatable, static_cast<IAggregatable*>(this)},
                        {IID_IProcess, static_cast<IProcess*>(this)},
                        {IID_IAudioRawReader, static_cast<IAudioRawReader*>(this)},
                        {IID_IAudioRawBlockInfo, static_cast<IAudioRawBlockInfo*>(this)},
                        {IID_ISeekable, seekable},
                        {IID_IInfoReader, static_cast<IInfoReader*>(this)},
                        {IID_IIndexArray, index},
                        {IID_ISourceName, static_cast<ISourceName*>(this)}});
}

bool CDecoderStream::Start(IStatus** status) {
    return Guarded(status, [&] {
        if (m_bInProcess) return Refuse(status, m_strPath, "already started");
        if (!m_reader.Rewind()) return Refuse(status, m_strPath, "cannot go back to the first frame");
        m_bInProcess = true;
        return true;
    });
}

bool CDecoderStream::End(IStatus** status) {
    return Guarded(status, [&] {
        if (!m_bInProcess) return Refuse(status, m_strPath, "not started");
        m_bInProcess = false;
        return true;
    });
}

bool CDecoderStream::RawRead(unsigned char* buffer, int size, int* read, EAudioRawState& state, IStatus** status) {
    return Guarded(status, [&] { return ReadFrames(buffer, size, read, state, status); });
}

bool CDecoderStream::ReadFrames(unsigned char* buffer, int size, int* read, EAudioRawState& state, IStatus** status) {
    if (buffer == nullptr || read == nullptr || size <= 0) {
        ReportStatus(status, AE_BAD_ARGUMENT);
        return false;
    }
    *read = 0;
    const std::int64_t blockSize = BlockSizeOf(m_reader.Format());
    if (!m_bInProcess) return Refuse(status, m_strPath, "read before start");
    if (size < blockSize) {
        return Refuse(
            status, m_strPath,
            "a buffer of " + std::to_string(size) + " bytes does not hold a frame of " + std::to_string(blockSize));
    }
    const sf_count_t frames = m_reader.Read(buffer, size / blockSize);
    if (frames == CSampleReader::kFailed) return Refuse(status, m_strPath, m_reader.Failure());
    *read = static_cast<int>(frames * blockSize);
    state = frames == 0 ? ARS_END : ARS_MORE;
    return true;
}

std::uint64_t CDecoderStream::GetRawLen() {
    return GetDataLength() * static_cast<std::uint64_t>(BlockSizeOf(m_reader.Format()));
}

bool CDecoderStream::Seek(unsigned long position, IStatus** status) {
    return Guarded(status, [&] { return SeekFrames(position, status); });
}

bool CDecoderStream::SeekFrames(unsigned long position, IStatus** status) {
    // Start goes to the first frame, so a seek before it would be lost.
    if (!m_bInProcess) return Refuse(status, m_strPath, "seek before start");
    const std::uint64_t length = GetDataLength();
    if (position > static_cast<std::uint64_t>(SF_COUNT_MAX) || (length != 0 && position > length)) {
        return Refuse(
            status, m_strPath,
            "frame " + std::to_string(position) + " is beyond the end (" + std::to_string(length) + " frames)");
    }
    if (m_reader.Seek(static_cast<sf_count_t>(position))) return true;
    return Refuse(status, m_strPath, "cannot seek to frame " + std::to_string(position));
}

std::uint64_t CDecoderStream::GetIndex(int n) {
    if (n < 0 || n >= GetIndexNumber()) return kNoIndexPoint;
    return m_vCuePoints[static_cast<std::size_t>(n)];
}
