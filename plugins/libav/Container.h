// An open media file and its sound track.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "plugins/libav/InputFile.h"
#include "plugins/libav/KnownFormats.h"
#include "plugins/libav/LibavObjects.h"

// libavformat's context, restricted to the bytes of the one file. [stream-thread]
class CContainer {
public:
    // Chooses the best audio stream, the others are left out. Throws the reason against the file.
    explicit CContainer(std::shared_ptr<const CInputFile> file);

    // The time that an MP4 file's own sound track header tells, in units of the stream's time base: its edit list,
    // which is rounded to a coarser unit, is left aside. 0 when unknown.
    static std::int64_t DurationWithoutEdits(std::shared_ptr<const CInputFile> file);

    const AVFormatContext& Context() const { return *m_context; }
    const AVStream& Stream() const { return *m_pStream; }
    const SKnownFormat& Format() const { return *m_pFormat; }

    // Of the sound track by the file's header, in units of the stream's time base; AV_NOPTS_VALUE when unknown.
    std::int64_t Duration() const { return m_nDuration; }

    // Such as "QuickTime / MOV audio (aac)".
    std::string Description() const;

    // The next packet of the stream; false at the end. Throws CDamage.
    bool ReadPacket(AVPacket& packet);

    // To a packet from which decoding gives what is at `timestamp`, in units of the stream's time base. False leaves
    // the place unknown.
    bool Seek(std::int64_t timestamp);

    // The last timestamp in the file's index, or in what libavformat has noted so far; AV_NOPTS_VALUE without an index.
    std::int64_t LastIndexed() const;

private:
    CContainer(std::shared_ptr<const CInputFile> file, bool edits);

    void Recognise();
    void Open(bool edits);
    void ChooseStream();
    AVStream* BestStream() const;
    AVStream* AwaitStream();
    void CompleteParameters();
    bool ReadAny(AVPacket& packet);
    bool IsHeader(const AVPacket& packet);
    void TellPreSkip(AVPacket& packet);
    AVStream* PictureStream() const;
    bool SeekBy(const AVStream& guide, std::int64_t timestamp);

    CFileReader m_reader;
    CFormatContextPointer m_context;
    const AVInputFormat* m_pDemuxer = nullptr;
    const SKnownFormat* m_pFormat = nullptr;
    AVStream* m_pStream = nullptr;
    AVStream* m_pGuide = nullptr;  // whose index leads through the file
    std::int64_t m_nDuration = AV_NOPTS_VALUE;
    bool m_bHeaderBefore = false;
    std::string m_strPreSkip;  // of the stream whose packets come next, as its header has it
    CPacketPointer m_pending;  // read while the stream was awaited; null when there is none
};
