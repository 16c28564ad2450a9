#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Agents/AgentStateCoordinator.h"
#include "KestrelCore/Power/DeepSleepStatus.h"
#include "KestrelCore/Power/PowerSourceSnapshot.h"
#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// A snapshot of everything, for people who help: no prompt, no credential, no text of a conversation.
struct DiagnosticsReport {
  std::string appName = "Kestrel";
  /// The report's own version, not the program's.
  std::string appVersion = "1.0.0";
  std::string osVersion;
  /// Always the same, whatever the machine is.
  std::string architecture = "arm64";
  Date timestamp;
  /// The decision's status description.
  std::string policyDecision;
  bool isHolding = false;
  /// Sessions that are working or waiting, however long ago they said so.
  std::int64_t activeAgentCount = 0;
  PowerSourceSnapshot batteryStatus;
  /// "nominal", "fair", "serious" or "critical".
  std::string thermalState;
  /// Absent when the helper was never asked.
  std::optional<DeepSleepStatus> deepHelperStatus;
  std::vector<AgentSessionPtr> sessions;
  /// The system's own list of who keeps it awake.
  std::string systemAssertionsSummary;
};

/// Keys are the field names, dates ISO 8601. A directory below `home` begins with "~".
Json encode(const DiagnosticsReport& report, const std::string& home);

}  // namespace kestrel
