#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/SerialQueue.h"
#include "KestrelCore/Usage/Providers/UsageMetricsProvider.h"
#include "KestrelCore/Usage/Providers/UsageReader.h"

namespace kestrel {

/// A provider that asks a reader every few seconds, on a queue of its own. Must not be destroyed on it.
class PollingUsageProvider : public UsageMetricsProvider {
 public:
  static constexpr double kPollSeconds = 3;
  /// Events are handed on in batches of at most so many, so that a long reading needs no more memory.
  static constexpr std::size_t kBatch = 256;

  struct Identity {
    AgentType agentType;
    std::string queueLabel;
    std::string logCategory;
    /// What is logged at the start.
    std::string startMessage;
  };

  PollingUsageProvider(Identity identity, std::unique_ptr<UsageReader> reader, std::shared_ptr<LogSink> log,
                       double pollSeconds = kPollSeconds);
  ~PollingUsageProvider() override;

  [[nodiscard]] AgentType agentType() const override { return identity_.agentType; }
  [[nodiscard]] IntegrationType integrationType() const override { return IntegrationType::fallback; }
  using UsageMetricsProvider::startMonitoring;
  void startMonitoring(OnEvent onEvent, OnEvents onEvents) override;
  void stopMonitoring() override;
  [[nodiscard]] std::vector<UsageEvent> pollLatestEvents() override;
  [[nodiscard]] std::optional<ProviderBudgetReport> latestBudgetReport() override;

 private:
  /// Runs a function on the queue and waits for it.
  template <typename Function>
  void onQueue(Function function);
  void poll();
  void deliver(std::vector<UsageEvent>& batch) const;

  const Identity identity_;
  const Logger logger_;
  const double pollSeconds_;
  // Touched only on the queue.
  const std::unique_ptr<UsageReader> reader_;
  OnEvent onEvent_;
  OnEvents onEvents_;
  RegistrationPtr timer_;
  /// Last, so that its thread has ended before anything it uses goes.
  SerialQueue queue_;
};

}  // namespace kestrel
