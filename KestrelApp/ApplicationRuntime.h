#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Control/ControlServer.h"
#include "KestrelCore/Control/ControlService.h"
#include "KestrelCore/Platform/Platform.h"
#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Settings/SettingsStore.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/InstanceLock.h"
#include "KestrelCore/Support/TerminationSignals.h"
#include "KestrelCore/UsageCoordinator.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {

/// The one Kestrel that runs for this user, and what it needs before it has an event loop. Members stand in
/// the order in which they are built and, backwards, released; so do those of ApplicationRuntime.
class SoleInstance {
 public:
  SoleInstance(Directories directories, std::shared_ptr<const Clock> clock, std::shared_ptr<LogSink> logSink);

  enum class Manners {
    defer,
    /// An instance without a window may be one that lost its display: it is given a moment to make room.
    mayFollow
  };

  /// Takes the lock. When another instance has it, asks that one to show its window and says so. Absent when
  /// this program shall go on, else its exit status.
  [[nodiscard]] std::optional<int> claim(Manners manners);
  /// What the instance before this one knew of the agents; empty without one.
  [[nodiscard]] const std::vector<HookEvent>& sessions() const { return sessions_; }
  void setSessions(std::vector<HookEvent> sessions) { sessions_ = std::move(sessions); }

  [[nodiscard]] const Directories& directories() const { return directories_; }
  [[nodiscard]] const std::shared_ptr<const Clock>& clock() const { return clock_; }
  [[nodiscard]] const std::shared_ptr<LogSink>& logSink() const { return logSink_; }
  [[nodiscard]] const std::shared_ptr<const KestrelWritePolicy>& writePolicy() const { return writePolicy_; }
  [[nodiscard]] const std::shared_ptr<const AtomicFileWriter>& files() const { return files_; }

 private:
  [[nodiscard]] bool follow();

  const Directories directories_;
  const std::shared_ptr<const Clock> clock_;
  const std::shared_ptr<LogSink> logSink_;
  const std::shared_ptr<const KestrelWritePolicy> writePolicy_;
  const std::shared_ptr<const AtomicFileWriter> files_;
  InstanceLock lock_;
  std::vector<HookEvent> sessions_;
};

/// The core wired to the system that this was built for: what every front end stands on. Main thread; the
/// instance, which holds its lock, and the loop outlive it.
class ApplicationRuntime {
 public:
  /// `onShow` shows the window at a second start, and returns false where there is none. A signal that asks
  /// the program to end calls `end()`.
  ApplicationRuntime(const SoleInstance& instance, MainLoop& loop, std::function<bool()> onShow);

  /// Serves the control socket, then starts the coordinator with the sessions that the instance knows.
  void start();
  /// Releases everything, then ends the loop; the helper is waited for, but not long. Asked again, it ends
  /// the loop at once.
  void end();
  /// Whether `end()` has been called. From any thread.
  [[nodiscard]] bool isEnding() const { return isEnding_; }

  [[nodiscard]] AppCoordinator& coordinator() { return *coordinator_; }

 private:
  const SoleInstance& instance_;
  MainLoop& loop_;
  const TerminationSignals signals_;
  Platform platform_;
  SettingsStore settings_;
  UsageCoordinator usage_;
  const std::shared_ptr<AppCoordinator> coordinator_;
  ControlService service_;
  ControlServer server_;
  bool isStarted_ = false;
  std::atomic<bool> isEnding_{false};
  RegistrationPtr deadline_;
};

}  // namespace kestrel
