#include "KestrelCore/Agents/Adapters/AgentRegistry.h"

#include <algorithm>
#include <future>
#include <system_error>
#include <utility>

#include "KestrelCore/Agents/Adapters/AiderAdapter.h"
#include "KestrelCore/Agents/Adapters/AntigravityAdapter.h"
#include "KestrelCore/Agents/Adapters/ClaudeCodeAdapter.h"
#include "KestrelCore/Agents/Adapters/CodexAdapter.h"
#include "KestrelCore/Agents/Adapters/CursorAdapter.h"
#include "KestrelCore/Agents/Adapters/GeminiAdapter.h"
#include "KestrelCore/Agents/Adapters/OpenCodeAdapter.h"
#include "KestrelCore/Agents/Adapters/WindsurfAdapter.h"

namespace kestrel {
namespace {

/// On a thread of its own; where the system grants none, when the result is asked for.
std::future<IntegrationStatus> startDetecting(const AgentAdapter& adapter) {
  try {
    return std::async(std::launch::async, [&adapter] { return adapter.detect(); });
  } catch (const std::system_error&) {
    return std::async(std::launch::deferred, [&adapter] { return adapter.detect(); });
  }
}

}  // namespace

AgentRegistry::AgentRegistry(AdapterEnvironment environment) : environment_(std::move(environment)) {}

void AgentRegistry::registerDefaultAdapters() {
  adapters_.clear();
  adapters_.push_back(std::make_unique<ClaudeCodeAdapter>(environment_));
  adapters_.push_back(std::make_unique<CodexAdapter>(environment_));
  adapters_.push_back(std::make_unique<GeminiAdapter>(environment_));
  adapters_.push_back(std::make_unique<OpenCodeAdapter>(environment_));
  adapters_.push_back(std::make_unique<AntigravityAdapter>(environment_));
  adapters_.push_back(std::make_unique<CursorAdapter>(environment_));
  adapters_.push_back(std::make_unique<WindsurfAdapter>(environment_));
  adapters_.push_back(std::make_unique<AiderAdapter>(environment_));
}

const AgentAdapter* AgentRegistry::adapter(AgentType agentType) const {
  const auto found = std::ranges::find_if(
      adapters_, [agentType](const auto& adapter) { return adapter->agentType() == agentType; });
  return found == adapters_.end() ? nullptr : found->get();
}

std::map<AgentType, IntegrationStatus> AgentRegistry::detectAll() const {
  std::map<AgentType, std::future<IntegrationStatus>> answers;
  for (const auto& adapter : adapters_) answers[adapter->agentType()] = startDetecting(*adapter);
  std::map<AgentType, IntegrationStatus> statuses;
  for (auto& [agentType, answer] : answers) statuses[agentType] = answer.get();
  return statuses;
}

}  // namespace kestrel
