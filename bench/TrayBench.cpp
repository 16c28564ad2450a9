#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <systemd/sd-bus.h>
#include <unistd.h>
#include <vector>

#include "bench/Measure.h"

#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr double kIdleSeconds = 20;
/// For what follows the start: the first scans, the readers of usage.
constexpr double kSettleSeconds = 8;

/// A program that prints one line when it is ready; ended with this object.
class Service {
 public:
  explicit Service(const std::vector<std::string>& command, const std::string& home) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return;
    const UniqueDescriptor output(ends[0]);
    {
      const UniqueDescriptor input(ends[1]);
      pid_ = startChild(command, home, input.get());
    }
    char letter = 0;
    while (::read(output.get(), &letter, 1) == 1 && letter != '\n') line_ += letter;
  }
  ~Service() {
    ::kill(pid_, SIGTERM);
    (void)waitForChild(pid_);
  }
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;

  /// Empty when it could not be run.
  [[nodiscard]] const std::string& line() const { return line_; }

 private:
  pid_t pid_ = -1;
  std::string line_;
};

int isHostRegistered(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                     sd_bus_error*) {
  return sd_bus_message_append(reply, "b", 1);
}

int registerItem(sd_bus_message* message, void* seen, sd_bus_error*) {
  *static_cast<bool*>(seen) = true;
  return sd_bus_reply_method_return(message, "");
}

const std::array<sd_bus_vtable, 4> kInterface{
    {SD_BUS_VTABLE_START(0), SD_BUS_PROPERTY("IsStatusNotifierHostRegistered", "b", isHostRegistered, 0, 0),
     SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", registerItem, SD_BUS_VTABLE_UNPRIVILEGED),
     SD_BUS_VTABLE_END}};

/// An X display, a session bus, and a panel on it that only takes note of icons.
class Desktop {
 public:
  Desktop() {
    // The introduction is shown once, and is not what is measured.
    const auto settings = home_.directories().home / ".config" / "com.kestrel.app.json";
    std::filesystem::create_directories(settings.parent_path());
    std::ofstream(settings) << R"({"hasCompletedOnboarding": true})";
    if (display_.line().empty() || address_.line().empty()) return;
    sd_bus* bus = nullptr;
    if (sd_bus_new(&bus) < 0) return;
    bus_.reset(bus);
    const bool works = sd_bus_set_address(bus, address_.line().c_str()) >= 0 &&
                       sd_bus_set_bus_client(bus, 1) >= 0 && sd_bus_start(bus) >= 0 &&
                       sd_bus_add_object_vtable(bus, nullptr, "/StatusNotifierWatcher", kWatcher,
                                                kInterface.data(), &seen_) >= 0 &&
                       sd_bus_request_name(bus, kWatcher, 0) >= 0;
    if (!works) bus_.reset();
  }

  [[nodiscard]] bool isUsable() const { return bus_ != nullptr; }
  pid_t startKestrel() {
    seen_ = false;
    return startChild({"/usr/bin/env", "DISPLAY=:" + display_.line(),
                       "DBUS_SESSION_BUS_ADDRESS=" + address_.line(), KESTREL_APP},
                      home_.directories().home);
  }
  /// Answers until an icon was registered, or so many seconds have passed.
  bool serve(double seconds) {
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (!seen_ && Clock::now() < end) {
      if (sd_bus_process(bus_.get(), nullptr) == 0) sd_bus_wait(bus_.get(), 20'000);
    }
    return seen_;
  }

 private:
  struct Unref {
    void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
  };

  TemporaryDirectories home_;
  Service display_{{"/usr/bin/Xvfb", "-displayfd", "1", "-nolisten", "tcp", "-noreset"},
                   home_.directories().home};
  Service address_{{"/usr/bin/dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"},
                   home_.directories().home};
  bool seen_ = false;
  std::unique_ptr<sd_bus, Unref> bus_;
};

/// Sums over all threads of a process.
struct Cost {
  double cpuSeconds = 0;
  double wakeups = 0;
};

double fieldOf(const std::string& file, const std::string& name) {
  std::ifstream status(file);
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name)) return std::strtod(line.c_str() + name.size(), nullptr);
  }
  return 0;
}

Cost costOf(pid_t process) {
  Cost cost;
  const std::string tasks = "/proc/" + std::to_string(process) + "/task";
  for (const auto& task : std::filesystem::directory_iterator(tasks)) {
    cost.wakeups += fieldOf(task.path() / "status", "voluntary_ctxt_switches:");
    std::ifstream file(task.path() / "schedstat");
    double nanoseconds = 0;
    file >> nanoseconds;
    cost.cpuSeconds += nanoseconds / 1e9;
  }
  return cost;
}

/// Until the icon is announced to the panel. Budget: 250 ms.
void startToIcon(benchmark::State& state) {
  Desktop desktop;
  if (!desktop.isUsable()) return state.SkipWithError("Xvfb or dbus-daemon cannot be run here");
  for (auto _ : state) {
    const auto begin = Clock::now();
    const pid_t child = desktop.startKestrel();
    const bool came = desktop.serve(10);
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
    ::kill(child, SIGTERM);
    (void)waitForChild(child);
    if (!came) return state.SkipWithError("no icon came");
  }
}
BENCHMARK(startToIcon)
    ->Name("start to icon, wall")
    ->UseManualTime()
    ->Iterations(10)
    ->Unit(benchmark::kMillisecond);

/// Budgets: 0.3 % of one core, 45 MiB.
void idleWithTray(benchmark::State& state) {
  Desktop desktop;
  if (!desktop.isUsable()) return state.SkipWithError("Xvfb or dbus-daemon cannot be run here");
  const pid_t child = desktop.startKestrel();
  for (auto _ : state) {
    if (!desktop.serve(10)) state.SkipWithError("no icon came");
    ::usleep(static_cast<useconds_t>(kSettleSeconds * 1e6));
    const Cost before = costOf(child);
    ::usleep(static_cast<useconds_t>(kIdleSeconds * 1e6));
    const Cost after = costOf(child);
    state.SetIterationTime((after.cpuSeconds - before.cpuSeconds) / kIdleSeconds);
    state.counters["core_%"] = 100 * (after.cpuSeconds - before.cpuSeconds) / kIdleSeconds;
    state.counters["wakeups/s"] = (after.wakeups - before.wakeups) / kIdleSeconds;
    const std::string memory = "/proc/" + std::to_string(child) + "/smaps_rollup";
    state.counters["resident_KiB"] = fieldOf(memory, "Rss:");
    state.counters["own_KiB"] = fieldOf(memory, "Pss_Anon:");
  }
  ::kill(child, SIGTERM);
  (void)waitForChild(child);
}
BENCHMARK(idleWithTray)
    ->Name("whole app idle, tray shown, CPU per second")
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kestrel::bench
