// The input of the clipper's benchmarks, and the loop that times the clipper and its peers.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace ulm::bench {

using Point = std::array<double, 4>;  // w is 1, because some peers have no w

// One case: shapes that are clipped in sequence.
struct ClipBatch {
  std::string name;
  std::vector<std::vector<Point>> shapes;
  bool flat;  // against the rectangle only
};

// Returns the processor time of this thread, which other programs on the machine do not change.
inline double threadSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// Times `Peer`, which is made from a batch. clip(i) clips shape i and returns the number of
// remaining vertices. area(i), which is optional, clips shape i and returns the area of the result
// in x and y. If the sum of the areas is not `expected`, the run fails and nothing is timed. Each
// iteration has another order: in a fixed order the branch predictor would learn the list.
// A peer that clips in place has prepare(order), which is not timed and makes copies in that order;
// clip(i) then clips copy i, or clipAll() all of them. isRight(), which is optional, compares
// results and decides whether the peer is timed.
template <class Peer>
void runClipPeer(benchmark::State& state, const ClipBatch& batch, double expected) {
  const auto peer = std::make_unique<Peer>(batch);
  const std::size_t count = batch.shapes.size();
  if constexpr (requires { peer->area(0); }) {
    double sum = 0;
    for (std::size_t i = 0; i < count; ++i) sum += std::abs(peer->area(i));
    if (!(std::abs(sum - expected) <= 1e-4 * (1 + expected))) {
      state.SkipWithError(("wrong area: " + std::to_string(sum)).c_str());
      return;
    }
  }
  if constexpr (requires { peer->isRight(); }) {
    if (!peer->isRight()) return state.SkipWithError("wrong result");
  }
  std::mt19937 random(1);
  std::vector<std::uint32_t> order(count);
  std::iota(order.begin(), order.end(), 0U);
  for (auto _ : state) {
    std::shuffle(order.begin(), order.end(), random);
    constexpr bool copies = requires { peer->prepare(order); };
    if constexpr (copies) peer->prepare(order);
    const double start = threadSeconds();
    if constexpr (requires { peer->clipAll(); }) {
      benchmark::DoNotOptimize(peer->clipAll());
    } else if constexpr (copies) {
      for (std::size_t i = 0; i < count; ++i) benchmark::DoNotOptimize(peer->clip(i));
    } else {
      for (const std::uint32_t i : order) benchmark::DoNotOptimize(peer->clip(i));
    }
    state.SetIterationTime(threadSeconds() - start);
  }
  state.counters["each"] =
      benchmark::Counter(static_cast<double>(count), benchmark::Counter::kIsIterationInvariantRate |
                                                         benchmark::Counter::kInvert);
}

// The name of a benchmark as scripts/bench_report.py reads it: what is done, by whom, how large the
// shapes are and how wide the numbers. `who` ends with the width if that is 32 or there are two.
inline std::string clipName(const ClipBatch& batch, std::string who) {
  std::string width = "64";
  if (who.ends_with("32") || who.ends_with("64")) {
    width = who.substr(who.size() - 2);
    who.resize(who.size() - 2);
  }
  const std::size_t slash = batch.name.rfind('/');
  return "clip/" + batch.name.substr(0, slash) + '/' + who +
         "/vertices:" + batch.name.substr(slash + 1) + "/width:" + width;
}

template <class Peer>
void addClipPeer(const std::string& who, const ClipBatch& batch, double expected) {
  benchmark::RegisterBenchmark(clipName(batch, who).c_str(), [&batch,
                                                              expected](benchmark::State& state) {
    runClipPeer<Peer>(state, batch, expected);
  })->UseManualTime();
}

// Returns the area of `count` vertices. x(i) and y(i) return the coordinates of vertex i.
template <class X, class Y>
double areaOf(std::size_t count, X&& x, Y&& y) {
  double sum = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t next = i + 1 == count ? 0 : i + 1;
    sum += double{x(i)} * double{y(next)} - double{x(next)} * double{y(i)};
  }
  return sum / 2;
}

// Registers the benchmarks of the in-place drivers, with a plain loop next to them.
void addInPlace(const ClipBatch& batch);

// Each function registers the benchmarks of a peer: segments and polygons against the rectangle.
void addAggSegments(const ClipBatch& batch);
void addAggPolygons(const ClipBatch& batch, double expected);
void addBoostSegments(const ClipBatch& batch);
void addBoostPolygons(const ClipBatch& batch, double expected);
void addCgalSegments(const ClipBatch& batch);
void addCgalTriangles(const ClipBatch& batch, double expected);
void addClipperPolygons(const ClipBatch& batch, double expected);

}  // namespace ulm::bench
