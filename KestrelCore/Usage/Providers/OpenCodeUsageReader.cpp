#include <algorithm>
#include <ranges>
#include <unordered_set>

#include "KestrelCore/Usage/LowBudgetThreshold.h"
#include "KestrelCore/Usage/ModelRateCard.h"
#include "KestrelCore/Usage/Providers/JsonPicker.h"
#include "KestrelCore/Usage/Providers/OpenCodeDatabase.h"
#include "KestrelCore/Usage/Providers/UsageReader.h"

namespace kestrel {
namespace {

constexpr std::string_view kSource = "opencode-db";
constexpr std::string_view kDefaultModel = "nemotron-3.5-lightning-free";
/// Messages that are waited for, the newest ones. No session has as many at work.
constexpr std::size_t kMaximumUnfinished = 256;

enum Path : std::size_t {
  kModelId,
  kModel,
  kCost,
  kCompleted,
  kTokens,
  kInput,
  kOutput,
  kReasoning,
  kTotal,
  kCacheRead,
  kCacheWrite
};

class OpenCodeUsageReader final : public UsageReader {
 public:
  explicit OpenCodeUsageReader(const UsageReaderDependencies& dependencies)
      : clock_(dependencies.clock), database_(openCodeDatabaseFile(dependencies.home).string()) {}

  void read(const Sink& sink) override;
  [[nodiscard]] std::optional<ProviderBudgetReport> report() override { return report_; }

 private:
  /// Absent when there is nothing to count in the row, or not yet.
  [[nodiscard]] std::optional<UsageEvent> take(const OpenCodeDatabase::Row& row);
  [[nodiscard]] bool hasNoTokens() const;
  void setReport(const UsageEvent& event, bool isCostEstimated);

  const std::shared_ptr<const Clock> clock_;
  OpenCodeDatabase database_;
  JsonPicker json_{"modelID",
                   "model",
                   "cost",
                   "time.completed",
                   "tokens",
                   "tokens.input",
                   "tokens.output",
                   "tokens.reasoning",
                   "tokens.total",
                   "tokens.cache.read",
                   "tokens.cache.write"};
  std::string padded_;
  /// Counted, or never to be counted.
  std::unordered_set<std::string> knownMessageIds_;
  /// Messages without tokens so far, oldest first.
  std::vector<std::string> unfinished_;
  std::optional<ProviderBudgetReport> report_;
  /// Of the message that the report is about.
  Date reportTime_;
};

void OpenCodeUsageReader::read(const Sink& sink) {
  const auto isKnown = [this](const std::string& id) { return knownMessageIds_.contains(id); };
  const auto rows = database_.read(isKnown, unfinished_);
  if (!rows) return;
  unfinished_.clear();
  for (const auto& row : std::views::reverse(*rows)) {
    if (auto event = take(row)) sink(std::move(*event));
  }
  if (unfinished_.size() <= kMaximumUnfinished) return;
  unfinished_.erase(unfinished_.begin(), unfinished_.end() - kMaximumUnfinished);
}

std::optional<UsageEvent> OpenCodeUsageReader::take(const OpenCodeDatabase::Row& row) {
  padded_ = row.data;
  padded_.resize(row.data.size() + JsonPicker::kPadding);
  if (!json_.read({padded_.data(), row.data.size()}) || !json_.isObject(kTokens)) return std::nullopt;
  if (hasNoTokens() && !json_.number(kCompleted)) {
    unfinished_.push_back(row.id);
    return std::nullopt;
  }
  if (!knownMessageIds_.insert(row.id).second) return std::nullopt;
  const auto modelId = json_.string(kModelId);
  const auto cost = json_.number(kCost);
  UsageEvent event;
  event.id = row.id;
  event.agentType = AgentType::opencode;
  event.sessionId = row.sessionId;
  event.turnId = row.id;
  event.modelId = std::string(modelId ? *modelId : json_.string(kModel).value_or(kDefaultModel));
  event.inputTokens = json_.tokens(kInput);
  event.outputTokens = json_.tokens(kOutput);
  event.cachedTokens = json_.tokens(kCacheRead);
  event.cacheWriteTokens = json_.tokens(kCacheWrite);
  event.reasoningTokens = json_.tokens(kReasoning);
  event.totalTokens = json_.tokens(kTotal);
  event.contextWindow = ModelRateCard::contextWindow(event.modelId);
  event.costEstimateUSD =
      cost ? cost
           : ModelRateCard::estimateCost(event.modelId, {.inputTokens = event.inputTokens,
                                                         .outputTokens = event.outputTokens,
                                                         .cachedTokens = event.cachedTokens,
                                                         .reasoningTokens = event.reasoningTokens,
                                                         .cacheWriteTokens = event.cacheWriteTokens});
  event.timestamp = Date::since1970(static_cast<double>(row.timeCreated) / 1000.0);
  event.source = kSource;
  event.deriveTotal();
  setReport(event, !cost);
  return event;
}

bool OpenCodeUsageReader::hasNoTokens() const {
  const auto paths = {kInput, kOutput, kReasoning, kTotal, kCacheRead, kCacheWrite};
  return std::ranges::all_of(paths, [this](Path path) { return json_.tokens(path).value_or(0) == 0; });
}

void OpenCodeUsageReader::setReport(const UsageEvent& event, bool isCostEstimated) {
  if (report_ && event.timestamp < reportTime_) return;
  reportTime_ = event.timestamp;
  const std::int64_t sum = event.inputTokens.value_or(0) + event.outputTokens.value_or(0) +
                           event.reasoningTokens.value_or(0) + event.cachedTokens.value_or(0) +
                           event.cacheWriteTokens.value_or(0);
  const std::string source(kSource);
  ProviderBudgetReport report;
  report.agentType = AgentType::opencode;
  report.sessionId = event.sessionId;
  report.modelId = event.modelId;
  if (event.contextWindow) {
    const ContextBudget budget(*event.contextWindow, json_.tokens(kTotal).value_or(sum));
    report.context = BudgetMetric<ContextBudget>::known(budget, 1, source);
    report.lowBudgetAlert = LowBudgetThreshold::evaluate(budget.percentageRemaining(), std::nullopt);
  }
  report.sessionUsage = {.inputTokens = event.inputTokens,
                         .outputTokens = event.outputTokens,
                         .cachedTokens = event.cachedTokens,
                         .cacheWriteTokens = event.cacheWriteTokens,
                         .reasoningTokens = event.reasoningTokens,
                         .totalTokens = event.totalTokens,
                         .contextWindow = event.contextWindow,
                         .sessionCostEstimateUSD = event.costEstimateUSD,
                         .recordedAt = event.timestamp};
  if (event.costEstimateUSD) report.cost = CostBudget{*event.costEstimateUSD, isCostEstimated};
  report.lastUpdated = clock_->now();
  report.source = source;
  report_ = std::move(report);
}

}  // namespace

std::filesystem::path openCodeDatabaseFile(const std::filesystem::path& home) {
  return home / ".local" / "share" / "opencode" / "opencode.db";
}

std::unique_ptr<UsageReader> makeOpenCodeUsageReader(const UsageReaderDependencies& dependencies) {
  return std::make_unique<OpenCodeUsageReader>(dependencies);
}

}  // namespace kestrel
