#include <algorithm>
#include <array>
#include <utility>

#include "KestrelCore/Support/Uuid.h"
#include "KestrelCore/Usage/LowBudgetThreshold.h"
#include "KestrelCore/Usage/ModelRateCard.h"
#include "KestrelCore/Usage/Providers/LogUsageReader.h"
#include "KestrelCore/Usage/Providers/RecentMap.h"
#include "KestrelCore/Usage/Providers/SubstringFilter.h"

namespace kestrel {
namespace {

constexpr std::string_view kSource = "claude-project-log";
constexpr std::string_view kDefaultModel = "claude-3-5-sonnet";
constexpr std::int64_t kDefaultContextWindow = 200'000;
/// Messages and lines whose counts are remembered. Lines of one message stand close together, and copies of
/// old ones are known to the store.
constexpr std::size_t kRemembered = 16'384;

constexpr SubstringFilter<1, 6> kMayHoldUsage({R"("usage")"});

enum Path : std::size_t {
  kType,
  kSessionId,
  kTimestamp,
  kUuid,
  kRequestId,
  kMessageId,
  kModel,
  kUsage,
  kInput,
  kOutput,
  kCacheRead,
  kCacheWrite,
  kReasoning
};

/// Token counts, of a line or of what it adds to its message.
struct Counts {
  std::optional<std::int64_t> input;
  std::optional<std::int64_t> output;
  std::optional<std::int64_t> cacheRead;
  std::optional<std::int64_t> cacheWrite;
  std::optional<std::int64_t> reasoning;

  [[nodiscard]] std::int64_t context() const {
    return input.value_or(0) + cacheRead.value_or(0) + cacheWrite.value_or(0) + output.value_or(0);
  }
  [[nodiscard]] bool isNothing() const { return context() + reasoning.value_or(0) == 0; }
  [[nodiscard]] ModelRateCard::TokenCounts priced() const {
    return {.inputTokens = input,
            .outputTokens = output,
            .cachedTokens = cacheRead,
            .reasoningTokens = reasoning,
            .cacheWriteTokens = cacheWrite};
  }
};

/// The largest counts of the lines of one message so far.
struct Largest {
  std::array<std::int64_t, 5> counts{};

  /// Takes a line's counts, and returns what they add.
  Counts raise(const Counts& line) {
    const auto added = [](std::optional<std::int64_t> count, std::int64_t& largest) {
      if (!count) return count;
      const std::int64_t more = std::max<std::int64_t>(*count - largest, 0);
      largest += more;
      return std::optional(more);
    };
    return {.input = added(line.input, counts[0]),
            .output = added(line.output, counts[1]),
            .cacheRead = added(line.cacheRead, counts[2]),
            .cacheWrite = added(line.cacheWrite, counts[3]),
            .reasoning = added(line.reasoning, counts[4])};
  }
};

struct FileState {
  LogLineReader::Position position;
};

class ClaudeUsageReader final : public LogUsageReader<FileState> {
 public:
  explicit ClaudeUsageReader(const UsageReaderDependencies& dependencies)
      : LogUsageReader(claudeProjectsFolder(dependencies.home).string(), "usage.claude", dependencies.log),
        clock_(dependencies.clock),
        hasTurn_(dependencies.hasTurn) {}

 private:
  void take(const LogLineReader::Line& line, const LogFiles::File& file, FileState& state, const Sink* sink,
            std::optional<ProviderBudgetReport>& report) override;
  [[nodiscard]] std::string text(Path path, std::string_view otherwise) const {
    return std::string(json_.string(path).value_or(otherwise));
  }
  [[nodiscard]] Counts added(const Counts& counts, const std::string& turnId);
  [[nodiscard]] ProviderBudgetReport makeReport(const UsageEvent& event, const Counts& counts) const;

  const std::shared_ptr<const Clock> clock_;
  const std::function<bool(AgentType, const std::string&)> hasTurn_;
  JsonPicker json_{"type",
                   "sessionId",
                   "timestamp",
                   "uuid",
                   "requestId",
                   "message.id",
                   "message.model",
                   "message.usage",
                   "message.usage.input_tokens",
                   "message.usage.output_tokens",
                   "message.usage.cache_read_input_tokens",
                   "message.usage.cache_creation_input_tokens",
                   "message.usage.output_tokens_details.thinking_tokens"};
  RecentMap<Largest> messages_{kRemembered};
  RecentMap<bool> countedTurns_{kRemembered};
};

void ClaudeUsageReader::take(const LogLineReader::Line& line, const LogFiles::File& file,
                             FileState& /*state*/, const Sink* sink,
                             std::optional<ProviderBudgetReport>& report) {
  if (!kMayHoldUsage.matches(line.text)) return;
  if (!json_.read(line.text)) return countUnreadableLine();
  const auto type = json_.string(kType);
  if ((type != "assistant" && type != "result") || !json_.isObject(kUsage)) return;
  const Counts counts{.input = json_.tokens(kInput),
                      .output = json_.tokens(kOutput),
                      .cacheRead = json_.tokens(kCacheRead),
                      .cacheWrite = json_.tokens(kCacheWrite),
                      .reasoning = json_.tokens(kReasoning)};
  if (counts.context() < 1) return;

  UsageEvent event;
  event.agentType = AgentType::claude;
  event.sessionId = text(kSessionId, file.stem());
  event.modelId = text(kModel, kDefaultModel);
  event.contextWindow = ModelRateCard::contextWindow(event.modelId).value_or(kDefaultContextWindow);
  event.timestamp = parseISO8601(json_.string(kTimestamp).value_or("")).value_or(clock_->now());
  event.source = kSource;
  const auto uuid = json_.string(kUuid);
  event.turnId = uuid ? std::string(*uuid) : event.sessionId + "_turn_" + std::to_string(line.indexInReading);
  report = makeReport(event, counts);

  if (sink == nullptr) return;
  const Counts more = added(counts, text(kUuid, ""));
  if (more.isNothing()) return;
  event.id = randomUuid();
  event.inputTokens = more.input;
  event.outputTokens = more.output;
  event.cachedTokens = more.cacheRead;
  event.cacheWriteTokens = more.cacheWrite;
  event.reasoningTokens = more.reasoning;
  event.costEstimateUSD = ModelRateCard::estimateCost(event.modelId, more.priced());
  event.deriveTotal();
  (*sink)(std::move(event));
}

/// What a line adds to what was counted already: of a message that stands on several lines what goes beyond
/// the lines before, and nothing of a line that was copied from another session.
Counts ClaudeUsageReader::added(const Counts& counts, const std::string& turnId) {
  Counts more = counts;
  const std::string id = text(kMessageId, "");
  if (!id.empty()) more = messages_[id + '\n' + text(kRequestId, "")].raise(counts);
  if (turnId.empty() || more.isNothing()) return more;
  if (hasTurn_(AgentType::claude, turnId)) return {};
  // What was counted a moment ago may not be known elsewhere yet. A message tells that by itself.
  if (id.empty() && std::exchange(countedTurns_[turnId], true)) return {};
  return more;
}

ProviderBudgetReport ClaudeUsageReader::makeReport(const UsageEvent& event, const Counts& counts) const {
  const std::string source(kSource);
  const ContextBudget budget(event.contextWindow.value_or(kDefaultContextWindow), counts.context());
  const auto cost = ModelRateCard::estimateCost(event.modelId, counts.priced());
  ProviderBudgetReport report;
  report.agentType = AgentType::claude;
  report.sessionId = event.sessionId;
  report.modelId = event.modelId;
  report.context = BudgetMetric<ContextBudget>::known(budget, 1, source);
  report.sessionUsage.inputTokens = counts.input;
  report.sessionUsage.outputTokens = counts.output;
  report.sessionUsage.cachedTokens = counts.cacheRead;
  report.sessionUsage.cacheWriteTokens = counts.cacheWrite;
  report.sessionUsage.reasoningTokens = counts.reasoning;
  report.sessionUsage.contextWindow = event.contextWindow;
  report.sessionUsage.sessionCostEstimateUSD = cost;
  report.sessionUsage.recordedAt = event.timestamp;
  if (cost) report.cost = CostBudget{*cost, true};
  report.lowBudgetAlert = LowBudgetThreshold::evaluate(budget.percentageRemaining(), std::nullopt);
  report.lastUpdated = clock_->now();
  report.source = source;
  return report;
}

}  // namespace

std::filesystem::path claudeProjectsFolder(const std::filesystem::path& home) {
  return home / ".claude" / "projects";
}

std::unique_ptr<UsageReader> makeClaudeUsageReader(const UsageReaderDependencies& dependencies) {
  return std::make_unique<ClaudeUsageReader>(dependencies);
}

}  // namespace kestrel
