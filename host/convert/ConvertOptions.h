// The options of keloaudio convert.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/PluginOptions.h"
#include "host/TargetStream.h"
#include "host/convert/TimePoint.h"

// 0 keeps what the source has.
struct SFormatOptions {
    int m_nSampleRate = 0;
    int m_nBitsPerSample = 0;
    int m_nChannels = 0;
};

struct SExcerptOptions {
    std::optional<STimePoint> m_start;
    std::optional<STimePoint> m_end;
};

// Part `m_nIndex` of `m_nCount`, counted from 0.
struct SShard {
    unsigned m_nIndex = 0;
    unsigned m_nCount = 1;
};

struct SConvertOptions {
    SPluginOptions m_plugins;

    std::vector<std::string> m_vInputs;

    // The one output of the form with two names; empty in every other form.
    std::string m_strOutput;

    // The outputs of the other forms: their extension, and the directory, empty for beside the inputs.
    std::string m_strExtension;
    std::string m_strOutputDirectory;
    bool m_bStandardOutput = false;

    bool m_bRecursive = false;
    bool m_bSkipExisting = false;
    bool m_bDryRun = false;
    SShard m_shard;
    int m_nJobs = 1;

    SFormatOptions m_format;
    SExcerptOptions m_excerpt;
    CTargetSettings m_settings;

    // Settings of the convertor; empty leaves them as they are.
    std::string m_strQuality;
    std::string m_strDither;

    bool m_bQuiet = false;
    bool m_bJson = false;

    bool HasOneOutput() const { return !m_strOutput.empty(); }
};

// `options` lives until the command has run.
void AddConvertOptions(CLI::App& app, SConvertOptions& options);

// Tells the forms of the command line apart once it is parsed. Throws CWrongUsage.
void CompleteConvertOptions(SConvertOptions& options);
