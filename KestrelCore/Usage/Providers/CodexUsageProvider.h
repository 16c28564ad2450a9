#pragma once

#include "KestrelCore/Usage/Providers/PollingUsageProvider.h"

namespace kestrel {

/// Reads the rollouts that Codex writes.
class CodexUsageProvider final : public PollingUsageProvider {
 public:
  explicit CodexUsageProvider(const UsageReaderDependencies& dependencies, double pollSeconds = kPollSeconds)
      : PollingUsageProvider({.agentType = AgentType::codex,
                              .queueLabel = "com.kestrel.usage.codex",
                              .logCategory = "usage.codex",
                              .startMessage = "CodexUsageProvider started watching " +
                                              codexSessionsFolder(dependencies.home).string()},
                             makeCodexUsageReader(dependencies), dependencies.log, pollSeconds) {}
};

}  // namespace kestrel
