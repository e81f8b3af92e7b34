// How decoders open files.
#include "com/InterfaceIds.h"
#include "host/validate/Checks.h"
#include "host/validate/Outcome.h"
#include "host/validate/References.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"
#include "stream/FileOpener.h"
#include "stream/SrcConvAggregator.h"

namespace {

void OpensSample(CTrial& trial) {
    // The reference is not given back: whether one came with the stream is another check's question.
    ForEachSample(trial, [](const SSampleCase& sample) { OpenSample(sample).Detach(); });
}

void GivesReference(CTrial& trial) {
    ForEachSample(trial, [](const SSampleCase& sample) { ExpectOwnReference(*OpenSample(sample).Detach()); });
}

void EndsWithLastRelease(CTrial& trial) {
    ForEachSample(trial, [](const SSampleCase& sample) { ExpectLastRelease(OpenSample(sample).Detach()); });
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

CCheckList DecoderChecks() {
    return {
        {"decoder/opens-sample", "A decoder opens a sound file whose extension it lists.", CONCERN_DECODER,
         "extensions/named", OpensSample},
        {"decoder/reference", "An opened stream comes with a reference that the caller owns.", CONCERN_DECODER,
         "decoder/opens-sample", GivesReference},
        {"decoder/last-release", "A stream that was only opened ends with its last Release, which answers 0.",
         CONCERN_DECODER, "decoder/reference", EndsWithLastRelease},
        {"decoder/wrappable", "A decoder whose capabilities hold 0x1000 makes streams that the library can wrap.",
         CONCERN_DECODER, "decoder/last-release", CanBeWrapped},
    };
}
