#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "KestrelCore/Agents/Adapters/AgentRegistry.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Published.h"
#include "KestrelCore/Support/SerialQueue.h"

namespace kestrel {

/// Looks which agents are installed and report to Kestrel, when somebody asks: it starts each agent for its
/// version, on a thread of its own. Main thread. Its end waits for a check under way, for some 3 s at most.
class AgentInspection {
 public:
  struct Result {
    /// When the check ended.
    Date at;
    std::map<AgentType, IntegrationStatus> statuses;
    friend bool operator==(const Result&, const Result&) = default;
  };

  /// `programFolder` is where this program stands, and with it, as a rule, the relay. `environment.isRunning`
  /// is not used. The executor outlives this object.
  AgentInspection(AdapterEnvironment environment, const std::filesystem::path& programFolder,
                  Executor& mainExecutor, std::shared_ptr<const Clock> clock);

  /// Begins a check, unless one is under way. `seen` are the agents that process monitoring sees.
  void check(std::set<AgentType> seen);
  /// Begins the first check; nothing later.
  void checkOnce(const std::set<AgentType>& seen);

  [[nodiscard]] const Published<bool>& isChecking() const { return isChecking_; }
  /// Of the last check; absent before the first has ended.
  [[nodiscard]] const Published<std::optional<Result>>& result() const { return result_; }

  /// For the set-up texts.
  [[nodiscard]] const AgentRegistry& registry() const { return *registry_; }
  /// The relay beside this program, else in the search path; absent when there is none, or when its path is
  /// no UTF-8 and so cannot stand in a configuration.
  [[nodiscard]] const std::optional<std::string>& relayPath() const { return relayPath_; }

 private:
  const AdapterEnvironment environment_;
  Executor& mainExecutor_;
  const std::shared_ptr<const Clock> clock_;
  const std::unique_ptr<AgentRegistry> registry_;
  const std::optional<std::string> relayPath_;
  Published<bool> isChecking_;
  Published<std::optional<Result>> result_;
  const std::shared_ptr<int> alive_ = std::make_shared<int>();
  /// Made for the first check. Last, so that its thread has ended before anything it uses goes.
  std::unique_ptr<SerialQueue> worker_;
};

}  // namespace kestrel
