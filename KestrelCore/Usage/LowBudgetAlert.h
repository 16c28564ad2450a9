#pragma once

#include <array>
#include <string>
#include <string_view>

#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

/// In order of severity.
enum class LowBudgetLevel { warning, critical, exhausted };

template <>
struct RawValues<LowBudgetLevel> {
  static constexpr std::array<std::string_view, 3> table{"warning", "critical", "exhausted"};
};

/// "Low", "Critically Low", "Exhausted".
std::string_view displayWord(LowBudgetLevel level);

enum class LowBudgetMetricType { context, quota };

template <>
struct RawValues<LowBudgetMetricType> {
  static constexpr std::array<std::string_view, 2> table{"context", "quota"};
};

/// "Context window", "Account quota".
std::string_view displayText(LowBudgetMetricType type);

/// Little is left of something.
struct LowBudgetAlert {
  LowBudgetLevel level = LowBudgetLevel::warning;
  LowBudgetMetricType metricType = LowBudgetMetricType::context;
  /// 0 to 100.
  double percentageRemaining = 0;
  /// One line for people: "Context window is low (18% remaining)".
  std::string message;

  friend bool operator==(const LowBudgetAlert&, const LowBudgetAlert&) = default;
};

Json encode(const LowBudgetAlert& alert);
/// Throws DecodingError.
LowBudgetAlert decodeLowBudgetAlert(const Json& object);

}  // namespace kestrel
