#include "KestrelPlatform/Linux/LinuxPowerSource.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

#include "KestrelPlatform/Linux/ChangeNotice.h"
#include "KestrelPlatform/Linux/SourceNote.h"

namespace kestrel {
namespace {

/// The kernel's files tell of no change.
constexpr double kPollSeconds = 30;

using List = PowerSource::List;

auto parts(const PowerSourceDescription& source) {
  return std::tie(source.powerSourceState, source.isCharging, source.currentCapacity, source.maxCapacity,
                  source.timeToEmpty);
}

bool isSame(const std::optional<List>& a, const std::optional<List>& b) {
  if (!a || !b) return a.has_value() == b.has_value();
  return std::ranges::equal(*a, *b, [](const auto& x, const auto& y) {
    return x && y ? parts(*x) == parts(*y) : x.has_value() == y.has_value();
  });
}

class LinuxPowerSource final : public PowerSource {
 public:
  LinuxPowerSource(Executor& executor, std::shared_ptr<LogSink> sink,
                   std::shared_ptr<HardwareServices> services, std::filesystem::path root)
      : services_(std::move(services)),
        root_(std::move(root)),
        notice_(executor),
        note_(executor, Logger(std::move(sink), "battery"), "The power source",
              "The power source cannot be read here; taken as mains power") {
    upowerObservation_ = services_->observeUPower([this] { refresh(); });
    profileObservation_ = services_->observeProfiles([this] { followProfile(); });
    timer_ = executor.repeat(kPollSeconds, kPollSeconds, [this] {
      if (!services_->power()) refresh();
    });
    refresh();
  }

  [[nodiscard]] std::optional<List> read() override {
    notice_.markRead();
    return list_;
  }
  [[nodiscard]] RegistrationPtr observe(std::function<void()> onChange) override {
    return notice_.observe(std::move(onChange));
  }
  [[nodiscard]] std::optional<std::string> sourceName() const override { return sourceName_; }

 private:
  void refresh() {
    auto [list, name] = readNow();
    sourceName_ = std::move(name);
    note_.set(sourceName_);
    if (isSame(list, list_)) return;
    list_ = std::move(list);
    notice_.tell();
  }

  [[nodiscard]] std::pair<std::optional<List>, std::optional<std::string>> readNow() const {
    if (auto description = services_->power()) return {List{std::move(description)}, "UPower"};
    if (auto list = readPowerSupplies(root_)) return {std::move(list), kPowerSupplyRoot};
    return {};
  }

  void followProfile() {
    const bool isPowerSaving = services_->isPowerSaving().value_or(false);
    if (std::exchange(isPowerSaving_, isPowerSaving) != isPowerSaving) notice_.tell();
  }

  const std::shared_ptr<HardwareServices> services_;
  const std::filesystem::path root_;
  ChangeNotice notice_;
  SourceNote note_;
  std::optional<List> list_;
  std::optional<std::string> sourceName_;
  bool isPowerSaving_ = false;
  RegistrationPtr upowerObservation_;
  RegistrationPtr profileObservation_;
  RegistrationPtr timer_;
};

}  // namespace

std::unique_ptr<PowerSource> makeLinuxPowerSource(Executor& executor, std::shared_ptr<LogSink> sink,
                                                  std::shared_ptr<HardwareServices> services,
                                                  std::filesystem::path root) {
  return std::make_unique<LinuxPowerSource>(executor, std::move(sink), std::move(services), std::move(root));
}

}  // namespace kestrel
