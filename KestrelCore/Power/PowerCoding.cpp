#include "KestrelCore/Power/HoldStatus.h"
#include "KestrelCore/Power/PowerSourceSnapshot.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {

Json encode(const PowerSourceSnapshot& snapshot) {
  Json object = {{"isCharging", snapshot.isCharging},
                 {"isOnAC", snapshot.isOnAC},
                 {"isLowPowerMode", snapshot.isLowPowerMode}};
  setIfPresent(object, "batteryPercent", snapshot.batteryPercent);
  setIfPresent(object, "timeRemainingMinutes", snapshot.timeRemainingMinutes);
  return object;
}

PowerSourceSnapshot decodePowerSourceSnapshot(const Json& object) {
  PowerSourceSnapshot snapshot;
  snapshot.batteryPercent = optionalInteger(object, "batteryPercent");
  snapshot.isCharging = requiredBool(object, "isCharging");
  snapshot.isOnAC = requiredBool(object, "isOnAC");
  snapshot.isLowPowerMode = requiredBool(object, "isLowPowerMode");
  snapshot.timeRemainingMinutes = optionalInteger(object, "timeRemainingMinutes");
  return snapshot;
}

Json encode(const HoldStatus& hold) {
  Json by = Json::array();
  for (const auto& evidence : hold.by) {
    by.push_back({{"service", evidence.service},
                  {"kind", rawValue(evidence.kind)},
                  {"state", rawValue(evidence.state)},
                  {"detail", evidence.detail}});
  }
  Json object = {{"state", rawValue(hold.state)}, {"by", std::move(by)}};
  if (hold.since) object["since"] = iso8601(*hold.since);
  return object;
}

}  // namespace kestrel
