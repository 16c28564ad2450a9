#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <numeric>
#include <utility>

#include "tests/core/Soon.h"
#include "tests/core/TestSupport.h"

#include "KestrelCore/Usage/HookUsage.h"
#include "KestrelCore/UsageCoordinator.h"

namespace kestrel {
namespace {

/// Hands over what the test gives it.
struct ScriptedProvider final : UsageMetricsProvider {
  [[nodiscard]] AgentType agentType() const override { return AgentType::codex; }
  [[nodiscard]] IntegrationType integrationType() const override { return IntegrationType::fallback; }
  void startMonitoring(OnEvent, OnEvents onEvents) override {
    ++starts;
    give = std::move(onEvents);
  }
  void stopMonitoring() override { give = nullptr; }
  [[nodiscard]] std::vector<UsageEvent> pollLatestEvents() override { return {}; }
  [[nodiscard]] std::optional<ProviderBudgetReport> latestBudgetReport() override {
    ++asked;
    return report;
  }
  OnEvents give;
  std::optional<ProviderBudgetReport> report;
  std::atomic<int> starts = 0;
  std::atomic<int> asked = 0;
};

class UsageCoordinatorTest : public testing::Test {
 protected:
  bool soon(const std::function<bool()>& condition) { return kestrel::soon(main_, condition); }
  std::int64_t tokensToday() const {
    const auto& today = usage_->todaySummary().get();
    return today ? today->totalTokens : -1;
  }
  HookEvent hook(std::optional<std::int64_t> input, std::optional<std::string> model) const {
    HookEvent event;
    event.agent = AgentType::claude;
    event.sessionId = "s";
    event.timestamp = world_.clock->now();
    event.turnId = "t";
    event.inputTokens = input;
    event.model = std::move(model);
    return event;
  }

  TestWorld world_;
  ManualExecutor main_{world_.clock};
  ScriptedProvider* provider_ = nullptr;
  std::unique_ptr<UsageCoordinator> usage_ = std::make_unique<UsageCoordinator>([this] {
    auto dependencies =
        usersOwnUsage(main_, world_.directories(),
                      std::make_shared<AtomicFileWriter>(world_.policy, Logger(world_.sink, "files")),
                      world_.clock, world_.sink);
    auto provider = std::make_unique<ScriptedProvider>();
    provider_ = provider.get();
    provider_->report = ProviderBudgetReport{.agentType = AgentType::codex};
    provider_->report->lowBudgetAlert = LowBudgetAlert{.message = "low"};
    dependencies.makeProviders = [shared = std::make_shared<std::unique_ptr<ScriptedProvider>>(
                                      std::move(provider))](const UsageStore&) {
      UsageCoordinator::Providers providers;
      providers.push_back(std::move(*shared));
      return providers;
    };
    return dependencies;
  }());
};

TEST_F(UsageCoordinatorTest, PublishesWhatReadersAndHooksReport) {
  usage_->start();
  usage_->start();
  ASSERT_TRUE(soon([&] { return tokensToday() == 0 && usage_->budgetReport(AgentType::codex); }));
  EXPECT_EQ(provider_->starts, 1) << "started twice, and nothing is done twice";
  EXPECT_EQ(usage_->lowBudgetAlerts().get().at(AgentType::codex).message, "low");

  const auto event = toUsageEvent(hook(7, std::nullopt));
  provider_->give({*event});
  ASSERT_TRUE(soon([&] { return tokensToday() == 7 && provider_->asked == 2; }));
  EXPECT_EQ(usage_->recentSessions().get().at(0).id, "s");
  provider_->give({*event});
  usage_->handleHookEvent(hook(std::nullopt, "claude-opus-5"));
  std::string exported;
  usage_->exportPrivacySafeJSON([&](const std::string& text) { exported = text; });
  ASSERT_TRUE(soon([&] { return !exported.empty(); }));  // The queue is through with everything before.
  EXPECT_EQ(provider_->asked, 2) << "neither a duplicate nor a model alone changes anything";
  EXPECT_THAT(exported, testing::HasSubstr("\"eventCount\": 1"));
  HookEvent next = hook(180'000, "claude-opus-5");
  next.turnId = "t2";
  usage_->handleHookEvent(next);
  ASSERT_TRUE(soon([&] { return tokensToday() == 180'007; }));
  EXPECT_EQ(usage_->todaySummary().get()->turnCount, 2);
  const auto& hours = usage_->tokensByHour().get();
  EXPECT_EQ(std::accumulate(hours.begin(), hours.end(), std::int64_t{0}), 180'007);
  EXPECT_EQ(usage_->tokensByDay().get().back().totalTokens, 180'007);
  UsageCoordinator::SharedSessions sessions;
  usage_->requestSessions(10, [&](auto given) { sessions = std::move(given); });
  ASSERT_TRUE(soon([&] { return sessions != nullptr; }));
  EXPECT_EQ(*sessions, usage_->recentSessions().get());
  const auto report = usage_->budgetReport(AgentType::claude);
  ASSERT_TRUE(report);
  EXPECT_EQ(report->actionableSummaryLine(), "20k context left · 10% remaining · $2.70 est.");
  EXPECT_EQ(usage_->lowBudgetAlerts().get().at(AgentType::claude).level, LowBudgetLevel::critical);

  usage_->resetUsageData();
  ASSERT_TRUE(soon([&] { return usage_->latestBudgetReports().get().empty(); }));
  EXPECT_EQ(usage_->todaySummary().get(), UsageSummary());
  EXPECT_TRUE(usage_->recentSessions().get().empty());
  EXPECT_EQ(usage_->tokensByDay().get().back().totalTokens, 0);
}

TEST_F(UsageCoordinatorTest, WhatWasRecordedIsThereAfterTheEnd) {
  usage_->handleHookEvent(hook(7, std::nullopt));  // Before the start, as a hook may.
  usage_->start();
  ASSERT_TRUE(soon([&] { return tokensToday() == 7; }));
  usage_.reset();
  const UsageStore store({UsageStore::defaultFile(world_.directories()), nullptr, world_.clock,
                          std::make_shared<SystemLocalCalendar>(), world_.sink});
  EXPECT_EQ(store.eventCount(), 1U);
}

TEST(HookUsage, FollowsTheTokensAndTheModel) {
  HookEvent event;
  event.cachedTokens = 5;
  EXPECT_EQ(toUsageEvent(event), std::nullopt);
  EXPECT_FALSE(toBudgetReport(event, Date()).context.isAvailable());
  event.model = "never heard of";
  EXPECT_EQ(toUsageEvent(event)->totalTokens, std::nullopt);
  EXPECT_EQ(toUsageEvent(event)->costEstimateUSD, std::nullopt);
  event.inputTokens = event.outputTokens = event.reasoningTokens = 1'000'000;
  event.model = " GPT-4o ";
  EXPECT_EQ(toUsageEvent(event)->totalTokens, 3'000'000);
  EXPECT_NEAR(*toUsageEvent(event)->costEstimateUSD, 2.5 + 10 + 10 + 5 * 1.25e-6, 1e-9);
  EXPECT_EQ(toBudgetReport(event, Date()).context.value()->percentageUsed(), 100);
}

}  // namespace
}  // namespace kestrel
