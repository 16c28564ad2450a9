#include "KestrelCore/Power/DeepHoldProtocol.h"

#include <cmath>

#include "KestrelCore/Support/Json.h"

namespace kestrel {
Json encode(const DeepSleepStatus& status) {
  Json object = {{"isHelperInstalled", status.isHelperInstalled},
                 {"isDeepHoldActive", status.isDeepHoldActive},
                 {"currentSystemSleepDisabled", status.currentSystemSleepDisabled}};
  setIfPresent(object, "activeLeaseId", status.activeLeaseId);
  if (status.leaseExpiresAt) object["leaseExpiresAt"] = status.leaseExpiresAt->secondsSinceReferenceDate();
  setIfPresent(object, "originalSleepDisabledState", status.originalSleepDisabledState);
  return object;
}

DeepSleepStatus decodeDeepSleepStatus(const Json& object) {
  DeepSleepStatus status;
  status.isHelperInstalled = requiredBool(object, "isHelperInstalled");
  status.isDeepHoldActive = requiredBool(object, "isDeepHoldActive");
  status.activeLeaseId = optionalString(object, "activeLeaseId");
  status.leaseExpiresAt = optionalDate(object, "leaseExpiresAt");
  status.originalSleepDisabledState = optionalBool(object, "originalSleepDisabledState");
  status.currentSystemSleepDisabled = requiredBool(object, "currentSystemSleepDisabled");
  return status;
}

std::optional<std::string> encodeHelperRequest(const HelperRequest& request) {
  if (request.ttlSeconds && !std::isfinite(*request.ttlSeconds)) return std::nullopt;
  Json object = {{"command", rawValue(request.command)}};
  setIfPresent(object, "leaseId", request.leaseId);
  setIfPresent(object, "ttlSeconds", request.ttlSeconds);
  return dumpJson(object);
}

HelperRequest decodeHelperRequest(std::string_view bytes) {
  const Json object = parseJsonObject(bytes);
  HelperRequest request;
  request.command = requiredRawValue<HelperCommand>(object, "command");
  // A wrong type is refused, not taken for absent: without an identifier a release would release any lease.
  if (isGiven(object, "leaseId")) request.leaseId = requiredString(object, "leaseId");
  if (isGiven(object, "ttlSeconds")) request.ttlSeconds = requiredDouble(object, "ttlSeconds");
  return request;
}

std::string encodeHelperResponse(const HelperResponse& response) {
  Json object = {{"ok", response.ok}};
  if (response.status) object["status"] = encode(*response.status);
  setIfPresent(object, "error", response.error);
  return dumpJson(object);
}

HelperResponse decodeHelperResponse(std::string_view bytes) {
  const Json object = parseJsonObject(bytes);
  HelperResponse response;
  response.ok = requiredBool(object, "ok");
  if (isGiven(object, "status")) {
    if (!object["status"].is_object()) throw DecodingError("Wrong type for key 'status'");
    response.status = decodeDeepSleepStatus(object["status"]);
  }
  response.error = optionalString(object, "error");
  return response;
}

}  // namespace kestrel
