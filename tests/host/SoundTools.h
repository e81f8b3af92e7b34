// Samples of sound files as other programs read them.
#pragma once

#include <string>
#include <vector>

// Runs a program and returns its standard output. Throws when the program fails.
std::string RunTool(const std::vector<std::string>& command);

// The samples as raw signed little-endian bytes of this width, as sox reads them without dither.
std::string SoxSamples(const std::string& path, int bits);

// The samples as raw signed little-endian bytes, as flac decodes them.
std::string FlacSamples(const std::string& path);

// soxi's answer to one question: -r rate, -b bits, -c channels, -s frames.
std::string AskSoxi(const std::string& question, const std::string& path);

// Between the 16-bit samples of two blocks. Throws when their sizes differ.
int LargestDifference(const std::string& left, const std::string& right);
