#include "KestrelPlatform/Linux/LinuxSleepOverride.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "KestrelPlatform/Linux/LoginManager.h"
#include "KestrelPlatform/Linux/ServiceHold.h"

namespace kestrel {
namespace {

constexpr double kReadBackSeconds = 10;
/// In ASCII: the login manager garbles anything else in the records that it reads after a restart.
constexpr const char* kReason = "Kestrel: awake with the lid closed";
constexpr std::array kUnitFolders{"etc/systemd/system", "run/systemd/system"};
constexpr std::array kWaysToSleep{"suspend.target", "hibernate.target", "hybrid-sleep.target"};

bool isMasked(const std::filesystem::path& root, const char* unit) {
  return std::ranges::any_of(kUnitFolders, [&](const char* folder) {
    std::error_code error;
    return std::filesystem::read_symlink(root / folder / unit, error) == "/dev/null";
  });
}

class LinuxSleepOverride final : public SystemPowerControlling {
 public:
  LinuxSleepOverride(Executor& executor, std::shared_ptr<LogSink> sink, std::filesystem::path root)
      : root_(std::move(root)),
        context_{executor, Logger(std::move(sink), "lease", kHelperSubsystem), [this] { scheduleUpdate(); }},
        link_(SdBus::Which::system, executor, context_.logger),
        loginManager_(link_, context_.onChange, [this] { readBack(); }) {}

  [[nodiscard]] bool readSleepDisabled() override {
    return isInForce() || isMasked(root_, "sleep.target") ||
           std::ranges::all_of(kWaysToSleep, [this](const char* unit) { return isMasked(root_, unit); });
  }

  void writeSleepDisabled(bool disabled) override {
    if (disabled == !holds_.empty()) return;
    holds_.clear();
    readBackTimer_.reset();
    report_.clear();
    if (!disabled) return;
    for (const HoldKind kind : {HoldKind::sleep, HoldKind::lid}) {
      holds_.push_back(std::make_unique<ServiceHold>(loginManager_, kind, kReason, context_));
    }
    readBackTimer_ = context_.executor.repeat(kReadBackSeconds, kReadBackSeconds, [this] { readBack(); });
    update();
  }

 private:
  [[nodiscard]] bool isInForce() const {
    return !holds_.empty() && std::ranges::all_of(holds_, [](const auto& hold) { return hold->isHeld(); });
  }

  void readBack() {
    for (const auto& hold : holds_) hold->readBack();
  }

  void scheduleUpdate() {
    if (std::exchange(updateScheduled_, true)) return;
    context_.executor.post([this, alive = std::weak_ptr(alive_)] {
      if (alive.lock()) update();
    });
  }

  /// Follows changes only, so that one update does not lead to another for ever.
  void update() {
    updateScheduled_ = false;
    for (const auto& hold : holds_) hold->update();
    if (!holds_.empty()) report();
  }

  /// What was refused or lost is in the log already.
  void report() {
    std::string report;
    if (isInForce()) report = "Sleep is switched off at the login manager";
    for (const auto& hold : holds_) {
      const HoldEvidence evidence = hold->evidence();
      if (evidence.state == HoldEvidenceState::unavailable)
        report = "Sleep cannot be switched off: " + evidence.detail;
    }
    if (report != report_ && !report.empty()) context_.logger.info("{}", report);
    report_ = std::move(report);
  }

  const std::filesystem::path root_;
  const HoldContext context_;
  const std::shared_ptr<int> alive_ = std::make_shared<int>();
  bool updateScheduled_ = false;
  std::string report_;
  // The link goes last, the holds first: giving back needs what stands above.
  BusLink link_;
  LoginManager loginManager_;
  std::vector<std::unique_ptr<ServiceHold>> holds_;
  RegistrationPtr readBackTimer_;
};

}  // namespace

std::unique_ptr<SystemPowerControlling> makeLinuxSleepOverride(Executor& executor,
                                                               std::shared_ptr<LogSink> sink,
                                                               std::filesystem::path root) {
  return std::make_unique<LinuxSleepOverride>(executor, std::move(sink), std::move(root));
}

}  // namespace kestrel
