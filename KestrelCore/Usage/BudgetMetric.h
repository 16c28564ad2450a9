#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// A figure that is either known or unavailable for a reason; never a guessed zero.
template <typename T>
class BudgetMetric {
 public:
  struct Known {
    T value;
    /// 0 to 1.
    double confidence = 0;
    /// The reader's tag: "claude-project-log".
    std::string source;
    friend bool operator==(const Known&, const Known&) = default;
  };
  struct Unavailable {
    std::string reason;
    friend bool operator==(const Unavailable&, const Unavailable&) = default;
  };

  static BudgetMetric known(T value, double confidence, std::string source) {
    return BudgetMetric(Known{std::move(value), confidence, std::move(source)});
  }
  static BudgetMetric unavailable(std::string reason) { return BudgetMetric(Unavailable{std::move(reason)}); }

  [[nodiscard]] bool isAvailable() const { return asKnown() != nullptr; }
  /// Null when unavailable.
  [[nodiscard]] const Known* asKnown() const { return std::get_if<Known>(&state_); }
  [[nodiscard]] std::optional<T> value() const {
    return isAvailable() ? std::optional(asKnown()->value) : std::nullopt;
  }
  /// 0 when unavailable.
  [[nodiscard]] double confidence() const { return isAvailable() ? asKnown()->confidence : 0; }
  [[nodiscard]] std::optional<std::string> source() const {
    return isAvailable() ? std::optional(asKnown()->source) : std::nullopt;
  }
  [[nodiscard]] std::optional<std::string> unavailableReason() const {
    const auto* unavailable = std::get_if<Unavailable>(&state_);
    return unavailable == nullptr ? std::nullopt : std::optional(unavailable->reason);
  }

  friend bool operator==(const BudgetMetric&, const BudgetMetric&) = default;

 private:
  explicit BudgetMetric(std::variant<Known, Unavailable> state) : state_(std::move(state)) {}
  std::variant<Known, Unavailable> state_;
};

// Made for ContextBudget and AccountQuotaBudget.

/// `type` is "known", with `value`, `confidence` and `source`, or "unavailable", with `reason`.
template <typename T>
Json encode(const BudgetMetric<T>& metric);
/// Throws DecodingError.
template <typename T>
BudgetMetric<T> decodeBudgetMetric(const Json& object);

}  // namespace kestrel
