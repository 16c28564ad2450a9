#include <array>
#include <benchmark/benchmark.h>
#include <csignal>
#include <cstdlib>
#include <future>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/BenchCoordinator.h"
#include "bench/Measure.h"

#include "KestrelCore/Support/SerialQueue.h"
#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelCore/Support/UnixSocket.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel::bench {
namespace {

constexpr int kEventsPerClient = 2'000;

/// Sends records one connection each, and waits for each acknowledgement as the relay does.
[[noreturn]] void sendEvents(const std::string& path, const std::string& session) {
  const std::string record = R"({"schema":1,"agent":"claude","session_id":")" + session +
                             R"(","state":"working","timestamp":1763695625.25,"pid":4711,"cwd":"/home/u/p"})";
  const auto address = socketAddress(path);
  std::array<char, 64> reply{};
  for (int i = 0; i < kEventsPerClient; ++i) {
    const UniqueDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0)
      std::_Exit(1);
    if (!sendAll(socket.get(), record) || ::read(socket.get(), reply.data(), reply.size()) <= 0)
      std::_Exit(2);
  }
  std::_Exit(0);
}

/// CPU of the receiving process per event: accept, decode, acknowledge, table, merged evaluations.
/// Budget: 12 µs.
void hookSocket(benchmark::State& state) {
  std::signal(SIGPIPE, SIG_IGN);
  SerialQueue mainQueue("main");
  BenchCoordinator bench(mainQueue);
  bench.outside.platform.peerIdentity = makePeerIdentity();
  bench.coordinator =
      AppCoordinator::create({bench.outside.platform, mainQueue, bench.settings, bench.clock, bench.log,
                              bench.policy, bench.home.directories(), bench.usage});
  mainQueue.post([&] { bench.coordinator->start(); });
  const std::string path = bench.home.directories().hookSocket();
  while (::access(path.c_str(), F_OK) != 0) ::usleep(1'000);

  for (auto _ : state) {
    const double before = ownCpuSeconds();
    std::array<pid_t, 4> clients{};
    for (std::size_t i = 0; i < clients.size(); ++i) {
      clients[i] = ::fork();
      if (clients[i] == 0) sendEvents(path, "session-" + std::to_string(i));
    }
    for (const pid_t client : clients) {
      int status = 0;
      ::waitpid(client, &status, 0);
      if (status != 0) state.SkipWithError("a client was refused");
    }
    const auto events = static_cast<double>(clients.size() * kEventsPerClient);
    state.SetIterationTime((ownCpuSeconds() - before) / events);
  }
  std::promise<void> stopped;
  mainQueue.post([&] {
    bench.coordinator->stop();
    bench.coordinator.reset();
    stopped.set_value();
  });
  stopped.get_future().wait();
}
BENCHMARK(hookSocket)
    ->Name("hook socket, CPU per event")
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kestrel::bench
