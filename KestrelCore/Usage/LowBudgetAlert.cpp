#include "KestrelCore/Usage/LowBudgetAlert.h"

#include "KestrelCore/Support/Json.h"

namespace kestrel {

std::string_view displayWord(LowBudgetLevel level) {
  static constexpr std::array<std::string_view, 3> kWords{"Low", "Critically Low", "Exhausted"};
  return kWords[static_cast<std::size_t>(level)];
}

std::string_view displayText(LowBudgetMetricType type) {
  return type == LowBudgetMetricType::context ? "Context window" : "Account quota";
}

Json encode(const LowBudgetAlert& alert) {
  return {{"level", rawValue(alert.level)},
          {"metricType", rawValue(alert.metricType)},
          {"percentageRemaining", alert.percentageRemaining},
          {"message", alert.message}};
}

LowBudgetAlert decodeLowBudgetAlert(const Json& object) {
  return {.level = requiredRawValue<LowBudgetLevel>(object, "level"),
          .metricType = requiredRawValue<LowBudgetMetricType>(object, "metricType"),
          .percentageRemaining = requiredDouble(object, "percentageRemaining"),
          .message = requiredString(object, "message")};
}

}  // namespace kestrel
