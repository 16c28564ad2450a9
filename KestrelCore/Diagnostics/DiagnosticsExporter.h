#pragma once

#include <memory>
#include <string>
#include <vector>

#include "KestrelCore/Diagnostics/DiagnosticsReport.h"
#include "KestrelCore/Policy/WakeDecision.h"
#include "KestrelCore/Power/SystemThermalState.h"
#include "KestrelCore/Support/Clock.h"

namespace kestrel {

/// Makes the report and its text. Main thread.
class DiagnosticsExporter {
 public:
  struct Surroundings {
    std::string osVersion;
    /// Prints who keeps the system awake; empty where there is no such command.
    std::vector<std::string> assertionSummaryCommand;
    /// The user's home, which is not told.
    std::string home;
  };

  DiagnosticsExporter(Surroundings surroundings, std::shared_ptr<const Clock> clock)
      : surroundings_(std::move(surroundings)), clock_(std::move(clock)) {}

  /// Waits for the system's command, for at most two seconds: only for somebody who asked.
  [[nodiscard]] DiagnosticsReport generateReport(const WakeDecision& currentDecision,
                                                 const PowerSourceSnapshot& powerSource,
                                                 SystemThermalState thermalState,
                                                 std::vector<AgentSessionPtr> sessions,
                                                 std::optional<DeepSleepStatus> deepHelperStatus) const;

  /// Indented, with sorted keys and dates as ISO 8601.
  [[nodiscard]] std::string exportJSON(const DiagnosticsReport& report) const;

 private:
  [[nodiscard]] std::string assertionSummary() const;

  const Surroundings surroundings_;
  const std::shared_ptr<const Clock> clock_;
};

}  // namespace kestrel
