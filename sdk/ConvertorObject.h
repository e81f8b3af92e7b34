// A conversion as the convertor object that an aggregator drives.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "sdk/Conversion.h"
#include "sdk/CountedObject.h"
#include "sdk/Guard.h"
#include "sdk/OutputAllowance.h"

// Puts broken frames together, hands out no more in each call than the caller's buffer holds and keeps the rest for the
// next calls. Made by CConvertorComponent. [stream-thread]
class CConvertorObject final : public CCountedObject<IAudioConvertor, IClippingCount> {
public:
    // Both formats have frames of at least one byte and a positive rate.
    CConvertorObject(const SWavFormat& from, const SWavFormat& to, std::unique_ptr<CConversion> conversion)
        : m_allowance(from, to),
          m_nInputBytes(static_cast<std::size_t>(BlockSizeOf(from))),
          m_nOutputBytes(static_cast<std::size_t>(BlockSizeOf(to))),
          m_conversion(std::move(conversion)) {
        m_vPartialFrame.reserve(m_nInputBytes);
    }

    // The first call with bytes after one with none begins a new stream: hosts seek back after the end.
    bool Convert(unsigned char* data, int size, int /*flags*/, IStatus** status) override {
        m_nLength = kFailed;
        return Guarded(status, "", [&] {
            if (size < 0 || (size > 0 && data == nullptr)) throw CBadArgument();
            if (size > 0) {
                Feed(data, static_cast<std::size_t>(size));
                m_nLastInput = size;
                HandOut(m_allowance.Frames(size));
            } else {
                FinishInput();
            }
            return true;
        });
    }

    int GetOutputLength() override { return m_nLength; }
    unsigned char* GetOutputData() override { return m_pData; }

    std::uint64_t GetClippedSamples() override { return m_conversion->GetClippedSamples(); }

private:
    // A length that fails the read or write of whoever drives the convertor, since nobody asks for Convert's result.
    static constexpr int kFailed = -1;

    void Feed(const unsigned char* data, std::size_t bytes) {
        const bool begins = m_bEnded || m_bBroken;
        // Left standing by a failure; the next bytes begin a new stream.
        m_bBroken = true;
        if (begins) Restart();
        const std::size_t used = CompletePartialFrame(data, bytes);
        const std::size_t frames = (bytes - used) / m_nInputBytes;
        if (frames > 0) m_conversion->Write(data + used, static_cast<std::int64_t>(frames), m_queue);
        const std::size_t rest = used + frames * m_nInputBytes;
        m_vPartialFrame.insert(m_vPartialFrame.end(), data + rest, data + bytes);
        m_bBroken = false;
    }

    void Restart() {
        m_queue.Clear();
        m_vPartialFrame.clear();
        m_conversion->Restart();
        m_bEnded = false;
    }

    // Bytes of `data` that went into the frame which an earlier call has begun.
    std::size_t CompletePartialFrame(const unsigned char* data, std::size_t bytes) {
        if (m_vPartialFrame.empty()) return 0;
        const std::size_t used = std::min(bytes, m_nInputBytes - m_vPartialFrame.size());
        m_vPartialFrame.insert(m_vPartialFrame.end(), data, data + used);
        if (m_vPartialFrame.size() == m_nInputBytes) {
            m_conversion->Write(m_vPartialFrame.data(), 1, m_queue);
            m_vPartialFrame.clear();
        }
        return used;
    }

    void FinishInput() {
        m_bEnded = true;
        if (m_bBroken) throw std::runtime_error("the stream is broken by an earlier failure");
        const std::int64_t frames = m_allowance.TailFrames(m_nLastInput);
        m_bBroken = true;
        if (m_queue.Size() < static_cast<std::size_t>(frames) * m_nOutputBytes) m_conversion->Finish(frames, m_queue);
        m_bBroken = false;
        HandOut(frames);
    }

    void HandOut(std::int64_t frames) {
        const std::size_t ready = std::min(static_cast<std::size_t>(frames), m_queue.Size() / m_nOutputBytes);
        m_pData = m_queue.Take(ready * m_nOutputBytes);
        m_nLength = static_cast<int>(ready * m_nOutputBytes);
    }

    COutputAllowance m_allowance;
    std::size_t m_nInputBytes;   // per frame
    std::size_t m_nOutputBytes;  // per frame
    std::unique_ptr<CConversion> m_conversion;
    CByteQueue m_queue;
    std::vector<unsigned char> m_vPartialFrame;
    int m_nLastInput = 0;  // bytes of the last call that had any
    bool m_bEnded = false;
    bool m_bBroken = false;  // by a failure
    int m_nLength = 0;
    unsigned char* m_pData = nullptr;
};
