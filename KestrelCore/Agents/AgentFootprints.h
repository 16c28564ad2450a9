#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Support/Date.h"

namespace kestrel {

/// What Antigravity's transcripts say of it.
struct AntigravityState {
  bool isRunning = false;
  bool isWorking = false;
  bool isWaiting = false;
  std::string description;
};

/// Tells from the modification times of agents' own transcripts how recently they worked. Never looks into a
/// file and never writes. For one thread, the process monitor's queue.
class AgentFootprints {
 public:
  explicit AgentFootprints(const std::filesystem::path& home);

  /// The state of Antigravity, from the transcripts of its newest sessions.
  [[nodiscard]] AntigravityState antigravityState(bool isRunning, Date now) const;

  /// Whether a transcript of Claude Code changed within the last 120 seconds. The few that were written last
  /// are looked at each time and new ones are noticed within seconds; a change of an older one is, where
  /// there are thousands, noticed within a minute.
  [[nodiscard]] bool isClaudeWriting(Date now);

 private:
  struct Transcript {
    Date written;
    std::filesystem::path path;
  };

  [[nodiscard]] bool hasFreshTranscript(Date now) const;
  [[nodiscard]] bool isWalkDue(Date now) const;
  void walkClaudeProjects(Date now);
  void remember(Transcript transcript);

  std::filesystem::path antigravitySessions_;
  std::filesystem::path claudeProjects_;
  /// The last written ones, newest first at the time of the walk.
  std::vector<Transcript> newest_;
  std::optional<Date> lastLook_;
  std::optional<Date> lastWalk_;
  double walkIntervalSeconds_ = 0;
};

}  // namespace kestrel
