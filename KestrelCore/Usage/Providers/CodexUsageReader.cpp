#include <algorithm>

#include "KestrelCore/Support/Uuid.h"
#include "KestrelCore/Usage/LowBudgetThreshold.h"
#include "KestrelCore/Usage/ModelRateCard.h"
#include "KestrelCore/Usage/Providers/LogUsageReader.h"
#include "KestrelCore/Usage/Providers/SubstringFilter.h"

namespace kestrel {
namespace {

constexpr std::string_view kSource = "codex-session-rollout";
constexpr std::string_view kQuotaSource = "codex-rate-limits";
constexpr std::string_view kDefaultModel = "gpt-5.6-terra";
constexpr std::int64_t kDefaultContextWindow = 258'400;

/// Usage stands below `info`.
constexpr SubstringFilter<3, 5> kMayTellSomething({R"("info")", R"("rate_limits")", R"("model")"});

enum Path : std::size_t {
  kTimestamp,
  kOrdinal,
  kModel,
  kPayloadOrdinal,
  kPayloadModel,
  kPayloadType,
  kContextWindow,
  kPrimary,
  kUsedPercent,
  kWindowMinutes,
  kResetsAt,
  kPrimaryPlan,
  kPlan,
  kLast,
  kTotal = kLast + 6
};

/// A usage object of a line; where its counts stand follows on its own path.
struct Usage {
  std::optional<std::int64_t> input;
  std::optional<std::int64_t> cached;
  std::optional<std::int64_t> output;
  std::optional<std::int64_t> reasoning;
  std::optional<std::int64_t> total;

  [[nodiscard]] std::int64_t context() const {
    return total.value_or(input.value_or(0) + output.value_or(0));
  }
  /// Whether any count is more than 0.
  [[nodiscard]] bool isSomething() const {
    const auto counts = {input, cached, output, reasoning, total};
    return std::ranges::any_of(counts, [](const auto& count) { return count.value_or(0) > 0; });
  }
  friend bool operator==(const Usage&, const Usage&) = default;
};

struct FileState {
  LogLineReader::Position position;
  /// As the latest line that named one.
  std::string model{kDefaultModel};
  std::optional<Usage> total;
};

class CodexUsageReader final : public LogUsageReader<FileState> {
 public:
  explicit CodexUsageReader(const UsageReaderDependencies& dependencies)
      : LogUsageReader(codexSessionsFolder(dependencies.home).string(), "usage.codex", dependencies.log),
        clock_(dependencies.clock) {}

 private:
  void take(const LogLineReader::Line& line, const LogFiles::File& file, FileState& state, const Sink* sink,
            std::optional<ProviderBudgetReport>& report) override;
  [[nodiscard]] std::optional<Usage> usage(std::size_t path) const;
  [[nodiscard]] std::optional<AccountQuotaBudget> quota() const;
  [[nodiscard]] std::string turnId(std::int64_t lineIndex) const;
  [[nodiscard]] UsageEvent makeEvent(const Usage& usage, const std::string& model) const;
  [[nodiscard]] ProviderBudgetReport makeReport(const UsageEvent& event, const Usage& usage) const;
  void setQuota(ProviderBudgetReport& report, const std::optional<AccountQuotaBudget>& quota) const;

  const std::shared_ptr<const Clock> clock_;
  JsonPicker json_{"timestamp",
                   "ordinal",
                   "model",
                   "payload.ordinal",
                   "payload.model",
                   "payload.type",
                   "payload.info.model_context_window",
                   "payload.rate_limits.primary",
                   "payload.rate_limits.primary.used_percent",
                   "payload.rate_limits.primary.window_minutes",
                   "payload.rate_limits.primary.resets_at",
                   "payload.rate_limits.primary.plan_type",
                   "payload.rate_limits.plan_type",
                   "payload.info.last_token_usage",
                   "payload.info.last_token_usage.input_tokens",
                   "payload.info.last_token_usage.cached_input_tokens",
                   "payload.info.last_token_usage.output_tokens",
                   "payload.info.last_token_usage.reasoning_output_tokens",
                   "payload.info.last_token_usage.total_tokens",
                   "payload.info.total_token_usage",
                   "payload.info.total_token_usage.input_tokens",
                   "payload.info.total_token_usage.cached_input_tokens",
                   "payload.info.total_token_usage.output_tokens",
                   "payload.info.total_token_usage.reasoning_output_tokens",
                   "payload.info.total_token_usage.total_tokens"};
};

void CodexUsageReader::take(const LogLineReader::Line& line, const LogFiles::File& file, FileState& state,
                            const Sink* sink, std::optional<ProviderBudgetReport>& report) {
  if (line.indexInFile == 0) {
    state.model = kDefaultModel;
    state.total.reset();
  }
  if (!kMayTellSomething.matches(line.text)) return;
  if (!json_.read(line.text)) return countUnreadableLine();
  const auto payloadModel = json_.string(kPayloadModel);
  const auto model = payloadModel ? payloadModel : json_.string(kModel);
  if (model && !model->empty()) state.model = *model;

  const auto last = usage(kLast);
  const auto total = usage(kTotal);
  const auto left = quota();
  if (!last && !total) {
    if (!left) return;
    // Only the quota is new.
    const auto& known = lastKnownReport();
    if (!report && known && known->sessionId == file.stem()) report = known;
    if (!report) report = ProviderBudgetReport{.agentType = AgentType::codex, .source = std::string(kSource)};
    report->sessionId = file.stem();
    report->modelId = state.model;
    setQuota(*report, left);
    return;
  }
  // After an interruption the last count is written again.
  const bool isRepeat = json_.string(kPayloadType) == "token_count" && json_.string(kTimestamp) && last &&
                        total && last->isSomething() && total == state.total;
  if (total) state.total = total;

  const Usage& used = last ? *last : *total;
  UsageEvent event = makeEvent(used, state.model);
  event.sessionId = file.stem();
  report = makeReport(event, used);
  setQuota(*report, left);
  if (sink == nullptr || isRepeat) return;
  event.id = randomUuid();
  event.turnId = turnId(line.indexInFile);
  if (left) event.quotaRemainingPercent = left->percentageRemaining;
  (*sink)(std::move(event));
}

std::optional<Usage> CodexUsageReader::usage(std::size_t path) const {
  if (!json_.isObject(path)) return std::nullopt;
  const Usage usage{.input = json_.tokens(path + 1),
                    .cached = json_.tokens(path + 2),
                    .output = json_.tokens(path + 3),
                    .reasoning = json_.tokens(path + 4),
                    .total = json_.tokens(path + 5)};
  return usage == Usage() ? std::nullopt : std::optional(usage);
}

std::optional<AccountQuotaBudget> CodexUsageReader::quota() const {
  const auto used = json_.number(kUsedPercent);
  if (!json_.isObject(kPrimary) || !used) return std::nullopt;
  const auto resetsAt = json_.number(kResetsAt);
  const auto plan = json_.string(kPlan) ? json_.string(kPlan) : json_.string(kPrimaryPlan);
  AccountQuotaBudget quota;
  quota.percentageRemaining = std::clamp(100 - *used, 0.0, 100.0);
  quota.usedPercent = *used;
  quota.windowMinutes = json_.integer(kWindowMinutes);
  if (resetsAt) quota.resetsAt = Date::since1970(*resetsAt);
  if (plan) quota.planType = std::string(*plan);
  return quota;
}

std::string CodexUsageReader::turnId(std::int64_t lineIndex) const {
  const auto ofLine = json_.integer(kOrdinal);
  const auto ordinal = ofLine ? ofLine : json_.integer(kPayloadOrdinal);
  return ordinal ? "turn_" + std::to_string(*ordinal) : "turn_idx_" + std::to_string(lineIndex);
}

UsageEvent CodexUsageReader::makeEvent(const Usage& usage, const std::string& model) const {
  const auto window = json_.tokens(kContextWindow);
  UsageEvent event;
  event.agentType = AgentType::codex;
  event.modelId = model;
  event.inputTokens = usage.input;
  event.outputTokens = usage.output;
  event.cachedTokens = usage.cached;
  event.reasoningTokens = usage.reasoning;
  event.totalTokens = usage.total;
  event.contextWindow =
      window ? *window : ModelRateCard::contextWindow(model).value_or(kDefaultContextWindow);
  event.costEstimateUSD = ModelRateCard::estimateCost(model, {.inputTokens = usage.input,
                                                              .outputTokens = usage.output,
                                                              .cachedTokens = usage.cached,
                                                              .reasoningTokens = usage.reasoning});
  event.timestamp = clock_->now();
  event.source = kSource;
  event.deriveTotal();
  return event;
}

ProviderBudgetReport CodexUsageReader::makeReport(const UsageEvent& event, const Usage& usage) const {
  const ContextBudget budget(event.contextWindow.value_or(kDefaultContextWindow), usage.context());
  ProviderBudgetReport report;
  report.agentType = AgentType::codex;
  report.sessionId = event.sessionId;
  report.modelId = event.modelId;
  report.context = BudgetMetric<ContextBudget>::known(budget, 1, std::string(kSource));
  report.sessionUsage.inputTokens = event.inputTokens;
  report.sessionUsage.outputTokens = event.outputTokens;
  report.sessionUsage.cachedTokens = event.cachedTokens;
  report.sessionUsage.reasoningTokens = event.reasoningTokens;
  report.sessionUsage.totalTokens = event.totalTokens;
  report.sessionUsage.contextWindow = event.contextWindow;
  report.sessionUsage.sessionCostEstimateUSD = event.costEstimateUSD;
  report.sessionUsage.recordedAt = event.timestamp;
  if (event.costEstimateUSD) report.cost = CostBudget{*event.costEstimateUSD, true};
  report.source = kSource;
  return report;
}

void CodexUsageReader::setQuota(ProviderBudgetReport& report,
                                const std::optional<AccountQuotaBudget>& quota) const {
  if (quota) {
    report.quota = BudgetMetric<AccountQuotaBudget>::known(*quota, 1, std::string(kQuotaSource));
  }
  const auto* context = report.context.asKnown();
  report.lowBudgetAlert = LowBudgetThreshold::evaluate(
      context == nullptr ? std::nullopt : std::optional(context->value.percentageRemaining()),
      quota ? std::optional(quota->percentageRemaining) : std::nullopt);
  report.lastUpdated = clock_->now();
}

}  // namespace

std::filesystem::path codexSessionsFolder(const std::filesystem::path& home) {
  return home / ".codex" / "sessions";
}

std::unique_ptr<UsageReader> makeCodexUsageReader(const UsageReaderDependencies& dependencies) {
  return std::make_unique<CodexUsageReader>(dependencies);
}

}  // namespace kestrel
