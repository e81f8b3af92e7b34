// The sound that the validator works with.
#include "host/validate/SampleSound.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>

#include "host/Failure.h"
#include "host/FailureText.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kLowTone = 200;
constexpr double kHighTone = 3000;
constexpr double kLevel = 0.5;

// Phase in turns of a tone that goes from `first` to `last` Hz in `seconds`.
double GlidePhase(double time, double seconds, double first, double last) {
    return time * (first + (last - first) * time / (2 * seconds));
}

// 8-bit samples are unsigned in WAVE files.
void PutSample(unsigned char* place, int bytes, double value) {
    const double scale = std::ldexp(1.0, 8 * bytes - 1) - 1;
    const auto sample = static_cast<std::int64_t>(std::lround(value * scale)) + (bytes == 1 ? 128 : 0);
    for (int i = 0; i < bytes; ++i) place[i] = static_cast<unsigned char>(sample >> (8 * i));
}

void Append(CBytes& bytes, const char* text) { bytes.insert(bytes.end(), text, text + std::strlen(text)); }

void AppendNumber(CBytes& bytes, std::uint64_t value, int size) {
    for (int i = 0; i < size; ++i) bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

// RIFF chunks begin on even places.
void AppendChunk(CBytes& bytes, const char* name, const CBytes& content) {
    Append(bytes, name);
    AppendNumber(bytes, content.size(), 4);
    bytes.insert(bytes.end(), content.begin(), content.end());
    if (content.size() % 2 != 0) bytes.push_back(0);
}

CBytes FormatChunk() {
    constexpr std::uint64_t kIntegerPcm = 1;  // WAVE_FORMAT_PCM
    CBytes bytes;
    AppendNumber(bytes, kIntegerPcm, 2);
    AppendNumber(bytes, static_cast<std::uint64_t>(kSampleFormat.nChannels), 2);
    AppendNumber(bytes, static_cast<std::uint64_t>(kSampleFormat.nSampleRate), 4);
    AppendNumber(bytes, static_cast<std::uint64_t>(ByteRateOf(kSampleFormat)), 4);
    AppendNumber(bytes, static_cast<std::uint64_t>(BlockSizeOf(kSampleFormat)), 2);
    AppendNumber(bytes, static_cast<std::uint64_t>(kSampleFormat.nBitsPerSample), 2);
    return bytes;
}

CBytes CueChunk() {
    CBytes bytes;
    AppendNumber(bytes, std::size(kSampleIndexPoints), 4);
    std::uint64_t number = 0;
    for (const std::uint64_t point : kSampleIndexPoints) {
        AppendNumber(bytes, ++number, 4);
        AppendNumber(bytes, point, 4);
        Append(bytes, "data");
        AppendNumber(bytes, 0, 8);
        AppendNumber(bytes, point, 4);
    }
    return bytes;
}

CBytes TextChunkContent(const char* text) {
    CBytes bytes;
    Append(bytes, text);
    bytes.push_back(0);
    return bytes;
}

CBytes ListChunk() {
    CBytes bytes;
    Append(bytes, "INFO");
    AppendChunk(bytes, "INAM", TextChunkContent(kSampleTitle));
    AppendChunk(bytes, "IART", TextChunkContent(kSampleArtist));
    return bytes;
}

}  // namespace

CBytes MakeSound(const SWavFormat& format, std::int64_t frames) {
    const int sampleBytes = format.nBitsPerSample / 8;
    CBytes sound(static_cast<std::size_t>(frames * BlockSizeOf(format)));
    const double seconds = static_cast<double>(frames) / format.nSampleRate;
    unsigned char* place = sound.data();
    for (std::int64_t frame = 0; frame < frames; ++frame) {
        const double time = static_cast<double>(frame) / format.nSampleRate;
        const double rising = kLevel * std::sin(2 * kPi * GlidePhase(time, seconds, kLowTone, kHighTone));
        const double falling = kLevel * std::sin(2 * kPi * GlidePhase(time, seconds, kHighTone, kLowTone));
        for (int channel = 0; channel < format.nChannels; ++channel, place += sampleBytes) {
            PutSample(place, sampleBytes, channel % 2 == 0 ? rising : falling);
        }
    }
    return sound;
}

CBytes MakeSampleFile() {
    CBytes content;
    Append(content, "WAVE");
    AppendChunk(content, "fmt ", FormatChunk());
    AppendChunk(content, "LIST", ListChunk());
    AppendChunk(content, "cue ", CueChunk());
    AppendChunk(content, "data", MakeSound(kSampleFormat, kSampleFrames));
    CBytes file;
    AppendChunk(file, "RIFF", content);
    return file;
}

void WriteFile(const std::string& path, const CBytes& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) throw CFailure(path, SystemErrorText(errno));
}

CBytes ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    CBytes bytes(static_cast<std::size_t>(std::max<std::streamoff>(0, file.tellg())));
    file.seekg(0);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) bytes.clear();
    return bytes;
}
