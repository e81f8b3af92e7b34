// A sine in measured samples: its level, its place, and what else is there.
#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

inline const double kTurn = 2 * std::acos(-1.0);

// a * sin(wt) + b * cos(wt) + c, fitted by least squares, and the RMS of what is left.
struct SFit {
    double m_nAmplitude;
    double m_nPhase;
    double m_nResidue;
};

// Cramer's rule.
inline double Determinant(const double (&m)[3][3]) {
    return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
           m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

inline void Solve(const double (&matrix)[3][3], const double (&right)[3], double (&solution)[3]) {
    const double whole = Determinant(matrix);
    for (int column = 0; column < 3; ++column) {
        double replaced[3][3];
        for (int row = 0; row < 3; ++row) {
            for (int other = 0; other < 3; ++other)
                replaced[row][other] = other == column ? right[row] : matrix[row][other];
        }
        solution[column] = Determinant(replaced) / whole;
    }
}

inline SFit FitSine(const std::vector<int>& samples, std::size_t begin, std::size_t end, double radiansPerSample) {
    double matrix[3][3] = {};
    double right[3] = {};
    const auto basis = [&](std::size_t at, double(&values)[3]) {
        values[0] = std::sin(radiansPerSample * static_cast<double>(at));
        values[1] = std::cos(radiansPerSample * static_cast<double>(at));
        values[2] = 1;
    };
    double values[3];
    for (std::size_t at = begin; at < end; ++at) {
        basis(at, values);
        for (int row = 0; row < 3; ++row) {
            right[row] += values[row] * samples[at];
            for (int column = 0; column < 3; ++column) matrix[row][column] += values[row] * values[column];
        }
    }
    double fitted[3];
    Solve(matrix, right, fitted);
    double squares = 0;
    for (std::size_t at = begin; at < end; ++at) {
        basis(at, values);
        const double left = samples[at] - fitted[0] * values[0] - fitted[1] * values[1] - fitted[2];
        squares += left * left;
    }
    return {std::hypot(fitted[0], fitted[1]), std::atan2(fitted[1], fitted[0]),
            std::sqrt(squares / static_cast<double>(end - begin))};
}
