#include "Figures.h"

#include <algorithm>
#include <cmath>

namespace receiver {

namespace {

constexpr double kSmallest = 0.01; ///< Milliseconds.
constexpr double kStep = 1.03;

} // namespace

void Histogram::Add(double milliseconds) {
    const double steps = std::log(std::max(milliseconds, kSmallest) / kSmallest) / std::log(kStep);
    ++fCounts[std::min(static_cast<size_t>(steps), fCounts.size() - 1)];
    ++fCount;
    fLargest = std::max(fLargest, milliseconds);
}

double Histogram::Percentile(double part) const {
    if (fCount == 0)
        return 0;
    const auto wanted = static_cast<uint64_t>(std::ceil(part * static_cast<double>(fCount)));
    uint64_t sum = 0;
    for (size_t step = 0; step < fCounts.size(); ++step) {
        sum += fCounts[step];
        if (sum >= wanted)
            return std::min(kSmallest * std::pow(kStep, static_cast<double>(step) + 1), fLargest);
    }
    return fLargest;
}

void ClockDrift::Add(int64_t clock, int64_t reference) {
    const Pair pair{reference, clock - reference};
    if (fCount == 0 || pair.lead > fBest.lead)
        fBest = pair;
    if (fCount++ == 0)
        fWindowStart = reference;
    if (reference - fWindowStart < kWindow)
        return;
    (fWindows++ == 0 ? fFirst : fLast) = fBest;
    fCount = 0;
}

double ClockDrift::PartsPerMillion() const {
    const int64_t time = fLast.reference - fFirst.reference;
    if (fWindows < 2 || time <= 0)
        return 0;
    return static_cast<double>(fLast.lead - fFirst.lead) * 1e6 / static_cast<double>(time);
}

} // namespace receiver
