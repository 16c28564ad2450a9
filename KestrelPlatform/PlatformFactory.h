#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

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

/// Whether somebody may be looking: false when no window can be opened here. That one is announced does not
/// mean that it can be reached.
bool mayHaveDisplay();

/// How this system treats status icons and those who have one.
struct DesktopTraits {
  /// The system tints the icon itself: only its shape counts.
  bool tintsIcons = false;
  /// The icon's menu is the host's to open; elsewhere we open it ourselves at a right click.
  bool hostOpensMenu = true;
};
DesktopTraits desktopTraits();

/// Keeps the application out of docks and switchers, once it exists. Main thread; nothing where that is for
/// windows to ask.
void becomeAccessory();

/// What shows status icons: a panel, a bar. It may come late, go, and come again. Main thread.
class TrayHost {
 public:
  virtual ~TrayHost() = default;
  /// 0 while there is none; each host that comes has another number.
  [[nodiscard]] virtual unsigned present() const = 0;
  /// Calls back when `present()` changed.
  [[nodiscard]] virtual RegistrationPtr observe(std::function<void()> onChange) = 0;
};

/// `onX11`: whether the application's windows are on an X display, where icons may also be embedded. The
/// executor outlives it.
std::unique_ptr<TrayHost> makeTrayHost(Executor& executor, const std::shared_ptr<LogSink>& logSink,
                                       bool onX11);

/// As long as the registration lives, tells whether the desktop prefers dark windows: when that becomes known
/// and at each change; absent when it prefers neither, or tells no longer. Null where the toolkit's palette
/// says it all. Main thread; the executor outlives it.
[[nodiscard]] RegistrationPtr followDarkPreference(
    Executor& executor, const std::shared_ptr<LogSink>& logSink,
    std::function<void(std::optional<bool> prefersDark)> onChange);

/// Another of Kestrel's executables, beside this one or where an installation keeps it. Absent when it is not
/// there, and where the application is one bundle.
std::optional<std::filesystem::path> companionProgram(const std::string& name);

}  // namespace kestrel
