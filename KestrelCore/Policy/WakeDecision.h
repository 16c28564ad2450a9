#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>

#include "KestrelCore/Policy/SafetyBlock.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// What the policy decided: keep the machine awake, let it sleep, or let it sleep although protection is
/// wanted.
class WakeDecision {
 public:
  struct Hold {
    std::string reason;
    std::int64_t activeAgentCount = 0;
    bool requiresDeepHold = false;
    friend bool operator==(const Hold&, const Hold&) = default;
  };
  struct Release {
    std::string reason;
    friend bool operator==(const Release&, const Release&) = default;
  };
  struct Blocked {
    SafetyBlock block = SafetyBlock::masterDisabled;
    friend bool operator==(const Blocked&, const Blocked&) = default;
  };

  static WakeDecision hold(std::string reason, std::int64_t activeAgentCount, bool requiresDeepHold);
  static WakeDecision release(std::string reason);
  static WakeDecision blocked(SafetyBlock block);

  [[nodiscard]] bool isHolding() const { return asHold() != nullptr; }
  [[nodiscard]] bool isBlocked() const { return asBlocked() != nullptr; }

  // Null unless the decision is of that case.
  [[nodiscard]] const Hold* asHold() const { return std::get_if<Hold>(&value_); }
  [[nodiscard]] const Release* asRelease() const { return std::get_if<Release>(&value_); }
  [[nodiscard]] const Blocked* asBlocked() const { return std::get_if<Blocked>(&value_); }

  /// The one-line status text of every surface.
  [[nodiscard]] std::string statusDescription() const;
  [[nodiscard]] std::string description() const { return statusDescription(); }

  friend bool operator==(const WakeDecision&, const WakeDecision&) = default;

 private:
  using Value = std::variant<Hold, Release, Blocked>;
  explicit WakeDecision(Value value) : value_(std::move(value)) {}
  Value value_;
};

Json encode(const WakeDecision& decision);

/// Throws DecodingError.
WakeDecision decodeWakeDecision(const Json& object);

}  // namespace kestrel
