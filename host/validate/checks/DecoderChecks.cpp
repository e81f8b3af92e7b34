// How decoders open files.
#include "host/validate/Checks.h"
#include "host/validate/Outcome.h"
#include "host/validate/References.h"
#include "host/validate/Source.h"

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

}  // namespace

CCheckList DecoderChecks() {
    return {
        {"decoder/opens-sample", "A decoder opens a sound file whose extension it lists.", CONCERN_DECODER,
         "extensions/named", OpensSample},
        {"decoder/reference", "An opened stream comes with a reference that the caller owns.", CONCERN_DECODER,
         "decoder/opens-sample", GivesReference},
        {"decoder/last-release", "A stream that was only opened ends with its last Release, which answers 0.",
         CONCERN_DECODER, "decoder/reference", EndsWithLastRelease},
    };
}
