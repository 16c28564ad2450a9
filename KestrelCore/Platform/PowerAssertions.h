#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

/// What one service was asked to prevent.
enum class HoldKind { idle, sleep, display, lid, desktop };
template <>
struct RawValues<HoldKind> {
  static constexpr std::array<std::string_view, 5> table{"idle", "sleep", "display", "lid", "desktop"};
};

/// `held` means read back from the service, never merely asked for. `lost`: it was held and no longer shows.
enum class HoldEvidenceState { held, pending, refused, unavailable, lost };
template <>
struct RawValues<HoldEvidenceState> {
  static constexpr std::array<std::string_view, 5> table{"held", "pending", "refused", "unavailable", "lost"};
};

/// What one service says of one assertion.
struct HoldEvidence {
  /// The service as people know it: "login manager", "desktop session", "power management".
  std::string service;
  HoldKind kind = HoldKind::idle;
  HoldEvidenceState state = HoldEvidenceState::pending;
  /// The refusal in words, or an identifier; may be empty.
  std::string detail;

  friend bool operator==(const HoldEvidence&, const HoldEvidence&) = default;
};

using PowerAssertionID = std::uint32_t;

/// The system's power assertions. Never blocks: requests go out asynchronously where the service is another
/// process, and the answers show in `evidence()`. Safe from any thread; never calls back under its lock.
class PowerAssertions {
 public:
  /// The only level in use.
  static constexpr std::uint32_t kLevelOn = 255;
  /// Types of assertion.
  static constexpr std::string_view kPreventIdleSystemSleep = "PreventUserIdleSystemSleep";
  static constexpr std::string_view kPreventIdleDisplaySleep = "PreventUserIdleDisplaySleep";

  struct Creation {
    /// 0 on success, else the system's error number.
    std::int32_t code = 0;
    /// Never 0 on success.
    PowerAssertionID id = 0;
  };

  virtual ~PowerAssertions() = default;

  /// Takes an assertion of a type and level; `name` is shown to people by the system's own tools.
  [[nodiscard]] virtual Creation create(std::string_view type, std::uint32_t level,
                                        std::string_view name) = 0;
  /// Gives it back; an unknown id is ignored.
  virtual void release(PowerAssertionID id) = 0;
  /// What is known of the assertions in force, in order of asking; empty when none was created. Reads the
  /// system only where that is cheap; otherwise asks for a fresh reading, which shows at a later call.
  [[nodiscard]] virtual std::vector<HoldEvidence> evidence() = 0;
  /// The evidence that an assertion against idle system sleep would begin with if it were created now.
  [[nodiscard]] virtual std::vector<HoldEvidence> prospects() = 0;
  /// Called on the main executor after an answer changed `evidence()`. Set once, before the first `create`.
  virtual void setOnEvidenceChanged(std::function<void()> callback) = 0;
};

}  // namespace kestrel
