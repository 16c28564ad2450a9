#include "KestrelCore/Agents/Adapters/IntegrationStatus.h"

#include "KestrelCore/Support/Json.h"

namespace kestrel {

Json encode(const IntegrationStatus& status) {
  Json object = {{"isInstalled", status.isInstalled},
                 {"integrationType", rawValue(status.integrationType)},
                 {"isIntegrationActive", status.isIntegrationActive},
                 {"statusMessage", status.statusMessage}};
  setIfPresent(object, "agentVersion", status.agentVersion);
  setIfPresent(object, "backupPath", status.backupPath);
  return object;
}

IntegrationStatus decodeIntegrationStatus(const Json& object) {
  return {.isInstalled = requiredBool(object, "isInstalled"),
          .agentVersion = optionalString(object, "agentVersion"),
          .integrationType = requiredRawValue<IntegrationType>(object, "integrationType"),
          .isIntegrationActive = requiredBool(object, "isIntegrationActive"),
          .backupPath = optionalString(object, "backupPath"),
          .statusMessage = requiredString(object, "statusMessage")};
}

}  // namespace kestrel
