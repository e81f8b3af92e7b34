// What the headers of a sound file tell that the codec does not: whether something is missing, and how the file has to
// look so that the codec delivers all that is there.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <optional>
#include <string>

#include "plugins/sndfile/DataExtent.h"
#include "plugins/sndfile/SplicedFile.h"

struct SFileSurvey {
    std::optional<SSplice> m_splice;          // what to show to the codec in place of the file as it is
    std::optional<SDataExtent> m_extent;      // of uncompressed and ADPCM samples
    bool m_bEndMissing = false;               // the file is cut short for sure, whatever the codec delivers
    sf_count_t m_nPromised = 0;               // frames that the file declares or that were counted; 0 unknown
    sf_count_t m_nCounted = 0;                // frames that the codec has to know of; 0 not counted
    std::optional<std::uint64_t> m_lastPage;  // Ogg: granule positions in the last page
    bool m_bChained = false;                  // Ogg: further streams follow the first one
    bool m_bSpeakersKnown = true;             // channels are those of speakers, in the order of the coding
    std::string m_strRefusal;                 // why there is nothing to deliver; empty when there may be
};

// `formatName` as CSoundFile::FormatName tells it. Reads headers only.
SFileSurvey SurveyOf(int descriptor, const std::string& formatName);
