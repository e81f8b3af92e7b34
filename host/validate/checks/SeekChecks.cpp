// Seeking in decoder streams.
#include <algorithm>

#include "host/FailureText.h"
#include "host/validate/Checks.h"
#include "host/validate/FormatRules.h"
#include "host/validate/Outcome.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"
#include "stream/SourceDetails.h"

namespace {

std::string FrameText(std::uint64_t frame) { return "frame " + std::to_string(frame); }

bool Seek(ISeekable& seekable, std::uint64_t frame) {
    TellStep("Seek to " + FrameText(frame));
    CComPtr<IStatus> status;
    return seekable.Seek(frame, status.Out());
}

void ForEachSeekable(CTrial& trial,
                     const std::function<void(CSource& source, ISeekable& seekable, const CBytes& linear)>& examine) {
    bool found = false;
    ForEachSample(trial, [&](const SSampleCase& sample) {
        CSource source(OpenSample(sample));
        const auto seekable = source.Face<ISeekable>(IID_ISeekable);
        if (!seekable) return;
        found = true;
        const CBytes linear = LinearSound(sample);
        source.Start();
        examine(source, *seekable, linear);
    });
    if (!found) throw CSkipped("no stream has ISeekable");
}

// Forwards, backwards, twice the same, the end and the beginning.
std::vector<std::uint64_t> Targets(std::uint64_t frames) {
    return {frames / 2, frames / 3, frames / 3, frames - 1, frames, 0, 1};
}

void Reaches(CTrial& trial) {
    ForEachSeekable(trial, [](CSource& source, ISeekable& seekable, const CBytes& linear) {
        for (const std::uint64_t target : Targets(linear.size() / source.FrameBytes())) {
            Expect(Seek(seekable, target), "Seek to " + FrameText(target) + " says false");
        }
    });
}

void TellsPosition(CTrial& trial) {
    ForEachSeekable(trial, [](CSource& source, ISeekable& seekable, const CBytes& linear) {
        for (const std::uint64_t target : Targets(linear.size() / source.FrameBytes())) {
            Seek(seekable, target);
            const std::uint64_t position = source.Blocks().GetPos();
            Expect(position == target, "position " + std::to_string(position) + " after Seek to " + FrameText(target));
        }
    });
}

// What is read at `target` is what linear reading delivers there.
void ExpectSound(CSource& source, const CBytes& linear, std::uint64_t target) {
    constexpr std::size_t kFrames = 500;
    const std::size_t begin = std::min(linear.size(), static_cast<std::size_t>(target) * source.FrameBytes());
    const std::size_t size = std::min(linear.size() - begin, kFrames * source.FrameBytes());
    const auto first = linear.begin() + static_cast<std::ptrdiff_t>(begin);
    const CBytes expected(first, first + static_cast<std::ptrdiff_t>(size));
    const CBytes sound = source.ReadSome(size);
    Expect(sound == expected, "after Seek to " + FrameText(target) + ", " + DifferenceText(expected, sound));
}

void FindsSound(CTrial& trial) {
    ForEachSeekable(trial, [](CSource& source, ISeekable& seekable, const CBytes& linear) {
        for (const std::uint64_t target : Targets(linear.size() / source.FrameBytes())) {
            Seek(seekable, target);
            ExpectSound(source, linear, target);
        }
    });
}

void ComesBackFromEnd(CTrial& trial) {
    ForEachSeekable(trial, [](CSource& source, ISeekable& seekable, const CBytes& linear) {
        source.ReadToEnd();
        const std::uint64_t target = linear.size() / source.FrameBytes() / 4;
        Expect(Seek(seekable, target), "at the end, Seek to " + FrameText(target) + " says false");
        ExpectSound(source, linear, target);
    });
}

void RefusesBeyondEnd(CTrial& trial) {
    bool found = false;
    ForEachSeekable(trial, [&](CSource& source, ISeekable& seekable, const CBytes& /*linear*/) {
        const std::uint64_t length = source.Blocks().GetDataLength();
        if (length == 0) return;
        found = true;
        source.ReadSome(100 * source.FrameBytes());
        const std::uint64_t before = source.Blocks().GetPos();
        for (const std::uint64_t target : {length + 1, length + 1000000}) {
            Expect(!Seek(seekable, target),
                   "Seek to " + FrameText(target) + " of " + std::to_string(length) + " says true");
            const std::uint64_t position = source.Blocks().GetPos();
            Expect(position == before, "a Seek that says false moves to " + FrameText(position));
        }
    });
    if (!found) throw CSkipped("the streams do not tell their length");
}

}  // namespace

CCheckList SeekChecks() {
    return {
        {"seek/reaches", "Every frame from the first to the end can be sought, forwards and backwards.",
         CONCERN_DECODER, "source/end", Reaches},
        {"seek/position", "After Seek the position is the frame that was sought.", CONCERN_DECODER, "seek/reaches",
         TellsPosition},
        {"seek/sound", "After Seek the sound is what linear reading delivers there.", CONCERN_DECODER, "seek/reaches",
         FindsSound},
        {"seek/back-from-end", "At its end a stream can be sought back and goes on.", CONCERN_DECODER, "seek/reaches",
         ComesBackFromEnd},
        {"seek/beyond-end", "Seek beyond the end is refused, and the position stays.", CONCERN_DECODER, "seek/reaches",
         RefusesBeyondEnd},
    };
}
