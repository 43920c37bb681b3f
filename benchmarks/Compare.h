#pragma once

#include "Verdict.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace brindle {

struct Comparison {
    double oursMs = 0; ///< Median.
    double peerMs = 0; ///< Median.
    [[nodiscard]] double ratio() const { return oursMs / peerMs; }
};

inline double millisecondsOf(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The processor's time, for work that waits for nothing: what else the machine does leaves it alone.
inline double cpuMillisecondsOf(const std::function<void()> &work)
{
    const std::clock_t start = std::clock();
    work();
    return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Runs \a ours and \a peer in turn, so that what else the machine does meets both alike, and prints the line of the
/// table. The first round warms up and does not count.
inline Comparison compare(const std::string &name, int rounds, double allowedRatio, const std::function<void()> &ours,
                          const std::function<void()> &peer,
                          double (*timeOf)(const std::function<void()> &work) = millisecondsOf)
{
    std::vector<double> oursMs;
    std::vector<double> peerMs;
    for (int round = 0; round <= rounds; ++round) {
        const double oneOfOurs = timeOf(ours);
        const double oneOfPeer = timeOf(peer);
        if (round > 0) {
            oursMs.push_back(oneOfOurs);
            peerMs.push_back(oneOfPeer);
        }
    }
    const Comparison result{median(std::move(oursMs)), median(std::move(peerMs))};
    fmt::print("{:<44} {:>10.3f} ms {:>10.3f} ms  {:>5.2f} x  allowed {:.2f} x  {}\n", name, result.oursMs,
               result.peerMs, result.ratio(), allowedRatio, verdict(result.ratio() <= allowedRatio, "TOO SLOW"));
    std::fflush(stdout);
    return result;
}

} // namespace brindle
