#include "KestrelPlatform/Linux/LinuxThermalSource.h"

#include <utility>

#include "KestrelPlatform/Linux/ChangeNotice.h"
#include "KestrelPlatform/Linux/SourceNote.h"

namespace kestrel {
namespace {

constexpr double kPollSeconds = 5;
constexpr double kWarmPollSeconds = 1;
/// Drivers bring zones when they are loaded, and trip points can be set.
constexpr double kScanSeconds = 60;

class LinuxThermalSource final : public ThermalSource {
 public:
  LinuxThermalSource(Executor& executor, std::shared_ptr<LogSink> sink, std::filesystem::path root)
      : executor_(executor),
        zones_(std::move(root)),
        notice_(executor),
        note_(executor, Logger(std::move(sink), "thermal"), "The temperature",
              "The temperature cannot be read here; taken as nominal") {
    poll(0);
  }

  [[nodiscard]] int level() override {
    notice_.markRead();
    return level_;
  }
  [[nodiscard]] RegistrationPtr observe(std::function<void()> onChange) override {
    return notice_.observe(std::move(onChange));
  }
  [[nodiscard]] std::optional<std::string> sourceName() const override {
    return isKnown_ ? std::optional<std::string>(kThermalRoot) : std::nullopt;
  }

 private:
  void poll(double elapsedSeconds) {
    sinceScan_ += elapsedSeconds;
    if (sinceScan_ >= kScanSeconds) {
      sinceScan_ = 0;
      zones_.scan();
    }
    const auto hottest = zones_.readLevel();
    isKnown_ = hottest.has_value();
    note_.set(sourceName());
    const double next = hottest.value_or(0) > 0 ? kWarmPollSeconds : kPollSeconds;
    timer_ = executor_.after(next, [this, next] { poll(next); });
    const int level = rise_.update(hottest.value_or(0), elapsedSeconds);
    if (std::exchange(level_, level) != level) notice_.tell();
  }

  Executor& executor_;
  ThermalZones zones_;
  ThermalRise rise_;
  ChangeNotice notice_;
  SourceNote note_;
  double sinceScan_ = 0;
  bool isKnown_ = false;
  int level_ = 0;
  RegistrationPtr timer_;
};

}  // namespace

std::unique_ptr<ThermalSource> makeLinuxThermalSource(Executor& executor, std::shared_ptr<LogSink> sink,
                                                      std::filesystem::path root) {
  return std::make_unique<LinuxThermalSource>(executor, std::move(sink), std::move(root));
}

}  // namespace kestrel
