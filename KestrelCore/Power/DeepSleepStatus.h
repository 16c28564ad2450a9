#pragma once

#include <optional>
#include <string>

#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// The deep hold as the helper reports it.
struct DeepSleepStatus {
  /// True whenever the helper answered.
  bool isHelperInstalled = false;
  /// It holds the sleep override for a lease.
  bool isDeepHoldActive = false;
  std::optional<std::string> activeLeaseId;
  std::optional<Date> leaseExpiresAt;
  /// Whether sleep was switched off before the helper's hold began.
  std::optional<bool> originalSleepDisabledState;
  /// Whether it is switched off now.
  bool currentSystemSleepDisabled = false;

  friend bool operator==(const DeepSleepStatus&, const DeepSleepStatus&) = default;
};

/// Dates as seconds since 2001, absent fields left out.
Json encode(const DeepSleepStatus& status);
/// Throws DecodingError.
DeepSleepStatus decodeDeepSleepStatus(const Json& object);

}  // namespace kestrel
