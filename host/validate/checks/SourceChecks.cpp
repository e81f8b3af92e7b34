// The life of a decoder stream: interfaces, format, start, reading to the end, end.
#include "com/InterfaceIds.h"
#include "host/FormatText.h"
#include "host/validate/Checks.h"
#include "host/validate/FormatRules.h"
#include "host/validate/Outcome.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"
#include "stream/FileOpener.h"
#include "stream/SrcConvAggregator.h"

namespace {

void HasInterfaces(CTrial& trial) {
    ForEachSource(trial, [](CSource& /*source*/) {});
}

void HasSaneFormat(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) { ExpectSaneFormat(source.Format()); });
}

void Starts(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) { source.Start(); });
}

void ReadsToEnd(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        source.Start();
        const CBytes sound = source.ReadToEnd();
        Expect(!sound.empty(), "the end comes before the first frame");
    });
}

void Ends(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        source.Start();
        source.ReadToEnd();
        source.End();
    });
}

void EndsEarly(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        source.Start();
        source.ReadSome(source.FrameBytes() * 100);
        source.End();
    });
}

void ExpectInProcess(CSource& source, bool inProcess, const char* when) {
    TellStep("IsInProcess of a source");
    Expect(source.Process().IsInProcess() == inProcess,
           std::string("IsInProcess says ") + (inProcess ? "false " : "true ") + when);
}

void KnowsWhetherInProcess(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        ExpectInProcess(source, false, "before Start");
        source.Start();
        ExpectInProcess(source, true, "after Start");
        source.ReadToEnd();
        ExpectInProcess(source, true, "at the end of the sound, before End");
        source.End();
        ExpectInProcess(source, false, "after End");
    });
}

void KeepsFormat(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        const SWavFormat first = source.Format();
        const auto expectSame = [&](const char* when) {
            const SWavFormat format = source.Format();
            Expect(SHeldWavFormat{format, 0} == SHeldWavFormat{first, 0},
                   "first " + FormatText(first) + ", " + when + " " + FormatText(format));
        };
        source.Start();
        expectSame("after Start");
        source.ReadToEnd();
        expectSame("at the end");
        source.End();
        expectSame("after End");
    });
}

void ExpectNothingRead(CSource& source, const char* when) {
    CBytes bytes;
    const SReadResult result = source.Read(4096 * 12, bytes);
    Expect(!result.m_bDone || result.m_nBytes == 0,
           "RawRead " + std::string(when) + " delivers " + std::to_string(result.m_nBytes) + " bytes");
}

void RefusesReadBeforeStart(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) { ExpectNothingRead(source, "before Start"); });
}

void RefusesReadAfterEnd(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        source.Start();
        source.ReadSome(source.FrameBytes() * 100);
        source.End();
        ExpectNothingRead(source, "after End");
    });
}

void StaysAtEnd(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        source.Start();
        source.ReadToEnd();
        for (int again = 0; again < 3; ++again) {
            CBytes bytes;
            const SReadResult result = source.Read(4096 * 12, bytes);
            Expect(result.m_nBytes == 0, "a read after the end delivers " + std::to_string(result.m_nBytes) + " bytes");
            Expect(!result.m_bDone || result.m_eState != ARS_MORE, "a read after the end says that more follows");
        }
    });
}

void StartsAgain(CTrial& trial) {
    ForEachSource(trial, [](CSource& source) {
        source.Start();
        const CBytes first = source.ReadToEnd();
        source.End();
        source.Start();
        const CBytes second = source.ReadToEnd();
        source.End();
        Expect(first == second, "the second time through, " + DifferenceText(first, second));
    });
}

EAuxFlags FlagsOf(const SSampleCase& sample) {
    const auto opener = CComPtr<IAudioFileOpener>::Query(sample.m_decoder.m_pComponent.Get(), IID_IAudioFileOpener);
    TellStep("GetAuxFlags");
    return opener->GetAuxFlags();
}

void CanBeWrapped(CTrial& trial) {
    bool wrapped = false;
    ForEachSample(trial, [&](const SSampleCase& sample) {
        if ((FlagsOf(sample) & AUX_CONVERT) == 0) return;
        IUnknown* stream = OpenSample(sample).Detach();
        TellStep("wrapping a source");
        const auto* const source = new CSrcConvAggregator(&trial.Manager(), &stream, nullptr);
        Expect(source->IsValid(), "its capabilities hold 0x1000, and the library's source does not come about");
        wrapped = true;
    });
    if (!wrapped) throw CSkipped("the capabilities of its decoders lack 0x1000: hosts that convert never ask them");
}

}  // namespace

CCheckList SourceChecks() {
    return {
        {"source/interfaces", "A stream has IProcess, IAudioRawReader and IAudioRawBlockInfo.", CONCERN_DECODER,
         "decoder/last-release", HasInterfaces},
        {"source/format", "A stream's format has a rate, whole bytes in its samples and channels.", CONCERN_DECODER,
         "source/interfaces", HasSaneFormat},
        {"source/start", "A stream starts.", CONCERN_DECODER, "source/format", Starts},
        {"source/reads-to-end", "A stream delivers sound and then its end: no bytes and a state that is not 0.",
         CONCERN_DECODER, "source/start", ReadsToEnd},
        {"source/end", "A stream that was read to its end can be ended.", CONCERN_DECODER, "source/reads-to-end", Ends},
        {"source/ends-early", "A stream can be ended in the middle.", CONCERN_DECODER, "source/end", EndsEarly},
        {"source/in-process", "IsInProcess is true between Start and End alone.", CONCERN_DECODER, "source/end",
         KnowsWhetherInProcess},
        {"source/format-constant", "A stream's format is the same from opening to the last Release.", CONCERN_DECODER,
         "source/end", KeepsFormat},
        {"source/read-before-start", "A read before Start delivers nothing.", CONCERN_DECODER, "source/end",
         RefusesReadBeforeStart},
        {"source/read-after-end", "A read after End delivers nothing.", CONCERN_DECODER, "source/ends-early",
         RefusesReadAfterEnd},
        {"source/stays-at-end", "At its end a stream stays there, however often it is read.", CONCERN_DECODER,
         "source/end", StaysAtEnd},
        {"source/starts-again", "A stream that was ended starts again with the same sound.", CONCERN_DECODER,
         "source/end", StartsAgain},
        {"source/wrappable", "A stream of a decoder whose capabilities hold 0x1000 can be wrapped by the library.",
         CONCERN_DECODER, "source/end", CanBeWrapped},
    };
}
