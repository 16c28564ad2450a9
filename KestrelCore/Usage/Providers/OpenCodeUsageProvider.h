#pragma once

#include "KestrelCore/Usage/Providers/PollingUsageProvider.h"

namespace kestrel {

/// Reads OpenCode's database of messages.
class OpenCodeUsageProvider final : public PollingUsageProvider {
 public:
  explicit OpenCodeUsageProvider(const UsageReaderDependencies& dependencies,
                                 double pollSeconds = kPollSeconds)
      : PollingUsageProvider({.agentType = AgentType::opencode,
                              .queueLabel = "com.kestrel.usage.opencode",
                              .logCategory = "usage.opencode",
                              .startMessage = "OpenCodeUsageProvider active on " +
                                              openCodeDatabaseFile(dependencies.home).string()},
                             makeOpenCodeUsageReader(dependencies), dependencies.log, pollSeconds) {}
};

}  // namespace kestrel
