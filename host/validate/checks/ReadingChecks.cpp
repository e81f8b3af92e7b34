// What reads deliver: whole frames, the same sound in any portions, positions and lengths that agree.
#include <algorithm>

#include "host/validate/Checks.h"
#include "host/validate/FormatRules.h"
#include "host/validate/Outcome.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"

namespace {

// Sizes that no block size divides, beginning with one that holds a frame of most formats.
const std::vector<int> kOddSizes = {257, 1021, 4099, 65537};

void DeliversWholeFrames(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        const int frame = static_cast<int>(source.FrameBytes());
        source.Start();
        CBytes bytes;
        for (const int size : {frame, frame + 1, 3 * frame - 1, 1021 * frame + frame / 2, 4099}) {
            const SReadResult result = source.Read(size, bytes);
            Expect(result.m_nBytes % frame == 0, "a read of " + std::to_string(size) + " bytes delivers " +
                                                     std::to_string(result.m_nBytes) + " in frames of " +
                                                     std::to_string(frame));
        }
    });
}

void KeepsInsideBuffer(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        const int frame = static_cast<int>(source.FrameBytes());
        source.Start();
        CBytes bytes;
        for (const int size : {1, frame - 1, frame, frame + 1, 1021, 4099}) {
            if (size < 1) continue;
            Expect(source.Read(size, bytes).m_bKeptBounds,
                   "a read of " + std::to_string(size) + " bytes writes behind the buffer");
        }
    });
}

void SoundsTheSameInAnyPortions(CTrial& trial) {
    ForEachSample(trial, [](const SSampleCase& sample) {
        const CBytes linear = LinearSound(sample);
        CSource source(OpenSample(sample));
        const int frame = static_cast<int>(source.FrameBytes());
        std::vector<int> sizes = kOddSizes;
        for (int& size : sizes) size = std::max(size, frame);
        source.Start();
        const CBytes portions = source.ReadToEnd(sizes);
        Expect(portions == linear, "read in odd portions, " + DifferenceText(linear, portions));
    });
}

void CountsPosition(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        const std::size_t frame = source.FrameBytes();
        source.Start();
        std::size_t read = 0;
        for (const std::size_t portion : {std::size_t{0}, std::size_t{1}, std::size_t{1000}, std::size_t{2345}}) {
            if (portion > 0) read += source.ReadSome(portion * frame).size();
            TellStep("GetPos");
            const std::uint64_t position = source.Blocks().GetPos();
            Expect(position == read / frame,
                   "position " + std::to_string(position) + " after " + std::to_string(read / frame) + " frames");
        }
    });
}

void TellsBlockSize(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        TellStep("GetBlockSize");
        const std::int64_t told = source.Blocks().GetBlockSize();
        const std::int64_t belongs = BlockSizeOf(source.Format());
        Expect(told == belongs,
               "a block size of " + std::to_string(told) + " where the format makes " + std::to_string(belongs));
    });
}

void ExpectLength(std::uint64_t told, std::size_t read, const char* units) {
    Expect(told == 0 || told == read,
           "tells " + std::to_string(told) + units + " and delivers " + std::to_string(read));
}

void TellsLength(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        TellStep("GetDataLength");
        const std::uint64_t told = source.Blocks().GetDataLength();
        source.Start();
        ExpectLength(told, source.ReadToEnd().size() / source.FrameBytes(), " frames");
    });
}

void TellsRawLength(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        TellStep("GetRawLen");
        const std::uint64_t told = source.Reader().GetRawLen();
        source.Start();
        ExpectLength(told, source.ReadToEnd().size(), " bytes");
    });
}

void KeepsStreamsApart(CTrial& trial) {
    ForEachSample(trial, [](const SSampleCase& sample) {
        const CBytes linear = LinearSound(sample);
        CSource first(OpenSample(sample));
        CSource second(OpenSample(sample));
        const std::size_t portion = 1000 * first.FrameBytes();
        first.Start();
        CBytes sound = first.ReadSome(portion);
        second.Start();
        second.ReadSome(3 * portion);
        const CBytes rest = first.ReadToEnd();
        sound.insert(sound.end(), rest.begin(), rest.end());
        Expect(sound == linear, "while another stream of the file is read, " + DifferenceText(linear, sound));
    });
}

// The validator's own WAV sample, where the decoder delivers its format: nothing may be lost on the way.
void DecodesExactly(CTrial& trial) {
    if (!trial.Around().m_bOwnSamples) throw CSkipped("the samples are not the validator's own");
    bool compared = false;
    ForEachSample(trial, [&](const SSampleCase& sample) {
        const std::string& path = sample.m_strPath;
        CSource source(OpenSample(sample));
        const bool same = SHeldWavFormat{source.Format(), 0} == SHeldWavFormat{kSampleFormat, 0};
        if (!same || path.substr(path.rfind('/') + 1) != kSampleFileName) return;
        const CBytes expected = MakeSound(kSampleFormat, kSampleFrames);
        const CBytes sound = LinearSound(sample);
        Expect(sound == expected, "of the sound in the file, " + DifferenceText(expected, sound));
        compared = true;
    });
    if (!compared) throw CSkipped("no decoder delivers the WAV sample in its own format");
}

}  // namespace

CCheckList ReadingChecks() {
    return {
        {"source/whole-frames", "A read delivers whole frames, whatever the size of its buffer.", CONCERN_DECODER,
         "source/end", DeliversWholeFrames},
        {"source/buffer-bounds", "A read writes nothing behind its buffer.", CONCERN_DECODER, "source/end",
         KeepsInsideBuffer},
        {"source/any-portions", "A stream delivers the same sound in reads of any sizes.", CONCERN_DECODER,
         "source/end", SoundsTheSameInAnyPortions},
        {"source/position", "The position counts the frames that were read.", CONCERN_DECODER, "source/end",
         CountsPosition},
        {"source/block-size", "The block size is the bytes of a sample times the channels.", CONCERN_DECODER,
         "source/format", TellsBlockSize},
        {"source/length", "The data length is the frames that reading delivers, or 0.", CONCERN_DECODER, "source/end",
         TellsLength},
        {"source/raw-length", "The raw length is the bytes that reading delivers, or 0.", CONCERN_DECODER, "source/end",
         TellsRawLength},
        {"source/streams-apart", "Two streams of one file do not disturb each other.", CONCERN_DECODER, "source/end",
         KeepsStreamsApart},
        {"source/content", "The sound of a WAV file comes out bit by bit.", CONCERN_DECODER, "source/end",
         DecodesExactly},
    };
}
