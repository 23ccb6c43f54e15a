#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

/// Measures sines in one channel of sound, in samples from -1 to 1.
class ToneMeter {
  public:
    /// One channel of interleaved samples of any kind; \p fullScale is what the largest sample counts.
    template <typename Sample>
    ToneMeter(const std::vector<Sample>& interleaved, size_t channels, size_t channel, int rate,
              double fullScale = 1)
        : fRate(rate) {
        for (size_t i = channel; i < interleaved.size(); i += channels)
            fSamples.push_back(static_cast<double>(interleaved[i]) / fullScale);
    }

    /// How strong a frequency is: the peak of its sine.
    double Level(double hertz) const {
        double real = 0;
        double imaginary = 0;
        for (size_t i = 0; i < fSamples.size(); ++i) {
            const double angle = turn(hertz) * static_cast<double>(i);
            real += fSamples[i] * std::cos(angle);
            imaginary += fSamples[i] * std::sin(angle);
        }
        return 2 * std::hypot(real, imaginary) / static_cast<double>(fSamples.size());
    }

    /// How far the worst sample is from where its two neighbours on a steady sine put it: next to nothing,
    /// unless sound was lost, made up or interrupted.
    double WorstBreak(double hertz) const {
        double worst = 0;
        for (size_t i = 1; i + 1 < fSamples.size(); ++i)
            worst = std::max(
                worst, std::abs(fSamples[i - 1] + fSamples[i + 1] - 2 * std::cos(turn(hertz)) * fSamples[i]));
        return worst;
    }

  private:
    double turn(double hertz) const { return 2 * std::numbers::pi * hertz / fRate; }

    std::vector<double> fSamples;
    int fRate;
};
