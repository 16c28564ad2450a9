#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <vector>

#include "KestrelCore/Platform/PowerAssertions.h"
#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

/// How far the system is seen to do what a hold asks of it. `inForce` was read back from the system; `lost`
/// was in force and no longer shows; `wanted` is asked for, pending or refused; `none` means that nothing is
/// asked for.
enum class HoldState { none, wanted, inForce, lost };

template <>
struct RawValues<HoldState> {
  static constexpr std::array<std::string_view, 4> table{"none", "wanted", "inForce", "lost"};
};

/// A hold and the services that answer for it.
struct HoldStatus {
  HoldState state = HoldState::none;
  /// When the hold began; absent without one.
  std::optional<Date> since;
  std::vector<HoldEvidence> by;

  friend bool operator==(const HoldStatus&, const HoldStatus&) = default;
};

/// The status of a hold that began at `since` (absent: there is none) with that evidence.
HoldStatus holdStatus(std::optional<Date> since, std::vector<HoldEvidence> evidence);

/// The status as JSON for other programs; `since` as ISO 8601, left out without a hold.
Json encode(const HoldStatus& hold);

}  // namespace kestrel
