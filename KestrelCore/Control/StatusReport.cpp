#include "KestrelCore/Control/StatusReport.h"

#include <initializer_list>
#include <optional>
#include <string>

#include "KestrelCore/Control/SettingsCatalog.h"
#include "KestrelCore/Control/UsageReport.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json isoOrNull(const std::optional<Date>& date) {
  return date ? Json(iso8601(*date)) : Json(nullptr);
}

Json powerReport(const BatteryMonitoring& monitor) {
  Json object = encode(monitor.currentSnapshot());
  object["source"] = orNull(monitor.sourceName());
  return object;
}

}  // namespace

Json readableSession(const AgentSession& session) {
  Json object = encode(session);
  object["startedAt"] = iso8601(session.startedAt);
  object["lastEventAt"] = iso8601(session.lastEventAt);
  if (session.usageMetrics) object["usageMetrics"]["recordedAt"] = iso8601(session.usageMetrics->recordedAt);
  return object;
}

Json readableHelperStatus(const DeepSleepStatus& status) {
  Json object = encode(status);
  if (status.leaseExpiresAt) object["leaseExpiresAt"] = iso8601(*status.leaseExpiresAt);
  return object;
}

Json sessionsReport(AppCoordinator& coordinator) {
  Json list = Json::array();
  for (const auto& session : coordinator.activeSessionsList().get())
    list.push_back(readableSession(*session));
  return list;
}

Json statusReport(AppCoordinator& coordinator) {
  const WakeDecision& decision = coordinator.currentDecision().get();
  const auto& helper = coordinator.helperStatus().get();
  return {{"version", kKestrelVersion},
          {"statusDescription", decision.statusDescription()},
          {"decision", encode(decision)},
          {"hold", encode(coordinator.hold().get())},
          {"sessions", sessionsReport(coordinator)},
          {"visualState", encode(coordinator.dominantVisualState().get())},
          {"power", powerReport(coordinator.batteryMonitor())},
          {"thermalState", rawValue(coordinator.thermalMonitor().currentThermalState())},
          {"thermalSource", orNull(coordinator.thermalMonitor().sourceName())},
          {"lidClosed", orNull(coordinator.lidMonitor().reading())},
          {"lidSource", orNull(coordinator.lidMonitor().sourceName())},
          {"helper", helper ? readableHelperStatus(*helper) : Json(nullptr)},
          {"usage", usageReport(coordinator.usage(), coordinator.clock().now())},
          {"settings", settingsReport(coordinator.settings())},
          {"pausedUntil", isoOrNull(coordinator.settings().pauseUntil())}};
}

}  // namespace kestrel
