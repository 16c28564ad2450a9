#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "KestrelCore/Agents/AgentFootprints.h"
#include "KestrelCore/Agents/ProcessMatch.h"
#include "KestrelCore/Platform/ProcessList.h"
#include "KestrelCore/Platform/RunningApplications.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/SerialQueue.h"

namespace kestrel {

/// Finds agents that report nothing themselves, by scanning the machine at a fixed period. Keeps no session
/// state. `start` and `stop` on the main thread; everything else happens on its queue.
class ProcessMonitor {
 public:
  using Callback = std::function<void(std::vector<ProcessMatch>)>;

  /// `ownPid` is never reported. The platform's objects outlive the monitor, which must not be destroyed on
  /// its queue.
  ProcessMonitor(ProcessList& processes, RunningApplications& applications, AgentFootprints footprints,
                 std::int32_t ownPid, std::shared_ptr<const Clock> clock);
  ~ProcessMonitor();

  /// Called on the queue after every scan, with what was found, which may be nothing. Set before `start`.
  void setOnProcessesUpdated(Callback callback);

  /// Scans at once and then at every interval; a running timer is replaced.
  void start(double intervalSeconds);
  void stop();

  /// One scan, reported.
  void poll();
  /// One scan: Antigravity, the editors, the command-line agents, in order of discovery.
  [[nodiscard]] std::vector<ProcessMatch> scanProcesses();

 private:
  ProcessList& processes_;
  RunningApplications& applications_;
  AgentFootprints footprints_;
  const std::int32_t ownPid_;
  const std::shared_ptr<const Clock> clock_;
  Callback onProcessesUpdated_;
  RegistrationPtr timer_;
  /// Last, so that its thread has ended before anything it uses goes.
  SerialQueue queue_{"com.kestrel.processmonitor"};
};

}  // namespace kestrel
