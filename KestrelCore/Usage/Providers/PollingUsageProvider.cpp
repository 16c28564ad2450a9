#include "KestrelCore/Usage/Providers/PollingUsageProvider.h"

#include <future>
#include <utility>

namespace kestrel {

PollingUsageProvider::PollingUsageProvider(Identity identity, std::unique_ptr<UsageReader> reader,
                                           std::shared_ptr<LogSink> log, double pollSeconds)
    : identity_(std::move(identity)),
      logger_(std::move(log), identity_.logCategory),
      pollSeconds_(pollSeconds),
      reader_(std::move(reader)),
      queue_(identity_.queueLabel) {}

PollingUsageProvider::~PollingUsageProvider() {
  stopMonitoring();
}

template <typename Function>
void PollingUsageProvider::onQueue(Function function) {
  std::promise<void> done;
  queue_.post([&] {
    function();
    done.set_value();
  });
  done.get_future().wait();
}

void PollingUsageProvider::startMonitoring(OnEvent onEvent, OnEvents onEvents) {
  onQueue([&] {
    onEvent_ = std::move(onEvent);
    onEvents_ = std::move(onEvents);
    timer_ = queue_.repeat(pollSeconds_, pollSeconds_, [this] { poll(); });
  });
  logger_.info("{}", identity_.startMessage);
}

void PollingUsageProvider::stopMonitoring() {
  onQueue([&] {
    timer_.reset();
    onEvent_ = nullptr;
    onEvents_ = nullptr;
  });
}

void PollingUsageProvider::poll() {
  std::vector<UsageEvent> batch;
  reader_->read([&](UsageEvent event) {
    batch.push_back(std::move(event));
    if (batch.size() >= kBatch) deliver(batch);
  });
  deliver(batch);
}

void PollingUsageProvider::deliver(std::vector<UsageEvent>& batch) const {
  if (batch.empty()) return;
  if (onEvents_) onEvents_(batch);
  if (onEvent_) {
    for (const UsageEvent& event : batch) onEvent_(event);
  }
  batch.clear();
}

std::vector<UsageEvent> PollingUsageProvider::pollLatestEvents() {
  std::vector<UsageEvent> events;
  onQueue([&] { reader_->read([&](UsageEvent event) { events.push_back(std::move(event)); }); });
  return events;
}

std::optional<ProviderBudgetReport> PollingUsageProvider::latestBudgetReport() {
  std::optional<ProviderBudgetReport> report;
  onQueue([&] { report = reader_->report(); });
  return report;
}

}  // namespace kestrel
