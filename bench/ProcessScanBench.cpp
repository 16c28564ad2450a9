#include <algorithm>
#include <benchmark/benchmark.h>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "bench/BenchCoordinator.h"
#include "bench/Measure.h"

#include "KestrelCore/Agents/ProcessMonitor.h"
#include "KestrelCore/Agents/PsProcessList.h"
#include "KestrelPlatform/Linux/DesktopEntries.h"
#include "KestrelPlatform/Linux/LinuxProcessList.h"
#include "KestrelPlatform/Linux/LinuxRunningApplications.h"

namespace kestrel::bench {
namespace {

// Budget of the running program: 0.15 of the same scan by ps; stretch: 1 ms at 400 processes. The first scan
// of a program reads everything of every process.

std::int64_t processCount() {
  std::int64_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const auto name = entry.path().filename().string();
    count += name.find_first_not_of("0123456789") == std::string::npos ? 1 : 0;
  }
  return count;
}

/// Sleeping processes until the machine has so many.
class Crowd {
 public:
  explicit Crowd(std::int64_t processes) {
    // A command line of usual length; the zeros add nothing to the sleep.
    const std::vector<std::string> words{"/bin/sleep", "3600", std::string(40, '0'), std::string(40, '0')};
    for (auto missing = processes - processCount(); missing > 0; --missing) {
      children_.push_back(startChild(words, "/"));
    }
  }
  ~Crowd() {
    for (const pid_t child : children_) ::kill(child, SIGKILL);
    for (const pid_t child : children_) ::waitpid(child, nullptr, 0);
  }
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

 private:
  std::vector<pid_t> children_;
};

double endedChildrenCpuSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_CHILDREN, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// CPU of one scan, of this process and of those it waited for, averaged over so many.
template <typename Scan>
double cpuPerScan(int scans, Scan&& scan) {
  const double before = ownCpuSeconds() + endedChildrenCpuSeconds();
  for (int i = 0; i < scans; ++i) scan();
  return (ownCpuSeconds() + endedChildrenCpuSeconds() - before) / scans;
}

/// Whole scans by the process monitor: listing, editors, matching.
struct Scanner {
  explicit Scanner(std::unique_ptr<ProcessList> chosen) : list(std::move(chosen)) {}

  void operator()() { benchmark::DoNotOptimize(monitor.scanProcesses()); }

  TemporaryDirectories home;
  std::shared_ptr<const Clock> clock = std::make_shared<SystemClock>();
  std::unique_ptr<ProcessList> list;
  std::unique_ptr<RunningApplications> applications =
      makeLinuxRunningApplications(applicationsFolders(home.directories().home), clock);
  ProcessMonitor monitor{*list, *applications, AgentFootprints(home.directories().home), ::getpid(), clock};
};

void report(benchmark::State& state, double scanSeconds) {
  constexpr int kReferenceScans = 10;
  const double reference = cpuPerScan(kReferenceScans, Scanner(std::make_unique<PsProcessList>()));
  state.SetIterationTime(scanSeconds);
  state.counters["CPU/ps"] = scanSeconds / reference;
  state.counters["ps_ms"] = reference * 1e3;
  state.counters["processes"] = static_cast<double>(processCount());
}

void coldScan(benchmark::State& state) {
  constexpr int kScans = 20;
  const Crowd crowd(state.range(0));
  for (auto _ : state) {
    double seconds = 0;
    for (int i = 0; i < kScans; ++i) {
      Scanner scanner(makeLinuxProcessList(std::make_shared<NoLog>()));
      seconds += cpuPerScan(1, scanner);
    }
    report(state, seconds / kScans);
  }
}

/// The average of one minute of scans, one each second by the list's clock, a minute after the processes'
/// start.
void warmScan(benchmark::State& state) {
  constexpr int kScans = 60;
  const Crowd crowd(state.range(0));
  for (auto _ : state) {
    double later = 60;
    Scanner scanner(makeLinuxProcessList(std::make_shared<NoLog>(),
                                         {"/proc", [&] { return secondsSinceBoot() + later; }}));
    const auto scan = [&] {
      later += 1;
      scanner();
    };
    (void)cpuPerScan(kScans, scan);
    report(state, cpuPerScan(kScans, scan));
  }
}

void processCounts(benchmark::internal::Benchmark* bench) {
  bench->Arg(100)->Arg(400)->Arg(2000)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
}
BENCHMARK(coldScan)->Name("process scan, the first, CPU")->Apply(processCounts);
BENCHMARK(warmScan)->Name("process scan, CPU")->Apply(processCounts);

}  // namespace
}  // namespace kestrel::bench
