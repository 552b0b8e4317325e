// Input for the clipper's benchmarks, and the loop that all who take part are timed by.
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

using Point = std::array<double, 4>;  // w is 1, so that peers without it can take part

// One case: shapes that are clipped one after another.
struct ClipBatch {
  std::string name;
  std::vector<std::vector<Point>> shapes;
  bool flat;  // against the rectangle only
};

// The processor's time of this thread: what others do on the machine stays out of it.
inline double threadSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// Times `Peer`, made from a batch: clip(i) clips shape i and gives the number of vertices left;
// area(i), where there is one, does so and gives the area of what is left, in x and y; where the
// sum is not `expected` nothing is timed.
// The order is a fresh one in each iteration: in a fixed one the branch predictor learns the list.
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
  std::mt19937 random(1);
  std::vector<std::uint32_t> order(count);
  std::iota(order.begin(), order.end(), 0U);
  for (auto _ : state) {
    std::shuffle(order.begin(), order.end(), random);
    const double start = threadSeconds();
    for (const std::uint32_t i : order) benchmark::DoNotOptimize(peer->clip(i));
    state.SetIterationTime(threadSeconds() - start);
  }
  state.counters["each"] =
      benchmark::Counter(static_cast<double>(count), benchmark::Counter::kIsIterationInvariantRate |
                                                         benchmark::Counter::kInvert);
}

template <class Peer>
void addClipPeer(const std::string& who, const ClipBatch& batch, double expected) {
  benchmark::RegisterBenchmark(
      ("clip/" + batch.name + "/" + who).c_str(),
      [&batch, expected](benchmark::State& state) { runClipPeer<Peer>(state, batch, expected); })
      ->UseManualTime();
}

// The area of `count` vertices, whose coordinates x(i) and y(i) give.
template <class X, class Y>
double areaOf(std::size_t count, X&& x, Y&& y) {
  double sum = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t next = i + 1 == count ? 0 : i + 1;
    sum += double{x(i)} * double{y(next)} - double{x(next)} * double{y(i)};
  }
  return sum / 2;
}

// Each adds what its peer can do: segments and polygons against the rectangle.
void addAggSegments(const ClipBatch& batch);
void addAggPolygons(const ClipBatch& batch, double expected);
void addBoostSegments(const ClipBatch& batch);
void addBoostPolygons(const ClipBatch& batch, double expected);
void addCgalSegments(const ClipBatch& batch);
void addCgalTriangles(const ClipBatch& batch, double expected);
void addClipperPolygons(const ClipBatch& batch, double expected);

}  // namespace ulm::bench
