#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <functional>

// The engine's time as a ratio to a floor that is measured in the same run.
namespace sectorbox::bench {

inline double Seconds(const std::function<void()>& work) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// Runs both by turns and reports the ratio of their best times. Each runs after its own
// preparation, which isn't timed.
struct Timed {
  std::function<void()> Work;
  std::function<void()> Prepare = [] {};
};
inline void Compare(benchmark::State& state, const Timed& engine, const Timed& floor) {
  double best = 1e9;
  double bestFloor = 1e9;
  for (auto _ : state) {
    floor.Prepare();
    bestFloor = std::min(bestFloor, Seconds(floor.Work));
    engine.Prepare();
    const double taken = Seconds(engine.Work);
    best = std::min(best, taken);
    state.SetIterationTime(taken);
  }
  state.counters["floor_ms"] = bestFloor * 1000;
  state.counters["best_ms"] = best * 1000;
  state.counters["ratio"] = best / bestFloor;
}

}  // namespace sectorbox::bench
