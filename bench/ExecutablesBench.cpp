#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

#include "bench/BenchCoordinator.h"
#include "bench/Measure.h"

#include "KestrelCore/Agents/HookEventReceiver.h"
#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelCore/Support/UnixSocket.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel::bench {
namespace {

/// A listening hook socket in a home of its own.
struct Listening {
  TemporaryDirectories home;
  std::shared_ptr<LogSink> log = std::make_shared<NoLog>();
  HookEventReceiver receiver{home.directories().hookSocket(), makePeerIdentity(),
                             std::make_shared<KestrelWritePolicy>(home.directories(), log),
                             std::make_shared<SystemClock>(), log};
};

/// Peak memory of a relay that waits for its acknowledgement, in KiB.
double relayMemory() {
  TemporaryDirectories home;
  const std::string path = home.directories().hookSocket();
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  const UniqueDescriptor listener(::socket(AF_UNIX, SOCK_STREAM, 0));
  const auto address = socketAddress(path);
  if (::bind(listener.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0) return 0;
  if (::listen(listener.get(), 1) != 0) return 0;
  const pid_t child =
      startChild({KESTREL_RELAY, "--agent", "claude", "--state", "working"}, home.directories().home);
  const UniqueDescriptor client(::accept(listener.get(), nullptr, nullptr));
  std::array<char, 4096> record{};
  if (::read(client.get(), record.data(), record.size()) <= 0) return 0;
  const double peak = peakMemoryOf(child);
  (void)sendAll(client.get(), "{\"ok\":true}\n");
  (void)waitForChild(child);
  return peak;
}

/// Start → acknowledged → exit, in turns with the machine's own `true`. Budgets: 0.85 of it in CPU, 3 MiB.
void relay(benchmark::State& state) {
  std::signal(SIGPIPE, SIG_IGN);
  Listening listening;
  listening.receiver.start();
  const std::string home = listening.home.directories().home;
  double relayCpu = 0;
  double trueCpu = 0;
  for (auto _ : state) {
    const double cpu =
        waitForChild(startChild({KESTREL_RELAY, "--agent", "claude", "--state", "working"}, home));
    trueCpu += waitForChild(startChild({"/bin/true"}, home));
    relayCpu += cpu;
    state.SetIterationTime(cpu);
  }
  state.counters["CPU/true"] = relayCpu / trueCpu;
  state.counters["peak_KiB"] = relayMemory();
}
BENCHMARK(relay)->Name("relay, CPU")->UseManualTime()->Iterations(400)->Unit(benchmark::kMicrosecond);

/// From the start of the headless program to its first status line, which follows the first evaluation.
/// Budget: 30 ms.
void firstEvaluation(benchmark::State& state) {
  TemporaryDirectories home;
  double cpu = 0;
  double peak = 0;
  for (auto _ : state) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return state.SkipWithError("no pipe");
    const UniqueDescriptor output(ends[0]);
    UniqueDescriptor input(ends[1]);
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = startChild({KESTREL_APP, "--headless"}, home.directories().home, input.get());
    input.reset();
    std::string text;
    std::array<char, 1024> buffer{};
    while (text.find("Sleep enabled") == std::string::npos) {
      const ssize_t count = ::read(output.get(), buffer.data(), buffer.size());
      if (count <= 0) break;
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
    peak = std::max(peak, peakMemoryOf(child));
    ::kill(child, SIGTERM);
    cpu += waitForChild(child);
    if (text.find("Sleep enabled") == std::string::npos) state.SkipWithError("no status line");
    state.SetIterationTime(wall.count());
  }
  state.counters["CPU_ms_with_exit"] = benchmark::Counter(cpu * 1e3, benchmark::Counter::kAvgIterations);
  state.counters["peak_KiB"] = peak;
}
BENCHMARK(firstEvaluation)
    ->Name("start to first evaluation (headless), wall")
    ->UseManualTime()
    ->Iterations(40)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrel::bench
