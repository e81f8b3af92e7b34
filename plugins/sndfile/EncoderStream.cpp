// A sound file that is being written, as an encoder stream.
#include "plugins/sndfile/EncoderStream.h"

#include "com/QueryTable.h"
#include "plugins/sndfile/Refusal.h"

CEncoderStream::CEncoderStream(const std::string& path, const SOutputFormat& output, const SWavFormat& format)
    : m_strPath(path), m_output(output), m_format(format), m_writer(format) {}

int CEncoderStream::InnerQueryInterface(unsigned long identity, void** face) {
    return AnswerQuery(*this, identity, face,
                       {{IID_IUnknown, Identity()},
                        {IID_IAggregatable, static_cast<IAggregatable*>(this)},
                        {IID_IProcess, static_cast<IProcess*>(this)},
                        {IID_IAudioRawWriter, static_cast<IAudioRawWriter*>(this)}});
}

bool CEncoderStream::Start(IStatus** status) {
    return Guarded(status, [&] {
        if (IsInProcess()) return Refuse(status, m_strPath, "already started");
        std::string reason;
        m_file = COutputFile::Create(m_strPath, OutputInfo(m_output, m_format), reason);
        if (m_file == nullptr) return Refuse(status, m_strPath, "cannot be written: " + reason);
        m_nBytes = 0;
        return true;
    });
}

bool CEncoderStream::End(IStatus** status) {
    return Guarded(status, [&] {
        if (!IsInProcess()) return Refuse(status, m_strPath, "not started");
        const std::unique_ptr<COutputFile> file = std::move(m_file);
        const std::string reason = file->Close();
        return reason.empty() || Refuse(status, m_strPath, "not written completely: " + reason);
    });
}

bool CEncoderStream::RawWrite(unsigned char* data, int size, EAudioRawState& /*state*/, IStatus** status) {
    return Guarded(status, [&] {
        if (!IsInProcess()) return Refuse(status, m_strPath, "write before start");
        if (size == 0) return true;
        if (data == nullptr || size < 0) {
            ReportStatus(status, AE_BAD_ARGUMENT);
            return false;
        }
        return WriteFrames(data, size, status);
    });
}

bool CEncoderStream::WriteFrames(const unsigned char* data, int size, IStatus** status) {
    const std::int64_t blockSize = BlockSizeOf(m_format);
    if (size % blockSize != 0) {
        return Refuse(status, m_strPath,
                      std::to_string(size) + " bytes are not whole frames of " + std::to_string(blockSize));
    }
    const std::uint64_t bytes = m_nBytes + static_cast<std::uint64_t>(size);
    if (m_output.m_nMostBytes != 0 && bytes > m_output.m_nMostBytes) {
        return Refuse(status, m_strPath,
                      std::string("a ") + m_output.m_strName + " file holds at most 4 GiB; try FLAC");
    }
    const std::int64_t frames = size / blockSize;
    const std::int64_t written = m_writer.Write(m_file->Handle(), data, frames);
    if (written != frames) {
        const std::string reason = m_file->Reason();
        return Refuse(status, m_strPath,
                      "cannot be written: " + (reason.empty() ? "the codec took " + std::to_string(written) + " of " +
                                                                    std::to_string(frames) + " frames"
                                                              : reason));
    }
    m_nBytes = bytes;
    return true;
}
