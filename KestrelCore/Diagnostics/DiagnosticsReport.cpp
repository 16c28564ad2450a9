#include "KestrelCore/Diagnostics/DiagnosticsReport.h"

#include "KestrelCore/Control/StatusReport.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

std::string belowHome(const std::string& folder, const std::string& home) {
  const bool isBelow = folder.starts_with(home) && !home.empty() &&
                       (folder.size() == home.size() || folder[home.size()] == '/');
  return isBelow ? std::string(1, '~').append(folder, home.size()) : folder;
}

}  // namespace

Json encode(const DiagnosticsReport& report, const std::string& home) {
  Json sessions = Json::array();
  for (const auto& session : report.sessions) {
    Json object = readableSession(*session);
    if (session->cwd) object["cwd"] = belowHome(*session->cwd, home);
    sessions.push_back(std::move(object));
  }
  Json object = {{"appName", report.appName},
                 {"appVersion", report.appVersion},
                 {"osVersion", report.osVersion},
                 {"architecture", report.architecture},
                 {"timestamp", iso8601(report.timestamp)},
                 {"policyDecision", report.policyDecision},
                 {"isHolding", report.isHolding},
                 {"activeAgentCount", report.activeAgentCount},
                 {"batteryStatus", encode(report.batteryStatus)},
                 {"thermalState", report.thermalState},
                 {"sessions", std::move(sessions)},
                 {"systemAssertionsSummary", report.systemAssertionsSummary}};
  if (report.deepHelperStatus) object["deepHelperStatus"] = readableHelperStatus(*report.deepHelperStatus);
  return object;
}

}  // namespace kestrel
