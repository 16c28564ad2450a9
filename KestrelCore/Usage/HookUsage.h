#pragma once

#include <optional>

#include "KestrelCore/Agents/HookEvent.h"
#include "KestrelCore/Usage/ProviderBudgetReport.h"
#include "KestrelCore/Usage/UsageEvent.h"

namespace kestrel {

// What a hook event says about usage. It stands apart from the record itself, because the relay links that
// one.

/// The context of a model that the rate card does not know, in tokens.
inline constexpr std::int64_t kDefaultContextWindow = 200'000;

/// Whether the agent reported any count of tokens with this event.
[[nodiscard]] bool carriesTokens(const HookEvent& event);

/// The usage that the event reports; absent when it has neither tokens nor a model.
[[nodiscard]] std::optional<UsageEvent> toUsageEvent(const HookEvent& event);

/// The state of the event's session as far as the event tells.
[[nodiscard]] ProviderBudgetReport toBudgetReport(const HookEvent& event, Date now);

}  // namespace kestrel
