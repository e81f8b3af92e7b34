// Moves the rounding error and the dither to where hearing is dull.
#pragma once

#include <array>
#include <cstddef>

// Error feedback around a quantiser. The filter is the five-coefficient one of Lipshitz, Vanderkooy and Wannamaker,
// "Minimally audible noise shaping", J. Audio Eng. Soc. 39 (1991), for 44.1 kHz. At higher rates the noise lies
// higher still. One object belongs to one thread.
class CNoiseShaper {
public:
    // Below this rate there is no inaudible band to move noise to.
    static constexpr int kLowestRate = 44100;

    // What to quantise in the place of `sample`; both in steps of the output.
    double Shape(double sample) const {
        for (std::size_t i = 0; i < kTaps.size(); ++i) sample -= kTaps[i] * m_errors[i];
        return sample;
    }

    // `error`: what quantising added to the value that Shape gave.
    void Keep(double error) {
        for (std::size_t i = m_errors.size() - 1; i > 0; --i) m_errors[i] = m_errors[i - 1];
        m_errors[0] = error;
    }

    void Restart() { m_errors.fill(0); }

private:
    static constexpr std::array<double, 5> kTaps{2.033, -2.165, 1.959, -1.590, 0.6149};

    std::array<double, 5> m_errors{};  // the latest first
};
