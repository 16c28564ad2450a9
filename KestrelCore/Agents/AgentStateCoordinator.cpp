#include "KestrelCore/Agents/AgentStateCoordinator.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrel {
namespace {

std::string defaultHostAppName(AgentType agent) {
  switch (agent) {
    case AgentType::opencode:
    case AgentType::antigravity:
    case AgentType::cursor:
    case AgentType::windsurf:
      return std::string(displayName(agent));
    default:
      return "Terminal";
  }
}

AgentSession newSession(std::string id, AgentType agent, Date start, IntegrationType integration,
                        double confidence) {
  AgentSession session;
  session.id = std::move(id);
  session.agentType = agent;
  session.startedAt = start;
  session.lastEventAt = start;
  session.integrationType = integration;
  session.confidence = confidence;
  return session;
}

/// The table's session of that key, or a new one.
AgentSession sessionFor(const SessionTable& table, const AgentSession& created) {
  const auto entry = table.find(created.id);
  return entry == table.end() ? created : *entry->second;
}

bool isFoundByScan(const AgentSession& session) {
  return session.integrationType == IntegrationType::process && session.pid &&
         session.id == processSessionKey(session.agentType, *session.pid);
}

/// An age in whole seconds, also for absurd instants.
long wholeSeconds(double seconds) {
  return static_cast<long>(std::clamp(std::trunc(seconds), -1e15, 1e15));
}

}  // namespace

AgentStateCoordinator::AgentStateCoordinator(std::shared_ptr<const Clock> clock,
                                             std::shared_ptr<LogSink> sink)
    : clock_(std::move(clock)), logger_(std::move(sink), "agents") {}

void AgentStateCoordinator::setDelegate(std::weak_ptr<AgentStateCoordinatorDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void AgentStateCoordinator::setUsageHandler(std::function<void(const HookEvent&)> handler) {
  usageHandler_ = std::move(handler);
}

std::shared_ptr<const SessionTable> AgentStateCoordinator::sessions() const {
  const LockGuard guard(lock_);
  if (!snapshot_) snapshot_ = std::make_shared<const SessionTable>(sessions_);
  return snapshot_;
}

std::optional<Date> AgentStateCoordinator::lastActiveAgentStoppedAt() const {
  const LockGuard guard(lock_);
  return lastActiveAgentStoppedAt_;
}

std::size_t AgentStateCoordinator::activeWorkingCount() const {
  const LockGuard guard(lock_);
  return static_cast<std::size_t>(
      std::ranges::count_if(sessions_, [](const auto& entry) { return entry.second->isWorking(); }));
}

double AgentStateCoordinator::staleSessionTTL() const {
  const LockGuard guard(lock_);
  return staleSessionTTL_;
}

void AgentStateCoordinator::setStaleSessionTTL(double seconds) {
  const LockGuard guard(lock_);
  staleSessionTTL_ = seconds;
}

void AgentStateCoordinator::didReceiveHookEvent(const HookEvent& event) {
  const Date timestamp = plausibleTimestamp(event);
  const IntegrationType integration = defaultIntegrationType(event.agent);

  LockGuard guard(lock_);
  const bool wasActive = anyActive();
  AgentSession created = newSession(event.sessionId, event.agent, timestamp, integration, 1.0);
  AgentSession session = sessionFor(sessions_, created);
  session.state = event.state;
  session.lastEventAt = timestamp;
  session.lastEventDescription = "State: " + std::string(displayLabel(event.state)) + " via " +
                                 std::string(displayName(session.integrationType));
  if (event.pid) session.pid = event.pid;
  if (event.cwd) session.cwd = event.cwd;
  store(std::move(session));
  applyActivityRule(wasActive, timestamp);
  const auto lastStoppedAt = lastActiveAgentStoppedAt_;
  guard.unlock();

  logger_.info("Updated session {}: agent={} state={}", event.sessionId, rawValue(event.agent),
               rawValue(event.state));
  HookEvent applied = event;
  applied.timestamp = timestamp;
  usageHandler_(applied);
  notify(lastStoppedAt);
}

void AgentStateCoordinator::syncProcessSessions(const std::vector<ProcessMatch>& activeMatches) {
  const Date now = clock_->now();
  LockGuard guard(lock_);
  const bool wasActive = anyActive();
  bool changed = removeVanishedProcesses(activeMatches);
  for (const auto& match : activeMatches) changed = applyProcessMatch(match, now) || changed;
  changed = applyActivityRule(wasActive, now) || changed;
  const auto lastStoppedAt = lastActiveAgentStoppedAt_;
  guard.unlock();
  if (changed) notify(lastStoppedAt);
}

void AgentStateCoordinator::registerProcessSession(AgentType agent, std::int32_t pid, bool isWorking,
                                                   double confidence) {
  const Date now = clock_->now();
  LockGuard guard(lock_);
  if (!isWorking && hookSaysWorking(agent)) return;
  const bool wasActive = anyActive();
  AgentSession created =
      newSession(processSessionKey(agent, pid), agent, now, IntegrationType::process, confidence);
  created.pid = pid;
  AgentSession session = sessionFor(sessions_, created);
  session.state = isWorking ? AgentState::working : AgentState::idle;
  session.lastEventAt = now;
  session.lastEventDescription = "Process active (PID " + std::to_string(pid) + ")";
  store(std::move(session));
  applyActivityRule(wasActive, now);
  const auto lastStoppedAt = lastActiveAgentStoppedAt_;
  guard.unlock();
  notify(lastStoppedAt);
}

void AgentStateCoordinator::removeSession(const std::string& id) {
  LockGuard guard(lock_);
  if (sessions_.erase(id) > 0) snapshot_.reset();
  const auto lastStoppedAt = lastActiveAgentStoppedAt_;
  guard.unlock();
  notify(lastStoppedAt);
}

void AgentStateCoordinator::sweepStaleSessions(Date now) {
  LockGuard guard(lock_);
  bool changed = false;
  for (const auto& [id, slot] : sessions_) {
    const double age = now - slot->lastEventAt;
    if (!(age > staleSessionTTL_)) continue;
    logger_.repeatingError("stale " + id, "Session {} is stale ({}s old). Marking stale.", id,
                           wholeSeconds(age));
    AgentSession session = *slot;
    session.state = AgentState::stale;
    store(std::move(session));  // Replaces the slot's session, never the map's structure.
    changed = true;
  }
  if (!changed) return;
  if (!anyActive() && !lastActiveAgentStoppedAt_) lastActiveAgentStoppedAt_ = now;
  const auto lastStoppedAt = lastActiveAgentStoppedAt_;
  guard.unlock();
  notify(lastStoppedAt);
}

void AgentStateCoordinator::removeSessionsStaleFor(double seconds, Date now) {
  LockGuard guard(lock_);
  const double limit = staleSessionTTL_ + seconds;
  const auto removed = std::erase_if(sessions_, [=](const auto& entry) {
    const AgentSession& session = *entry.second;
    const bool forgotten = now - session.lastEventAt > limit;
    return session.state == AgentState::stale && forgotten && !isFoundByScan(session);
  });
  if (removed == 0) return;
  snapshot_.reset();
  const auto lastStoppedAt = lastActiveAgentStoppedAt_;
  guard.unlock();
  notify(lastStoppedAt);
}

void AgentStateCoordinator::clearAllSessions() {
  LockGuard guard(lock_);
  sessions_.clear();
  snapshot_.reset();
  lastActiveAgentStoppedAt_.reset();
  guard.unlock();
  notify(std::nullopt);
}

bool AgentStateCoordinator::anyActive() const {
  return std::ranges::any_of(sessions_, [](const auto& entry) { return entry.second->isWorking(); });
}

bool AgentStateCoordinator::hookSaysWorking(AgentType agent) const {
  return std::ranges::any_of(sessions_, [agent](const auto& entry) {
    const AgentSession& session = *entry.second;
    return session.agentType == agent && session.integrationType != IntegrationType::process &&
           session.isWorking();
  });
}

bool AgentStateCoordinator::applyActivityRule(bool wasActive, Date stopTime) {
  const auto before = lastActiveAgentStoppedAt_;
  if (anyActive()) {
    lastActiveAgentStoppedAt_.reset();
  } else if (wasActive) {
    lastActiveAgentStoppedAt_ = stopTime;
    logger_.info("All active agent sessions stopped. Debounce timer started at {}", iso8601(stopTime));
  }
  return before != lastActiveAgentStoppedAt_;
}

Date AgentStateCoordinator::plausibleTimestamp(const HookEvent& event) const {
  const Date now = clock_->now();
  if (event.timestamp - now <= kMaximumClockLead) return event.timestamp;
  logger_.repeatingError("clock " + event.sessionId,
                         "Session {} sent a timestamp in the future ({}); its arrival counts",
                         event.sessionId, iso8601(event.timestamp));
  return now;
}

bool AgentStateCoordinator::removeVanishedProcesses(const std::vector<ProcessMatch>& matches) {
  const auto isListed = [&](std::int32_t pid) {
    return std::ranges::any_of(matches, [pid](const auto& match) { return match.pid == pid; });
  };
  const auto removed = std::erase_if(sessions_, [&](const auto& entry) {
    const AgentSession& session = *entry.second;
    return session.integrationType == IntegrationType::process && session.pid && !isListed(*session.pid);
  });
  if (removed > 0) snapshot_.reset();
  return removed > 0;
}

bool AgentStateCoordinator::applyProcessMatch(const ProcessMatch& match, Date now) {
  if (!match.isWorking && hookSaysWorking(match.agent)) return false;
  const std::string key = processSessionKey(match.agent, match.pid);
  const AgentState state = match.isWorking ? AgentState::working : AgentState::idle;
  const bool isNew = !sessions_.contains(key);
  AgentSession created = newSession(key, match.agent, now, IntegrationType::process, kProcessConfidence);
  created.pid = match.pid;
  created.state = state;
  AgentSession session = sessionFor(sessions_, created);
  const bool changed = isNew || session.state != state;
  if (session.state != state) {
    session.state = state;
    session.lastEventAt = now;
  }
  const char* note = match.isWorking ? "CLI task running (PID " : "Process detected (PID ";
  session.lastEventDescription = note + std::to_string(match.pid) + ")";
  store(std::move(session));
  return changed;
}

void AgentStateCoordinator::store(AgentSession session) {
  if (!session.hostAppName) session.hostAppName = defaultHostAppName(session.agentType);
  auto& slot = sessions_[session.id];
  if (slot && *slot == session) return;
  slot = std::make_shared<const AgentSession>(std::move(session));
  snapshot_.reset();
}

void AgentStateCoordinator::notify(std::optional<Date> lastStoppedAt) const {
  if (const auto delegate = delegate_.lock()) delegate->agentSessionsDidChange(lastStoppedAt);
}

}  // namespace kestrel
