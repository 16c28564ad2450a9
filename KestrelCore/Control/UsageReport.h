#pragma once

#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/UsageCoordinator.h"

namespace kestrel {

// Usage as `kestrelctl` tells it: the fields of the values themselves, dates as ISO 8601.

/// Today's sums, each agent's latest report and what is running low, keyed by the agent's raw value. A report
/// also says in one line what it means, what each figure is and how old it is. Null until the store was
/// loaded. Main thread.
Json usageReport(const UsageCoordinator& usage, Date now);

Json usageSessionsReport(const std::vector<SessionUsageRecord>& sessions);
Json usageDaysReport(const std::vector<DayUsage>& days);

}  // namespace kestrel
