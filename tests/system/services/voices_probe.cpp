// The controllers of notifications and of the shortcut on the real services, instructed on standard input,
// one command in each piece:
//   started COUNT | battery PERCENT | thermal | finished
//   notifications on|off    the setting; sounds are off
//   watch | unwatch         the shortcut; the first answers "refused" where it is
// Prints "done" after each command, and "toggled" for the shortcut. Log lines go to standard error.
#include <array>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <unistd.h>

#include "KestrelCore/GlobalShortcutController.h"
#include "KestrelCore/NotificationController.h"
#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Support/AsioExecutor.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelPlatform/PlatformFactory.h"

using namespace kestrel;

int main() {
  AsioExecutor executor;
  const auto directories = userDirectories();
  const auto clock = std::make_shared<SystemClock>();
  const std::shared_ptr<LogSink> sink = makeLogSink(true);
  const auto files = std::make_shared<AtomicFileWriter>(
      std::make_shared<KestrelWritePolicy>(directories.value(), sink), Logger(sink, "files"));
  const Platform platform = makePlatform({executor, sink, clock, files, *directories});
  SettingsStore settings(*platform.userDefaults, clock);
  settings.setSoundEnabled(false);
  NotificationController notifications(*platform.notifications, *platform.chime, settings, sink);
  notifications.requestAuthorization();
  GlobalShortcutController shortcut(*platform.keyMonitor, sink);
  shortcut.setOnToggleRequested([] { std::cout << "toggled" << std::endl; });

  using Argument = const std::string&;
  std::map<std::string, std::function<void(Argument)>> commands{
      {"started", [&](Argument count) { notifications.notifyProtectionStarted(std::stoi(count)); }},
      {"battery", [&](Argument percent) { notifications.notifyBatteryCutoff(std::stoi(percent)); }},
      {"thermal", [&](Argument) { notifications.notifyThermalCutoff(); }},
      {"finished", [&](Argument) { notifications.notifyProtectionFinished(); }},
      {"notifications", [&](Argument state) { settings.setNotificationsEnabled(state == "on"); }},
      {"unwatch", [&](Argument) { shortcut.stop(); }},
      {"watch", [&](Argument) {
         shortcut.start();
         if (!shortcut.isMonitoring()) std::cout << "refused" << std::endl;
       }}};
  const auto input = executor.watch(STDIN_FILENO, Executor::Readiness::readable, [&] {
    std::array<char, 4096> buffer{};
    if (::read(STDIN_FILENO, buffer.data(), buffer.size() - 1) == 0) return executor.stop();
    std::istringstream words(buffer.data());
    std::string command, argument;
    words >> command >> argument;
    commands.at(command)(argument);
    std::cout << "done" << std::endl;
  });
  executor.run();
}
