#pragma once

#include <map>
#include <memory>
#include <vector>

#include "KestrelCore/Agents/Adapters/AgentAdapter.h"

namespace kestrel {

/// The adapters. Filled once, then safe from any thread.
class AgentRegistry {
 public:
  using Adapters = std::vector<std::unique_ptr<const AgentAdapter>>;

  explicit AgentRegistry(AdapterEnvironment environment);

  /// One adapter for each family but `custom`, in the order of the families, in the place of those before.
  void registerDefaultAdapters();

  /// Null without one; the registry's own.
  [[nodiscard]] const AgentAdapter* adapter(AgentType agentType) const;
  /// In the order in which they were registered.
  [[nodiscard]] const Adapters& allAdapters() const { return adapters_; }

  /// What each adapter detects, all at the same time on threads that end with the call. Blocks for little
  /// more than 3 s, so never on the main thread.
  [[nodiscard]] std::map<AgentType, IntegrationStatus> detectAll() const;

 private:
  const AdapterEnvironment environment_;
  Adapters adapters_;
};

}  // namespace kestrel
