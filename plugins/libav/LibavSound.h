// The sound track of a media file as an SDK sound.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "com/FeatureSupport.h"
#include "plugins/libav/PositionedTrack.h"
#include "plugins/libav/SoundLength.h"
#include "sdk/Sound.h"

// After damage the frames before it are still delivered, then every read fails until a seek; so does every read at the
// end of a file that is cut short. [stream-thread]
class CLibavSound final : public CSound {
public:
    CLibavSound(const std::string& path, EAudioFeature level);

    SWavFormat GetFormat() const override { return m_format.m_format; }
    std::int32_t GetFormatQualifier() const override { return m_format.m_nQualifier; }

    // From the file's header or its end; of a file where neither tells it, only the end of reading does.
    std::uint64_t GetLength() const override { return static_cast<std::uint64_t>(m_length.m_nFrames); }

    std::int64_t Read(unsigned char* buffer, std::int64_t frames) override;

    bool IsSeekable() const override { return true; }

    // By timestamps where they lead to the frame, else by decoding from the beginning.
    void Seek(std::uint64_t frame) override;

    STags GetTags() const override;
    std::vector<std::uint64_t> GetIndexPoints() const override;

private:
    bool FindSamples();
    bool NextBlock();
    bool IsLengthDisproved();
    void RequireSameFormat() const;
    void NoteEnd();
    std::int64_t BlockEnd() const;
    void MoveTo(std::int64_t position);
    bool Approach(std::int64_t position);
    void DecodeTo(std::int64_t position);
    void ReturnTo(std::int64_t position, const std::string& failure);

    std::shared_ptr<const CInputFile> m_file;
    CPositionedTrack m_track;
    int m_nSampleFormat;  // of the codec
    SHeldWavFormat m_format;
    std::int64_t m_nBegin;  // time of the first frame in the file, in frames
    SSoundLength m_length;
    std::int64_t m_nPosition = 0;
    bool m_bPlaceLost = false;  // the track is not at the position
    std::string m_strFailure;   // empty, or why nothing can be read until a seek
};
