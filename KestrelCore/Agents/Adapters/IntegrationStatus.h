#pragma once

#include <optional>
#include <string>

#include "KestrelCore/Agents/IntegrationType.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// The answer of one detection: is the agent here, and does it report to Kestrel.
struct IntegrationStatus {
  /// Its executable or application was found.
  bool isInstalled = false;
  /// As the agent reports it, or a note such as "Config present".
  std::optional<std::string> agentVersion;
  IntegrationType integrationType = IntegrationType::process;
  /// The agent's configuration calls the relay; for an agent without hooks: its process is seen.
  bool isIntegrationActive = false;
  /// A backup of the agent's configuration. The adapters know of none.
  std::optional<std::string> backupPath;
  /// One line for display.
  std::string statusMessage;

  friend bool operator==(const IntegrationStatus&, const IntegrationStatus&) = default;
};

Json encode(const IntegrationStatus& status);
/// Throws DecodingError.
IntegrationStatus decodeIntegrationStatus(const Json& object);

}  // namespace kestrel
