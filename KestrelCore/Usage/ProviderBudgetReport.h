#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/Support/RawValue.h"
#include "KestrelCore/Usage/AccountQuotaBudget.h"
#include "KestrelCore/Usage/BudgetMetric.h"
#include "KestrelCore/Usage/ContextBudget.h"
#include "KestrelCore/Usage/CostBudget.h"
#include "KestrelCore/Usage/LowBudgetAlert.h"
#include "KestrelCore/Usage/UsageMetrics.h"

namespace kestrel {

/// How far a figure can be relied on.
enum class FigureBasis { measured, estimated, stale };

template <>
struct RawValues<FigureBasis> {
  static constexpr std::array<std::string_view, 3> table{"measured", "estimated", "stale"};
};

/// The latest known state of one agent session: what is left of its context and of the account's quota, and
/// what it cost.
struct ProviderBudgetReport {
  AgentType agentType = AgentType::custom;
  std::optional<std::string> sessionId{};
  std::optional<std::string> modelId{};
  BudgetMetric<ContextBudget> context = BudgetMetric<ContextBudget>::unavailable("Context unavailable");
  BudgetMetric<AccountQuotaBudget> quota = BudgetMetric<AccountQuotaBudget>::unavailable("Quota unavailable");
  UsageMetrics sessionUsage{};
  std::optional<CostBudget> cost{};
  std::optional<LowBudgetAlert> lowBudgetAlert{};
  Date lastUpdated{};
  std::string source{};

  /// Agent and session, joined by "_"; "global" stands for an absent session.
  [[nodiscard]] std::string id() const;

  /// One line for a session at work: "120k context left · 60% remaining · $0.25 est.".
  [[nodiscard]] std::string actionableSummaryLine() const;
  /// One line for a session at rest.
  [[nodiscard]] std::string idleSummaryLine() const;

  // What the figures are at a given time, and how old; absent where there is no figure.

  /// Measured when the agent itself said it, that is with full confidence.
  [[nodiscard]] std::optional<FigureBasis> contextBasis() const;
  /// Stale from the moment at which the quota is filled again.
  [[nodiscard]] std::optional<FigureBasis> quotaBasis(Date now) const;
  [[nodiscard]] std::optional<FigureBasis> costBasis() const;
  /// Seconds since the report, never negative.
  [[nodiscard]] double ageSeconds(Date now) const;

  friend bool operator==(const ProviderBudgetReport&, const ProviderBudgetReport&) = default;
};

Json encode(const ProviderBudgetReport& report);
/// Throws DecodingError.
ProviderBudgetReport decodeProviderBudgetReport(const Json& object);

}  // namespace kestrel
