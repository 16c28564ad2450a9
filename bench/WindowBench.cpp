#include <QApplication>
#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <ctime>
#include <fmt/format.h>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

#include "screenshots/ViewStage.h"

#include "KestrelApp/ApplicationTheme.h"
#include "KestrelApp/KestrelAppShellView.h"
#include "KestrelCore/Support/LocalCalendar.h"
#include "KestrelCore/Usage/UsageStore.h"

namespace kestrel::bench {
namespace {

// Budget: with a million events and 200 sessions at most 1.5 times what it costs with 1,000 and 2.

using Section = KestrelAppShellView::Section;

constexpr int kRounds = 25;

/// CPU time of the main thread so far, in seconds; what another program takes meanwhile does not count.
double mainThreadSeconds() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// Of what runs until this object goes.
class Stopwatch {
 public:
  explicit Stopwatch(double& total) : total_(total) {}
  ~Stopwatch() { total_ += mainThreadSeconds() - begin_; }
  Stopwatch(const Stopwatch&) = delete;
  Stopwatch& operator=(const Stopwatch&) = delete;

 private:
  double& total_;
  const double begin_ = mainThreadSeconds();
};

/// Like the turns of large transcripts: 40 to a session, one every 20 s, the last of them now.
UsageEvent turn(std::int64_t number, std::int64_t of, Date now) {
  UsageEvent event;
  event.agentType = number % 5 == 0 ? AgentType::codex : AgentType::claude;
  event.sessionId = "3f0c9a52-7b1e-4d7c-9a55-" + std::to_string(100'000'000'000 + number / 40);
  event.turnId = "msg_01Xb7Zt9Qw" + std::to_string(number);
  event.modelId = "claude-sonnet-4-5-20250929";
  event.inputTokens = 4 + number % 7;
  event.outputTokens = 100 + number % 900;
  event.timestamp = now - static_cast<double>(of - number) * 20;
  event.deriveTotal();
  return event;
}

class World {
 public:
  World(std::int64_t events, int sessions) : stage_(views_.stage()) {
    playUsage(events);
    for (int i = 0; i < sessions; ++i) {
      const auto agent = i % 2 == 0 ? AgentType::claude : AgentType::codex;
      stage_.hook(fmt::format("s{}", i), agent, AgentState::working, fmt::format("/home/u/p{}", i));
    }
    stage_.startUsage();
  }

  /// Opens the window at a section; the seconds until it is drawn with everything that it asked for.
  double open(Section section) {
    double total = 0;
    {
      const Stopwatch watch(total);
      window_ = std::make_unique<KestrelAppShellView>(views_.context());
      window_->resize(window_->sizeHint());
      window_->showSection(section);
      window_->show();
      draw();
    }
    finish(total);
    return total;
  }
  void close() { window_.reset(); }
  /// That are shown.
  [[nodiscard]] std::size_t sessions() {
    std::size_t count = 0;
    for (const auto& family : stage_.app().agentFamilies().get()) count += family.sessions.size();
    return count;
  }

  /// Shows what an event of an agent, and one of usage, have changed.
  double update() {
    ++changes_;
    double total = 0;
    {
      const Stopwatch watch(total);
      stage_.hook("s0", AgentType::claude, changes_ % 2 == 0 ? AgentState::working : AgentState::waiting);
    }
    stage_.use(AgentType::claude, 1000 + changes_, 0.01, changes_, fmt::format("new{}", changes_ % 8));
    finish(total);
    {
      const Stopwatch watch(total);
      stage_.app().evaluate();
      stage_.executor().advance(1);
      draw();
    }
    return total;
  }

 private:
  /// Each round lays out one level more.
  static void draw() {
    for (int round = 0; round < 10; ++round) QApplication::processEvents();
  }

  /// Takes what the usage queue answers to what it was asked, and draws it.
  void finish(double& total) {
    // An event asks for a refresh behind itself.
    for (int round = 0; round < 2; ++round) {
      bool isDone = false;
      stage_.usage().requestSessions(1, [&isDone](const auto&) { isDone = true; });
      while (!isDone) {
        ::usleep(200);
        const Stopwatch watch(total);
        stage_.executor().runPending();
      }
    }
    const Stopwatch watch(total);
    draw();
  }

  void playUsage(std::int64_t events) {
    AppCoordinator& app = stage_.app();
    UsageStore store({.file = UsageStore::defaultFile(app.directories()),
                      .files = app.files(),
                      .clock = std::shared_ptr<const Clock>(std::shared_ptr<void>(), &stage_.clock()),
                      .calendar = std::make_shared<SystemLocalCalendar>(),
                      .sink = nullptr});
    std::vector<UsageEvent> batch;
    for (std::int64_t i = 1; i <= events; ++i) batch.push_back(turn(i, events, stage_.clock().now()));
    store.record(batch);
    store.saveAtStop();
  }

  ViewStage views_;
  Stage& stage_;
  std::unique_ptr<KestrelAppShellView> window_;
  int changes_ = 0;
};

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  return *middle;
}

/// Two worlds in turn, so that whatever the machine does otherwise strikes both.
class Comparison {
 public:
  template <typename Measure>
  void round(World& small, World& large, Measure measure) {
    small_.push_back(measure(small));
    large_.push_back(measure(large));
  }
  void tell(benchmark::State& state, const std::string& name) {
    const double small = median(small_);
    const double large = median(large_);
    state.counters[name + "_ms"] = large * 1e3;
    state.counters[name + "_ratio"] = large / small;
  }

 private:
  std::vector<double> small_;
  std::vector<double> large_;
};

void measure(benchmark::State& state, World& small, World& large, Section section, const std::string& name) {
  Comparison opening;
  Comparison updating;
  for (int i = 0; i < kRounds; ++i) {
    opening.round(small, large, [section](World& world) { return world.open(section); });
    for (int j = 0; j < 2; ++j) updating.round(small, large, [](World& world) { return world.update(); });
    small.close();
    large.close();
  }
  opening.tell(state, name + "_open");
  updating.tell(state, name + "_update");
}

void mainWindow(benchmark::State& state) {
  ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
  // That platform says at each window that it has no window manager to tell of sizes.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  int count = 1;
  std::array<char, 6> name{"bench"};
  std::array<char*, 2> arguments{name.data(), nullptr};
  QApplication application(count, arguments.data());
  const ApplicationTheme theme(application);
  for (auto _ : state) {
    World small(1'000, 2);
    World large(1'000'000, 200);
    // The first window pays for fonts and pictures.
    for (World* world : {&small, &large}) world->open(Section::overview), world->close();
    measure(state, small, large, Section::overview, "overview");
    measure(state, small, large, Section::agents, "agents");
    measure(state, small, large, Section::budget, "budget");
    if (small.sessions() != 2 || large.sessions() != 200)
      state.SkipWithError("sessions were lost on the way");
  }
}
BENCHMARK(mainWindow)->Name("main window, 1 M events against 1 k")->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace
}  // namespace kestrel::bench
