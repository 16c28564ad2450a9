#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelPlatform/Linux/InhibitorService.h"

namespace kestrel {

/// What holds need of their surroundings; everything outlives them.
struct HoldContext {
  Executor& executor;
  Logger logger;
  /// Called after something changed, from whatever was going on; posts, and does nothing else.
  std::function<void()> onChange;
};

/// One hold that is wanted of one service, from construction to destruction: asks, reads back, asks again
/// what was refused or lost, and starts over when the service does. Main thread only.
class ServiceHold {
 public:
  ServiceHold(InhibitorService& service, HoldKind kind, std::string reason, const HoldContext& context);

  /// Follows the service's presence. Called once after construction and after each change.
  void update();
  /// Asks the service whether the hold still shows.
  void readBack();

  [[nodiscard]] HoldEvidence evidence() const { return {service_.title(), kind_, state_, detail_}; }
  [[nodiscard]] const InhibitorService& service() const { return service_; }
  [[nodiscard]] bool isHeld() const { return state_ == HoldEvidenceState::held; }
  /// Whether the service is about to grant or refuse.
  [[nodiscard]] bool isWaiting() const { return waiting_; }

 private:
  void onServiceGone();
  void onNewService();
  void take();
  void onAnswer(InhibitorService::Answer answer);
  void onReadBack(std::optional<bool> shown);
  void onNotShown();
  void retryLater();
  void settle(HoldEvidenceState state, std::string detail, bool waiting = false);
  void log() const;

  InhibitorService& service_;
  const HoldKind kind_;
  const std::string reason_;
  const HoldContext& context_;

  HoldEvidenceState state_ = HoldEvidenceState::pending;
  std::string detail_;
  bool waiting_ = true;
  bool asking_ = false;
  /// It showed at some time.
  bool wasHeld_ = false;
  /// Granted, and not yet seen to show.
  bool unproven_ = false;
  unsigned generation_ = 0;
  std::unique_ptr<InhibitorService::Grant> grant_;
  RegistrationPtr timer_;
  /// Answers meant for an earlier process of the service find this replaced, and give themselves back.
  std::shared_ptr<int> episode_;
};

}  // namespace kestrel
