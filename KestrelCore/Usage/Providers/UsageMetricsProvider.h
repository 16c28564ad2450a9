#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Agents/IntegrationType.h"
#include "KestrelCore/Usage/ProviderBudgetReport.h"
#include "KestrelCore/Usage/UsageEvent.h"

namespace kestrel {

/// Reads one agent's own records of what it used. Never changes anything of the agent's. Every function may
/// be called from any thread but the provider's own, and waits for a reading that is under way.
class UsageMetricsProvider {
 public:
  using OnEvent = std::function<void(const UsageEvent&)>;
  using OnEvents = std::function<void(const std::vector<UsageEvent>&)>;

  virtual ~UsageMetricsProvider() = default;

  [[nodiscard]] virtual AgentType agentType() const = 0;
  [[nodiscard]] virtual IntegrationType integrationType() const = 0;

  /// Reads at a fixed period and calls back on the provider's thread with what is new: `onEvent` with each
  /// event and `onEvents` with the same events in batches, never an empty one. Either may be empty. Started
  /// again, it goes on with the new callbacks.
  virtual void startMonitoring(OnEvent onEvent, OnEvents onEvents) = 0;
  void startMonitoring(OnEvent onEvent) { startMonitoring(std::move(onEvent), nullptr); }
  /// Afterwards no callback is called any more.
  virtual void stopMonitoring() = 0;

  /// What is new since the last reading, whoever asked for that one.
  [[nodiscard]] virtual std::vector<UsageEvent> pollLatestEvents() = 0;
  /// State of the agent's newest session; absent when nothing is known.
  [[nodiscard]] virtual std::optional<ProviderBudgetReport> latestBudgetReport() = 0;
};

}  // namespace kestrel
