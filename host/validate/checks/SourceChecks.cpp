// The life of a decoder stream: interfaces, format, start, reading to the end, end.
#include "host/FormatText.h"
#include "host/validate/Checks.h"
#include "host/validate/FormatRules.h"
#include "host/validate/Outcome.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"

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
        {"source/read-after-end", "A read after End delivers nothing.", CONCERN_DECODER, "source/end",
         RefusesReadAfterEnd},
        {"source/stays-at-end", "At its end a stream stays there, however often it is read.", CONCERN_DECODER,
         "source/end", StaysAtEnd},
        {"source/starts-again", "A stream that was ended starts again with the same sound.", CONCERN_DECODER,
         "source/end", StartsAgain},
    };
}
