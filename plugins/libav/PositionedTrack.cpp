// The decoded blocks of a sound track with their positions in the sound.
#include "plugins/libav/PositionedTrack.h"

#include <algorithm>
#include <iterator>

#include "plugins/libav/Damage.h"
#include "sdk/Guard.h"

namespace {

// Packets that a codec may refuse where a recording begins in the middle, and behind a jump.
constexpr int kMostRefused = 16;

// Blocks behind a jump whose timestamps are looked at.
constexpr std::size_t kLongestRun = 64;

// Later than the end of any sound, without an overflow in any time base.
constexpr std::int64_t kLongestSeconds = 7 * 24 * 3600;

// A sound this short is decoded to find its end.
constexpr std::int64_t kShortSeconds = 4;

}  // namespace

CPositionedTrack::CPositionedTrack(std::shared_ptr<const CInputFile> file) : m_file(std::move(file)) { Restart(); }

void CPositionedTrack::Restart() {
    m_track = std::make_unique<CTrack>(m_file);
    m_bFromBeginning = true;
    const std::string description = m_track->Container().Description();
    for (int refused = 0;; ++refused) {
        try {
            BeginCount();
            if (Next()) return;
            Refuse("no samples in this file of " + description);
        } catch (const CDamage& damage) {
            if (m_track->Container().Format().IsBroadcast() && refused < kMostRefused) continue;
            Refuse("not readable as " + description + ": " + damage.what());
        }
    }
}

void CPositionedTrack::BeginCount() {
    m_nBlockStart = m_nBlockFrames = 0;
    m_line.reset();
}

bool CPositionedTrack::Next() {
    m_nBlockStart = BlockEnd();
    m_nBlockFrames = 0;
    if (!m_track->Next()) return false;
    if (Block().sample_rate < 1) throw CDamage("sound without a sample rate");
    m_nBlockFrames = Block().nb_samples;
    if (!m_timeline) m_timeline.emplace(m_track->Container().Stream().time_base, Block().sample_rate);
    if (!m_bFromBeginning) return true;
    NoteBreak();
    if (HasStamp()) m_timeline->Learn({Block().pts, m_nBlockStart});
    return true;
}

bool CPositionedTrack::HasSteadyTimes() {
    if (!m_steadiness) {
        const bool own = m_track->Container().Format().HasOwnTimes();
        const SSteadiness found = own ? SteadinessOf(m_file) : SSteadiness{STEADY};
        m_steadiness = found.m_eSteadiness;
        m_timeline->LimitGrid(found.m_nGrid);
    }
    return *m_steadiness == STEADY || *m_steadiness == TAKEN_FOR_STEADY;
}

bool CPositionedTrack::IsJoined() { return !HasSteadyTimes() && *m_steadiness == JOINED; }

// Behind a break a new line begins: where there was a gap, another recording may still be joined on.
void CPositionedTrack::NoteBreak() {
    const bool vague = m_track->Container().Format().m_eTimes == TJ_VAGUE;
    if (!m_line) m_line.emplace(CTimeline(m_track->Container().Stream().time_base, Block().sample_rate), true, vague);
    if (m_line->Accepts(HasStamp() ? Block().pts : AV_NOPTS_VALUE, m_nBlockFrames)) return;
    if (m_steadiness == TAKEN_FOR_STEADY || m_steadiness == UNSTEADY) {
        m_steadiness = m_line->GoesBack() ? JOINED : UNSTEADY;
    }
    m_line->BeginAnew();
}

// A broadcast stamps its packets now and then. Between two stamps libavformat counts on, behind a jump from the wrong
// place.
bool CPositionedTrack::HasStamp() const {
    const bool own = !m_track->Container().Format().IsBroadcast() || Block().pkt_pos >= 0;
    return own && m_timeline->IsPossible(Block().pts);
}

bool CPositionedTrack::LearnEnough() {
    while (m_bFromBeginning && !m_timeline->KnowsEnough() && Next()) {
    }
    return !m_timeline->IsEmpty();
}

bool CPositionedTrack::HasTrueTimes() const {
    const ETimesBehindJump times = m_track->Container().Format().m_eTimes;
    const AVCodecID codec = m_track->Codec().codec_id;
    const bool pcm = codec >= AV_CODEC_ID_FIRST_AUDIO && codec < AV_CODEC_ID_ADPCM_IMA_QT;
    return times == TJ_TRUE || times == TJ_COUNTED || (times == TJ_BY_BYTES && pcm);
}

bool CPositionedTrack::IsLossless() const {
    const AVCodecDescriptor* const descriptor = avcodec_descriptor_get(m_track->Codec().codec_id);
    return descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_LOSSY) == 0;
}

// A lossy codec needs what lies before: overlapping blocks, bits saved up for later, filters that settle.
bool CPositionedTrack::Approach(std::int64_t position) {
    if (!HasTrueTimes() || !HasSteadyTimes() || !LearnEnough()) return false;
    if (IsLossless() && ApproachFrom(position, position)) return true;
    const std::int64_t second = m_track->Codec().sample_rate;
    const std::int64_t distances[] = {second / 4, second, 4 * second};
    return std::any_of(std::begin(distances), std::end(distances),
                       [&](std::int64_t distance) { return ApproachFrom(position - distance, position); });
}

// Counts the frames from the jump on until the timestamps tell where that was.
bool CPositionedTrack::ApproachFrom(std::int64_t start, std::int64_t position) {
    if (!Jump(m_timeline->TimeAt(std::max<std::int64_t>(start, 0)))) return false;
    while (NextOfRun()) {
        const std::optional<std::int64_t> origin = m_timeline->Locate(m_vRun);
        if (!origin && m_vRun.size() == kLongestRun) return false;
        if (!origin || *origin + BlockEnd() <= position) continue;
        m_nBlockStart += *origin;
        return m_nBlockStart <= position;
    }
    return false;
}

bool CPositionedTrack::Jump(std::int64_t time) {
    m_bFromBeginning = false;
    m_vRun.clear();
    m_nUncounted = IsLossless() && !m_track->Container().Format().IsBroadcast() ? 0 : 1;
    m_nRefused = 0;
    BeginCount();
    return m_track->Seek(time);
}

// The first packet of a lossy codec does not count: without what lies before, it may give fewer frames than usual; nor
// does that of a broadcast, whose timestamp may be that of a frame before. A packet that the codec refuses begins the
// run anew.
bool CPositionedTrack::NextOfRun() {
    while (m_nRefused < kMostRefused) {
        try {
            if (!Next()) return false;
            if (HasStamp() && m_nUncounted-- <= 0) NoteStamp();
            return true;
        } catch (const CDamage&) {
            ++m_nRefused;
            m_vRun.clear();
            BeginCount();
        }
    }
    return false;
}

void CPositionedTrack::NoteStamp() {
    const SStamp stamp{Block().pts, m_nBlockStart};
    if (!m_vRun.empty() && !m_timeline->Continues(m_last, stamp)) m_vRun.clear();
    m_last = stamp;
    if (m_vRun.size() < kLongestRun) m_vRun.push_back(stamp);
}

// A timestamp near the end: what the index knows when the end has been looked for, or what is found there.
std::optional<std::int64_t> CPositionedTrack::LateTime() {
    const bool jumped = Jump(m_timeline->TimeAt(kLongestSeconds * m_track->Codec().sample_rate));
    const std::int64_t indexed = m_track->Container().LastIndexed();
    if (indexed != AV_NOPTS_VALUE) return indexed;
    m_nUncounted = 0;
    if (!jumped || !NextOfRun() || m_vRun.empty()) return {};
    return m_last.m_nTime;
}

std::optional<SSoundEnd> CPositionedTrack::FindEnd() {
    if (!HasTrueTimes() || !HasSteadyTimes() || !LearnEnough()) return {};
    const std::int64_t second = m_track->Codec().sample_rate;
    const std::optional<std::int64_t> late = LateTime();
    if (!late || !m_timeline->IsPossible(*late)) return {};
    const std::int64_t position = m_timeline->PositionNear(*late);
    const bool byTimes = position >= kShortSeconds * second;
    if (!byTimes) {
        Restart();
    } else if (!Approach(position - second)) {
        return {};
    }
    while (Next()) {
    }
    return SSoundEnd{BlockStart(), byTimes};
}
