#pragma once

#include <memory>
#include <optional>

#include "KestrelCore/Platform/HelperPlatform.h"
#include "KestrelCore/Platform/Platform.h"
#include "KestrelCore/Support/Executor.h"

namespace kestrel {

class AtomicFileWriter;
class Clock;

/// What the backends of one system are built from. Everything outlives the platform made from it.
struct PlatformContext {
  Executor& mainExecutor;
  std::shared_ptr<LogSink> logSink;
  std::shared_ptr<const Clock> clock;
  std::shared_ptr<const AtomicFileWriter> files;
  Directories directories;
};

/// The backends of the system this was built for. Main thread.
Platform makePlatform(const PlatformContext& context);

/// The same for the helper. Main thread.
HelperPlatform makeHelperPlatform(const PlatformContext& context);

/// Where a helper that this user runs keeps its files: root's serves the whole machine. Absent without a home
/// directory.
std::optional<HelperPlaces> helperPlaces();

/// Where this process's log lines go: the system's log, or standard error where there is none; `toTerminal`
/// prefers standard error when it is a terminal. Repeats are not limited: the caller, who has the clock,
/// wraps it.
std::shared_ptr<LogSink> makeLogSink(bool toTerminal);

/// Alone, for programs that need no other backend.
std::unique_ptr<PeerIdentity> makePeerIdentity();

/// An event loop that this system's backends can call back on.
class MainLoop {
 public:
  virtual ~MainLoop() = default;
  [[nodiscard]] virtual Executor& executor() = 0;
  /// Runs until `stop()`, on the main thread.
  virtual void run() = 0;
  /// From the loop's own tasks.
  virtual void stop() = 0;
};

std::unique_ptr<MainLoop> makeMainLoop();

}  // namespace kestrel
