// Whole frames of a sound file as packed little-endian PCM.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "plugins/sndfile/SoundFile.h"
#include "plugins/sndfile/SourceFormat.h"

// Positions and lengths are sample frames. Reading allocates nothing. [stream-thread]
class CSampleReader {
public:
    explicit CSampleReader(std::unique_ptr<CSoundFile> file);

    const SWavFormat& Format() const { return m_source.m_format; }
    const CSoundFile& File() const { return *m_file; }

    // Frames that the next read begins after.
    sf_count_t Position() const { return m_nPosition; }

    // 0 when unknown. An estimate of the codec is corrected once the end has been read.
    sf_count_t Length() const { return m_nLength; }

    // Frames stored in `buffer`, 0 at the end. After damage in the file the frames before it are still delivered,
    // then every read gives kFailed until a seek; so does every read at the end of a file that is cut short.
    sf_count_t Read(unsigned char* buffer, sf_count_t frames);

    static constexpr sf_count_t kFailed = -1;

    // Why the last read failed.
    std::string Failure() const;

    // To the first frame, in every file. Ends damage.
    bool Rewind();

    // In seekable files. Ends damage. False: the position is unchanged, or damaged where the codec does not find it
    // again.
    bool Seek(sf_count_t position);

private:
    sf_count_t ReadPieces(unsigned char* buffer, sf_count_t frames);
    sf_count_t ReadPiece(unsigned char* out, sf_count_t frames);
    bool ReadsDirectly(const unsigned char* buffer) const;
    sf_count_t ReadDirectly(unsigned char* buffer, sf_count_t frames);
    void NoteDamage(const char* reason);
    bool Reopen();
    bool MoveTo(sf_count_t position);
    bool SkipTo(sf_count_t position);

    std::unique_ptr<CSoundFile> m_file;
    SSourceFormat m_source;
    sf_count_t m_nPosition = 0;
    sf_count_t m_nLength;
    sf_count_t m_nPieceFrames;
    std::vector<int> m_vIntegers;  // one piece of an SR_INTEGER source
    std::vector<float> m_vFloats;  // one piece of an SR_FLOAT_TO_16 source
    bool m_bDamaged = false;
    std::string m_strDamage;  // what the codec said
};
