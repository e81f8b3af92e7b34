// The decoded blocks of a sound track with their positions in the sound.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "plugins/libav/StampLine.h"
#include "plugins/libav/SteadyTimes.h"
#include "plugins/libav/Timeline.h"
#include "plugins/libav/Track.h"

struct SSoundEnd {
    std::int64_t m_nPosition = 0;
    bool m_bByTimes = false;  // placed by timestamps, not counted from the beginning on
};

// Positions are sample frames, counted as the codec delivers them from the beginning on. [stream-thread]
class CPositionedTrack {
public:
    // Stands on the first block. Throws the reason against the file.
    explicit CPositionedTrack(std::shared_ptr<const CInputFile> file);

    const CTrack& Track() const { return *m_track; }
    const AVFrame& Block() const { return m_track->Block(); }
    std::int64_t BlockStart() const { return m_nBlockStart; }
    std::int64_t BlockEnd() const { return m_nBlockStart + m_nBlockFrames; }

    // Steps to the next block; false at the end, where an empty block lies. Throws CDamage.
    bool Next();

    // To the first block, with everything as after opening. Throws as the constructor does.
    void Restart();

    // To the block that holds `position`, by the file's timestamps. False where they do not lead there to the frame;
    // then the place is lost until Restart.
    bool Approach(std::int64_t position);

    // Whether the file's timestamps run on with its sound, as far as that is known: looked for at the first question,
    // and seen while reading where they were but taken for steady.
    bool HasSteadyTimes();

    // Whether they go back, where another recording was joined on; behind a gap, that is seen while reading.
    bool IsJoined();

    // Where the sound ends; none where it is not short and the timestamps of its end do not tell it to the frame. The
    // place is lost until Restart. Throws CDamage.
    std::optional<SSoundEnd> FindEnd();

private:
    void BeginCount();
    bool HasStamp() const;
    bool LearnEnough();
    bool IsLossless() const;
    bool ApproachFrom(std::int64_t start, std::int64_t position);
    bool Jump(std::int64_t time);
    bool NextOfRun();
    void NoteStamp();
    void NoteBreak();
    bool HasTrueTimes() const;
    std::optional<std::int64_t> LateTime();

    std::shared_ptr<const CInputFile> m_file;
    std::unique_ptr<CTrack> m_track;
    std::optional<CTimeline> m_timeline;
    std::int64_t m_nBlockStart = 0;  // behind a jump, counted from there
    std::int64_t m_nBlockFrames = 0;
    bool m_bFromBeginning = true;
    std::optional<ESteadiness> m_steadiness;  // none before the first question
    std::vector<SStamp> m_vRun;               // blocks behind a jump whose timestamps agree
    SStamp m_last{};                          // the run's last block
    std::optional<CStampLine> m_line;         // from the beginning on
    int m_nUncounted = 0;                     // packets behind a jump that are still to come
    int m_nRefused = 0;                       // packets since the jump
};
