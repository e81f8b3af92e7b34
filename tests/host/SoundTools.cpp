// Samples of sound files as other programs read them.
#include "tests/host/SoundTools.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#include "tests/host/RunProgram.h"

std::string RunTool(const std::vector<std::string>& command) {
    SRunResult result = RunProgram(command);
    if (result.m_nExit == 0) return std::move(result.m_strOut);
    throw std::runtime_error(command.front() + " ends with " + std::to_string(result.m_nExit) + ": " + result.m_strErr);
}

std::string SoxSamples(const std::string& path, int bits) {
    return RunTool({"sox", "-D", path, "-t", "raw", "-e", "signed", "-b", std::to_string(bits), "-L", "-"});
}

std::string FlacSamples(const std::string& path) {
    return RunTool({"flac", "-dcs", "--force-raw-format", "--endian=little", "--sign=signed", path});
}

std::string AskSoxi(const std::string& question, const std::string& path) {
    const std::string answer = RunTool({"soxi", question, path});
    return answer.substr(0, answer.find('\n'));
}

int LargestDifference(const std::string& left, const std::string& right) {
    if (left.size() != right.size()) {
        throw std::runtime_error(std::to_string(left.size()) + " bytes of samples and " + std::to_string(right.size()));
    }
    int largest = 0;
    for (std::size_t i = 0; i + 1 < left.size(); i += 2) {
        const auto sample = [i](const std::string& bytes) {
            return static_cast<std::int16_t>(static_cast<unsigned char>(bytes[i]) |
                                             static_cast<unsigned char>(bytes[i + 1]) << 8);
        };
        largest = std::max(largest, std::abs(sample(left) - sample(right)));
    }
    return largest;
}
