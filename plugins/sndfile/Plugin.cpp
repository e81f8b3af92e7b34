// The plug-in: a decoder and an encoder on libsndfile.
#include "sdk/Plugin.h"

#include "plugins/sndfile/Decoder.h"
#include "plugins/sndfile/Encoder.h"
#include "sdk/Collection.h"

namespace {

class CSndFileCollection final : public CCollection<CDecoder, CEncoder> {
public:
    CSndFileCollection() : CCollection("libsndfile") {}
};

}  // namespace

KELO_PLUGIN(CSndFileCollection);
