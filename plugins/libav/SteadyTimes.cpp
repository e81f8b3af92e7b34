// Whether timestamps run on with the sound.
#include "plugins/libav/SteadyTimes.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "plugins/libav/AudioCodec.h"
#include "plugins/libav/Container.h"
#include "plugins/libav/Damage.h"
#include "plugins/libav/PacketFrames.h"
#include "plugins/libav/Timeline.h"
#include "plugins/shared/FileBytes.h"

namespace {

// A larger file is most often a film with little sound in it.
constexpr std::uint64_t kMostBytes = 1 << 26;

// Packets that are decoded to see how many frames they give.
constexpr std::size_t kDecodedPackets = 16;

// Of a recording that begins in the middle of everything.
constexpr int kMostBrokenPackets = 16;

// Longer than any packet is between two timestamps, in times of the longest at the beginning.
constexpr std::int64_t kLongestStep = 2;

struct SPacket {
    std::int64_t m_nTime = AV_NOPTS_VALUE;
    bool m_bOwnTime = false;  // the file's, not one that libavformat counted on to
    bool m_bBehindGap = false;
    std::int64_t m_nByHead = 0;
    std::int64_t m_nBySize = 0;
};

struct SBlock {
    std::int64_t m_nTime;
    std::int64_t m_nFrames;
};

// The packets of a sound track, and the blocks of the first of them.
class CPacketScan {
public:
    explicit CPacketScan(const std::shared_ptr<const CInputFile>& file)
        : m_container(file),
          m_codec(m_container.Stream()),
          m_frames(m_container.Stream()),
          m_packet(Allocated(av_packet_alloc())),
          m_block(Allocated(av_frame_alloc())) {}

    const CContainer& Container() const { return m_container; }

    // None at the end. Throws CDamage.
    std::optional<SPacket> Next() {
        for (bool gap = false;; gap = true) {
            try {
                if (!m_container.ReadPacket(*m_packet)) return {};
                return Facts(gap);
            } catch (const CDamage&) {
                if (!m_container.Format().IsBroadcast() || ++m_nBroken > kMostBrokenPackets) throw;
            }
        }
    }

    // Blocks of the packet at hand.
    void Decode() {
        try {
            m_codec.Send(m_packet.get());
            while (m_codec.Receive(*m_block)) {
                m_vBlocks.push_back({m_block->pts, m_block->nb_samples});
                m_nRate = m_block->sample_rate;
            }
        } catch (const CDamage&) {
            m_vBlocks.clear();
        }
    }

    // Looking at the heads of packets takes time.
    void LeaveHeads() { m_bHeads = false; }

    const std::vector<SBlock>& Blocks() const { return m_vBlocks; }

    // Of the last block; 0 before there was one.
    int Rate() const { return m_nRate; }

private:
    SPacket Facts(bool gap) {
        const bool own = !m_container.Format().IsBroadcast() || m_packet->pos >= 0;
        return {m_packet->pts, own, gap, m_bHeads ? m_frames.ByHead(*m_packet) : 0, m_frames.BySize(*m_packet)};
    }

    CContainer m_container;
    CAudioCodec m_codec;
    CPacketFrames m_frames;
    CPacketPointer m_packet;
    CFramePointer m_block;
    std::vector<SBlock> m_vBlocks;
    int m_nRate = 0;
    int m_nBroken = 0;
    bool m_bHeads = true;
};

// A way to count the frames of packets.
struct SWay {
    std::int64_t SPacket::*m_pTold;  // null for a constant number
    std::int64_t m_nConstant = 0;

    std::int64_t FramesOf(const SPacket& packet) const { return m_pTold != nullptr ? packet.*m_pTold : m_nConstant; }

    // Whether it gives what decoding gave.
    bool Fits(const SBlock& block, const std::vector<SPacket>& packets) const {
        return std::any_of(packets.begin(), packets.end(), [&](const SPacket& packet) {
            return packet.m_nTime == block.m_nTime && packet.m_nTime != AV_NOPTS_VALUE &&
                   FramesOf(packet) == block.m_nFrames;
        });
    }
};

// The first block may lack the encoder's delay, the sound's last one may be short.
std::optional<SWay> FindWay(const std::vector<SPacket>& packets, const std::vector<SBlock>& blocks, bool ended) {
    const std::ptrdiff_t left = ended ? 1 : 0;
    if (static_cast<std::ptrdiff_t>(blocks.size()) < 2 + left) return {};
    const SWay ways[] = {{&SPacket::m_nByHead}, {&SPacket::m_nBySize}, {nullptr, blocks[1].m_nFrames}};
    for (const SWay& way : ways) {
        if (std::all_of(blocks.begin() + 1, blocks.end() - left,
                        [&](const SBlock& block) { return way.Fits(block, packets); })) {
            return way;
        }
    }
    return {};
}

// Follows timestamps from the second on.
class CStampLine {
public:
    // `vague`: the timestamps of the packets between may be wrong by a packet.
    CStampLine(CTimeline timeline, std::optional<SWay> way, bool vague)
        : m_timeline(std::move(timeline)), m_way(way), m_bVague(vague) {}

    // Whether the packet is where those before say.
    bool Accepts(const SPacket& packet) {
        if (packet.m_bBehindGap && m_nStamps > 1) return false;
        if (packet.m_bBehindGap) m_nStamps = 0;
        const SStamp stamp{packet.m_nTime, m_nFrames};
        const std::int64_t frames = m_way ? m_way->FramesOf(packet) : 0;
        m_nFrames += frames;
        // The sound's last packet may be short.
        m_nGrid = std::gcd(m_nGrid, m_nLastFrames);
        m_nLastFrames = m_nPackets++ > 0 ? frames : 0;
        m_nMostFrames = std::max(m_nMostFrames, frames);
        return !packet.m_bOwnTime || !m_timeline.IsPossible(packet.m_nTime) || AcceptsStamp(stamp);
    }

    // What a packet that is not accepted shows.
    SSteadiness Break() const { return {m_bGoesBack ? JOINED : UNSTEADY}; }

    std::int64_t Grid() const { return m_nGrid; }

private:
    // libavformat may ascribe a timestamp to the packet before. What breaks off stays so.
    bool AcceptsStamp(const SStamp& stamp) {
        if (IsInLine(stamp)) {
            m_nOutOfLine = 0;
            m_bGoesBack = false;
            m_nLatest = std::max(m_nLatest, stamp.m_nTime);
        } else {
            ++m_nOutOfLine;
            m_bGoesBack = m_bGoesBack || stamp.m_nTime < m_nLatest;
        }
        return m_nOutOfLine < 2;
    }

    bool IsInLine(const SStamp& stamp) {
        if (++m_nStamps <= 2) m_base = stamp;
        const SStamp last = m_last;
        m_last = stamp;
        if (m_nStamps <= 2) return true;
        if (!m_way) return IsNear(last, stamp);
        if (m_nStamps == 3) m_step = {stamp.m_nTime - m_base.m_nTime, stamp.m_nFrame - m_base.m_nFrame};
        const double doubt = m_bVague ? static_cast<double>(m_nMostFrames) : 0;
        return m_timeline.Continues(m_base, stamp, doubt) || IsWholeSteps(stamp);
    }

    // Roundings may add up where every packet takes the same time.
    bool IsWholeSteps(const SStamp& stamp) const {
        if (m_step.m_nTime <= 0 || !m_timeline.Continues({0, 0}, m_step)) return false;
        const std::int64_t time = stamp.m_nTime - m_base.m_nTime;
        const std::int64_t frames = stamp.m_nFrame - m_base.m_nFrame;
        return time % m_step.m_nTime == 0 && time / m_step.m_nTime * m_step.m_nFrame == frames;
    }

    // Where nothing tells the frames of a packet, the first ones show how long they are about.
    bool IsNear(const SStamp& last, const SStamp& stamp) {
        const std::int64_t step = stamp.m_nTime - last.m_nTime;
        if (m_nStamps <= static_cast<int>(kDecodedPackets)) m_nLongest = std::max(m_nLongest, step);
        return step >= 0 && step <= kLongestStep * m_nLongest;
    }

    CTimeline m_timeline;
    std::optional<SWay> m_way;
    bool m_bVague;
    std::int64_t m_nFrames = 0;
    std::int64_t m_nMostFrames = 0;  // of a packet
    std::int64_t m_nLastFrames = 0;
    std::int64_t m_nGrid = 0;
    std::int64_t m_nPackets = 0;
    int m_nStamps = 0;
    int m_nOutOfLine = 0;  // stamps in turn
    bool m_bGoesBack = false;
    std::int64_t m_nLatest = INT64_MIN;  // of the stamps in line
    SStamp m_base{};
    SStamp m_step{};
    SStamp m_last{};
    std::int64_t m_nLongest = 0;
};

SSteadiness LookThrough(CPacketScan& scan) {
    std::vector<SPacket> packets;
    std::optional<SPacket> packet;
    while (packets.size() < kDecodedPackets && (packet = scan.Next())) {
        packets.push_back(*packet);
        scan.Decode();
    }
    // So short a sound has no two places.
    if (!packet && packets.size() < 3) return {STEADY};
    if (scan.Rate() < 1) return {UNSTEADY};
    const std::optional<SWay> way = FindWay(packets, scan.Blocks(), !packet);
    if (!way || way->m_pTold != &SPacket::m_nByHead) scan.LeaveHeads();
    const CContainer& container = scan.Container();
    CStampLine line(CTimeline(container.Stream().time_base, scan.Rate()), way, container.Format().m_eTimes == TJ_VAGUE);
    const auto accepts = [&line](const SPacket& next) { return line.Accepts(next); };
    if (!std::all_of(packets.begin(), packets.end(), accepts)) return line.Break();
    while ((packet = scan.Next())) {
        if (!line.Accepts(*packet)) return line.Break();
    }
    return {STEADY, line.Grid()};
}

}  // namespace

// A broadcast breaks off where the reception does.
SSteadiness SteadinessOf(const std::shared_ptr<const CInputFile>& file) {
    try {
        CPacketScan scan(file);
        if (CFileBytes(file->Descriptor()).Size() <= kMostBytes) return LookThrough(scan);
        return {scan.Container().Format().IsBroadcast() ? UNSTEADY : TAKEN_FOR_STEADY};
    } catch (const std::runtime_error&) {
        return {UNSTEADY};
    }
}
