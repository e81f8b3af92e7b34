// An open sound file as packed little-endian PCM.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "plugins/sndfile/ChannelOrder.h"
#include "plugins/sndfile/SoundFile.h"
#include "plugins/sndfile/SourceFormat.h"
#include "sdk/Sound.h"

// Channels come in the order of RIFF WAVE. After damage in the file the frames before it are still delivered, then
// every read fails until a seek; so does every read at the end of a file that is cut short. Reading allocates nothing.
// [stream-thread]
class CSampleReader final : public CSound {
public:
    CSampleReader(std::unique_ptr<CSoundFile> file, EAudioFeature level);

    SWavFormat GetFormat() const override { return m_source.m_format; }
    std::int32_t GetFormatQualifier() const override;

    // An estimate of the codec is corrected once the end has been read.
    std::uint64_t GetLength() const override { return static_cast<std::uint64_t>(m_nLength); }

    std::int64_t Read(unsigned char* buffer, std::int64_t frames) override;

    // After a failed seek the position is damaged where the codec does not find it again.
    bool IsSeekable() const override { return m_file->IsSeekable(); }
    void Seek(std::uint64_t frame) override;
    void Rewind() override;

    STags GetTags() const override;
    std::vector<std::uint64_t> GetIndexPoints() const override;

private:
    sf_count_t ReadPieces(unsigned char* buffer, sf_count_t frames);
    sf_count_t ReadPiece(unsigned char* out, sf_count_t frames);
    bool ReadsDirectly(const unsigned char* buffer) const;
    sf_count_t ReadDirectly(unsigned char* buffer, sf_count_t frames);
    [[noreturn]] void RefuseDamage() const;
    void NoteDamage(const char* reason);
    void Reopen();
    bool MoveTo(sf_count_t position);
    bool ComesByDecoding(sf_count_t position) const;
    bool SkipTo(sf_count_t position);

    std::unique_ptr<CSoundFile> m_file;
    SSourceFormat m_source;
    CChannelOrder m_order;
    bool m_bPacked;  // what the file holds is what the host reads
    sf_count_t m_nPosition = 0;
    sf_count_t m_nLength;  // 0 when unknown
    sf_count_t m_nPieceFrames;
    std::vector<int> m_vIntegers;  // one piece of an SR_INTEGER source
    std::vector<float> m_vFloats;  // one piece of the others
    bool m_bDamaged = false;
    std::string m_strDamage;  // what the codec said
};
