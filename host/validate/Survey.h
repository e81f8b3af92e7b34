// What a plug-in has, found out before the checks.
#pragma once

#include <chrono>
#include <string>
#include <vector>

struct SSurvey {
    double m_fLoadMilliseconds = 0;          // of the loader alone
    unsigned int m_nConcerns = 0;            // EConcern bits; all of them where it did not come as far
    std::vector<std::string> m_vComponents;  // decoder "libsndfile Decoder"
    std::vector<std::string> m_vSamples;     // files that were made for its decoders
    bool m_bHandlesHttp = false;
    std::string m_strTrouble;  // what kept it from its end, such as "SIGABRT in loading"; empty for one that passed
};

// Loads the plug-in in a process of its own, which tells what it has found so far even when it crashes. Files for
// decoders go into `directory`: a WAV file where they list that, and what the plug-in's encoders write. Throws CFailure
// when the WAV file cannot be written and when a signal asks to stop.
SSurvey SurveyPlugin(const std::string& plugin, const std::string& directory, std::chrono::milliseconds limit);
