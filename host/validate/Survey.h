// What a plug-in has, found out before the checks.
#pragma once

#include <chrono>
#include <string>
#include <vector>

struct SSurvey {
    double m_fLoadMilliseconds = 0;          // of the loader alone
    unsigned int m_nConcerns = 0;            // EConcern bits
    std::vector<std::string> m_vComponents;  // decoder "libsndfile Decoder"
    std::vector<std::string> m_vSamples;     // files that were made for its decoders
    bool m_bHandlesHttp = false;
};

// Loads the plug-in in a process of its own, which tells what it has found so far even when it crashes. Files for
// decoders go into `directory`: a WAV file where they list that, and what the plug-in's encoders write.
SSurvey SurveyPlugin(const std::string& plugin, const std::string& directory, std::chrono::milliseconds limit);
