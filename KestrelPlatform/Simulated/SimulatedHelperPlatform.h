#pragma once

#include <optional>
#include <vector>

#include "KestrelCore/Platform/HelperPlatform.h"
#include "KestrelPlatform/Simulated/SimulatedLidSource.h"
#include "KestrelPlatform/Simulated/SimulatedPeerIdentity.h"
#include "KestrelPlatform/Simulated/SimulatedPowerSource.h"
#include "KestrelPlatform/Simulated/SimulatedThermalSource.h"

namespace kestrel {

/// A scripted switch, which like a real one may outlive the helper that threw it.
class SimulatedSleepOverride final : public SystemPowerControlling {
 public:
  [[nodiscard]] bool readSleepDisabled() override { return isDisabled_; }
  void writeSleepDisabled(bool disabled) override {
    writes_.push_back(disabled);
    isDisabled_ = disabled;
  }

  /// As somebody else would.
  void set(bool disabled) { isDisabled_ = disabled; }
  /// What was asked for, oldest first.
  [[nodiscard]] const std::vector<bool>& writes() const { return writes_; }

 private:
  bool isDisabled_ = false;
  std::vector<bool> writes_;
};

class SimulatedSleepRequest final : public SleepRequesting {
 public:
  void sleepForClosedLid() override { ++count_; }
  [[nodiscard]] int count() const { return count_; }

 private:
  int count_ = 0;
};

/// Nobody sits at the machine, unless scripted otherwise.
class SimulatedActiveSeat final : public ActiveSeat {
 public:
  [[nodiscard]] std::optional<uid_t> activeUser() const override { return user_; }
  void set(std::optional<uid_t> user) { user_ = user; }

 private:
  std::optional<uid_t> user_;
};

/// The helper's outside in memory. The handles point into `platform`.
struct SimulatedHelperPlatform {
  HelperPlatform platform;
  SimulatedSleepOverride* sleepOverride = nullptr;
  SimulatedSleepRequest* sleep = nullptr;
  SimulatedPowerSource* powerSource = nullptr;
  SimulatedThermalSource* thermal = nullptr;
  SimulatedLidSource* lid = nullptr;
  SimulatedActiveSeat* seat = nullptr;
  SimulatedPeerIdentity* peerIdentity = nullptr;
};

SimulatedHelperPlatform simulatedHelperPlatform();

}  // namespace kestrel
