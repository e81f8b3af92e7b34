// Packed little-endian PCM into a sound file.
#pragma once

#include <memory>
#include <vector>

#include "plugins/sndfile/ChannelOrder.h"
#include "plugins/sndfile/OutputFile.h"
#include "plugins/sndfile/OutputFormat.h"
#include "sdk/SoundWriter.h"

// Takes channels in the order of RIFF WAVE. Writing allocates nothing. [stream-thread]
class CSampleWriter final : public CSoundWriter {
public:
    // Creates the file with its tags.
    CSampleWriter(const SOutputFormat& output, const STargetRequest& request, const SWavFormat& accepted);
    ~CSampleWriter() override;

    void Write(const unsigned char* data, std::int64_t frames) override;
    void Finish() override;

private:
    bool WritesDirectly(const unsigned char* data) const;
    sf_count_t WriteDirectly(const unsigned char* data, sf_count_t frames);
    sf_count_t WritePieces(const unsigned char* data, sf_count_t frames);
    sf_count_t WritePiece(const unsigned char* data, sf_count_t frames);
    void RequireRoom(std::int64_t frames) const;
    void CorrectHeader();
    std::string Complete();

    const SOutputFormat& m_output;
    SWavFormat m_format;
    bool m_bFloat;   // what the codec is given
    bool m_bPacked;  // what the file holds is what the host writes
    CChannelOrder m_order;
    sf_count_t m_nPieceFrames;
    std::vector<int> m_vIntegers;  // one piece
    std::vector<float> m_vFloats;  // one piece, for those who are given floats
    std::unique_ptr<COutputFile> m_file;
    std::int64_t m_nFrames = 0;  // in the file
};
