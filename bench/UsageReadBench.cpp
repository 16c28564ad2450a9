#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "bench/Measure.h"

#include "KestrelCore/Usage/Providers/UsageReader.h"
#include "KestrelPlatform/Simulated/ManualClock.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel::bench {
namespace {

using Make = std::unique_ptr<UsageReader> (*)(const UsageReaderDependencies&);

UsageReaderDependencies dependenciesOf(const std::filesystem::path& home) {
  return {.home = home,
          .clock = std::make_shared<ManualClock>(),
          .log = std::make_shared<MemoryLogSink>(),
          .hasTurn = [](AgentType, const std::string&) { return false; }};
}

/// What tools print, as it stands inside a JSON string.
std::string toolResult(std::size_t bytes) {
  constexpr std::string_view kLine =
      R"(  const auto found = std::find(names.begin(), names.end(), \"total\");  // see \"usage\" below\n)"
      R"(\tif (found == names.end()) return fmt::format(\"{}: not found\", path.string());\n\n)";
  std::string text;
  while (text.size() < bytes) text += kLine;
  return text;
}

/// Writes chunks until the file has so many bytes. Each chunk is made from its number.
template <typename Chunk>
void fill(const std::filesystem::path& path, std::size_t bytes, Chunk chunk) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  for (std::size_t written = 0, i = 0; written < bytes; ++i) {
    const std::string text = chunk(i);
    file << text;
    written += text.size();
  }
}

/// A message on two or three lines, and the result of the tool that it called.
std::string claudeTurn(std::size_t file, std::size_t i) {
  static const std::string kResult = toolResult(60'000);
  std::string text;
  for (std::size_t block = 0; block < (i % 3 == 0 ? 3U : 2U); ++block) {
    text += fmt::format(
        R"({{"parentUuid":"p{0}-{1}","isSidechain":false,"cwd":"/home/u/p","sessionId":"s{0}","type":"assistant",)"
        R"("message":{{"id":"msg_{0}_{1}","type":"message","role":"assistant","model":"claude-opus-5","content":[)"
        R"({{"type":"text","text":"{2}"}}],"usage":{{"input_tokens":4,"cache_creation_input_tokens":900,)"
        R"("cache_read_input_tokens":41000,"cache_creation":{{"ephemeral_5m_input_tokens":900}},)"
        R"("output_tokens":{3},"service_tier":"standard"}}}},"requestId":"req_{0}_{1}","uuid":"u{0}-{1}-{4}",)"
        R"("timestamp":"2026-11-21T03:00:00.250Z"}})"
        "\n",
        file, i, std::string_view(kResult).substr(0, 600), 20 + 40 * block, block);
  }
  return text + R"({"type":"user","message":{"role":"user","content":[{"type":"tool_result","content":")" +
         kResult.substr(0, 4000 + (i * 7919) % 56'000 / 200 * 200) + "x\"}]},\"uuid\":\"r\"}\n";
}

std::string codexTurn(std::size_t i) {
  static const std::string kResult = toolResult(20'000);
  std::string text;
  for (int item = 0; item < 6; ++item) {
    text += R"({"timestamp":"2026-11-21T03:00:00.250Z","ordinal":1,"type":"response_item","payload":{"type":)"
            R"("function_call_output","call_id":"c","output":")" +
            kResult + "\"}}\n";
  }
  return text +
         fmt::format(
             R"({{"timestamp":"2026-11-21T03:00:00.250Z","ordinal":{0},"type":"event_msg","payload":{{)"
             R"("type":"token_count","info":{{"total_token_usage":{{"input_tokens":{0},"output_tokens":9,)"
             R"("total_tokens":{0}}},"last_token_usage":{{"input_tokens":9000,"output_tokens":9,)"
             R"("total_tokens":9009}},"model_context_window":258400}},"rate_limits":{{"primary":)"
             R"({{"used_percent":12.5,"window_minutes":300,"resets_at":1795240000}}}}}}}})"
             "\n",
             i + 1);
}

double statusValue(const char* name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name)) return std::strtod(line.c_str() + std::string_view(name).size(), nullptr);
  }
  return 0;
}

struct Reading {
  double cpuSeconds = 0;
  double peakMiB = 0;
  double events = 0;
};

/// The first reading by a process of its own; the peak is what it needs beyond what it started with.
Reading readApart(const std::filesystem::path& home, Make make) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) std::exit(1);
  const pid_t child = ::fork();
  if (child == 0) {
    const double memory = statusValue("VmRSS:");
    const double before = ownCpuSeconds();
    Reading reading;
    make(dependenciesOf(home))->read([&](const UsageEvent&) { ++reading.events; });
    reading.cpuSeconds = ownCpuSeconds() - before;
    reading.peakMiB = (statusValue("VmHWM:") - memory) / 1024;
    std::_Exit(::write(ends[1], &reading, sizeof reading) == sizeof reading ? 0 : 1);
  }
  Reading reading;
  if (::read(ends[0], &reading, sizeof reading) != sizeof reading) std::exit(1);
  ::waitpid(child, nullptr, 0);
  ::close(ends[0]);
  ::close(ends[1]);
  return reading;
}

double cpuOfCat(const std::filesystem::path& folder) {
  std::vector<std::string> words{"/bin/cat"};
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) words.push_back(entry.path());
  }
  return waitForChild(startChild(words, "/"));
}

void reportReading(benchmark::State& state, const Reading& reading, double cat) {
  state.SetIterationTime(reading.cpuSeconds);
  state.counters["CPU/cat"] = reading.cpuSeconds / cat;
  state.counters["cat_ms"] = cat * 1e3;
  state.counters["peak_MiB"] = reading.peakMiB;
  state.counters["events"] = reading.events;
}

/// Five transcripts of 200 MB. Budget: 2.5 times the CPU of cat, and 32 MiB.
void coldTranscripts(benchmark::State& state) {
  const TemporaryDirectories folders;
  const auto& home = folders.directories().home;
  for (std::size_t i = 0; i < 5; ++i) {
    fill(claudeProjectsFolder(home) / fmt::format("p/s{}.jsonl", i), 200'000'000,
         [i](std::size_t turn) { return claudeTurn(i, turn); });
  }
  (void)cpuOfCat(claudeProjectsFolder(home));
  for (auto _ : state) {
    const double cat = cpuOfCat(claudeProjectsFolder(home));
    reportReading(state, readApart(home, makeClaudeUsageReader), cat);
  }
}
BENCHMARK(coldTranscripts)
    ->Name("usage, 1 GB of transcripts, CPU")
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

/// Budget: 100 ms.
void coldRollouts(benchmark::State& state) {
  const TemporaryDirectories folders;
  const auto& home = folders.directories().home;
  for (int i = 0; i < 5; ++i) {
    fill(codexSessionsFolder(home) / fmt::format("2026/11/21/rollout-{}.jsonl", i), 50'000'000, codexTurn);
  }
  (void)cpuOfCat(codexSessionsFolder(home));
  for (auto _ : state) {
    const double cat = cpuOfCat(codexSessionsFolder(home));
    reportReading(state, readApart(home, makeCodexUsageReader), cat);
  }
}
BENCHMARK(coldRollouts)
    ->Name("usage, 250 MB of rollouts, CPU")
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

/// Budget: twice one stat for each file, and nothing read.
void idlePoll(benchmark::State& state) {
  constexpr int kFiles = 2'500;
  const TemporaryDirectories folders;
  const auto& home = folders.directories().home;
  std::vector<std::string> paths;
  for (int i = 0; i < kFiles; ++i) {
    paths.push_back(claudeProjectsFolder(home) / fmt::format("p{}/s{}.jsonl", i % 50, i));
    fill(paths.back(), 2'000, [](std::size_t turn) { return fmt::format("{{\"turn\":{}}}\n", turn); });
  }
  const auto reader = makeClaudeUsageReader(dependenciesOf(home));
  const auto poll = [&] { reader->read([](const UsageEvent&) {}); };
  for (int i = 0; i < 3; ++i) poll();
  constexpr int kPolls = 50;
  const auto cpuOf = [](auto work) {
    const double before = ownCpuSeconds();
    for (int i = 0; i < kPolls; ++i) work();
    return (ownCpuSeconds() - before) / kPolls;
  };
  for (auto _ : state) {
    const double stats = cpuOf([&] {
      struct stat status {};
      for (const auto& path : paths) benchmark::DoNotOptimize(::lstat(path.c_str(), &status));
    });
    const double polling = cpuOf(poll);
    state.SetIterationTime(polling);
    state.counters["CPU/stat"] = polling / stats;
  }
}
BENCHMARK(idlePoll)
    ->Name("usage, poll with nothing new, 2,500 files, CPU")
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

void database(benchmark::State& state) {
  const TemporaryDirectories folders;
  const auto& home = folders.directories().home;
  const auto path = openCodeDatabaseFile(home);
  std::filesystem::create_directories(path.parent_path());
  sqlite3* database = nullptr;
  ::sqlite3_open(path.c_str(), &database);
  const std::string data =
      R"({"role":"assistant","modelID":"gpt-4o","path":{"cwd":"/home/u/p"},"cost":0.01,"tokens":)"
      R"({"input":900,"output":80,"reasoning":0,"cache":{"read":4000,"write":0}}})";
  const std::string statements =
      "PRAGMA journal_mode=WAL; CREATE TABLE message(id TEXT PRIMARY KEY, session_id TEXT, time_created "
      "INTEGER, "
      "time_updated INTEGER, data TEXT); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE "
      "i<50000) INSERT INTO message SELECT 'msg_' || i, 'ses_' || (i/100), 1795000000000+i, 0, '" +
      data + "' FROM n;";
  if (::sqlite3_exec(database, statements.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) std::exit(1);
  for (auto _ : state) {
    const double before = ownCpuSeconds();
    int events = 0;
    makeOpenCodeUsageReader(dependenciesOf(home))->read([&](const UsageEvent&) { ++events; });
    state.SetIterationTime(ownCpuSeconds() - before);
    state.counters["events"] = events;
  }
  ::sqlite3_close(database);
}
BENCHMARK(database)
    ->Name("usage, 50,000 database rows, CPU")
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrel::bench
