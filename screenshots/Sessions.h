#pragma once

#include "screenshots/Stage.h"

#include "KestrelCore/Usage/ProviderBudgetReport.h"

namespace kestrel {

/// A report with that much left; a metric without a figure is unavailable.
ProviderBudgetReport reportOf(AgentType agent, std::optional<std::int64_t> contextUsed,
                              std::optional<double> quotaLeft, std::optional<double> costUSD, Date now);

/// Claude Code with two sessions and Codex with one, all at work for twelve minutes, and a day's usage.
void playTwoAgents(Stage& stage);

/// Sessions of every family, some in trouble.
void playTwoHundredSessions(Stage& stage);

}  // namespace kestrel
