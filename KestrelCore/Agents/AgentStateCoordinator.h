#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Agents/AgentSession.h"
#include "KestrelCore/Agents/HookEventReceiver.h"
#include "KestrelCore/Agents/ProcessMatch.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {

using AgentSessionPtr = std::shared_ptr<const AgentSession>;
/// Sessions by key. The sessions themselves are immutable and shared, so that a snapshot of a thousand is
/// cheap.
using SessionTable = std::map<std::string, AgentSessionPtr>;

class AgentStateCoordinatorDelegate {
 public:
  virtual ~AgentStateCoordinatorDelegate() = default;
  /// After a change of the table, on the thread that made it and without any lock held. Whoever needs the
  /// table asks for a snapshot, so that a burst of events does not copy it each time.
  virtual void agentSessionsDidChange(std::optional<Date> lastStoppedAt) = 0;
};

/// The table of agent sessions: what hooks and process scans say of them, which have fallen silent, and when
/// the last active one stopped. Safe from any thread; the delegate is called after the lock is released.
class AgentStateCoordinator final : public HookEventReceiverDelegate {
 public:
  static constexpr double kDefaultStaleSessionTTL = 900;
  static constexpr double kProcessConfidence = 0.6;
  /// A hook's timestamp further ahead of its arrival than this, in seconds, is a sender's mistake.
  static constexpr double kMaximumClockLead = 60;

  AgentStateCoordinator(std::shared_ptr<const Clock> clock, std::shared_ptr<LogSink> sink);

  /// Set before the first change.
  void setDelegate(std::weak_ptr<AgentStateCoordinatorDelegate> delegate);
  /// Gets every hook event as it was applied, without any lock held. Set before the first change.
  void setUsageHandler(std::function<void(const HookEvent&)> handler);

  /// A snapshot, never null; the same one until the table changes.
  [[nodiscard]] std::shared_ptr<const SessionTable> sessions() const;
  /// When the last working or waiting session stopped; absent while any is active or none ever was.
  [[nodiscard]] std::optional<Date> lastActiveAgentStoppedAt() const;
  [[nodiscard]] std::size_t activeWorkingCount() const;
  [[nodiscard]] double staleSessionTTL() const;
  /// Seconds of silence after which a session is stale.
  void setStaleSessionTTL(double seconds);

  /// Applies one hook event; a timestamp far ahead of its arrival counts as its arrival.
  void didReceiveHookEvent(const HookEvent& event) override;

  /// Reconciles the process sessions with one scan: new, changed and vanished ones. Notifies only of a
  /// change.
  void syncProcessSessions(const std::vector<ProcessMatch>& activeMatches);

  /// Adds or refreshes one process session.
  void registerProcessSession(AgentType agent, std::int32_t pid, bool isWorking, double confidence);

  /// Removes one session and notifies, also when there was none.
  void removeSession(const std::string& id);

  /// Marks sessions without an event for longer than the limit as stale.
  void sweepStaleSessions(Date now);

  /// Removes the hook sessions that have been stale for longer than `seconds`; process sessions go by scans.
  void removeSessionsStaleFor(double seconds, Date now);

  void clearAllSessions();

 private:
  [[nodiscard]] bool anyActive() const KESTREL_REQUIRES(lock_);
  [[nodiscard]] bool hookSaysWorking(AgentType agent) const KESTREL_REQUIRES(lock_);
  /// True when it changed `lastActiveAgentStoppedAt_`.
  bool applyActivityRule(bool wasActive, Date stopTime) KESTREL_REQUIRES(lock_);
  [[nodiscard]] Date plausibleTimestamp(const HookEvent& event) const;
  bool removeVanishedProcesses(const std::vector<ProcessMatch>& matches) KESTREL_REQUIRES(lock_);
  bool applyProcessMatch(const ProcessMatch& match, Date now) KESTREL_REQUIRES(lock_);
  void store(AgentSession session) KESTREL_REQUIRES(lock_);
  void notify(std::optional<Date> lastStoppedAt) const;

  const std::shared_ptr<const Clock> clock_;
  const Logger logger_;
  std::weak_ptr<AgentStateCoordinatorDelegate> delegate_;
  std::function<void(const HookEvent&)> usageHandler_ = [](const HookEvent&) {};

  mutable Mutex lock_;
  SessionTable sessions_ KESTREL_GUARDED_BY(lock_);
  /// Null after a change.
  mutable std::shared_ptr<const SessionTable> snapshot_ KESTREL_GUARDED_BY(lock_);
  std::optional<Date> lastActiveAgentStoppedAt_ KESTREL_GUARDED_BY(lock_);
  double staleSessionTTL_ KESTREL_GUARDED_BY(lock_) = kDefaultStaleSessionTTL;
};

}  // namespace kestrel
