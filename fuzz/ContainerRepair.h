// Sizes and checksums of damaged sound files, so that a decoder looks at what the damage did and does not stop before.
#pragma once

#include <string>

// Makes the frame of a WAV, FLAC or Ogg file, which its first bytes tell, fit its content again; leaves whole files and
// files of other formats as they are. [any thread]
void RepairContainer(std::string& file);
