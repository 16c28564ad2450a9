#include "KestrelCore/Presentation/PopoverModel.h"

#include <fmt/format.h>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Support/LocalCalendar.h"
#include "KestrelCore/Usage/CostBudget.h"
#include "KestrelCore/UsageCoordinator.h"

namespace kestrel {
namespace {

/// "1,204,331".
std::string grouped(std::int64_t number) {
  std::string digits = fmt::format("{}", number);
  const std::size_t first = number < 0 ? 1 : 0;
  for (std::size_t at = digits.size(); at > first + 3;) digits.insert(at -= 3, ",");
  return digits;
}

std::string counted(std::int64_t number, std::string_view noun) {
  return fmt::format("{} {}{}", grouped(number), noun, number == 1 ? "" : "s");
}

std::string todayLine(const UsageSummary& today) {
  if (today.turnCount == 0) return "Nothing used yet";
  std::string line = formatTokenCompact(today.totalTokens) + " tokens";
  if (today.estimatedCostUSD) line += " · " + CostBudget{*today.estimatedCostUSD, true}.formattedCost();
  return line + " · " + counted(today.sessionCount, "session");
}

std::string todayDetails(const UsageSummary& today) {
  std::string text = fmt::format(
      "{} today\nInput {} · output {}\nCache read {} · cache write {}\nReasoning {}",
      counted(today.totalTokens, "token"), grouped(today.inputTokens), grouped(today.outputTokens),
      grouped(today.cachedTokens), grouped(today.cacheWriteTokens), grouped(today.reasoningTokens));
  if (today.estimatedCostUSD) text += fmt::format("\n${:.4f} estimated", *today.estimatedCostUSD);
  return text +
         fmt::format("\n{} · {}", counted(today.sessionCount, "session"), counted(today.turnCount, "turn"));
}

TodayModel todayModel(const PopoverFacts& facts) {
  if (!facts.today) return {.line = "Usage is being read", .details = "", .hours = std::nullopt};
  return {.line = todayLine(*facts.today),
          .details = todayDetails(*facts.today),
          .hours = facts.tokensByHour,
          .currentHour = facts.hour};
}

int hourOf(const LocalCalendar& calendar, Date now) {
  int hour = 0;
  for (const LocalHour& candidate : calendar.hoursOfDay(now)) {
    if (candidate.startsAt <= now) hour = candidate.hour;
  }
  return hour;
}

PowerStripFacts powerFacts(const AppCoordinator& coordinator) {
  PowerStripFacts facts;
  const auto& battery = coordinator.batteryMonitor();
  const auto& thermal = coordinator.thermalMonitor();
  if (battery.sourceName()) facts.power = battery.currentSnapshot();
  if (thermal.sourceName()) facts.heat = thermal.currentThermalState();
  const auto* blocked = coordinator.currentDecision().get().asBlocked();
  facts.isBatteryTooLow = blocked != nullptr && blocked->block == SafetyBlock::batteryBelowFloor;
  return facts;
}

}  // namespace

PopoverFacts popoverFacts(AppCoordinator& coordinator, const LocalCalendar& calendar) {
  const Date now = coordinator.clock().now();
  return {.display = coordinator.displayState(),
          .hold = coordinator.hold().get(),
          .power = powerFacts(coordinator),
          .families = &coordinator.agentFamilies().get(),
          .today = coordinator.usage().todaySummary().get(),
          .tokensByHour = coordinator.usage().tokensByHour().get(),
          .hour = hourOf(calendar, now),
          .isMasterEnabled = coordinator.settings().masterEnabled(),
          .isManualHold = coordinator.settings().manualHoldEnabled(),
          .now = now};
}

PopoverModel popoverModel(const PopoverFacts& facts) {
  PopoverModel model;
  model.headline = headlineModel(facts.display, facts.hold);
  model.power = powerStripModel(facts.power);
  if (facts.families != nullptr) {
    for (const auto& family : *facts.families) model.rows.push_back(popoverRow(family, facts.now));
  }
  model.today = todayModel(facts);
  model.controls = {.isMasterOn = facts.isMasterEnabled,
                    .showsResume = facts.display.isPaused,
                    .isKeepAwakeOn = facts.isManualHold,
                    .canPauseOrKeepAwake = facts.isMasterEnabled};
  return model;
}

}  // namespace kestrel
