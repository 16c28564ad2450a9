#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// What is left of an account's rate limit in its current window.
struct AccountQuotaBudget {
  /// 0 to 100.
  double percentageRemaining = 0;
  /// As the provider said it: above 100 when overdrawn.
  double usedPercent = 0;
  /// Length of the window.
  std::optional<std::int64_t> windowMinutes{};
  std::optional<Date> resetsAt{};
  std::optional<std::string> planType{};

  /// "35% quota left".
  [[nodiscard]] std::string formattedQuotaRemaining() const;

  friend bool operator==(const AccountQuotaBudget&, const AccountQuotaBudget&) = default;
};

Json encode(const AccountQuotaBudget& budget);
/// Throws DecodingError.
AccountQuotaBudget decodeAccountQuotaBudget(const Json& object);

}  // namespace kestrel
