#pragma once

#include "KestrelCore/Usage/Providers/PollingUsageProvider.h"

namespace kestrel {

/// Reads the transcripts that Claude Code writes.
class ClaudeUsageProvider final : public PollingUsageProvider {
 public:
  explicit ClaudeUsageProvider(const UsageReaderDependencies& dependencies, double pollSeconds = kPollSeconds)
      : PollingUsageProvider({.agentType = AgentType::claude,
                              .queueLabel = "com.kestrel.usage.claude",
                              .logCategory = "usage.claude",
                              .startMessage = "ClaudeUsageProvider active on " +
                                              claudeProjectsFolder(dependencies.home).string()},
                             makeClaudeUsageReader(dependencies), dependencies.log, pollSeconds) {}
};

}  // namespace kestrel
