// A decoder that shares nothing with the plug-in.
#pragma once

#include <string>
#include <vector>

#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/support/ScratchDirectory.h"

// What ffmpeg makes of files, as packed little-endian PCM of `bits` bits.
inline std::vector<std::string> DecodedByFfmpeg(const CScratchDirectory& scratch, const std::vector<std::string>& paths,
                                                int bits) {
    const std::string type = bits == 8 ? "u8" : "s" + std::to_string(bits) + "le";
    std::string inputs;
    std::string outputs;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const std::string number = std::to_string(i);
        inputs += " -i " + paths[i];
        outputs += " -map " + number + " -f " + type + " -c:a pcm_" + type + " " + scratch / (number + ".raw");
    }
    RunTool("ffmpeg -y -v error" + inputs + outputs);
    std::vector<std::string> decoded;
    for (std::size_t i = 0; i < paths.size(); ++i) decoded.push_back(Content(scratch / (std::to_string(i) + ".raw")));
    return decoded;
}
