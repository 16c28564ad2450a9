#include <benchmark/benchmark.h>

#include "bench/BenchCoordinator.h"

#include "KestrelPlatform/Simulated/ManualExecutor.h"

namespace kestrel::bench {
namespace {

// Budget: 0.5 ms with 1,000 sessions.

void fill(BenchCoordinator& bench, std::int64_t sessions) {
  for (std::int64_t i = 0; i < sessions; ++i) {
    bench.report("3f0c9a52-7b1e-4d7c-9a55-" + std::to_string(100'000'000'000 + i), AgentState::working);
  }
}

void evaluationUnchanged(benchmark::State& state) {
  ManualExecutor executor;
  BenchCoordinator bench(executor);
  fill(bench, state.range(0));
  for (auto _ : state) bench.coordinator->evaluate();
}
BENCHMARK(evaluationUnchanged)
    ->Name("one evaluation, nothing changed")
    ->Arg(10)
    ->Arg(1000)
    ->Unit(benchmark::kMicrosecond);

void evaluationAfterEvent(benchmark::State& state) {
  ManualExecutor executor;
  BenchCoordinator bench(executor);
  fill(bench, state.range(0));
  bool working = false;
  for (auto _ : state) {
    bench.report("3f0c9a52-7b1e-4d7c-9a55-100000000005", working ? AgentState::working : AgentState::waiting);
    working = !working;
    bench.coordinator->evaluate();
    executor.runPending();
  }
}
BENCHMARK(evaluationAfterEvent)
    ->Name("one evaluation, after an event")
    ->Arg(10)
    ->Arg(1000)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kestrel::bench
