#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Usage/UsageJsonText.h"
#include "KestrelCore/Usage/UsageStore.h"
#include "KestrelCore/Usage/UsageStoreFile.h"
#include "KestrelPlatform/Simulated/ManualClock.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel::bench {
namespace {

// Budgets: one event 10 us and 1.2 times its own bytes at any size; load 250 MB/s, memory half the file;
// the series at a million events at most 1.5 times what they cost at a thousand.

/// Like a turn of a large transcript: 40 turns to a session, one every 20 s, the last of them now.
UsageEvent turn(std::int64_t number, std::int64_t of) {
  UsageEvent event;
  const std::string digits = std::to_string(100'000'000'000 + number);
  event.id = "7A0B1C2D-3E4F-4A5B-8C6D-" + digits;
  event.agentType = number % 5 == 0 ? AgentType::codex : AgentType::claude;
  event.sessionId = "3f0c9a52-7b1e-4d7c-9a55-" + std::to_string(100'000'000'000 + number / 40);
  event.turnId = "msg_01Xb7Zt9Qw" + digits;
  event.modelId = "claude-sonnet-4-5-20250929";
  event.inputTokens = 4 + number % 7;
  event.outputTokens = 100 + number % 900;
  event.cachedTokens = 20'000 + number % 90'000;
  event.cacheWriteTokens = number % 3000;
  event.contextWindow = 200'000;
  event.timestamp = ManualClock::kDefaultStart - static_cast<double>(of - number) * 20;
  event.source = "claude-project-log";
  event.deriveTotal();
  return event;
}

/// A store of so many events on disk.
class BenchStore {
 public:
  explicit BenchStore(std::int64_t events) : next_(events) {
    open();
    std::vector<UsageEvent> batch;
    for (std::int64_t i = 0; i < events; ++i) batch.push_back(turn(i, events));
    store->record(batch);
    store->saveAtStop();
  }

  void open() {
    store.reset();
    store.emplace(UsageStore::Dependencies{
        .file = file(), .files = files_, .clock = clock_, .calendar = calendar_, .sink = nullptr});
  }
  UsageEvent nextTurn() {
    ++next_;
    return turn(next_, next_);
  }
  [[nodiscard]] std::filesystem::path file() const { return UsageStore::defaultFile(folders_.directories()); }

  std::optional<UsageStore> store;

 private:
  std::int64_t next_;
  TemporaryDirectories folders_;
  std::shared_ptr<const KestrelWritePolicy> policy_ =
      std::make_shared<KestrelWritePolicy>(folders_.directories(), nullptr);
  std::shared_ptr<const AtomicFileWriter> files_ =
      std::make_shared<AtomicFileWriter>(policy_, Logger(nullptr, "files"));
  std::shared_ptr<const Clock> clock_ = std::make_shared<ManualClock>();
  std::shared_ptr<const LocalCalendar> calendar_ = std::make_shared<SystemLocalCalendar>();
};

/// What this process handed to write() so far.
double bytesWritten() {
  std::ifstream counters("/proc/self/io");
  std::string name;
  for (double value = 0; counters >> name >> value;) {
    if (name == "wchar:") return value;
  }
  return 0;
}

double heapInUse() {
  const auto info = ::mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd);
}

void recordOneEvent(benchmark::State& state) {
  BenchStore bench(state.range(0));
  const double before = bytesWritten();
  double own = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const UsageEvent event = bench.nextTurn();
    std::string line;
    appendJson(line, event);
    own += static_cast<double>(line.size());
    state.ResumeTiming();
    bench.store->record(event);
  }
  state.counters["written/own bytes"] = (bytesWritten() - before) / own;
}
// So few that the journal does not reach a quarter of the smallest file: what a record costs by itself.
BENCHMARK(recordOneEvent)
    ->Name("one usage event")
    ->RangeMultiplier(10)
    ->Range(1000, 1'000'000)
    ->Iterations(200)
    ->Unit(benchmark::kMicrosecond);
// The same over some rewritings of the file.
BENCHMARK(recordOneEvent)
    ->Name("one usage event, rewriting included")
    ->Arg(10'000)
    ->Arg(100'000)
    ->Iterations(100'000)
    ->Unit(benchmark::kMicrosecond);

void loadStore(benchmark::State& state) {
  BenchStore bench(state.range(0));
  bench.store.reset();
  const double empty = heapInUse();
  const auto bytes = static_cast<double>(std::filesystem::file_size(bench.file()));
  for (auto _ : state) bench.open();
  state.SetBytesProcessed(static_cast<std::int64_t>(static_cast<double>(state.iterations()) * bytes));
  state.counters["memory/file size"] = (heapInUse() - empty) / bytes;
}
BENCHMARK(loadStore)->Name("load of the store")->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void summarizeToday(benchmark::State& state) {
  BenchStore bench(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(bench.store->todaySummary());
}
BENCHMARK(summarizeToday)->Name("todaySummary")->Arg(1000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

void refreshSeries(benchmark::State& state) {
  BenchStore bench(state.range(0));
  (void)bench.store->series();  // The first of a day walks over all events.
  for (auto _ : state) benchmark::DoNotOptimize(bench.store->series());
}
BENCHMARK(refreshSeries)
    ->Name("series by hour and day")
    ->Arg(1000)
    ->Arg(1'000'000)
    ->Iterations(2000)
    ->Unit(benchmark::kMicrosecond);

void listRecentSessions(benchmark::State& state) {
  BenchStore bench(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(bench.store->recentSessions(10));
}
BENCHMARK(listRecentSessions)->Name("recentSessions(10)")->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kestrel::bench
