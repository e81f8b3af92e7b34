// What a resampler does to known signals of 24 bits.
#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "tests/plugins/soxr/SineFit.h"

// Samples of 24 bits at one rate to samples of 24 bits at another, one channel, the whole signal at once.
using CResample = std::function<std::vector<int>(const std::vector<int>&)>;

struct SRates {
    int m_nFrom;
    int m_nTo;
};

// Just below full scale, so that the resampler's own error does not clip.
constexpr double kToneLevel = 0.99 * 8388608;

// The first and the last 0.1 s are left out of every measurement: they hear the filter's edges.
inline std::size_t EdgeOf(int rate) { return static_cast<std::size_t>(rate / 10); }

inline double Decibels(double ratio) { return 20 * std::log10(ratio); }

// The upper end of what is measured: the audible band, or what of it a resampler has to pass; 20 kHz from 44.1 kHz on.
inline double BandEndOf(const SRates& rates) {
    return std::min(20000.0, 0.4536 * std::min(rates.m_nFrom, rates.m_nTo));
}

// TPhase tells the phase at a time in seconds.
template <typename TPhase>
std::vector<int> Tone(int rate, double seconds, TPhase phase) {
    std::vector<int> samples;
    for (int at = 0; at < static_cast<int>(rate * seconds); ++at) {
        samples.push_back(static_cast<int>(std::lround(kToneLevel * std::sin(phase(static_cast<double>(at) / rate)))));
    }
    return samples;
}

inline std::vector<int> ResampledTone(const CResample& resample, const SRates& rates, double frequency,
                                      double seconds = 2) {
    return resample(Tone(rates.m_nFrom, seconds, [=](double time) { return kTurn * frequency * time; }));
}

inline SFit FitTone(const std::vector<int>& output, int rate, double frequency) {
    return FitSine(output, EdgeOf(rate), output.size() - EdgeOf(rate), kTurn * frequency / rate);
}

// How far everything but the tone is below the tone.
inline double ToneToNoise(const CResample& resample, const SRates& rates, double frequency) {
    const SFit fit = FitTone(ResampledTone(resample, rates, frequency), rates.m_nTo, frequency);
    return Decibels(fit.m_nAmplitude / std::sqrt(2.0) / fit.m_nResidue);
}

// The frequency at which a sampled signal of `frequency` is heard.
inline double Folded(double frequency, int rate) {
    const double within = std::fmod(std::abs(frequency), rate);
    return std::min(within, rate - within);
}

// Over one second from the middle of two, in which tones of whole numbers of hertz do not hear each other.
inline double AmplitudeAt(const std::vector<int>& output, int rate, double frequency) {
    double sine = 0;
    double cosine = 0;
    for (int at = 0; at < rate; ++at) {
        const double phase = kTurn * frequency * at / rate;
        sine += output[static_cast<std::size_t>(rate / 2 + at)] * std::sin(phase);
        cosine += output[static_cast<std::size_t>(rate / 2 + at)] * std::cos(phase);
    }
    return 2 * std::hypot(sine, cosine) / rate;
}

// How far the largest image of a tone of a whole number of hertz, which both rates can hold, is below the tone: images
// lie around the multiples of the first rate.
inline double ToneToImages(const CResample& resample, const SRates& rates, int frequency) {
    const std::vector<int> output = ResampledTone(resample, rates, frequency);
    double largest = 0;
    for (int multiple = 1; multiple <= 4; ++multiple) {
        for (const int side : {-1, 1}) {
            const double image = Folded(multiple * rates.m_nFrom + side * frequency, rates.m_nTo);
            if (static_cast<int>(image) != frequency) {
                largest = std::max(largest, AmplitudeAt(output, rates.m_nTo, image));
            }
        }
    }
    return Decibels(kToneLevel / largest);
}

// How far what is left of a tone that only the first rate can hold is below that tone.
inline double ToneToAlias(const CResample& resample, const SRates& rates, double frequency) {
    const std::vector<int> output = ResampledTone(resample, rates, frequency);
    double squares = 0;
    for (std::size_t at = EdgeOf(rates.m_nTo); at < output.size() - EdgeOf(rates.m_nTo); ++at) {
        squares += static_cast<double>(output[at]) * output[at];
    }
    const double rms = std::sqrt(squares / static_cast<double>(output.size() - 2 * EdgeOf(rates.m_nTo)));
    return Decibels(kToneLevel / std::sqrt(2.0) / std::max(rms, 1e-3));
}

// How far the difference from a perfect sweep over the band is below that sweep.
inline double SweepToError(const CResample& resample, const SRates& rates) {
    constexpr double kSeconds = 2;
    constexpr double kLowest = 20;
    const double slope = (BandEndOf(rates) - kLowest) / kSeconds;
    const auto phase = [=](double time) { return kTurn * (kLowest * time + slope * time * time / 2); };
    const std::vector<int> output = resample(Tone(rates.m_nFrom, kSeconds, phase));
    double sweep = 0;
    double error = 0;
    for (std::size_t at = EdgeOf(rates.m_nTo); at < output.size() - EdgeOf(rates.m_nTo); ++at) {
        const double perfect = kToneLevel * std::sin(phase(static_cast<double>(at) / rates.m_nTo));
        sweep += perfect * perfect;
        error += (output[at] - perfect) * (output[at] - perfect);
    }
    return Decibels(std::sqrt(sweep / error));
}

// The largest change of a tone's level over the band, in decibels.
inline double Ripple(const CResample& resample, const SRates& rates, int tones) {
    double largest = 0;
    for (int tone = 1; tone <= tones; ++tone) {
        const double frequency = BandEndOf(rates) * tone / tones;
        const SFit fit = FitTone(ResampledTone(resample, rates, frequency, 0.3), rates.m_nTo, frequency);
        largest = std::max(largest, std::abs(Decibels(fit.m_nAmplitude / kToneLevel)));
    }
    return largest;
}

// In frames of the second rate.
inline double Delay(const CResample& resample, const SRates& rates) {
    const double frequency = 997;
    const SFit fit = FitTone(ResampledTone(resample, rates, frequency), rates.m_nTo, frequency);
    return fit.m_nPhase / (kTurn * frequency / rates.m_nTo);
}
