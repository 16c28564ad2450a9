#pragma once

#include <string>
#include <vector>

#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/Usage/UsageStore.h"

namespace kestrel {

// Usage as text for people: lines, each ended.

/// `usage` as a status tells it; what it lacks is left out.
std::string usageTodayText(const Json& usage);
std::string usageDaysText(const std::vector<DayUsage>& days);
std::string usageSessionsText(const std::vector<SessionUsageRecord>& sessions, Date now);

}  // namespace kestrel
