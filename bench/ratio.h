// Ratios of two pieces of work, measured turn by turn in one run, so that whatever else the machine does
// meets both.
#ifndef ZQ_BENCH_RATIO_H
#define ZQ_BENCH_RATIO_H

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>

namespace bench {

template <typename Work>
double Seconds(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Pair {
  double ours = std::numeric_limits<double>::infinity();
  double theirs = std::numeric_limits<double>::infinity();
  double Ratio() const { return ours / theirs; }
};

// The best time of each over that many rounds.
template <typename Ours, typename Theirs>
Pair Best(int rounds, const Ours& ours, const Theirs& theirs) {
  Pair best;
  for (int round = 0; round < rounds; ++round) {
    best.ours = std::min(best.ours, Seconds(ours));
    best.theirs = std::min(best.theirs, Seconds(theirs));
  }
  return best;
}

// One line; false when the ratio is beyond its limit.
inline bool Report(const char* what, double ratio, double limit) {
  const bool kept = ratio <= limit;
  std::printf("%-64s %6.2f   (at most %.2f)%s\n", what, ratio, limit, kept ? "" : "   EXCEEDED");
  return kept;
}

}  // namespace bench

#endif
