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
#include "plugins/libav/StampLine.h"
#include "plugins/libav/Timeline.h"
#include "plugins/shared/FileBytes.h"

namespace {

// The lossless sound of a CD is mostly smaller. Looking through takes up to 2.5 ms per MiB and 2 us per packet.
constexpr std::uint64_t kMostBytes = 1 << 29;
constexpr std::size_t kMostPackets = 1 << 19;

// Packets that are decoded to see how many frames they give.
constexpr std::size_t kDecodedPackets = 16;

// Of a recording that begins in the middle of everything.
constexpr int kMostBrokenPackets = 16;

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

// Frames of which every packet has a multiple. The sound's first packet and its last one may be short.
class CPacketGrid {
public:
    void Include(std::int64_t frames) {
        m_nGrid = std::gcd(m_nGrid, m_nLastFrames);
        m_nLastFrames = m_nPackets++ > 0 ? frames : 0;
    }

    std::int64_t Frames() const { return m_nGrid; }

private:
    std::int64_t m_nPackets = 0;
    std::int64_t m_nLastFrames = 0;
    std::int64_t m_nGrid = 0;
};

// The packets of a sound track in turn.
class CPacketLine {
public:
    CPacketLine(CStampLine line, std::optional<SWay> way) : m_begin(line), m_line(std::move(line)), m_way(way) {}

    // Whether the packet is where those before say.
    bool Accepts(const SPacket& packet) {
        if (packet.m_bBehindGap && m_line.HasBegun()) return false;
        if (packet.m_bBehindGap) m_line = m_begin;
        const std::int64_t frames = m_way ? m_way->FramesOf(packet) : 0;
        m_grid.Include(frames);
        return m_line.Accepts(packet.m_bOwnTime ? packet.m_nTime : AV_NOPTS_VALUE, frames);
    }

    // What a packet that is not accepted shows.
    SSteadiness Break() const { return {m_line.GoesBack() ? JOINED : UNSTEADY}; }

    std::int64_t Grid() const { return m_grid.Frames(); }

private:
    CStampLine m_begin;
    CStampLine m_line;
    std::optional<SWay> m_way;
    CPacketGrid m_grid;
};

// What is taken for granted. A broadcast breaks off where the reception does.
SSteadiness Unseen(const CContainer& container) {
    return {container.Format().IsBroadcast() ? UNSTEADY : TAKEN_FOR_STEADY};
}

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
    const CTimeline timeline(container.Stream().time_base, scan.Rate());
    CPacketLine line(CStampLine(timeline, way.has_value(), container.Format().m_eTimes == TJ_VAGUE), way);
    const auto accepts = [&line](const SPacket& next) { return line.Accepts(next); };
    if (!std::all_of(packets.begin(), packets.end(), accepts)) return line.Break();
    for (std::size_t count = packets.size(); (packet = scan.Next()); ++count) {
        if (!line.Accepts(*packet)) return line.Break();
        if (count == kMostPackets) return Unseen(container);
    }
    return {way ? STEADY : TAKEN_FOR_STEADY, line.Grid()};
}

}  // namespace

SSteadiness SteadinessOf(const std::shared_ptr<const CInputFile>& file) {
    try {
        CPacketScan scan(file);
        const bool large = CFileBytes(file->Descriptor()).Size() > kMostBytes;
        return large ? Unseen(scan.Container()) : LookThrough(scan);
    } catch (const std::runtime_error&) {
        return {UNSTEADY};
    }
}
