// Streams inside the library's own sources and targets.
#include "com/InterfaceIds.h"
#include "host/validate/Checks.h"
#include "host/validate/FormatRules.h"
#include "host/validate/Outcome.h"
#include "host/validate/References.h"
#include "host/validate/Sink.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"
#include "stream/SourceDetails.h"
#include "stream/SrcConvAggregator.h"

namespace {

// References that the library's objects hold: the stream, IAggregatable, and the interfaces that drive it.
constexpr unsigned int kSourceHoldings = 5;
constexpr unsigned int kTargetHoldings = 4;

bool Has(const CComPtr<IUnknown>& stream, unsigned long identity) {
    return static_cast<bool>(CComPtr<IUnknown>::Query(stream.Get(), identity));
}

void ForEachWrapped(
    CTrial& trial,
    const std::function<void(CComPtr<IUnknown> source, unsigned int holdings, const SSampleCase& sample)>& examine) {
    bool found = false;
    ForEachSample(trial, [&](const SSampleCase& sample) {
        CComPtr<IUnknown> stream = OpenSample(sample);
        if (!trial.MayUse("source/wrappable") || !Has(stream, IID_IAggregatable)) return;
        found = true;
        const unsigned int holdings = kSourceHoldings + (Has(stream, IID_ISeekable) ? 1 : 0) +
                                      (Has(stream, IID_IInfoReader) ? 1 : 0) + (Has(stream, IID_IIndexArray) ? 1 : 0);
        IUnknown* wrapped = stream.Detach();
        TellStep("wrapping a source");
        const auto* const source = new CSrcConvAggregator(&trial.Manager(), &wrapped, nullptr);
        Expect(source->IsValid(), "the library's source does not come about");
        examine(CComPtr<IUnknown>::Adopt(wrapped), holdings, sample);
    });
    if (!found) throw CSkipped("no stream has IAggregatable");
}

void ExpectCount(IUnknown& outer, unsigned int holdings, const char* what) {
    TellStep(std::string("AddRef and Release of ") + what);
    const unsigned int raised = outer.AddRef();
    const unsigned int back = outer.Release();
    Expect(raised == holdings + 2 && back == holdings + 1,
           std::string(what) + " holds " + std::to_string(holdings) + " references, the host one, and AddRef and " +
               "Release count " + std::to_string(raised) + " and " + std::to_string(back));
}

void CountsInsideSource(CTrial& trial) {
    ForEachWrapped(trial, [](CComPtr<IUnknown> source, unsigned int holdings, const SSampleCase& /*sample*/) {
        ExpectCount(*source.Detach(), holdings, "the library's source");
    });
}

void EndsWithSource(CTrial& trial) {
    ForEachWrapped(trial, [](CComPtr<IUnknown> source, unsigned int /*holdings*/, const SSampleCase& /*sample*/) {
        ExpectLastRelease(source.Detach());
    });
}

void SoundsTheSameInSource(CTrial& trial) {
    ForEachWrapped(trial, [](CComPtr<IUnknown> wrapped, unsigned int /*holdings*/, const SSampleCase& sample) {
        CSource source(std::move(wrapped));
        source.Start();
        const CBytes sound = source.ReadToEnd();
        source.End();
        const CBytes direct = LinearSound(sample);
        Expect(sound == direct, "through the library's source, " + DifferenceText(direct, sound));
    });
}

// The manager's way to a target.
CComPtr<IUnknown> WrapTarget(CTrial& trial, IAudioTarget& target, const SWavFormat& format) {
    TellStep("CreateURLAudioTarget");
    CComPtr<IUnknown> wrapped;
    CComPtr<IStatus> status;
    Expect(trial.Manager().CreateURLAudioTarget(target.GetTargetFactory(), wrapped.Out(), format, status.Out()),
           "the library's target does not come about");
    return wrapped;
}

void CountsInsideTarget(CTrial& trial) {
    ForEachOutput(trial, [&](const SOutputCase& output, const std::string& path) {
        const CComPtr<IAudioTarget> target = OpenTarget(output, path);
        const SWavFormat format = CSink(target).Format();
        ExpectCount(*WrapTarget(trial, *target, format).Detach(), kTargetHoldings, "the library's target");
    });
}

void EndsWithTarget(CTrial& trial) {
    ForEachOutput(trial, [&](const SOutputCase& output, const std::string& path) {
        const CComPtr<IAudioTarget> target = OpenTarget(output, path);
        const SWavFormat format = CSink(target).Format();
        ExpectLastRelease(WrapTarget(trial, *target, format).Detach());
    });
}

void WritesInsideTarget(CTrial& trial) {
    ForEachOutput(trial, [&](const SOutputCase& output, const std::string& path) {
        CSink direct(output, path + ".direct");
        const SWavFormat format = direct.Format();
        direct.WriteSample();
        const CComPtr<IAudioTarget> target = OpenTarget(output, path);
        CSink wrapped(target, WrapTarget(trial, *target, format));
        wrapped.WriteSample();
        const std::size_t size = ReadFile(path).size();
        const std::size_t expected = ReadFile(path + ".direct").size();
        Expect(size == expected, "written through the library's target, the file has " + std::to_string(size) +
                                     " bytes instead of " + std::to_string(expected));
    });
}

}  // namespace

CCheckList WrappingChecks() {
    return {
        {"aggregation/source-count", "Inside the library's source the count is its holdings and the host's references.",
         CONCERN_DECODER, "aggregation/inner-counting", CountsInsideSource},
        {"aggregation/source-ends", "The host's last Release of the library's source ends it, and answers 0.",
         CONCERN_DECODER, "aggregation/source-count", EndsWithSource},
        {"aggregation/source-sound", "Through the library's source the sound is the same.", CONCERN_DECODER,
         "aggregation/source-ends", SoundsTheSameInSource},
        {"aggregation/target-count", "Inside the library's target the count is its holdings and the host's references.",
         CONCERN_ENCODER, "aggregation/inner-counting", CountsInsideTarget},
        {"aggregation/target-ends", "The host's last Release of the library's target ends it, and answers 0.",
         CONCERN_ENCODER, "aggregation/target-count", EndsWithTarget},
        {"aggregation/target-writes", "Through the library's target the file gets the same size.", CONCERN_ENCODER,
         "aggregation/target-ends", WritesInsideTarget},
    };
}
