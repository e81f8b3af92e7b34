// The command line.
#pragma once

#include <string>

struct SConvertOptions {
    std::string m_strInput;
    std::string m_strOutput;

    // 0 keeps what the source has.
    int m_nSampleRate = 0;
    int m_nBitsPerSample = 0;
    int m_nChannels = 0;
};

struct SOptions {
    enum class ECommand { List, Convert, Settings };

    ECommand m_eCommand = ECommand::List;
    std::string m_strPluginDirectory;
    std::string m_strImagesDirectory;
    SConvertOptions m_convert;

    // What a failure without a name of its own is about.
    const std::string& GetSubject() const {
        return m_eCommand == ECommand::Convert ? m_convert.m_strInput : m_strPluginDirectory;
    }
};

// False when the program is already done, with its exit status in `exitStatus`: help was printed, or a line about the
// wrong usage.
bool ParseOptions(int argc, char** argv, SOptions& options, int& exitStatus);
