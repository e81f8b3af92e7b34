// What keloaudio is measured against: bare loops over libsndfile and libsoxr through floats, with no manager and no
// objects.
#include <sndfile.h>
#include <soxr.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr sf_count_t kBlockFrames = 4096;
constexpr double kVorbisQuality = 0.4;
constexpr double kFlacLevel = 5.0 / 8.0;

struct SClose {
    void operator()(SNDFILE* file) const { sf_close(file); }
    void operator()(soxr* resampler) const { soxr_delete(resampler); }
};
using CFile = std::unique_ptr<SNDFILE, SClose>;

struct SRequest {
    int m_nRate;  // 0: the source's
    int m_nBits;
    unsigned long m_nRecipe;
};

int FormatOf(const std::string& path, int bits) {
    const std::string extension = path.substr(path.rfind('.') + 1);
    const int width = bits == 24 ? SF_FORMAT_PCM_24 : SF_FORMAT_PCM_16;
    if (extension == "wav") return SF_FORMAT_WAV | width;
    if (extension == "flac") return SF_FORMAT_FLAC | width;
    if (extension == "ogg") return SF_FORMAT_OGG | SF_FORMAT_VORBIS;
    if (extension == "opus") return SF_FORMAT_OGG | SF_FORMAT_OPUS;
    if (extension == "mp3") return SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;
    throw std::runtime_error("no format for " + path);
}

CFile Open(const char* path, int mode, SF_INFO& info) {
    CFile file(sf_open(path, mode, &info));
    if (file == nullptr) throw std::runtime_error(std::string(path) + ": " + sf_strerror(nullptr));
    return file;
}

CFile Create(const char* path, const SF_INFO& source, const SRequest& request) {
    SF_INFO info{};
    info.samplerate = request.m_nRate != 0 ? request.m_nRate : source.samplerate;
    info.channels = source.channels;
    info.format = FormatOf(path, request.m_nBits);
    CFile file = Open(path, SFM_WRITE, info);
    double quality = kVorbisQuality;
    double level = kFlacLevel;
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    if ((info.format & SF_FORMAT_SUBMASK) == SF_FORMAT_VORBIS) {
        sf_command(file.get(), SFC_SET_VBR_ENCODING_QUALITY, &quality, sizeof quality);
    }
    if ((info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_FLAC) {
        sf_command(file.get(), SFC_SET_COMPRESSION_LEVEL, &level, sizeof level);
    }
    return file;
}

void Write(SNDFILE* target, const float* block, sf_count_t frames) {
    if (sf_writef_float(target, block, frames) != frames) throw std::runtime_error(sf_strerror(target));
}

void Copy(SNDFILE* source, SNDFILE* target, int channels) {
    std::vector<float> block(static_cast<std::size_t>(kBlockFrames * channels));
    while (const sf_count_t frames = sf_readf_float(source, block.data(), kBlockFrames)) {
        Write(target, block.data(), frames);
    }
}

void Resample(SNDFILE* source, SNDFILE* target, const SF_INFO& info, const SRequest& request) {
    const auto channels = static_cast<std::size_t>(info.channels);
    const soxr_quality_spec_t quality = soxr_quality_spec(request.m_nRecipe, 0);
    const std::unique_ptr<soxr, SClose> resampler(soxr_create(
        info.samplerate, request.m_nRate, static_cast<unsigned>(channels), nullptr, nullptr, &quality, nullptr));
    std::vector<float> input(static_cast<std::size_t>(kBlockFrames) * channels);
    std::vector<float> output(input.size() * 2);
    for (bool more = true; more;) {
        const auto frames = static_cast<std::size_t>(sf_readf_float(source, input.data(), kBlockFrames));
        std::size_t made = 0;
        do {
            if (soxr_process(resampler.get(), frames > 0 ? input.data() : nullptr, frames, nullptr, output.data(),
                             output.size() / channels, &made) != nullptr) {
                throw std::runtime_error("libsoxr cannot resample");
            }
            if (made > 0) Write(target, output.data(), static_cast<sf_count_t>(made));
        } while (frames == 0 && made > 0);
        more = frames > 0;
    }
}

void Convert(const char* from, const char* to, const SRequest& request) {
    SF_INFO info{};
    const CFile source = Open(from, SFM_READ, info);
    const CFile target = Create(to, info, request);
    if (request.m_nRate == 0 || request.m_nRate == info.samplerate) {
        Copy(source.get(), target.get(), info.channels);
    } else {
        Resample(source.get(), target.get(), info, request);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 6 || argc % 2 != 0) {
        std::fputs("usage: kelo_bare_conversion <rate, 0: as it is> <bits> hq|vhq <input> <output> [...]\n", stderr);
        return 2;
    }
    try {
        const unsigned long recipe = std::strcmp(argv[3], "vhq") == 0 ? SOXR_VHQ : SOXR_HQ;
        const SRequest request{std::atoi(argv[1]), std::atoi(argv[2]), recipe};
        for (int i = 4; i + 1 < argc; i += 2) Convert(argv[i], argv[i + 1], request);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kelo_bare_conversion: %s\n", failure.what());
        return 1;
    }
}
