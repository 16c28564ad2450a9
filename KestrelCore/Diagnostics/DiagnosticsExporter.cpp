#include "KestrelCore/Diagnostics/DiagnosticsExporter.h"

#include <algorithm>

#include "KestrelCore/Support/ChildProcess.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Support/Utf8.h"

namespace kestrel {
namespace {

constexpr ChildProcessLimits kSummaryLimits{2, 256 * 1024};
constexpr int kIndent = 2;

}  // namespace

DiagnosticsReport DiagnosticsExporter::generateReport(const WakeDecision& currentDecision,
                                                      const PowerSourceSnapshot& powerSource,
                                                      SystemThermalState thermalState,
                                                      std::vector<AgentSessionPtr> sessions,
                                                      std::optional<DeepSleepStatus> deepHelperStatus) const {
  DiagnosticsReport report;
  report.osVersion = surroundings_.osVersion;
  report.timestamp = clock_->now();
  report.policyDecision = currentDecision.statusDescription();
  report.isHolding = currentDecision.isHolding();
  report.activeAgentCount =
      std::ranges::count_if(sessions, [](const auto& session) { return isActivelyWorking(session->state); });
  report.batteryStatus = powerSource;
  report.thermalState = rawValue(thermalState);
  report.deepHelperStatus = std::move(deepHelperStatus);
  report.sessions = std::move(sessions);
  report.systemAssertionsSummary = assertionSummary();
  return report;
}

std::string DiagnosticsExporter::assertionSummary() const {
  const auto result = runChildProcess(surroundings_.assertionSummaryCommand, kSummaryLimits);
  return result && isUtf8(result->output) ? result->output : "";
}

std::string DiagnosticsExporter::exportJSON(const DiagnosticsReport& report) const {
  return encode(report, surroundings_.home).dump(kIndent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace kestrel
