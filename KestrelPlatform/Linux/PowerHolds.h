#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "KestrelPlatform/Linux/DesktopService.h"
#include "KestrelPlatform/Linux/HoldPlan.h"
#include "KestrelPlatform/Linux/LoginManager.h"

namespace kestrel {

enum class AssertionType { systemSleep, displaySleep };
inline constexpr std::size_t kAssertionTypes = 2;

struct WantedAssertion {
  PowerAssertionID id = 0;
  AssertionType type = AssertionType::systemSleep;
  /// As every service is shown it; valid for a bus.
  std::string name;
};

/// What the main thread found out, for everybody else.
struct HoldFindings {
  struct Prospect {
    bool reachable = true;
    /// The evidence that a new assertion would start with.
    std::vector<HoldEvidence> preview;
  };
  std::array<Prospect, kAssertionTypes> prospects;
  std::map<PowerAssertionID, std::vector<HoldEvidence>> evidence;
};

/// The services, and the holds that the wanted assertions have there. Main thread only.
class PowerHolds {
 public:
  /// `publish` is called on the executor, with all that is known, after something may have changed; once at
  /// the end of a turn.
  PowerHolds(Executor& executor, const Logger& logger, std::function<void(const HoldFindings&)> publish);

  [[nodiscard]] HoldFindings findings() const;
  /// Makes the holds those of exactly these assertions. An assertion that replaces another of the same type
  /// and name takes over its holds, so that the machine is not let go for a moment.
  void apply(const std::vector<WantedAssertion>& wanted);
  void readBack();

 private:
  struct Entry {
    WantedAssertion assertion;
    std::unique_ptr<PlannedHolds> holds;
  };

  [[nodiscard]] std::unique_ptr<PlannedHolds> takeOver(std::vector<Entry>& former,
                                                       const WantedAssertion& wanted);
  void scheduleUpdate();
  void update();
  void logPresence();

  const HoldContext context_;
  const std::function<void(const HoldFindings&)> publish_;
  const std::shared_ptr<int> alive_ = std::make_shared<int>();
  bool updateScheduled_ = false;
  InhibitorService::Presence loggedPresence_ = InhibitorService::Presence::unknown;
  // The links go last, the holds first: giving back needs what stands above.
  BusLink systemBus_;
  BusLink sessionBus_;
  LoginManager loginManager_;
  DesktopService sessionManager_;
  DesktopService powerManagement_;
  DesktopService screenSaver_;
  const std::array<HoldPlan, kAssertionTypes> plans_;
  std::vector<Entry> entries_;
};

}  // namespace kestrel
