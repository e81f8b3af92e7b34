// A sound whose samples count up, for tests of the bases around it.
#pragma once

#include <algorithm>
#include <cstring>

#include "sdk/Sound.h"

// What the sound offers; the tests change it before opening.
struct SSoundPlan {
    SWavFormat m_format{8000, 16, 1};
    std::int32_t m_nQualifier = kIntegerSamples;
    std::uint64_t m_nFrames = 100;
    std::uint64_t m_nAnnounced = 100;
    bool m_bSeekable = true;
    STags m_tags;
    std::vector<std::uint64_t> m_vIndexPoints;
    std::uint64_t m_nDamageAt = ~std::uint64_t{0};     // the frame from which reading fails
    std::uint64_t m_nUnreachable = ~std::uint64_t{0};  // the frame to which no seek goes
};

// Frame n is the 16-bit number n. [stream-thread]
class CCountingSound final : public CSound {
public:
    explicit CCountingSound(SSoundPlan plan) : m_plan(std::move(plan)) {}

    SWavFormat GetFormat() const override { return m_plan.m_format; }
    std::int32_t GetFormatQualifier() const override { return m_plan.m_nQualifier; }
    std::uint64_t GetLength() const override { return m_plan.m_nAnnounced; }

    std::int64_t Read(unsigned char* buffer, std::int64_t frames) override {
        if (m_nNext >= m_plan.m_nDamageAt) Refuse("damaged here");
        frames = std::min(frames, static_cast<std::int64_t>(m_plan.m_nFrames - m_nNext));
        for (std::int64_t i = 0; i < frames; ++i, ++m_nNext) {
            buffer[2 * i] = static_cast<unsigned char>(m_nNext);
            buffer[2 * i + 1] = static_cast<unsigned char>(m_nNext >> 8U);
        }
        return frames;
    }

    bool IsSeekable() const override { return m_plan.m_bSeekable; }
    void Seek(std::uint64_t frame) override {
        if (!m_plan.m_bSeekable) Refuse("cannot go back");
        if (frame == m_plan.m_nUnreachable) Refuse("cannot go there");
        m_nNext = frame;
    }

    STags GetTags() const override { return m_plan.m_tags; }
    std::vector<std::uint64_t> GetIndexPoints() const override { return m_plan.m_vIndexPoints; }

private:
    SSoundPlan m_plan;
    std::uint64_t m_nNext = 0;
};
