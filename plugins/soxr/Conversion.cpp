// The samples' way through one conversion.
#include "plugins/soxr/Conversion.h"

#include <algorithm>
#include <stdexcept>

#include "plugins/soxr/ChannelMap.h"
#include "plugins/soxr/SampleFormat.h"

namespace {

// Few enough that a block stays in the cache, enough that the cost of a call to soxr does not count.
constexpr std::size_t kBlockFrames = 2048;

std::size_t Samples(std::size_t frames, int channels) { return frames * static_cast<std::size_t>(channels); }

}  // namespace

CConversion::CConversion(const SConversionPlan& plan)
    : m_plan(plan),
      m_nInputBytes(static_cast<std::size_t>(BlockSizeOf(plan.m_from))),
      m_nOutputBytes(static_cast<std::size_t>(BlockSizeOf(plan.m_to))),
      m_requantiser(plan.WorkingBits(), plan.m_to.nBitsPerSample),
      m_input(Samples(kBlockFrames, std::max(plan.m_from.nChannels, plan.m_to.nChannels))) {
    if (!plan.Resamples()) return;
    m_resampler.emplace(plan.m_from.nSampleRate, plan.m_to.nSampleRate, plan.WorkingChannels(), plan.m_eQuality);
    m_output.resize(Samples(kBlockFrames, plan.m_to.nChannels));
}

void CConversion::Write(const unsigned char* data, std::size_t bytes) {
    const std::size_t used = CompletePartialFrame(data, bytes);
    data += used;
    bytes -= used;
    const std::size_t frames = bytes / m_nInputBytes;
    ConvertFrames(data, frames);
    data += frames * m_nInputBytes;
    bytes -= frames * m_nInputBytes;
    std::copy_n(data, bytes, m_partialFrame.begin() + m_nPartialBytes);
    m_nPartialBytes += bytes;
}

// Returns the bytes that went into the frame begun by an earlier Write.
std::size_t CConversion::CompletePartialFrame(const unsigned char* data, std::size_t bytes) {
    if (m_nPartialBytes == 0) return 0;
    const std::size_t used = std::min(bytes, m_nInputBytes - m_nPartialBytes);
    std::copy_n(data, used, m_partialFrame.begin() + m_nPartialBytes);
    m_nPartialBytes += used;
    if (m_nPartialBytes == m_nInputBytes) {
        ConvertFrames(m_partialFrame.data(), 1);
        m_nPartialBytes = 0;
    }
    return used;
}

void CConversion::ConvertFrames(const unsigned char* data, std::size_t frames) {
    while (frames > 0) {
        const std::size_t block = std::min(frames, kBlockFrames);
        UnpackSamples(data, Samples(block, m_plan.m_from.nChannels), m_plan.m_from.nBitsPerSample, m_input.data());
        if (m_plan.MixesDown()) AverageToMono(m_input.data(), block);
        m_nFramesIn += block;
        if (m_resampler) {
            ResampleBlock(m_input.data(), block);
        } else {
            Emit(m_input, block);
        }
        data += block * m_nInputBytes;
        frames -= block;
    }
}

void CConversion::ResampleBlock(const std::int32_t* samples, std::size_t frames) {
    for (;;) {
        const CResampler::SProgress progress = m_resampler->Process(samples, frames, m_output.data(), kBlockFrames);
        Emit(m_output, progress.m_nMade);
        samples += Samples(progress.m_nTaken, m_plan.WorkingChannels());
        frames -= progress.m_nTaken;
        if (frames == 0 && progress.m_nMade < kBlockFrames) return;
        if (progress.m_nTaken == 0 && progress.m_nMade == 0) throw std::runtime_error("the resampler takes no input");
    }
}

void CConversion::Finish(std::size_t frames) {
    const std::uint64_t whole = m_plan.OutputFrames(m_nFramesIn);
    while (FramesWaiting() < frames && m_nFramesOut < whole) {
        const auto block = static_cast<std::size_t>(std::min<std::uint64_t>(kBlockFrames, whole - m_nFramesOut));
        const std::size_t made = m_resampler->Drain(m_output.data(), block);
        // Where soxr counts the end a frame short, silence makes the length exact.
        std::fill(m_output.begin() + static_cast<std::ptrdiff_t>(Samples(made, m_plan.WorkingChannels())),
                  m_output.begin() + static_cast<std::ptrdiff_t>(Samples(block, m_plan.WorkingChannels())), 0);
        Emit(m_output, block);
    }
}

void CConversion::Restart() {
    m_queue.Clear();
    m_nPartialBytes = 0;
    m_nFramesIn = 0;
    m_nFramesOut = 0;
    m_requantiser.Restart();
    if (m_resampler) m_resampler->Restart();
}

// Overwrites `samples`.
void CConversion::Emit(std::vector<std::int32_t>& samples, std::size_t frames) {
    m_requantiser.Apply(samples.data(), Samples(frames, m_plan.WorkingChannels()));
    if (m_plan.Duplicates()) DuplicateToStereo(samples.data(), frames);
    const std::size_t bytes = frames * m_nOutputBytes;
    PackSamples(samples.data(), Samples(frames, m_plan.m_to.nChannels), m_plan.m_to.nBitsPerSample,
                m_queue.Reserve(bytes));
    m_queue.Commit(bytes);
    m_nFramesOut += frames;
}
